#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/ShapeBatch.h"
#include "vrGraphics/particle/VectorPlanes.h"

/// Draws the positions and velocities of a filling from two shapes: the source of every spawner that has such
/// parameters, or a part of it.
struct vrMKPShapeSource
{
    const ShapeParameterClass &PositionShape;
    const ShapeParameterClass &VelocityShape;
    bool HollowPosition = false;
    bool HollowVelocity = false;
    bool EvenDistribution = false;

    static constexpr int MAX_BLOCK = ShapeBatch::CAPACITY; ///< the most that `Draw_Block` draws

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
    /// The draws for a block at once, in the order of those above with the random values; false where a shape doesn't
    /// allow it, with nothing drawn.
    bool Draw_Block(RandomClass &random, const vrMKPVectors &positions, const vrMKPVectors &velocities, uint32_t *ids,
                    int count) const
    {
        ShapeBatch places(PositionShape, HollowPosition, EvenDistribution);
        ShapeBatch courses(VelocityShape, HollowVelocity, EvenDistribution);
        if (!places.Is_Possible() || !courses.Is_Possible()) return false;
        for (int i = 0; i < count; ++i) {
            places.Draw(random, i);
            courses.Draw(random, i);
            ids[i] = random.Get_Word();
        }
        places.Place(positions.X, positions.Y, positions.Z, count);
        courses.Place(velocities.X, velocities.Y, velocities.Z, count);
        return true;
    }
};
