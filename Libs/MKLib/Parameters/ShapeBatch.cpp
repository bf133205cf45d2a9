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

/// The draws of one point. What is wrong with them is kept, not mended.
struct Dice
{
    uint32_t State;
    uint32_t Marks = 0;
    uint32_t Doubts = 0; ///< not 0 where `RandomClass::To_Float` would look closer

    /// From 0 to 1.
    MK_INLINE float Unit() { return RandomLanes::To_Unit(RandomLanes::Draw(State, Marks)); }
    MK_INLINE float Between(const Bounds &bounds)
    {
        const auto range = RandomClass::Range_Of(RandomLanes::Draw(State, Marks), bounds.Low, bounds.High);
        Doubts |= std::bit_cast<uint32_t>(range.Least) ^ std::bit_cast<uint32_t>(range.Greatest);
        return range.Least;
    }
};

MK_INLINE Vector3 Scaled(const Vector3 &vector, float factor)
{
    return {vector.x * factor, vector.y * factor, vector.z * factor};
}

// How each shape makes a point of its draws.
struct Ray
{
    Vector3 Direction;
    Bounds Distances;

    MK_INLINE Vector3 Place(Dice &dice) const { return Scaled(Direction, dice.Between(Distances)); }
};

struct Sphere
{
    float Radius;

    MK_INLINE static Vector3 Direct(Dice &dice)
    {
        const float turn = dice.Unit();
        const float v = dice.Unit();
        const float twice = 2.0f * std::sqrt((1.0f - v) * v);
        const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(turn * TWO_PI));
        return {twice * cosine, twice * sine, 1.0f - 2.0f * v};
    }
    MK_INLINE Vector3 Place(Dice &dice) const { return Scaled(Direct(dice), Radius); }
};

/// A sphere that is filled.
struct Ball
{
    float Radius;

    MK_INLINE Vector3 Place(Dice &dice) const
    {
        const Vector3 direction = Sphere::Direct(dice);
        return Scaled(direction, Radius * dice.Unit());
    }
};

/// One with a hole.
struct Shell
{
    float Radius;
    Bounds Fractions;

    MK_INLINE Vector3 Place(Dice &dice) const
    {
        const Vector3 direction = Sphere::Direct(dice);
        return Scaled(direction, Radius * dice.Between(Fractions));
    }
};

struct Box
{
    Bounds X, Y, Z;

    MK_INLINE Vector3 Place(Dice &dice) const
    {
        const float x = dice.Between(X);
        const float y = dice.Between(Y);
        return {x, y, dice.Between(Z)};
    }
};

/// Where points go.
struct Target
{
    float *X;
    float *Y;
    float *Z;
};

template <typename Form>
MK_INLINE bool Place_All(const Target &target, const RandomLanes::View &takers, int count, const Form &shape)
{
    const Target to = target;
    const RandomLanes::View lanes = takers;
    const Form form = shape;
    const int whole = RandomLanes::Round_Up(count);
    uint32_t marks = 0;
    uint32_t doubts = 0;
#pragma GCC ivdep
    for (int i = 0; i < whole; ++i) {
        Dice dice{lanes[i]};
        const Vector3 point = form.Place(dice);
        to.X[i] = point.x;
        to.Y[i] = point.y;
        to.Z[i] = point.z;
        marks |= dice.Marks;
        doubts |= dice.Doubts;
    }
    return (marks & RandomLanes::REPEATED) == 0 && doubts == 0;
}
MK_SIMD bool Place(const Target &to, const RandomLanes::View &takers, int count, const Ray &ray)
{
    return Place_All(to, takers, count, ray);
}
MK_SIMD bool Place(const Target &to, const RandomLanes::View &takers, int count, const Sphere &sphere)
{
    return Place_All(to, takers, count, sphere);
}
MK_SIMD bool Place(const Target &to, const RandomLanes::View &takers, int count, const Ball &ball)
{
    return Place_All(to, takers, count, ball);
}
MK_SIMD bool Place(const Target &to, const RandomLanes::View &takers, int count, const Shell &shell)
{
    return Place_All(to, takers, count, shell);
}
MK_SIMD bool Place(const Target &to, const RandomLanes::View &takers, int count, const Box &box)
{
    return Place_All(to, takers, count, box);
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

bool ShapeBatch::Draw(const RandomLanes &takers, float *x, float *y, float *z, int count) const
{
    const auto &value = Shape.Get_Value();
    const Target to{x, y, z};
    switch (value.ShapeType) {
    case SHAPE_RAY: return Place(to, takers.Get_View(), count, Ray{Shape.Get_Normal_Direction(), {value.A, value.B}});
    case SHAPE_SPHERE:
        if (DrawCount == 2) return Place(to, takers.Get_View(), count, Sphere{value.D});
        if (value.C == 0.0f && value.D != 0.0f) return Place(to, takers.Get_View(), count, Ball{value.D});
        return Place(to, takers.Get_View(), count, Shell{value.D, {value.C / value.D, 1.0f}});
    case SHAPE_BOX: {
        const Vector3 &low = value.BoxMinimum;
        const Vector3 &high = value.BoxMaximum;
        return Place(to, takers.Get_View(), count, Box{{low.x, high.x}, {low.y, high.y}, {low.z, high.z}});
    }
    default: {
        const int whole = RandomLanes::Round_Up(count);
        std::fill_n(x, whole, value.Center.x);
        std::fill_n(y, whole, value.Center.y);
        std::fill_n(z, whole, value.Center.z);
        return true;
    }
    }
}
