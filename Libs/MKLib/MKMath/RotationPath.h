#pragma once

#include "MKLib/MKMath/Vectors.h"

#include <glm/ext/quaternion_double.hpp>

/// The way from one rotation to another, the shorter one, at an even rate: their spherical interpolation. What doesn't
/// change along the way is computed once. The same bits on every machine.
class RotationPath
{
public:
    /// Stays at no rotation.
    RotationPath() = default;
    /// Both of unit length.
    RotationPath(const QuaternionClass &from, const QuaternionClass &to);

    /// 0 is the start, 1 the end.
    QuaternionClass At(float fraction) const;
    /// The same for many.
    void At_Many(const float *fractions, int count, QuaternionClass *rotations) const;

private:
    glm::dquat From{1.0, 0.0, 0.0, 0.0};
    glm::dquat To{1.0, 0.0, 0.0, 0.0}; ///< on the side of `From`
    double Angle = 0.0;                ///< between the two; 0 where they are too near to tell
    double SineOfAngle = 0.0;
};
