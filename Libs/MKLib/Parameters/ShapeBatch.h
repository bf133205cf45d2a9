#pragma once

/// Many points of one shape at a time: the numbers are drawn one after the other, in the order that a seed means, and
/// what the shape makes of them is worked out for a register of points at once. The points are those of
/// `ShapeParameterClass::Sample`, bit for bit.

#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Random.h"

class ShapeBatch
{
public:
    static constexpr int CAPACITY = 128; ///< the most points

    /// Borrows the shape.
    ShapeBatch(const ShapeParameterClass &shape, bool hollow, bool even);
    /// Whether the shape has points of this kind: some are only sampled one by one.
    bool Is_Possible() const { return DrawCount >= 0; }

    /// The draws of the point `at`.
    void Draw(RandomClass &random, int at)
    {
        for (int draw = 0; draw < DrawCount; ++draw) Draws[draw][at] = random.Draw();
    }
    /// Writes the points that were drawn, an array for each component.
    void Place(float *x, float *y, float *z, int count) const;

private:
    static constexpr int MOST_DRAWS = 3;

    const ShapeParameterClass &Shape;
    int DrawCount;
    int32_t Draws[MOST_DRAWS][CAPACITY]; // written before they are read
};
