#include "vrGraphics/RenderThread/ThreadWrapperTaskList.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/RenderThread/RenderThread.h"

#include <algorithm>

void ThreadWrapperTaskList::Add(ThreadWrapperTask *task)
{
    MK_ASSERT(!ExecutingTasks, "!ExecutingTasks");
    if (!task) return;
    const std::lock_guard guard(Lock);
    Tasks.emplace_back(task);
}

bool ThreadWrapperTaskList::Remove(const ThreadWrapperTask *task)
{
    if (!MK_VERIFY(!ExecutingTasks, "!ExecutingTasks")) return false; // it may be the one that runs
    const std::lock_guard guard(Lock);
    const auto found = std::find_if(Tasks.begin(), Tasks.end(), [&](const auto &entry) { return entry.get() == task; });
    if (found == Tasks.end()) return false;
    Tasks.erase(found);
    return true;
}

bool ThreadWrapperTaskList::Remove_Checked(const ThreadWrapperTask *task)
{
    MK_ASSERT(RenderThread::InParallelSection || Is_Main_Thread(),
              "RenderThread::InParallelSection || Is_Main_Thread()");
    return Remove(task);
}

void ThreadWrapperTaskList::Execute_All()
{
    ExecutingTasks = true;
    for (size_t index = 0; index < Tasks.size(); ++index) Tasks[index]->Execute(); // a faulty one may add others
    Tasks.clear();
    ExecutingTasks = false;
}
