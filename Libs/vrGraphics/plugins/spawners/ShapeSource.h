#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/ShapeBatch.h"
#include "vrGraphics/plugins/spawners/Newborns.h"

/// Draws the positions and velocities of a filling from two shapes: the source of every spawner that has such
/// parameters, or a part of it.
struct vrMKPShapeSource
{
    vrMKPShapeSource(const ShapeParameterClass &position, const ShapeParameterClass &velocity, bool hollowPosition,
                     bool hollowVelocity, bool evenDistribution)
        : PositionShape(position), VelocityShape(velocity), HollowPosition(hollowPosition),
          HollowVelocity(hollowVelocity), EvenDistribution(evenDistribution),
          Places(position, hollowPosition, evenDistribution), Courses(velocity, hollowVelocity, evenDistribution)
    {
    }

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
    bool Draws_Blocks() const { return Places.Is_Possible() && Courses.Is_Possible(); }
    /// The draws of newborns from `first` on at once, as those above with the random values; false where they have to
    /// be drawn one by one, with nothing drawn. Expects `Draws_Blocks`.
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count) const
    {
        const int placeDraws = Places.Get_Draw_Count();
        const int pointDraws = placeDraws + Courses.Get_Draw_Count();
        const RandomLanes takers(random, pointDraws + 2);
        if (!Draw(Places, takers, vrMKPVectors(newborns.Starts) + first, count)) return false;
        if (!Draw(Courses, takers.After(placeDraws), vrMKPVectors(newborns.Velocities) + first, count)) return false;
        takers.After(pointDraws).Get_Words(newborns.IDs + first, count);
        takers.Finish(random, count);
        return true;
    }

    const ShapeParameterClass &PositionShape;
    const ShapeParameterClass &VelocityShape;
    bool HollowPosition;
    bool HollowVelocity;
    bool EvenDistribution;

private:
    static bool Draw(const ShapeBatch &shape, const RandomLanes &takers, const vrMKPVectors &to, int count)
    {
        return shape.Draw(takers, to.X, to.Y, to.Z, count);
    }

    ShapeBatch Places;
    ShapeBatch Courses;
};
