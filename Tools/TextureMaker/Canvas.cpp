#include "TextureMaker/Canvas.h"

#include <algorithm>

namespace TextureMaker
{

void Canvas::Mean::Add(const Texel &texel)
{
    const float alpha = Limit(texel.Alpha);
    Weighted.Red += texel.Red * alpha;
    Weighted.Green += texel.Green * alpha;
    Weighted.Blue += texel.Blue * alpha;
    Weighted.Alpha += alpha;
    Plain.Red += texel.Red;
    Plain.Green += texel.Green;
    Plain.Blue += texel.Blue;
    ++Count;
}

Texel Canvas::Mean::Get() const
{
    const auto count = static_cast<float>(Count);
    const float alpha = Weighted.Alpha / count;
    if (alpha < 0.001f) return {Plain.Red / count, Plain.Green / count, Plain.Blue / count, alpha};
    return {Weighted.Red / Weighted.Alpha, Weighted.Green / Weighted.Alpha, Weighted.Blue / Weighted.Alpha, alpha};
}

Canvas::Canvas(int width, int height)
    : Width(width), Height(height), Pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4)
{
}

void Canvas::Store(int x, int y, const Texel &texel)
{
    const auto byte = [](float value) { return static_cast<uint8_t>(Limit(value) * 255.0f + 0.5f); };
    uint8_t *pixel = &Pixels[(static_cast<size_t>(y) * static_cast<size_t>(Width) + static_cast<size_t>(x)) * 4];
    pixel[0] = byte(texel.Red);
    pixel[1] = byte(texel.Green);
    pixel[2] = byte(texel.Blue);
    pixel[3] = byte(texel.Alpha);
}

Canvas Canvas::Get_Half() const
{
    Canvas half(std::max(Width / 2, 1), std::max(Height / 2, 1));
    const auto at = [this](int x, int y, int channel) {
        const int row = std::min(y, Height - 1);
        const int column = std::min(x, Width - 1);
        return static_cast<int>(Pixels[static_cast<size_t>((row * Width + column) * 4 + channel)]);
    };
    for (int y = 0; y < half.Height; ++y)
        for (int x = 0; x < half.Width; ++x)
            for (int channel = 0; channel < 4; ++channel) {
                const int sum = at(2 * x, 2 * y, channel) + at(2 * x + 1, 2 * y, channel) +
                                at(2 * x, 2 * y + 1, channel) + at(2 * x + 1, 2 * y + 1, channel);
                half.Pixels[static_cast<size_t>((y * half.Width + x) * 4 + channel)] =
                    static_cast<uint8_t>((sum + 2) / 4);
            }
    return half;
}

} // namespace TextureMaker
