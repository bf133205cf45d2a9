#include "vrGraphics/plugins/modifiers/ColorLoops.h"

// The loops go over channels in place of colours, which lie in memory as the bytes red, green, blue, alpha.

namespace
{

MK_SIMD void Pack_Channels(uint8_t *__restrict bytes, const float *__restrict channels, int count)
{
    for (int i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(Particle::Color_Byte(channels[i]));
}

/// Exact, as in `Ramp`.
MK_SIMD void Lerp_Channels_From_White(uint8_t *__restrict bytes, int count, float fraction)
{
    const float step = fraction / 65536.0f;
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<int32_t>(255.0f + (static_cast<float>(bytes[i]) - 255.0f) * step));
}

MK_SIMD void Multiply_Channels(uint8_t *__restrict bytes, const uint8_t *__restrict factors, int count)
{
    for (int i = 0; i < count; ++i) {
        // (x + 1 + x / 256) / 256 is x / 255 for all products of two bytes, and stays within 16 bits.
        const auto product = static_cast<uint16_t>(bytes[i] * factors[i]);
        const auto raised = static_cast<uint16_t>(product + 1 + (product >> 8));
        bytes[i] = static_cast<uint8_t>(raised >> 8);
    }
}

} // namespace

void ColorLoops::Pack_Many(vrColor *packed, const RGBAClass *colors, int count)
{
    Pack_Channels(reinterpret_cast<uint8_t *>(packed), &colors->R, count * 4);
}

void ColorLoops::Lerp_From_White(vrColor *colors, int count, float weight)
{
    const auto fraction = static_cast<float>(Particle::Fixed_Weight(weight));
    Lerp_Channels_From_White(reinterpret_cast<uint8_t *>(colors), count * 4, fraction);
}

void ColorLoops::Multiply_Many(vrColor *colors, const vrColor *factors, int count)
{
    Multiply_Channels(reinterpret_cast<uint8_t *>(colors), reinterpret_cast<const uint8_t *>(factors), count * 4);
}
