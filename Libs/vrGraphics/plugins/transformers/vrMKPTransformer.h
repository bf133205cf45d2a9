#pragma once

/// The transformer family: the plugins of a layer that settle in which space it is simulated, and that turn each
/// particle's simulated position into the world position which is drawn.

#include "vrGraphics/particle/vrMKPTransformType.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

class vrMKPTransformer : public vrMKPPlugin
{
public:
    /// The space of the simulation, which spawners and modifiers follow.
    virtual vrMKPTransformType Get_Transform_Type() const { return MKP_TRANSFORM_LOCAL; }
    /// Whether the world positions depend on the view, so that they are made once for each.
    virtual bool Needs_Camera() const { return false; }
    virtual vrParticleScaleType Get_Scale_Type() const { return PARTICLE_SCALE_NONE; }
};
