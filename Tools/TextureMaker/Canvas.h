#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TextureMaker
{

/// A colour of straight alpha, each channel 0 to 1; what lies beyond is cut off when it is stored.
struct Texel
{
    float Red = 1.0f;
    float Green = 1.0f;
    float Blue = 1.0f;
    float Alpha = 0.0f;
};

inline Texel White(float alpha)
{
    return {1.0f, 1.0f, 1.0f, alpha};
}
inline Texel Grey(float value, float alpha)
{
    return {value, value, value, alpha};
}
inline Texel Mix(const Texel &a, const Texel &b, float t)
{
    return {a.Red + (b.Red - a.Red) * t, a.Green + (b.Green - a.Green) * t, a.Blue + (b.Blue - a.Blue) * t,
            a.Alpha + (b.Alpha - a.Alpha) * t};
}
inline float Limit(float value, float least = 0.0f, float most = 1.0f)
{
    return value < least ? least : value > most ? most : value;
}
/// 0 up to `from`, 1 beyond `to`, an even slope at both ends; `from` may lie above `to`.
inline float Smooth_Step(float from, float to, float value)
{
    const float t = Limit((value - from) / (to - from));
    return t * t * (3.0f - 2.0f * t);
}

/// A part of a canvas, in pixels.
struct Area
{
    int X;
    int Y;
    int Width;
    int Height;
};

/// A picture that is painted by functions. Rows run from the top, four bytes a pixel: red, green, blue, alpha.
class Canvas
{
public:
    Canvas(int width, int height);

    int Get_Width() const { return Width; }
    int Get_Height() const { return Height; }
    const std::vector<uint8_t> &Get_Pixels() const { return Pixels; }
    /// Half as wide and high, each pixel the mean of four; sides of 1 stay.
    Canvas Get_Half() const;

    /// Fills an area with what `shade(x, y)` answers: x from -1 at the left to 1, y from -1 at the bottom to 1. A
    /// pixel is the mean of `samples` by `samples` places, its colour weighted by alpha.
    template <typename Shade>
    void Paint(const Area &area, int samples, Shade &&shade)
    {
        const auto stepX = 2.0f / static_cast<float>(area.Width * samples);
        const auto stepY = 2.0f / static_cast<float>(area.Height * samples);
        for (int row = 0; row < area.Height; ++row)
            for (int column = 0; column < area.Width; ++column) {
                Mean mean;
                for (int sub = 0; sub < samples * samples; ++sub) {
                    const int atX = column * samples + sub % samples;
                    const int atY = row * samples + sub / samples;
                    mean.Add(shade(-1.0f + (static_cast<float>(atX) + 0.5f) * stepX,
                                   1.0f - (static_cast<float>(atY) + 0.5f) * stepY));
                }
                Store(area.X + column, area.Y + row, mean.Get());
            }
    }

private:
    class Mean
    {
    public:
        void Add(const Texel &texel);
        Texel Get() const;

    private:
        Texel Weighted{0.0f, 0.0f, 0.0f, 0.0f}; ///< by alpha; its alpha is the sum
        Texel Plain{0.0f, 0.0f, 0.0f, 0.0f};
        int Count = 0;
    };

    void Store(int x, int y, const Texel &texel);

    int Width;
    int Height;
    std::vector<uint8_t> Pixels;
};

} // namespace TextureMaker
