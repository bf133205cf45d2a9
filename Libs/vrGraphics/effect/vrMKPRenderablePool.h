#pragma once

#include "MKLib/RefCount.h"

#include <mutex>
#include <vector>

class vrMKPRenderable;

/// Renderables that instances of an emitter have released, so that a new instance can take them again in place of
/// building its own. All instances of one definition share one pool. Any thread.
class vrMKPRenderablePool final : public RefCountClass
{
public:
    vrMKPRenderablePool();
    ~vrMKPRenderablePool() override;

    /// Keeps a renderable, put back to the time before its start. It no longer belongs to an emitter or to this pool's
    /// users, so that the pool and what it keeps don't keep each other alive.
    void Give(vrMKPRenderable *renderable);
    /// One that is the same as `definition` and that nobody else holds; null when there is none.
    SmartPtr<vrMKPRenderable> Take(const vrMKPRenderable &definition);
    size_t Get_Count() const;

private:
    mutable std::mutex Lock;
    std::vector<SmartPtr<vrMKPRenderable>> Renderables;
};
