#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

/// A thin ray along x through the middle, which fades toward its ends.
float Ray(float x, float y, float reach, float width)
{
    const float along = Limit(1.0f - std::fabs(x) / reach);
    const float across = Limit(1.0f - std::fabs(y) / (width * (0.25f + 0.75f * along)));
    return along * along * Power(across, 3);
}

float Star_Flare(float x, float y)
{
    constexpr float DIAGONAL = 0.70710678f;
    const float turnedX = (x + y) * DIAGONAL;
    const float turnedY = (y - x) * DIAGONAL;
    const float rays = Ray(x, y, 0.94f, 0.13f) + Ray(y, x, 0.94f, 0.13f) +
                       0.6f * (Ray(turnedX, turnedY, 0.6f, 0.11f) + Ray(turnedY, turnedX, 0.6f, 0.11f));
    const float distance = Length(x, y);
    return rays + Hill(distance, 0.34f, 4) + 0.35f * Hill(distance, 0.85f, 4);
}

float Ring(float x, float y)
{
    const float distance = Length(x, y);
    // Sharp outside, as a front is, with light that lags behind it.
    const float front = Hill(distance - 0.84f, 0.1f, 2);
    const float wake = distance < 0.84f ? Power(distance / 0.84f, 6) * 0.45f : 0.0f;
    return std::max(front, wake * Smooth_Step(0.94f, 0.8f, distance)) * Smooth_Step(0.95f, 0.9f, distance);
}

/// A head at the top that trails off downward.
float Streak(float x, float y)
{
    const float along = Limit((y + 0.92f) / 1.7f);
    const float end = Smooth_Step(0.92f, 0.74f, y);
    const float width = 0.05f + 0.17f * along;
    const float core = Hill(x, width, 3) + 0.3f * Hill(x, width * 2.4f, 3);
    return core * along * along * end + 0.7f * Hill(Length(x, (y - 0.72f) * 0.8f), 0.2f, 3);
}

float Rain_Streak(float x, float y)
{
    const float along = Smooth_Step(-0.95f, 0.1f, y) * Smooth_Step(0.95f, 0.7f, y);
    return (Hill(x, 0.09f, 2) * 0.85f + Hill(x, 0.24f, 3) * 0.25f) * along;
}

/// Six arms with side branches.
float Snowflake(float x, float y)
{
    const float distance = Length(x, y);
    const float sector = PI / 3.0f;
    float angle = Angle(y, x) + 0.26f;
    angle -= std::floor(angle / sector + 0.5f) * sector;
    const float along = distance * Cosine(angle);
    const float across = std::fabs(distance * Sine(angle));
    float nearest = along < 0.86f ? across : Length(along - 0.86f, across);
    constexpr struct
    {
        float At;
        float Reach;
    } BRANCHES[] = {{0.22f, 0.14f}, {0.42f, 0.24f}, {0.63f, 0.17f}};
    for (const auto &branch : BRANCHES)
        nearest = std::min(nearest, Distance_To_Line(along, across, branch.At, 0.0f, branch.At + branch.Reach * 0.55f,
                                                     branch.Reach * 0.84f));
    const float arms = Smooth_Step(0.055f, 0.018f, nearest);
    return arms * 0.95f + 0.3f * Hill(distance, 0.95f, 2) + 0.4f * Hill(distance, 0.2f, 2);
}

/// A curled scrap, lighter along its rim.
Texel Ash(float x, float y)
{
    const float bentX = x + 0.25f * Fractal_Noise(x * 1.5f, y * 1.5f, 3.0f, 3, 41);
    const float bentY = y * 1.25f + 0.25f * Fractal_Noise(x * 1.5f, y * 1.5f, 9.0f, 3, 42) + 0.3f * x * x;
    const float edge = 0.62f - Length(bentX, bentY) + 0.12f * Fractal_Noise(x * 5.0f, y * 5.0f, 1.0f, 3, 43);
    const float value =
        0.62f + 0.3f * Fractal_Noise(x * 4.0f, y * 4.0f, 5.0f, 4, 44) + 0.25f * Smooth_Step(0.14f, 0.0f, edge);
    return Grey(value, Smooth_Step(0.0f, 0.05f, edge));
}

} // namespace

Texel Shade_Light(int cell, float x, float y)
{
    const float distance = Length(x, y);
    switch (cell) {
    case 0: return White(0.62f * Hill(distance, 0.95f, 3) + 0.38f * Hill(distance, 0.5f, 3));
    case 1: return White(Hill(distance, 0.36f, 2) + 0.45f * Hill(distance, 0.94f, 4));
    case 2: return White(Star_Flare(x, y));
    case 3: return White(Ring(x, y));
    case 4: return White(Streak(x, y));
    case 5: return White(Rain_Streak(x, y));
    case 6: return White(Snowflake(x, y));
    default: return Ash(x, y);
    }
}

} // namespace TextureMaker
