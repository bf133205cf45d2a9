#pragma once

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

class RandomClass;

/// Lets particles bounce off, slide along or stick to the terrain. Those that come to rest get PARTICLE_STOPPED.
class vrMKPTerrainBounceModifier final : public vrMKPModifier
{
public:
    vrMKPTerrainBounceModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// A rough surface draws in ring order.
    WalkType Get_Walk() const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    struct Surface;

    Surface Get_Surface(float frameTime) const;
    bool Meet_Ground(vrMKPBuffer &buffer, int slot, const Surface &surface) const;

    RangedFloatParameter *Elasticity;
    BoolParameter *Sticky;
    RangedFloatParameter *Roughness;
    RangedFloatParameter *Friction;
    RangedFloatParameter *ZOffset;
};
