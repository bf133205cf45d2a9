#include "MKLib/Parameters/ShapeBatch.h"

#include "MKLib/MKMath/PortableMath.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace
{

constexpr float TWO_PI = 6.2831855f;

/// The bounds of a draw, in order.
struct Bounds
{
    Bounds(float low, float high) : Low(high < low ? high : low), High(high < low ? low : high) {}

    float Low;
    float High;
};

/// As `RandomClass::To_Float`. `doubts` isn't 0 any more where that would look closer.
MK_INLINE float To_Float(int32_t draw, const Bounds &bounds, uint32_t &doubts)
{
    const RandomClass::FloatRange range = RandomClass::Range_Of(draw, bounds.Low, bounds.High);
    doubts |= std::bit_cast<uint32_t>(range.Least) ^ std::bit_cast<uint32_t>(range.Greatest);
    return range.Least;
}

/// False where it has to be done one by one.
MK_SIMD bool Convert(float *__restrict to, const int32_t *__restrict draws, int count, const Bounds &source)
{
    const Bounds bounds = source;
    uint32_t doubts = 0;
    for (int i = 0; i < count; ++i) to[i] = To_Float(draws[i], bounds, doubts);
    return doubts == 0;
}

void Convert_All(float *to, const int32_t *draws, int count, const Bounds &bounds)
{
    if (Convert(to, draws, count, bounds)) return;
    for (int i = 0; i < count; ++i) to[i] = RandomClass::To_Float(draws[i], bounds.Low, bounds.High);
}

/// Points at distances `radii` from the centre.
MK_SIMD void Place_On_Spheres(float *__restrict x, float *__restrict y, float *__restrict z,
                              const float *__restrict turns, const float *__restrict heights,
                              const float *__restrict radii, int count)
{
    for (int i = 0; i < count; ++i) {
        const float v = heights[i];
        const float twice = 2.0f * std::sqrt((1.0f - v) * v);
        const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(turns[i] * TWO_PI));
        x[i] = twice * cosine * radii[i];
        y[i] = twice * sine * radii[i];
        z[i] = (1.0f - 2.0f * v) * radii[i];
    }
}

MK_SIMD void Scale(float *values, int count, float factor)
{
    for (int i = 0; i < count; ++i) values[i] = factor * values[i];
}

int Count_Draws(const ShapeStruct &value, bool hollow, bool even)
{
    switch (value.ShapeType) {
    case SHAPE_POINT: return 0;
    case SHAPE_RAY: return hollow ? -1 : 1;
    case SHAPE_SPHERE:
        if (hollow || even) return -1;
        return value.C == value.D ? 2 : 3;
    case SHAPE_BOX: return hollow ? -1 : 3;
    default: return -1;
    }
}

} // namespace

ShapeBatch::ShapeBatch(const ShapeParameterClass &shape, bool hollow, bool even)
    : Shape(shape), DrawCount(Count_Draws(shape.Get_Value(), hollow, even))
{
}

void ShapeBatch::Place(float *x, float *y, float *z, int count) const
{
    const auto &value = Shape.Get_Value();
    switch (value.ShapeType) {
    case SHAPE_RAY: {
        float distances[CAPACITY];
        Convert_All(distances, Draws[0], count, {value.A, value.B});
        const Vector3 &direction = Shape.Get_Normal_Direction();
        const auto place = [&](float *to, float component) {
            std::copy_n(distances, count, to);
            Scale(to, count, component);
        };
        place(x, direction.x);
        place(y, direction.y);
        place(z, direction.z);
        break;
    }
    case SHAPE_SPHERE: {
        float turns[CAPACITY], heights[CAPACITY], radii[CAPACITY];
        Convert_All(turns, Draws[0], count, {0.0f, 1.0f});
        Convert_All(heights, Draws[1], count, {0.0f, 1.0f});
        if (DrawCount == 3)
            Convert_All(radii, Draws[2], count, {value.C / value.D, 1.0f});
        else
            std::fill_n(radii, count, 1.0f);
        Scale(radii, count, value.D);
        Place_On_Spheres(x, y, z, turns, heights, radii, count);
        break;
    }
    case SHAPE_BOX:
        Convert_All(x, Draws[0], count, {value.BoxMinimum.x, value.BoxMaximum.x});
        Convert_All(y, Draws[1], count, {value.BoxMinimum.y, value.BoxMaximum.y});
        Convert_All(z, Draws[2], count, {value.BoxMinimum.z, value.BoxMaximum.z});
        break;
    default:
        std::fill_n(x, count, value.Center.x);
        std::fill_n(y, count, value.Center.y);
        std::fill_n(z, count, value.Center.z);
        break;
    }
}
