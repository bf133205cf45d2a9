#pragma once

#include "vrGraphics/scene/vrScene.h"

/// The scene of tools and tests: a plain list of its renderables.
class vrSimpleScene final : public vrScene
{
public:
    MK_RUN_TIME_TYPE

    vrSimpleScene() = default;
    ~vrSimpleScene() override;

    bool Add_Renderable(vrRenderable *renderable) override;
    bool Remove_Renderable(vrRenderable *renderable) override;
    int Get_Renderable_Count() const { return static_cast<int>(Renderables.size()); }
    /// Null for an index out of range.
    vrRenderable *Get_Renderable(int index) const;

    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    std::vector<SmartPtr<vrRenderable>> Renderables;
};
