#pragma once

#include <atomic>
#include <memory>
#include <type_traits>

/// The engine's worker threads, over oneTBB, whose headers stay inside ThreadPool.cpp. The pool is a process-wide one:
/// it is started once, by the main thread, and the calling thread counts as one of its threads. Workers run in the
/// caller's floating-point mode. Without a pool, or with one thread, everything runs on the caller.
class ThreadPool
{
public:
    /// Starts the pool with `threads` threads (at least 1), or starts it anew with another number. No work may be
    /// running.
    static void System_Init(int threads);
    static void System_Shutdown();
    /// The threads that work is spread over; 1 without a pool.
    static int Get_Thread_Count();

    /// Calls body(first, last) for ranges that cover `first` to `last` once, none longer than `grain` as long as there
    /// is more than one thread, and waits for all. The order and the threads are free, so ranges must not touch each
    /// other.
    template <typename Body>
    static void Parallel_For(int first, int last, int grain, Body &&body)
    {
        HandOver.fetch_add(1, std::memory_order_release);
        Run(
            first, last, grain,
            [](void *context, int rangeFirst, int rangeLast) {
                static_cast<void>(HandOver.load(std::memory_order_acquire));
                (*static_cast<std::remove_reference_t<Body> *>(context))(rangeFirst, rangeLast);
                HandOver.fetch_add(1, std::memory_order_release);
            },
            const_cast<void *>(static_cast<const void *>(std::addressof(body))));
        static_cast<void>(HandOver.load(std::memory_order_acquire));
    }

private:
    using RangeCall = void (*)(void *context, int first, int last);
    static void Run(int first, int last, int grain, RangeCall call, void *context);

    /// Orders the caller before the ranges and the ranges before its return. The library does so as well, but the
    /// thread sanitizer doesn't see into it; with this, what it tells of races in the bodies is true.
    static inline std::atomic<unsigned> HandOver{0};
};
