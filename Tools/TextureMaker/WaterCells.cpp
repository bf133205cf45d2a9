#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

/// A drop drawn out upward or downward, with a light rim and a highlight.
Texel Drop(float x, float y, float width, float height)
{
    const float across = x / width;
    const float along = y / height;
    const float distance = Length(across, along);
    const float highlight = Hill(Length(across + 0.3f, along - 0.35f), 0.4f, 2);
    return Grey(0.72f + 0.2f * Limit(distance) + 0.5f * highlight,
                Smooth_Step(1.0f, 0.78f, distance) * (0.55f + 0.35f * distance + 0.5f * highlight));
}

void Add(Texel &texel, const Texel &other)
{
    const float whole = texel.Alpha + other.Alpha;
    if (other.Alpha <= 0.0f) return;
    const float share = other.Alpha / whole;
    const float alpha = std::max(texel.Alpha, other.Alpha);
    texel = Mix(texel, other, share);
    texel.Alpha = alpha;
}

/// What a drop throws up where it lands: a thin wall of spikes, with droplets above.
Texel Crown(float x, float y)
{
    Texel texel = Grey(0.86f, 0.0f);
    const float foot = Hill(Length(x * 0.62f, (y + 0.62f) * 2.6f), 0.5f, 2) * 0.55f;
    texel.Alpha = foot;
    constexpr int SPIKES = 9;
    for (int spike = 0; spike < SPIKES; ++spike) {
        const float side = (static_cast<float>(spike) / (SPIKES - 1.0f) - 0.5f) * 2.0f;
        const float tall = 0.55f + 0.65f * Hash_To_Unit(spike, 0, 0, 511) - 0.25f * side * side;
        const float tipX = side * 0.62f;
        const float tipY = -0.68f + tall;
        const float away = Distance_To_Line(x, y, side * 0.34f, -0.68f, tipX, tipY);
        const float above = Limit((y + 0.68f) / tall);
        Add(texel, Grey(0.9f, Hill(away, 0.12f - 0.075f * above, 2) * (0.7f - 0.2f * above)));
        const float drift = 0.06f + 0.1f * Hash_To_Unit(spike, 1, 0, 511);
        Add(texel, Drop(x - tipX * 1.08f, y - tipY - drift, 0.05f, 0.07f));
    }
    return texel;
}

/// Drops strewn over a streaky veil.
Texel Clump(uint32_t seed, float x, float y)
{
    const float veil = Fractal_Noise(x * 5.0f, y * 1.4f, 0.5f, 4, seed);
    Texel texel = Grey(0.84f + 0.2f * veil, 0.0f);
    texel.Alpha = Hill(Length(x * 1.15f, y), 0.92f, 2) * Limit(0.5f + 0.85f * veil);
    constexpr int DROPS = 30;
    for (int drop = 0; drop < DROPS; ++drop) {
        const float turn = static_cast<float>(drop) * 2.39996323f;
        const float out = 0.74f * std::sqrt((static_cast<float>(drop) + Hash_To_Unit(drop, 0, 0, seed)) / DROPS);
        const float size = 0.02f + 0.05f * Power(Hash_To_Unit(drop, 1, 0, seed), 2);
        Add(texel, Drop(x - out * Cosine(turn), y - out * Sine(turn), size, size * 1.7f));
    }
    return texel;
}

/// Bubbles side by side: light along the lines where they meet.
Texel Foam(uint32_t seed, float x, float y)
{
    const float bentX = x + 0.1f * Fractal_Noise(x * 3.0f, y * 3.0f, 1.0f, 2, seed);
    const float bentY = y + 0.1f * Fractal_Noise(x * 3.0f, y * 3.0f, 6.0f, 2, seed);
    const CellDistances large = Cell_Noise(bentX * 4.5f, bentY * 4.5f, seed + 1);
    const CellDistances small = Cell_Noise(bentX * 9.0f, bentY * 9.0f, seed + 2);
    const float lace = std::max(Smooth_Step(0.22f, 0.0f, large.Second - large.Nearest),
                                0.7f * Smooth_Step(0.25f, 0.0f, small.Second - small.Nearest));
    const float patch = Limit(1.25f * Hill(Length(x, y), 0.92f, 1) +
                              0.5f * Fractal_Noise(x * 2.5f, y * 2.5f, 3.0f, 3, seed + 3) - 0.2f);
    return Grey(0.88f + 0.12f * lace, patch * (0.16f + 0.84f * lace));
}

Texel Mist(uint32_t seed, float x, float y)
{
    const float bent = 0.3f * Fractal_Noise(x * 1.3f, y * 1.3f, 2.0f, 3, seed);
    const float cloud = Fractal_Noise(x * 1.7f + bent, y * 2.3f - bent, 5.0f, 5, seed + 1);
    const float bank = Hill(Length(x, y * 1.2f), 0.95f, 2);
    return Grey(0.94f + 0.08f * cloud, bank * Limit(0.5f + 0.55f * cloud));
}

} // namespace

Texel Shade_Water(int cell, float x, float y)
{
    if (cell == 0) return Crown(x, y);
    const auto seed = 540u + static_cast<uint32_t>(cell) * 17u;
    if (cell < 4) return Clump(seed, x, y);
    return cell < 6 ? Foam(seed, x, y) : Mist(seed, x, y);
}

} // namespace TextureMaker
