#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"

class vrRenderContext;
struct vrHWParticleLook;

/// What a layer holds beside its buffer when its particles are simulated apart from it. Other layers have none.
class vrHWParticleBuffer : public RefCountClass
{
public:
    /// One frame of `dt` seconds, for a group that fills the box between two corners. True when a new cycle of the
    /// effect began.
    virtual bool Update(float dt, const Vector3 &boxMinimum, const Vector3 &boxMaximum) = 0;
    /// What the layer's transformer tells, where it has one: 0 when particles ride with their group, 1 in world space.
    virtual void Update_Transform(int worldSpace) = 0;
    /// Ends the spawning; the living particles play to their end.
    virtual void Stop_Spawning() = 0;
    /// Begins the spawning anew, start delay included; the living particles play on.
    virtual void Start_Spawning() = 0;
    /// Whether the last particle is gone and none is to come, by what the layer itself says.
    virtual bool Is_Finished() const = 0;
    /// Draws in the driver's world transform. On the thread that owns the driver.
    virtual void Render(vrRenderContext &context, const vrHWParticleLook &look) = 0;
};
