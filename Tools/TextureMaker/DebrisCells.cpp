#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

constexpr float LIGHT_X = -0.45f;
constexpr float LIGHT_Y = 0.65f;
constexpr float LIGHT_Z = 0.61f;

/// A stone cut by planes: where it lies, its distance to the nearest cut is its height.
Texel Chip(uint32_t seed, float x, float y)
{
    constexpr int CUTS = 7;
    float inside = 1.0f;
    int nearest = 0;
    for (int cut = 0; cut < CUTS; ++cut) {
        const float turn = (static_cast<float>(cut) + 0.7f * Hash_To_Unit(cut, 0, 0, seed)) * 2.0f * PI / CUTS;
        const float reach = 0.52f + 0.3f * Hash_To_Unit(cut, 1, 0, seed);
        const float away = reach - x * Cosine(turn) - y * Sine(turn);
        if (away < inside) {
            inside = away;
            nearest = cut;
        }
    }
    const float turn = (static_cast<float>(nearest) + 0.7f * Hash_To_Unit(nearest, 0, 0, seed)) * 2.0f * PI / CUTS;
    const float grain = Fractal_Noise(x * 6.0f, y * 6.0f, 1.0f, 4, seed + 9);
    // The top is flat; bevels run around it.
    const float bevel = Smooth_Step(0.36f, 0.22f, inside + 0.06f * grain);
    const float lit = bevel * (Cosine(turn) * LIGHT_X + Sine(turn) * LIGHT_Y) + (1.0f - 0.4f * bevel) * LIGHT_Z;
    const float value = 0.30f + 0.62f * Limit(lit) + 0.14f * grain;
    return {value, value * 0.97f, value * 0.92f, Smooth_Step(0.0f, 0.03f, inside + 0.03f * grain)};
}

/// A brass tube with a rim at its foot and a dark mouth.
Texel Casing(float x, float y)
{
    const bool isRim = y < -0.66f && y > -0.82f;
    const float width = isRim ? 0.62f : y > 0.5f ? 0.46f : 0.54f;
    const float across = x / width;
    const float round = std::sqrt(std::max(1.0f - across * across, 0.0f));
    float light = 0.28f + 0.55f * round + 0.5f * Hill(across + 0.4f, 0.3f, 2);
    if (y < -0.6f && y > -0.66f) light *= 0.45f;
    if (y > 0.78f) light *= 0.35f;
    const float body = Smooth_Step(1.0f, 0.94f, std::fabs(across)) * Smooth_Step(0.86f, 0.84f, std::fabs(y));
    return {light * 1.0f, light * 0.80f, light * 0.45f, body};
}

float Rune(int which, float x, float y)
{
    struct Stroke
    {
        float FromX, FromY, ToX, ToY;
    };
    static constexpr Stroke FIRST[] = {{-0.25f, -0.7f, -0.25f, 0.7f},
                                       {-0.25f, 0.7f, 0.35f, 0.3f},
                                       {0.35f, 0.3f, -0.25f, 0.0f},
                                       {-0.25f, 0.0f, 0.4f, -0.6f},
                                       {-0.5f, -0.25f, 0.0f, -0.25f}};
    static constexpr Stroke SECOND[] = {{0.0f, -0.72f, 0.0f, 0.72f}, {0.0f, 0.25f, -0.45f, 0.68f},
                                        {0.0f, 0.25f, 0.45f, 0.68f}, {-0.4f, -0.3f, 0.0f, -0.02f},
                                        {0.4f, -0.3f, 0.0f, -0.02f}, {-0.25f, -0.72f, 0.25f, -0.72f}};
    float nearest = 2.0f;
    const auto look = [&](const Stroke &stroke) {
        nearest = std::min(nearest, Distance_To_Line(x, y, stroke.FromX, stroke.FromY, stroke.ToX, stroke.ToY));
    };
    if (which == 0)
        for (const Stroke &stroke : FIRST) look(stroke);
    else
        for (const Stroke &stroke : SECOND) look(stroke);
    return Smooth_Step(0.08f, 0.04f, nearest) + 0.4f * Hill(nearest, 0.34f, 3);
}

/// Seen from above, its head to the top. `spread` is how far its wings are open.
Texel Moth(float spread, float x, float y)
{
    const float side = std::fabs(x) / spread;
    const float fore = 0.5f - Length((side - 0.42f) * 1.05f, (y - 0.16f - 0.35f * side) * 1.9f);
    const float hind = 0.36f - Length((side - 0.24f) * 1.25f, (y + 0.22f + 0.25f * side) * 1.1f);
    const float wing = std::max(fore, hind);
    const float body = 1.0f - Length(x / 0.085f, y / 0.52f);
    const float veins = Fractal_Noise(side * 6.0f, y * 6.0f, 2.0f, 3, 611);
    const float band = Smooth_Step(0.1f, 0.02f, std::fabs(wing - 0.14f));
    const float spot = Hill(Length(side - 0.5f, y - 0.26f), 0.13f, 1);
    const float value = 0.72f + 0.16f * veins - 0.28f * band - 0.4f * spot - 0.1f * (1.0f - spread);
    Texel texel{value, value * 0.93f, value * 0.82f, 0.94f * Smooth_Step(0.0f, 0.05f, wing)};
    if (body > 0.0f) texel = Mix(texel, {0.42f, 0.36f, 0.30f, 1.0f}, Smooth_Step(0.0f, 0.2f, body));
    return texel;
}

} // namespace

Texel Shade_Debris(int cell, float x, float y)
{
    switch (cell) {
    case 0:
    case 1:
    case 2: return Chip(620u + static_cast<uint32_t>(cell) * 7u, x, y);
    case 3: return Casing(x, y);
    case 4:
    case 5: return White(Rune(cell - 4, x, y));
    case 6: return Moth(0.92f, x, y);
    default: return Moth(0.45f, x, y);
    }
}

} // namespace TextureMaker
