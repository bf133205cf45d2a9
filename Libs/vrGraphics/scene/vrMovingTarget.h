#pragma once

#include "MKLib/MKMath/Vectors.h"

/// Something to shoot at, which moves at a constant speed.
class vrMovingTarget
{
public:
    /// World units, and units a second.
    explicit vrMovingTarget(const Vector3 &position, const Vector3 &velocity = Vector3(0.0f))
        : Start(position), Velocity(velocity)
    {
    }

    const Vector3 &Get_Velocity() const { return Velocity; }
    /// `seconds` after it started: computed from the start, so that steps don't add up their rounding.
    Vector3 Get_Position(double seconds) const;
    /// How long a projectile takes from `from` to where the target starts, `speed` being above 0.
    float Get_Flight_Seconds(const Vector3 &from, float speed) const;

private:
    Vector3 Start;
    Vector3 Velocity;
};
