#pragma once

/// Many points of one shape at a time, a register of them at once. They are those of `ShapeParameterClass::Sample` for
/// one after the other, bit for bit.

#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/RandomLanes.h"

class ShapeBatch
{
public:
    static constexpr int CAPACITY = RandomLanes::CAPACITY; ///< the most points

    /// Borrows the shape.
    ShapeBatch(const ShapeParameterClass &shape, bool hollow, bool even);
    /// Whether the shape has points of this kind: some are only sampled one by one.
    bool Is_Possible() const { return DrawCount >= 0; }
    /// The draws of a point.
    int Get_Draw_Count() const { return DrawCount; }

    /// Writes a point for each of the takers whose next draws are the point's, an array for each component, up to whole
    /// groups of `RandomLanes`. False, and what was written has no meaning, where one of these points has to be sampled
    /// by itself, with numbers that are drawn again.
    bool Draw(const RandomLanes &takers, float *x, float *y, float *z, int count) const;

private:
    const ShapeParameterClass &Shape;
    int DrawCount;
};
