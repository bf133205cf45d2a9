#include "TextureMaker/OtherTextures.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

float Line(float distance, float width)
{
    return Smooth_Step(width, width * 0.5f, std::fabs(distance)) + 0.4f * Hill(distance, width * 5.0f, 3);
}

/// A glyph of strokes on a grid of 3 by 4 points, picked by its seed; places from -1 to 1.
float Glyph(uint32_t seed, float x, float y)
{
    float nearest = std::fabs(x) < 1.2f ? Distance_To_Line(x, y, 0.0f, -0.9f, 0.0f, 0.9f) : 2.0f;
    for (int stroke = 0; stroke < 3; ++stroke) {
        const auto pick = [&](int which, int count) {
            return static_cast<float>(Hash(stroke, which, 0, seed) % static_cast<uint32_t>(count));
        };
        const float side = pick(0, 2) * 2.0f - 1.0f;
        nearest = std::min(
            nearest, Distance_To_Line(x, y, 0.0f, pick(1, 4) * 0.6f - 0.9f, side * 0.7f, pick(2, 4) * 0.6f - 0.9f));
    }
    return Smooth_Step(0.2f, 0.1f, nearest) + 0.3f * Hill(nearest, 0.6f, 3);
}

float Glyph_Band(float distance, float angle)
{
    constexpr int GLYPHS = 18;
    constexpr float BAND = 0.765f;
    const float turn = (angle / (2.0f * PI) + 0.5f) * GLYPHS;
    const auto glyph = static_cast<int>(std::floor(turn));
    const float along = (turn - static_cast<float>(glyph) - 0.5f) * (2.0f * PI * BAND / GLYPHS);
    return Glyph(900u + static_cast<uint32_t>(glyph), along / 0.075f, (distance - BAND) / 0.075f);
}

/// The star of seven points that a pen draws without being lifted, skipping two at a time.
float Heptagram(float x, float y, float radius)
{
    constexpr int POINTS = 7;
    float nearest = 2.0f;
    for (int point = 0; point < POINTS; ++point) {
        const float from = static_cast<float>(point) * 2.0f * PI / POINTS + PI / 2.0f;
        const float to = static_cast<float>(point + 3) * 2.0f * PI / POINTS + PI / 2.0f;
        nearest = std::min(nearest, Distance_To_Line(x, y, radius * Cosine(from), radius * Sine(from),
                                                     radius * Cosine(to), radius * Sine(to)));
    }
    return Line(nearest, 0.012f);
}

Texel Plume(uint32_t seed, float x, float y)
{
    const auto height = [seed](float atX, float atY) {
        const float bent = atX + 0.3f * Fractal_Noise(atX * 1.4f, atY * 0.9f, 1.0f, 2, seed);
        return Fractal_Noise(bent * 2.2f, atY * 1.3f, 4.0f, 2, seed + 1);
    };
    Texel texel = Get_Normal(height, x, y, 0.2f);
    texel.Green = 1.0f - texel.Green; // down
    texel.Blue = 0.5f + 0.06f * height(x, y);
    texel.Alpha = Hill(Length(x, y), 0.95f, 2);
    return texel;
}

/// A lens: what is behind it stands upside down in its middle.
Texel Lens(float x, float y)
{
    const float bentY = y * (1.0f + 0.18f * y);
    const float distance = Length(x, bentY) / 0.72f;
    const float pull = 0.7f * Power(Limit(distance), 2);
    return {0.5f - x * pull, 0.5f + bentY * pull, 0.56f, Smooth_Step(1.0f, 0.9f, distance)};
}

Texel Wave(float x, float y)
{
    const float distance = Length(x, y);
    const float away = (distance - 0.74f) / 0.2f;
    const float front = Hill(away, 1.0f, 2);
    const float push = distance > 0.01f ? 0.5f * front / distance : 0.0f;
    return {0.5f + x * push, 0.5f - y * push, 0.5f, Limit(front * 1.6f)};
}

} // namespace

Canvas Make_Heat_Sheet()
{
    constexpr int CELL = 128;
    Canvas canvas(2 * CELL, 2 * CELL);
    const auto paint = [&](int column, int row, auto &&shade) {
        canvas.Paint({column * CELL, row * CELL, CELL, CELL}, 2, [&](float x, float y) {
            Texel texel = shade(x, y);
            texel.Alpha *= Inside_Cell(x, y);
            return texel;
        });
    };
    paint(0, 0, [](float x, float y) { return Plume(841, x, y); });
    paint(1, 0, [](float x, float y) { return Plume(853, x, y); });
    paint(0, 1, Lens);
    paint(1, 1, Wave);
    return canvas;
}

Canvas Make_Rune_Circle()
{
    constexpr int SIDE = 512;
    Canvas canvas(SIDE, SIDE);
    canvas.Paint({0, 0, SIDE, SIDE}, 2, [](float x, float y) {
        const float distance = Length(x, y);
        const float angle = Angle(y, x);
        const float rings = Line(distance - 0.90f, 0.014f) + Line(distance - 0.63f, 0.012f) +
                            0.7f * Line(distance - 0.94f, 0.006f) + 0.7f * Line(distance - 0.26f, 0.010f);
        const float light =
            rings + Heptagram(x, y, 0.63f) + Glyph_Band(distance, angle) + 0.10f * Hill(distance, 0.95f, 2);
        return White(light * Smooth_Step(0.985f, 0.95f, distance));
    });
    return canvas;
}

Canvas Make_Swirl()
{
    constexpr int SIDE = 256;
    Canvas canvas(SIDE, SIDE);
    canvas.Paint({0, 0, SIDE, SIDE}, 2, [](float x, float y) {
        const float distance = Length(x, y);
        // Wound tighter toward the middle; the noise lives in the unwound plane.
        const float turn = 2.6f / (0.22f + distance);
        const float unwoundX = x * Cosine(turn) - y * Sine(turn);
        const float unwoundY = x * Sine(turn) + y * Cosine(turn);
        const float arms = 0.5f + 0.5f * Sine(3.0f * Angle(unwoundY, unwoundX));
        const float wisps = Fractal_Noise(unwoundX * 3.0f, unwoundY * 3.0f, 1.0f, 5, 861);
        const float body = Limit(0.16f + 0.62f * arms * arms + 0.75f * wisps);
        const float light =
            body * Hill(distance, 0.96f, 1) * Smooth_Step(0.04f, 0.3f, distance) + 0.9f * Hill(distance, 0.22f, 2);
        const float value = 0.78f + 0.22f * body;
        return Texel{value, value, 1.0f, light};
    });
    return canvas;
}

Canvas Make_Ring()
{
    constexpr int SIDE = 256;
    Canvas canvas(SIDE, SIDE);
    canvas.Paint({0, 0, SIDE, SIDE}, 3, [](float x, float y) {
        const float distance = Length(x, y);
        const float angle = Angle(y, x);
        // Torn into rays, which lie on a circle in the noise so that they close.
        const float torn = Fractal_Noise(3.2f * Cosine(angle), 3.2f * Sine(angle), 1.5f * distance, 4, 871);
        const float front = Hill(distance - 0.88f, 0.06f, 2);
        const float wake = distance < 0.9f ? Power(distance / 0.9f, 5) * Limit(0.42f + 0.55f * torn) : 0.0f;
        return White(std::max(front, wake) * Smooth_Step(0.96f, 0.91f, distance));
    });
    return canvas;
}

Canvas Make_Bubble()
{
    constexpr int SIDE = 128;
    Canvas canvas(SIDE, SIDE);
    canvas.Paint({0, 0, SIDE, SIDE}, 3, [](float x, float y) {
        const float distance = Length(x, y) / 0.9f;
        const float rim = Power(Limit(distance), 6);
        const float glint = Hill(Length(x + 0.34f, (y - 0.42f) * 1.25f), 0.24f, 1);
        const float echo = 0.6f * Hill(distance - 0.78f, 0.14f, 2) * Smooth_Step(-0.1f, -0.6f, y);
        const float body = 0.10f + 0.75f * rim + glint + echo;
        return Grey(0.75f + 0.25f * (rim + glint), Limit(body) * Smooth_Step(1.0f, 0.95f, distance));
    });
    return canvas;
}

Canvas Make_Leaf()
{
    constexpr int SIDE = 64;
    Canvas canvas(SIDE, SIDE);
    canvas.Paint({0, 0, SIDE, SIDE}, 4, [](float x, float y) {
        const float along = Limit((y + 0.72f) / 1.56f);
        const float width = 0.5f * Sine(PI * std::sqrt(along)) + 0.002f;
        const float across = std::fabs(x) / width;
        const float rib = Smooth_Step(0.05f, 0.02f, std::fabs(x));
        const float turn = (along * 9.0f + across * 1.2f);
        const float veins = Smooth_Step(0.2f, 0.05f, std::fabs(turn - std::floor(turn) - 0.5f));
        const float value = 0.72f + 0.2f * rib + 0.1f * veins + (x < 0.0f ? 0.08f : 0.0f);
        const float stalk = Distance_To_Line(x, y, 0.0f, -0.9f, 0.0f, -0.6f);
        return Grey(value, std::max(Smooth_Step(1.0f, 0.9f, across), Smooth_Step(0.05f, 0.03f, stalk)));
    });
    return canvas;
}

} // namespace TextureMaker
