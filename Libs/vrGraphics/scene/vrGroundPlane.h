#pragma once

#include "vrGraphics/particle/vrWorld.h"

/// Level ground without an end.
class vrGroundPlane final : public vrTerrain
{
public:
    explicit vrGroundPlane(float height = 0.0f) : Height(height) {}

    float Get_Height(float /*x*/, float /*y*/) const override { return Height; }
    vrHeightRange Get_Height_Range() const override { return {Height, Height}; }
    /// A way that starts on the ground and leads down goes through it at its start.
    bool Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const override;

private:
    float Height;
};
