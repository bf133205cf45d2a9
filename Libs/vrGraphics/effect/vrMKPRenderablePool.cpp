#include "vrGraphics/effect/vrMKPRenderablePool.h"

#include "vrGraphics/effect/vrMKPRenderable.h"

#include <algorithm>
#include <iterator>
#include <utility>

vrMKPRenderablePool::vrMKPRenderablePool() = default;

vrMKPRenderablePool::~vrMKPRenderablePool() = default;

void vrMKPRenderablePool::Give(vrMKPRenderable *renderable)
{
    if (!MK_VERIFY(renderable != nullptr, "renderable == NULL")) return;
    const SmartPtr<vrMKPRenderablePool> held(this); // the renderable's may be the last one that isn't the caller's
    renderable->Set_Emitter(nullptr);
    renderable->Reset();
    renderable->Set_Pool(nullptr);
    const std::lock_guard lock(Lock);
    Renderables.emplace_back(renderable);
}

SmartPtr<vrMKPRenderable> vrMKPRenderablePool::Take(const vrMKPRenderable &definition)
{
    const std::lock_guard lock(Lock);
    const auto found = std::find_if(Renderables.rbegin(), Renderables.rend(), [&](const auto &renderable) {
        return renderable->Get_Ref_Count() == 1 && renderable->Is_Same_Definition(definition);
    });
    if (found == Renderables.rend()) return nullptr;
    SmartPtr<vrMKPRenderable> taken = std::move(*found);
    Renderables.erase(std::next(found).base());
    return taken;
}

size_t vrMKPRenderablePool::Get_Count() const
{
    const std::lock_guard lock(Lock);
    return Renderables.size();
}
