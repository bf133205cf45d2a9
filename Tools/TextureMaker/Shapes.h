#pragma once

/// Forms that the textures are made of. Places run from -1 to 1, y upward; what the functions answer is 0 to 1 unless
/// they say otherwise.

#include "MKLib/MKMath/PortableMath.h"
#include "TextureMaker/Canvas.h"
#include "TextureMaker/Noise.h"

#include <cmath>

namespace TextureMaker
{

constexpr float PI = static_cast<float>(Portable::PI);

inline float Length(float x, float y)
{
    return std::sqrt(x * x + y * y);
}
inline float Angle(float y, float x)
{
    return static_cast<float>(Portable::Arc_Tangent(y, x));
}
inline float Sine(float angle)
{
    return static_cast<float>(Portable::Sine(angle));
}
inline float Cosine(float angle)
{
    return static_cast<float>(Portable::Sine(angle + 0.5 * Portable::PI));
}
/// `value` times itself, `count` factors in all.
inline float Power(float value, int count)
{
    float product = 1.0f;
    for (int index = 0; index < count; ++index) product *= value;
    return product;
}

/// 1 within a cell and 0 along its border, so that neither filtering nor smaller levels bring a neighbour in.
inline float Inside_Cell(float x, float y)
{
    return Smooth_Step(0.96f, 0.84f, std::fabs(x)) * Smooth_Step(0.96f, 0.84f, std::fabs(y));
}
/// A round hill of height 1 at `distance` 0 that ends at `radius`; a higher `power` makes it more pointed.
inline float Hill(float distance, float radius, int power)
{
    const float t = Limit(1.0f - (distance * distance) / (radius * radius));
    return Power(t, power);
}
/// The distance of a place from a straight line between two.
inline float Distance_To_Line(float x, float y, float fromX, float fromY, float toX, float toY)
{
    const float alongX = toX - fromX;
    const float alongY = toY - fromY;
    const float square = alongX * alongX + alongY * alongY;
    const float t = square > 0.0f ? Limit(((x - fromX) * alongX + (y - fromY) * alongY) / square) : 0.0f;
    return Length(x - fromX - alongX * t, y - fromY - alongY * t);
}

/// The slope of a height field as a normal, stored as colours are: 0.5 for 0. Y points up in the picture.
template <typename Height>
Texel Get_Normal(Height &&height, float x, float y, float strength)
{
    constexpr float STEP = 0.02f;
    const float slopeX = (height(x + STEP, y) - height(x - STEP, y)) * (strength / (2.0f * STEP));
    const float slopeY = (height(x, y + STEP) - height(x, y - STEP)) * (strength / (2.0f * STEP));
    const float scale = 1.0f / std::sqrt(slopeX * slopeX + slopeY * slopeY + 1.0f);
    return {0.5f - 0.5f * slopeX * scale, 0.5f - 0.5f * slopeY * scale, 0.5f + 0.5f * scale, 1.0f};
}

} // namespace TextureMaker
