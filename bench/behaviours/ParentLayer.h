#pragma once

#include "BehaviourBench.h"

#include "vrGraphics/particle/vrMKPLayer.h"

namespace Behaviour
{

/// The layer "parent", which slaves, trails and bursts follow.
class ParentLayer final : public vrMKPLayer, public vrMKPLayerList
{
public:
    /// Makes it the stage's only layer, with copies of the first `count` particles.
    static void Follow(Stage &stage, int count);
    /// Expects a stage that follows.
    static const vrMKPBuffer *Get_Parent_Buffer(const Stage &stage)
    {
        return stage.State.Layers->Find_Layer("parent")->Get_Buffer();
    }

    const MK::String &Get_Name() const override { return Name; }
    vrMKPBuffer *Get_Buffer() const override { return Buffer.Get(); }
    void On_Parent_Particle_Death(const vrMKPBuffer &, const Vector3 &, const Vector3 &, float) override {}
    vrMKPLayer *Find_Layer(std::string_view) const override { return const_cast<ParentLayer *>(this); }

private:
    MK::String Name = "parent";
    SmartPtr<vrMKPBuffer> Buffer;
};

inline void ParentLayer::Follow(Stage &stage, int count)
{
    static ParentLayer parent;
    vrMKPBuffer &buffer = *stage.Buffer;
    stage.State.Layers = &parent;
    if (!parent.Buffer || parent.Buffer->Capacity != buffer.Capacity)
        parent.Buffer = vrMKPBuffer::Create(buffer.Capacity, "parent");
    parent.Buffer->Reset();
    parent.Buffer->State = &stage.State;
    parent.Buffer->TransformType = buffer.TransformType;
    int first = 0;
    parent.Buffer->Grant_Slots(count, first);
    parent.Buffer->SpawnedThisFrame = 0;
    for (int slot = 0; slot < count; ++slot) parent.Buffer->Copy_Particle_From(slot, slot, buffer);
}

} // namespace Behaviour
