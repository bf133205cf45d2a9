#pragma once

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// Random steps of place and velocity in each frame, along the axes of the group. They don't repeat by a seed.
class vrMKPRandomWalkModifier final : public vrMKPModifier
{
public:
    vrMKPRandomWalkModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// The draws are in ring order.
    WalkType Get_Walk() const override { return WALK_WHOLE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *PositionScale;
    Vector3Parameter *VelocityScale;
};
