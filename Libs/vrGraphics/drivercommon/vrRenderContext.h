#pragma once

/// What travels through one render of a scene: what is drawn, for whom, and in which order.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrSceneEffectsParams.h"

#include <array>
#include <memory>
#include <vector>

class vrCamera;
class vrRenderContext;
class vrScene;

/// What one draw prepares from: the phase that it belongs to, the view, and what the environment does to particles.
struct vrPreRenderContext
{
    vrRenderPhaseEnum Phase = vrRenderPhaseEnum::Opaque;
    Mat3DClass Camera;                       ///< looks down its negative z axis
    Vector3 ParticleDiffuseMultiplier{1.0f}; ///< red, green, blue
};

/// One thing that draws in one phase of one render. Made while a scene collects, gone when the render is over.
class vrRenderTask
{
public:
    vrRenderTask() = default;
    vrRenderTask(const vrRenderTask &) = delete;
    vrRenderTask &operator=(const vrRenderTask &) = delete;
    virtual ~vrRenderTask() = default;

    /// Builds what is drawn. Tasks of different owners may run side by side.
    virtual void Pre_Render(const vrPreRenderContext &context) = 0;
    /// Draws. On the thread that owns the driver.
    virtual void Render(vrRenderContext &context) = 0;
    virtual vrBounds Get_Bounds() const = 0; ///< in the world
    /// Tasks of one owner don't pre-render side by side.
    virtual const void *Get_Owner() const = 0;
    /// Draws of one phase go from the lowest to the highest, and those of one bias in the order of collection.
    virtual float Get_Sort_Bias() const { return 0.0f; }
};

/// A render of one scene for one camera. Lives for that call; the tasks are borrowed from the scene's pools.
class vrRenderContext
{
public:
    using vrRenderPhaseEnum = ::vrRenderPhaseEnum;
    static constexpr int MAX_EXTRA_PASSES = 16;

    /// Expects a camera.
    explicit vrRenderContext(vrCamera *cam);
    ~vrRenderContext();
    vrRenderContext(const vrRenderContext &) = delete;
    vrRenderContext &operator=(const vrRenderContext &) = delete;

    vrCamera *Camera;
    vrScene *Scene = nullptr;
    uint32_t PhaseMask = 0xffff; ///< bits of the phases that this render draws
    vrRenderModeType Mode = VR_RENDER_MODE_NORMAL;
    vrRenderPhaseEnum Phase = vrRenderPhaseEnum::Terrain; ///< the one that is being drawn
    uint32_t PostFxMask = VR_POSTFX_ALL;
    vrPreRenderContext PreRender; ///< for all tasks but for the phase, which is each one's own
    Vector3 ParticleEmissiveAdder{0.0f};
    vrBounds TaskBounds; ///< of all tasks near enough to matter

    void Add_Task(vrRenderPhaseEnum phase, vrRenderTask *task) { Lists->Phases[Index_Of(phase)].push_back(task); }
    const std::vector<vrRenderTask *> &Get_Tasks(vrRenderPhaseEnum phase) const
    {
        return Lists->Phases[Index_Of(phase)];
    }
    std::vector<vrRenderTask *> &Get_Tasks(vrRenderPhaseEnum phase) { return Lists->Phases[Index_Of(phase)]; }
    bool Has_Phase(vrRenderPhaseEnum phase) const { return (PhaseMask & Phase_Bit(phase)) != 0; }
    int Get_Task_Count() const;
    /// Empties the lists.
    void Clear_Tasks();
    /// Runs the pre-render of all tasks, on the thread pool where there is more than one owner.
    void Pre_Render_Tasks();
    /// Puts each phase's tasks into the order of their bias.
    void Sort_Tasks();
    /// For what wants a further pass after the phases; false when there are `MAX_EXTRA_PASSES` already.
    bool Add_Extra_Pass(vrRenderTask *task);
    const std::vector<vrRenderTask *> &Get_Extra_Passes() const { return Lists->ExtraPasses; }

private:
    static size_t Index_Of(vrRenderPhaseEnum phase) { return static_cast<size_t>(phase); }

    /// A task on its way through the pre-render.
    struct PreRenderEntry
    {
        const void *Owner;
        vrRenderTask *Task;
        vrRenderPhaseEnum Phase;
    };
    struct SortEntry
    {
        float Bias;
        uint32_t Order; ///< of collection
        vrRenderTask *Task;
    };
    /// What a context fills. It goes back to a spare list, so that the next one of the thread allocates nothing.
    struct TaskLists
    {
        std::array<std::vector<vrRenderTask *>, PHASE_COUNT> Phases;
        std::vector<vrRenderTask *> ExtraPasses;
        std::vector<PreRenderEntry> PreRender;
        std::vector<SortEntry> Sorted;
        std::vector<int> OwnerStarts; ///< where each owner's run of `PreRender` begins, and its end
    };

    void Pre_Render_Owners();
    void Pre_Render_Owner(int owner) const;
    void Sort_Phase(std::vector<vrRenderTask *> &tasks);

    static thread_local std::vector<std::unique_ptr<TaskLists>> SpareLists;

    std::unique_ptr<TaskLists> Lists;
};
