#include "TextureMaker/OtherTextures.h"
#include "TextureMaker/Shapes.h"

#include <algorithm>

namespace TextureMaker
{

namespace
{

constexpr float HORIZON = 0.04f;

Texel Sky(float x, float y)
{
    const Texel low{0.93f, 0.72f, 0.50f, 1.0f};
    const Texel high{0.27f, 0.42f, 0.62f, 1.0f};
    Texel color = Mix(low, high, Smooth_Step(HORIZON, 0.9f, y));
    const float clouds = Fractal_Noise(x * 1.4f, y * 5.0f, 2.0f, 4, 881);
    color =
        Mix(color, {0.98f, 0.86f, 0.74f, 1.0f}, 0.5f * Smooth_Step(0.05f, 0.6f, clouds) * Smooth_Step(0.1f, 0.4f, y));
    return Mix(color, {1.0f, 0.94f, 0.78f, 1.0f}, Hill(Length(x + 0.45f, (y - 0.24f) * 0.75f), 0.4f, 3));
}

/// Flat-topped hills, one range behind the other.
void Put_Mesas(Texel &color, float x, float y)
{
    constexpr struct
    {
        float Height, Scale;
        Texel Color;
    } RANGES[] = {{0.30f, 1.3f, {0.62f, 0.50f, 0.50f, 1.0f}}, {0.17f, 2.2f, {0.47f, 0.31f, 0.27f, 1.0f}}};
    uint32_t seed = 890;
    for (const auto &range : RANGES) {
        const float ridge = Fractal_Noise(x * range.Scale, 0.5f, 0.5f, 4, ++seed);
        const float top = HORIZON + range.Height * Smooth_Step(-0.12f, 0.12f, ridge) + 0.02f * ridge;
        const float layers = 0.06f * Sine(y * 90.0f + 3.0f * ridge);
        const Texel lit{range.Color.Red + layers, range.Color.Green + layers, range.Color.Blue + layers, 1.0f};
        color = Mix(color, lit, Smooth_Step(top + 0.012f, top - 0.012f, y));
    }
}

/// Sand with a road that leads to the horizon.
Texel Ground(float x, float y)
{
    const float away = 1.0f / std::max(HORIZON - y, 0.004f);
    const float side = x * away;
    const float grain = Fractal_Noise(side * 2.2f, away * 4.0f, 1.0f, 4, 897) * Limit(12.0f / away);
    const float light = 0.56f + 0.1f * grain;
    const Texel sand{light * 1.05f, light * 0.78f, light * 0.52f, 1.0f};
    const float road = std::fabs(side);
    if (road > 1.25f) return sand;
    const float dash = away * 1.1f - std::floor(away * 1.1f);
    const bool isLine = (road < 0.04f && dash < 0.5f) || (road > 1.08f && road < 1.14f);
    return isLine ? Texel{0.88f, 0.84f, 0.70f, 1.0f} : Grey(0.24f + 0.04f * grain, 1.0f);
}

/// A row of poles beside the road: straight lines, which show whatever bends them.
bool Is_Pole(float x, float y)
{
    for (int pole = 0; pole < 7; ++pole) {
        const float near = 0.75f / (1.0f + 0.75f * static_cast<float>(pole));
        const float foot = HORIZON - near;
        const float middle = 2.1f * near + 0.02f;
        const float width = 0.026f * near + 0.002f;
        const float tall = 1.35f * near;
        if (std::fabs(x - middle) < width && y > foot && y < foot + tall) return true;
        if (std::fabs(x - middle) < 0.2f * near && std::fabs(y - foot - tall * 0.9f) < width) return true;
    }
    return false;
}

} // namespace

Canvas Make_Backdrop()
{
    constexpr int WIDTH = 512;
    constexpr int HEIGHT = 384;
    Canvas canvas(WIDTH, HEIGHT);
    canvas.Paint({0, 0, WIDTH, HEIGHT}, 2, [](float x, float y) {
        Texel color = y < HORIZON ? Ground(x, y) : Sky(x, y);
        if (y >= HORIZON) Put_Mesas(color, x, y);
        return Is_Pole(x, y) ? Texel{0.17f, 0.12f, 0.10f, 1.0f} : color;
    });
    return canvas;
}

} // namespace TextureMaker
