#include "vrGraphics/drivercommon/vrRenderContext.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace
{

/// So that a thread that is done early finds more to do, and handing out doesn't cost more than the work.
constexpr int RANGES_A_THREAD = 8;

} // namespace

thread_local std::vector<std::unique_ptr<vrRenderContext::TaskLists>> vrRenderContext::SpareLists;

vrRenderContext::vrRenderContext(vrCamera *cam) : Camera(cam)
{
    MK_ASSERT(cam != nullptr, "cam != NULL");
    if (cam) PreRender.Camera = cam->Get_Transform();
    if (SpareLists.empty()) {
        Lists = std::make_unique<TaskLists>();
    } else {
        Lists = std::move(SpareLists.back());
        SpareLists.pop_back();
    }
}

vrRenderContext::~vrRenderContext()
{
    Clear_Tasks();
    SpareLists.push_back(std::move(Lists));
}

int vrRenderContext::Get_Task_Count() const
{
    size_t count = 0;
    for (const auto &tasks : Lists->Phases) count += tasks.size();
    return static_cast<int>(count);
}

void vrRenderContext::Clear_Tasks()
{
    for (auto &tasks : Lists->Phases) tasks.clear();
    Lists->ExtraPasses.clear();
}

void vrRenderContext::Pre_Render_Tasks()
{
    const auto start = std::chrono::steady_clock::now();
    Pre_Render_Owners();
    const auto taken = std::chrono::steady_clock::now() - start;
    vrGraphicsStats::PrepareMicroseconds +=
        static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(taken).count());
}

void vrRenderContext::Pre_Render_Owners()
{
    auto &entries = Lists->PreRender;
    auto &starts = Lists->OwnerStarts;
    entries.clear();
    starts.clear();
    for (int phase = 0; phase < PHASE_COUNT; ++phase)
        for (vrRenderTask *task : Lists->Phases[static_cast<size_t>(phase)])
            entries.push_back({task->Get_Owner(), task, static_cast<vrRenderPhaseEnum>(phase)});
    std::sort(entries.begin(), entries.end(), [](const PreRenderEntry &left, const PreRenderEntry &right) {
        return std::less<>()(left.Owner, right.Owner) || (left.Owner == right.Owner && left.Phase < right.Phase);
    });
    for (size_t at = 0; at < entries.size(); ++at)
        if (at == 0 || entries[at].Owner != entries[at - 1].Owner) starts.push_back(static_cast<int>(at));
    const int owners = static_cast<int>(starts.size());
    starts.push_back(static_cast<int>(entries.size()));

    if (owners < 2) {
        if (owners == 1) Pre_Render_Owner(0);
        return;
    }
    const bool wasParallel = RenderThread::InParallelSection.exchange(true);
    const int grain = std::max(1, owners / (ThreadPool::Get_Thread_Count() * RANGES_A_THREAD));
    ThreadPool::Parallel_For(0, owners, grain, [this](int first, int last) {
        for (int owner = first; owner < last; ++owner) Pre_Render_Owner(owner);
    });
    RenderThread::InParallelSection = wasParallel;
}

void vrRenderContext::Pre_Render_Owner(int owner) const
{
    vrPreRenderContext context = PreRender;
    const auto first = static_cast<size_t>(Lists->OwnerStarts[static_cast<size_t>(owner)]);
    const auto last = static_cast<size_t>(Lists->OwnerStarts[static_cast<size_t>(owner) + 1]);
    for (size_t at = first; at < last; ++at) {
        const PreRenderEntry &entry = Lists->PreRender[at];
        context.Phase = entry.Phase;
        entry.Task->Pre_Render(context);
    }
}

void vrRenderContext::Sort_Tasks()
{
    for (auto &tasks : Lists->Phases)
        if (tasks.size() > 1) Sort_Phase(tasks);
}

void vrRenderContext::Sort_Phase(std::vector<vrRenderTask *> &tasks)
{
    auto &sorted = Lists->Sorted;
    sorted.clear();
    bool isInOrder = true;
    for (vrRenderTask *task : tasks) {
        const float bias = task->Get_Sort_Bias();
        const float valid = bias == bias ? bias : 0.0f; // a file may hold anything
        isInOrder &= sorted.empty() || sorted.back().Bias <= valid;
        sorted.push_back({valid, static_cast<uint32_t>(sorted.size()), task});
    }
    if (isInOrder) return;
    std::sort(sorted.begin(), sorted.end(), [](const SortEntry &left, const SortEntry &right) {
        return left.Bias < right.Bias || (left.Bias == right.Bias && left.Order < right.Order);
    });
    std::transform(sorted.begin(), sorted.end(), tasks.begin(), [](const SortEntry &entry) { return entry.Task; });
}

bool vrRenderContext::Add_Extra_Pass(vrRenderTask *task)
{
    if (!task || Lists->ExtraPasses.size() >= MAX_EXTRA_PASSES) return false;
    Lists->ExtraPasses.push_back(task);
    return true;
}
