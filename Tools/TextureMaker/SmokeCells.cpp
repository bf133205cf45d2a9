#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

float Get_Heap_Height(uint32_t seed, float x, float y)
{
    constexpr int BALLS = 16;
    const float bentX = x + 0.14f * Fractal_Noise(x * 2.2f, y * 2.2f, 0.3f, 4, seed + 1);
    const float bentY = y + 0.14f * Fractal_Noise(x * 2.2f, y * 2.2f, 7.3f, 4, seed + 2);
    float height = 0.0f;
    for (int ball = 0; ball < BALLS; ++ball) {
        const float turn = (static_cast<float>(ball) + 0.6f * Hash_To_Unit(ball, 0, 0, seed)) * 2.39996323f;
        const float out = 0.6f * std::sqrt(static_cast<float>(ball) / static_cast<float>(BALLS));
        const float radius = 0.29f + 0.13f * Hash_To_Unit(ball, 1, 0, seed) - 0.12f * out;
        const float away = Length(bentX - out * Cosine(turn), bentY - out * Sine(turn));
        if (away >= radius) continue;
        const float cap = std::sqrt(radius * radius - away * away) + 0.32f * (0.55f - out);
        // A soft maximum, so that balls melt into each other.
        const float lead = Limit(0.5f + (cap - height) / 0.16f);
        height = height + (cap - height) * lead + 0.04f * lead * (1.0f - lead);
    }
    return height;
}

float Get_Puff_Height(int cell, float x, float y)
{
    const auto seed = 700u + static_cast<uint32_t>(cell) * 13u;
    const float creases = Billow_Noise(x * 3.5f, y * 3.5f, static_cast<float>(cell), 4, seed + 5);
    return Get_Heap_Height(seed, x, y) + 0.16f * creases * Hill(Length(x, y), 0.9f, 1);
}

Texel Shade_Puff(int cell, float x, float y)
{
    const float height = Get_Puff_Height(cell, x, y);
    const Texel normal =
        Get_Normal([cell](float atX, float atY) { return Get_Puff_Height(cell, atX, atY); }, x, y, 0.5f);
    // A hint of light from above; what is lit in the scene has its normals.
    const float light = 0.74f + 0.46f * (normal.Green - 0.5f) - 0.12f * (normal.Red - 0.5f) +
                        0.5f * (normal.Blue - 0.8f) + 0.22f * height;
    const float wisps = 0.82f + 0.28f * Fractal_Noise(x * 4.0f, y * 4.0f, 2.0f + static_cast<float>(cell), 4, 77);
    const float body = Smooth_Step(0.03f, 0.46f, height) * Smooth_Step(0.95f, 0.6f, Length(x, y));
    return Grey(light, body * Limit(wisps) * 0.95f);
}

} // namespace TextureMaker
