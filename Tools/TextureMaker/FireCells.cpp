#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

constexpr float FRAMES = 16.0f;

/// What burns at a heat of 0 to 1: dark red, orange, yellow, nearly white.
Texel Get_Fire_Color(float heat)
{
    constexpr struct
    {
        float Heat;
        Texel Color;
    } RAMP[] = {{0.0f, {0.55f, 0.10f, 0.02f, 0.0f}},
                {0.3f, {0.95f, 0.33f, 0.07f, 0.0f}},
                {0.6f, {1.0f, 0.66f, 0.24f, 0.0f}},
                {0.85f, {1.0f, 0.91f, 0.62f, 0.0f}},
                {1.0f, {1.0f, 0.98f, 0.92f, 0.0f}}};
    heat = Limit(heat);
    size_t at = 1;
    while (heat > RAMP[at].Heat) ++at;
    const float t = (heat - RAMP[at - 1].Heat) / (RAMP[at].Heat - RAMP[at - 1].Heat);
    return Mix(RAMP[at - 1].Color, RAMP[at].Color, t);
}

/// How far along its life a frame of the fireball is.
float Get_Fireball_Age(int frame)
{
    return static_cast<float>(frame) / (FRAMES - 1.0f);
}

/// The ball's own heap, which rolls as it grows.
float Fireball_Heap(float age, float x, float y)
{
    const float reach = 0.62f + 0.38f * (1.0f - Power(1.0f - age, 3));
    const float turn = 0.5f * age;
    const float turnedX = (x * Cosine(turn) - y * Sine(turn)) / reach;
    const float turnedY = (x * Sine(turn) + y * Cosine(turn)) / reach;
    const float bentX = turnedX + 0.16f * Fractal_Noise(x * 2.4f, y * 2.4f, age * 2.2f, 4, 301);
    const float bentY = turnedY + 0.16f * Fractal_Noise(x * 2.4f, y * 2.4f, age * 2.2f, 4, 302);
    return Get_Heap_Height(311, bentX, bentY) * reach * Smooth_Step(1.02f, 0.8f, Length(turnedX, turnedY));
}

} // namespace

Texel Shade_Flame(int frame, float x, float y)
{
    // The noise rises by whole periods in a turn of the frames, so that the last leads to the first.
    constexpr int PERIOD = 4;
    const float rise = static_cast<float>(frame) / FRAMES * static_cast<float>(PERIOD);
    const float above = Limit((y + 0.86f) / 1.72f); // 0 at the foot, 1 at the tip
    const Periods periods{0, PERIOD, 0};
    const float sway = 0.30f * above * Fractal_Noise(0.7f, y * 0.9f - rise, 0.5f, 2, 211, periods);
    const float curl =
        0.16f * (0.2f + above) * Fractal_Noise(x * 2.0f, y * 2.0f - 2.0f * rise, 4.0f, 3, 212, {0, PERIOD * 2, 0});
    const float middle = x - sway - curl;
    const float width = 0.56f * std::sqrt(Limit(above * 3.2f + 0.05f)) * (1.02f - 0.86f * above * above);
    const float profile = Limit(1.0f - std::fabs(middle) / std::max(width, 0.02f));
    const float tongues = Billow_Noise(middle * 2.6f, y * 1.5f - 1.5f * rise, 1.0f, 4, 213, {0, PERIOD * 3 / 2, 0});
    const float heat = profile * (1.42f - 0.66f * above) - tongues * (0.34f + 0.66f * above);
    Texel texel = Get_Fire_Color(0.12f + heat * 1.05f);
    texel.Alpha = Smooth_Step(0.0f, 0.36f, heat) * Smooth_Step(0.0f, 0.36f, above) * Smooth_Step(1.0f, 0.8f, above);
    return texel;
}

float Get_Fireball_Height(int frame, float x, float y)
{
    const float age = Get_Fireball_Age(frame);
    const float creases = Billow_Noise(x * 3.2f, y * 3.2f, age * 2.0f, 4, 303);
    return Fireball_Heap(age, x, y) + 0.2f * creases * Hill(Length(x, y), 0.9f, 1);
}

Texel Shade_Fireball(int frame, float x, float y)
{
    const float age = Get_Fireball_Age(frame);
    const float height = Get_Fireball_Height(frame, x, y);
    const Texel normal =
        Get_Normal([frame](float atX, float atY) { return Get_Fireball_Height(frame, atX, atY); }, x, y, 0.5f);
    // Lumps that face us stay hot; what turns away and the rim cool first, in patches.
    const float patches = Fractal_Noise(x * 2.2f, y * 2.2f, 3.0f + age * 1.5f, 4, 304);
    const float heat =
        1.02f - 1.5f * age + (0.62f + 0.4f * age) * patches + 0.9f * (normal.Blue - 0.86f) + 0.5f * (height - 0.35f);
    const float light = 0.20f + 0.26f * (normal.Green - 0.5f) + 0.22f * (normal.Blue - 0.75f) + 0.12f * height;
    const Texel smoke{light * 1.06f, light, light * 0.95f, 0.0f};
    Texel texel = Mix(smoke, Get_Fire_Color(heat), Smooth_Step(-0.05f, 0.4f, heat));
    const float wear = 0.5f * age * (0.5f + Fractal_Noise(x * 3.0f, y * 3.0f, age * 2.5f, 4, 305));
    const float soft = 0.22f + 0.2f * age;
    texel.Alpha = Smooth_Step(0.02f, soft, height - 0.4f * wear) * (1.0f - 0.7f * Smooth_Step(0.7f, 1.0f, age));
    return texel;
}

} // namespace TextureMaker
