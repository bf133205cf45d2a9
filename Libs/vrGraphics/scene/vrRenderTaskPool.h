#pragma once

#include "vrGraphics/drivercommon/vrRenderContext.h"

#include <deque>

class vrRenderable;

/// Draws one renderable in one phase, by its own operations.
class vrSimpleRenderTask final : public vrRenderTask
{
public:
    vrSimpleRenderTask() = default;

    /// Borrows the renderable for one render.
    void Set(vrRenderable &renderable, const vrBounds &bounds, float sortBias);

    void Pre_Render(const vrPreRenderContext &context) override;
    void Render(vrRenderContext &context) override;
    vrBounds Get_Bounds() const override { return Bounds; }
    const void *Get_Owner() const override { return Renderable; }
    float Get_Sort_Bias() const override { return SortBias; }

private:
    vrRenderable *Renderable = nullptr;
    vrBounds Bounds;
    float SortBias = 0.0f;
};

/// The tasks of a scene's renders: made once and handed out again, so that a render allocates nothing once there are
/// enough. Renders may stand in each other: each gives back what was handed out since it began.
class vrRenderTaskPool
{
public:
    vrSimpleRenderTask &Take();
    size_t Get_Taken_Count() const { return Taken; }
    void Give_Back_To(size_t taken) { Taken = taken; }

private:
    std::deque<vrSimpleRenderTask> Tasks;
    size_t Taken = 0;
};
