#include "vrGraphics/assets/vrThreadLoadManager.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKPlatform/Threads.h"
#include "vrGraphics/RenderThread/RenderThread.h"

#include <mutex>
#include <utility>
#include <vector>

namespace
{

struct LoadFinishQueue
{
    FastThreadLockClass Lock;
    std::vector<std::function<void()>> Calls;
};

LoadFinishQueue &Queue()
{
    static LoadFinishQueue queue;
    return queue;
}

} // namespace

void vrThreadLoadManager::Queue_Load_Finish(std::function<void()> call)
{
    const std::lock_guard guard(Queue().Lock);
    Queue().Calls.push_back(std::move(call));
}

void vrThreadLoadManager::Synchronize()
{
    MK_ASSERT(Is_Main_Thread(), "Is_Main_Thread()");
    MK_ASSERT(!RenderThread::InParallelSection, "!RenderThread::InParallelSection && \"Call Brem.\"");
    auto &calls = Queue().Calls;
    const std::lock_guard guard(Queue().Lock);
    for (size_t index = 0; index < calls.size(); ++index) std::exchange(calls[index], nullptr)();
    calls.clear();
}
