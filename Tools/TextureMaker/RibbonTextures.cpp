#include "TextureMaker/OtherTextures.h"
#include "TextureMaker/Shapes.h"

namespace TextureMaker
{

namespace
{

/// Noise along a ribbon that repeats after its length of 2. `cells` is how many stand along it.
float Ribbon_Noise(float x, float y, float z, int cells, int octaves, uint32_t seed)
{
    const auto count = static_cast<float>(cells);
    return Fractal_Noise((x + 1.0f) * 0.5f * count, y * count * 0.25f, z, octaves, seed, {cells, 0, 0});
}

} // namespace

Canvas Make_Clouds()
{
    Canvas canvas(256, 128);
    canvas.Paint({0, 0, 256, 128}, 2, [](float x, float y) {
        const float bent = y + 0.22f * Ribbon_Noise(x, y, 0.5f, 4, 3, 801);
        const float cloud = Ribbon_Noise(x, bent * 2.0f, 3.5f, 6, 5, 802);
        const float edge = Hill(bent, 0.9f, 1) * Smooth_Step(0.98f, 0.8f, std::fabs(y));
        return Grey(0.82f + 0.22f * cloud, edge * Limit(0.42f + 0.95f * cloud));
    });
    return canvas;
}

Canvas Make_Trail()
{
    Canvas canvas(128, 64);
    canvas.Paint({0, 0, 128, 64}, 2, [](float x, float y) {
        const float fibres = Ribbon_Noise(x, y * 9.0f, 1.5f, 3, 3, 811);
        const float body = 0.5f * Hill(y, 0.96f, 3) + 0.5f * Hill(y, 0.5f, 3);
        return White(body * Limit(0.86f + 0.4f * fibres));
    });
    return canvas;
}

Canvas Make_Beam()
{
    constexpr int FRAMES = 4;
    constexpr int WIDTH = 256;
    constexpr int HEIGHT = 64;
    Canvas canvas(WIDTH, HEIGHT * FRAMES);
    for (int frame = 0; frame < FRAMES; ++frame)
        canvas.Paint({0, frame * HEIGHT, WIDTH, HEIGHT}, 2, [frame](float x, float y) {
            const auto at = static_cast<float>(frame) * 2.7f;
            const float bolt = y - 0.22f * Ribbon_Noise(x, 0.0f, at, 5, 4, 821);
            const float twin = y + 0.3f * Ribbon_Noise(x, 0.0f, at + 1.3f, 4, 4, 822);
            const float core = Hill(bolt, 0.16f, 2) + 0.5f * Hill(twin, 0.1f, 2);
            const float halo = 0.42f * Hill(y, 0.95f, 3) * (1.0f + 0.35f * Ribbon_Noise(x, y, at, 8, 3, 823));
            return White((core + halo) * Smooth_Step(0.98f, 0.75f, std::fabs(y)));
        });
    return canvas;
}

Canvas Make_Glints()
{
    constexpr int GLINTS = 26;
    Canvas canvas(128, 128);
    canvas.Paint({0, 0, 128, 128}, 2, [](float x, float y) {
        // The way around the edges counts too, since the picture repeats both ways.
        const auto apart = [](float a, float b) {
            const float distance = std::fabs(a - b);
            return distance > 1.0f ? 2.0f - distance : distance;
        };
        float light = 0.0f;
        for (int glint = 0; glint < GLINTS; ++glint) {
            const float along = apart(x, 2.0f * Hash_To_Unit(glint, 0, 0, 831) - 1.0f);
            const float across = apart(y, 2.0f * Hash_To_Unit(glint, 1, 0, 831) - 1.0f);
            const float reach = 0.12f + 0.3f * Hash_To_Unit(glint, 2, 0, 831);
            const float width = 0.02f + 0.05f * Hash_To_Unit(glint, 3, 0, 831);
            light += Hill(along, reach, 2) * Hill(across, width, 2);
        }
        return White(light);
    });
    return canvas;
}

} // namespace TextureMaker
