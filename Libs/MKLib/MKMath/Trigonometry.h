#pragma once

#include "MKLib/MKMath/Simd.h"

#include <bit>
#include <cstdint>

namespace MKMath
{

/// The same beyond the angles that `Sin_Cos` reduces by itself, and for what is no number.
void Sin_Cos_Far(float radians, float &sine, float &cosine);

/// Sine and cosine together, the same bits on every machine: the C library's differ in their last bit from one
/// processor to another. Taylor's series in double over half a turn, off by less than 1e-11 ahead of the one rounding;
/// no branch depends on the angle.
MK_INLINE void Sin_Cos(float radians, float &sine, float &cosine)
{
    constexpr double HALVES_PER_RADIAN = 0.31830988618379067154;
    constexpr double HALF_HIGH = 3.14159265346825122834; // 33 bits, so that its multiples are exact
    constexpr double HALF_LOW = 1.21542010130123852e-10;
    constexpr double ROUNDER = 0x1.8p52; // added, it leaves the nearest integer in the low bits
    constexpr float FAR = 100000.0f;
    if (!(radians < FAR && radians > -FAR)) [[unlikely]]
        return Sin_Cos_Far(radians, sine, cosine);

    const double rounded = static_cast<double>(radians) * HALVES_PER_RADIAN + ROUNDER;
    const double halves = rounded - ROUNDER;
    const auto isOdd = static_cast<int32_t>(std::bit_cast<uint64_t>(rounded) & 1);
    const double sign = 1 - 2 * isOdd;
    const double x = static_cast<double>(radians) - halves * HALF_HIGH - halves * HALF_LOW;
    const double y = x * x;
    const double z = y * y;
    // In pairs, so that their terms don't wait for each other: 1 - y/3! + y^2/5! - ..., and 1 - y/2! + y^2/4! - ...
    const double s =
        (1.0 - y * (1.0 / 6)) +
        z * ((1.0 / 120 - y * (1.0 / 5040)) +
             z * ((1.0 / 362880 - y * (1.0 / 39916800)) + z * (1.0 / 6227020800.0 - y * (1.0 / 1307674368000.0))));
    const double c = (1.0 - y * (1.0 / 2)) +
                     z * ((1.0 / 24 - y * (1.0 / 720)) + z * ((1.0 / 40320 - y * (1.0 / 3628800)) +
                                                              z * (1.0 / 479001600 - y * (1.0 / 87178291200.0))));
    sine = static_cast<float>(sign * (x * s));
    cosine = static_cast<float>(sign * (c + z * z * z * z * (1.0 / 20922789888000.0)));
}

} // namespace MKMath
