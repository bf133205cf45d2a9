#include "MKLib/ThreadPool.h"

#include "MKLib/MKMath/FloatingPoint.h"

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_scheduler_observer.h>

#include <algorithm>

namespace
{

/// Workers join and leave the arena at any time; each gets the mode as it joins.
class ModeSetter final : public tbb::task_scheduler_observer
{
public:
    explicit ModeSetter(tbb::task_arena &arena) : task_scheduler_observer(arena) { observe(true); }
    ~ModeSetter() override { observe(false); }
    void on_scheduler_entry(bool) override { Init_Floating_Point_Mode(); }
};

struct Pool
{
    explicit Pool(int threads)
        : Control(tbb::global_control::max_allowed_parallelism, static_cast<size_t>(threads)), Arena(threads),
          Setter(Arena), ThreadCount(threads)
    {
    }

    tbb::global_control Control; ///< lets the arena have more threads than the machine has processors
    tbb::task_arena Arena;
    ModeSetter Setter;
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

void ThreadPool::System_Shutdown() { ThePool.reset(); }

int ThreadPool::Get_Thread_Count() { return ThePool ? ThePool->ThreadCount : 1; }

void ThreadPool::Run(int first, int last, int grain, RangeCall call, void *context)
{
    if (first >= last) return;
    if (Get_Thread_Count() == 1) return call(context, first, last);
    ThePool->Arena.execute([=] {
        tbb::parallel_for(
            tbb::blocked_range<int>(first, last, static_cast<size_t>(std::max(grain, 1))),
            [=](const tbb::blocked_range<int> &range) { call(context, range.begin(), range.end()); },
            tbb::simple_partitioner());
    });
}
