#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"

/// What a layer holds beside its buffer when the graphics device simulates its particles. Without a device that does
/// so there is none.
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
    /// Draws. On the thread that owns the driver.
    virtual void Render() = 0;
};
