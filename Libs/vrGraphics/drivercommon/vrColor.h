#pragma once

#include "MKLib/MKMath/Simd.h"
#include "MKLib/MKMath/Vectors.h"

#include <cstdint>

/// A packed colour, 8 bits a channel, red lowest: in memory the bytes red, green, blue, alpha.
using vrColor = uint32_t;

constexpr vrColor VR_WHITE = 0xffffffffu;

constexpr vrColor Pack_Color(uint32_t red, uint32_t green, uint32_t blue, uint32_t alpha)
{
    return (red & 0xff) | (green & 0xff) << 8 | (blue & 0xff) << 16 | (alpha & 0xff) << 24;
}
