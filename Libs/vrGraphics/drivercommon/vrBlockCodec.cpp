#include "vrGraphics/drivercommon/vrBlockCodec.h"

namespace
{

constexpr int TEXELS = 16;

struct Texel
{
    int Red;
    int Green;
    int Blue;
    int Alpha;
};

uint16_t Read_16(const uint8_t *bytes)
{
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

Texel Unpack_565(uint16_t packed)
{
    const int red = packed >> 11;
    const int green = packed >> 5 & 63;
    const int blue = packed & 31;
    return {red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2, 255};
}

/// (a weightA + b weightB) / (weightA + weightB), rounded.
Texel Mix(const Texel &a, int weightA, const Texel &b, int weightB)
{
    const int sum = weightA + weightB;
    const auto mix = [&](int left, int right) { return (left * weightA + right * weightB + sum / 2) / sum; };
    return {mix(a.Red, b.Red), mix(a.Green, b.Green), mix(a.Blue, b.Blue), 255};
}

/// Two colours, and two more between them; where the block may be cut out and the first isn't the greater, one more
/// and a hole.
void Decode_Colors(const uint8_t *block, bool hasHoles, uint8_t (&texels)[64])
{
    const uint16_t first = Read_16(block);
    const uint16_t second = Read_16(block + 2);
    Texel palette[4] = {Unpack_565(first), Unpack_565(second), {}, {}};
    if (!hasHoles || first > second) {
        palette[2] = Mix(palette[0], 2, palette[1], 1);
        palette[3] = Mix(palette[0], 1, palette[1], 2);
    } else {
        palette[2] = Mix(palette[0], 1, palette[1], 1);
    }
    for (int index = 0; index < TEXELS; ++index) {
        const Texel &texel = palette[block[4 + index / 4] >> index % 4 * 2 & 3];
        texels[index * 4] = static_cast<uint8_t>(texel.Red);
        texels[index * 4 + 1] = static_cast<uint8_t>(texel.Green);
        texels[index * 4 + 2] = static_cast<uint8_t>(texel.Blue);
        texels[index * 4 + 3] = static_cast<uint8_t>(texel.Alpha);
    }
}

void Decode_Plain_Alpha(const uint8_t *block, uint8_t (&texels)[64])
{
    for (int index = 0; index < TEXELS; ++index)
        texels[index * 4 + 3] = static_cast<uint8_t>((block[index / 2] >> index % 2 * 4 & 15) * 17);
}

/// Two values and six between them, or four between them and the two ends of the range.
void Decode_Mixed_Alpha(const uint8_t *block, uint8_t (&texels)[64])
{
    const int first = block[0];
    const int second = block[1];
    int palette[8] = {first, second, 0, 0, 0, 0, 0, 255};
    const int steps = first > second ? 7 : 5;
    for (int step = 1; step < steps; ++step)
        palette[1 + step] = (first * (steps - step) + second * step + steps / 2) / steps;
    uint64_t indices = 0;
    for (int byte = 0; byte < 6; ++byte) indices |= uint64_t(block[2 + byte]) << byte * 8;
    for (int index = 0; index < TEXELS; ++index)
        texels[index * 4 + 3] = static_cast<uint8_t>(palette[indices >> index * 3 & 7]);
}

} // namespace

int Get_Block_Bytes(vrPicture2D::FormatType format)
{
    switch (format) {
    case vrPicture2D::FORMAT_BC1: return 8;
    case vrPicture2D::FORMAT_BC2:
    case vrPicture2D::FORMAT_BC3: return 16;
    case vrPicture2D::FORMAT_RGBA8: break;
    }
    return 0;
}

void Decode_Block(vrPicture2D::FormatType format, const uint8_t *block, uint8_t (&texels)[64])
{
    const bool isBc1 = format == vrPicture2D::FORMAT_BC1;
    Decode_Colors(isBc1 ? block : block + 8, isBc1, texels);
    if (format == vrPicture2D::FORMAT_BC2) Decode_Plain_Alpha(block, texels);
    if (format == vrPicture2D::FORMAT_BC3) Decode_Mixed_Alpha(block, texels);
}
