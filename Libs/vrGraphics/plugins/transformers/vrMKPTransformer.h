#pragma once

/// The transformer family: the plugins of a layer that settle in which space it is simulated, and that turn each
/// particle's simulated position into the world position which is drawn.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPTransformType.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

struct Mat3DClass;
struct vrBounds;

class vrMKPTransformer : public vrMKPPlugin
{
public:
    /// The space of the simulation, which spawners and modifiers follow.
    virtual vrMKPTransformType Get_Transform_Type() const { return MKP_TRANSFORM_LOCAL; }
    /// Whether the world positions depend on the view, so that they are made once for each.
    virtual bool Needs_Camera() const { return false; }
    /// Whether world positions are the simulated ones, unchanged.
    virtual bool Keeps_Positions() const { return false; }
    virtual vrParticleScaleType Get_Scale_Type() const { return PARTICLE_SCALE_NONE; }

    /// The step of the transformers that need no camera: writes the world positions of all live particles, and then
    /// tells the companion.
    void Transform(vrMKPBuffer &buffer) const;
    /// The particles' part of it, for one run of slots.
    virtual void Transform_Span(vrMKPBuffer & /*buffer*/, vrMKPSpan /*span*/) const {}
    /// The companion's part of it.
    virtual void Transform_Companion(vrMKPBuffer & /*buffer*/) const {}
    /// The step of those that do, once for each view, ahead of the drawing. A view-dependent layer's bounds go to
    /// `bounds`. Null for the buffer or the camera asserts.
    virtual void Transform_For_View(vrMKPBuffer * /*buffer*/, const Mat3DClass * /*camera*/,
                                    vrBounds & /*bounds*/) const
    {
    }
};
