#include "MKLib/ThreadPool.h"

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>

namespace
{

struct Pool
{
    explicit Pool(int threads)
        : Control(tbb::global_control::max_allowed_parallelism, static_cast<size_t>(threads)), Arena(threads),
          ThreadCount(threads)
    {
    }

    tbb::global_control Control; ///< lets the arena have more threads than the machine has processors
    tbb::task_arena Arena;
    int ThreadCount;
};

std::unique_ptr<Pool> ThePool;

} // namespace

void ThreadPool::System_Init(int threads)
{
    threads = std::max(threads, 1);
    if (Get_Thread_Count() == threads && ThePool) return;
    System_Shutdown();
    ThePool = std::make_unique<Pool>(threads);
}

void ThreadPool::System_Shutdown()
{
    ThePool.reset();
}

int ThreadPool::Get_Thread_Count()
{
    return ThePool ? ThePool->ThreadCount : 1;
}

void ThreadPool::Run(int first, int last, int grain, RangeCall call, void *context)
{
    if (first >= last) return;
    if (Get_Thread_Count() == 1) return call(context, first, last);
    // Captures the caller's floating-point mode, which every thread takes on for this work.
    tbb::task_group_context group(tbb::task_group_context::bound,
                                  tbb::task_group_context::default_traits | tbb::task_group_context::fp_settings);
    ThePool->Arena.execute([&] {
        tbb::parallel_for(
            tbb::blocked_range<int>(first, last, static_cast<size_t>(std::max(grain, 1))),
            [=](const tbb::blocked_range<int> &range) { call(context, range.begin(), range.end()); },
            tbb::simple_partitioner(), group);
    });
}
