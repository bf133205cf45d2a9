#include "vrGraphics/scene/vrRenderTaskPool.h"

#include "vrGraphics/scene/vrRenderable.h"

void vrSimpleRenderTask::Set(vrRenderable &renderable, const vrBounds &bounds, float sortBias)
{
    Renderable = &renderable;
    Bounds = bounds;
    SortBias = sortBias;
}

void vrSimpleRenderTask::Pre_Render(const vrPreRenderContext &context)
{
    Renderable->Pre_Render(context);
}

void vrSimpleRenderTask::Render(vrRenderContext &context)
{
    Renderable->Render(context);
}

vrSimpleRenderTask &vrRenderTaskPool::Take()
{
    if (Taken == Tasks.size()) Tasks.emplace_back();
    return Tasks[Taken++];
}
