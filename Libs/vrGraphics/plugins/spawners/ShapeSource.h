#pragma once

#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/MKDebug/Assert.h"

/// Draws the positions and velocities of a filling from two shapes: the source of every spawner that has such
/// parameters, or a part of it.
struct vrMKPShapeSource
{
    const ShapeParameterClass &PositionShape;
    const ShapeParameterClass &VelocityShape;
    bool HollowPosition = false;
    bool HollowVelocity = false;
    bool EvenDistribution = false;

    /// Reports shapes with bounds in the wrong order, which their draws swap: once for a filling, not once for a draw.
    void Check() const
    {
        MK_ASSERT(PositionShape.Are_Bounds_Ordered() && VelocityShape.Are_Bounds_Ordered(), "low <= high");
    }
    Vector3 Position(RandomClass &random) const
    {
        return PositionShape.Sample(random, HollowPosition, EvenDistribution, nullptr, Vector3(0.0f));
    }
    Vector3 Velocity(RandomClass &random, const Vector3 &localPosition) const
    {
        return VelocityShape.Sample(random, HollowVelocity, EvenDistribution, &PositionShape, localPosition);
    }
};
