#pragma once

/// Elementary functions that give the same bits on every x86-64, which those of a C library don't: it picks them by the
/// processor that it finds, with and without fused multiply-adds, and their last bits differ. Everything that a
/// simulation computes with takes these. They are polynomials in double precision, without tables, and what is inlined
/// doesn't branch by ordinary arguments: loops over sines and quick arc tangents vectorise.

#include "MKLib/MKMath/Simd.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Portable
{

constexpr double PI = 3.141592653589793;

struct SineAndCosine
{
    float Sine;
    float Cosine;
};

namespace Detail
{

constexpr uint32_t SIGN = 0x80000000u;

/// Where floats lie more than a turn apart.
constexpr double ANGLE_LIMIT = 67108864.0;

/// A whole number of half turns taken off an angle. What is left lies within a quarter turn.
struct FoldedAngle
{
    double Rest;
    uint64_t Sign; ///< set where the number is odd
};
MK_INLINE FoldedAngle Fold(double angle)
{
    constexpr double HALF_HIGH = 0x1.921fb54p+1; // 27 bits of pi, whose multiples are exact
    constexpr double HALF_LOW = 0x1.10b4611a62633p-29;
    constexpr double ROUNDER = 0x1.8p52; // added, it leaves the nearest whole number in the low bits
    const double rounded = angle * (1.0 / PI) + ROUNDER;
    const double halves = rounded - ROUNDER;
    return {(angle - halves * HALF_HIGH) - halves * HALF_LOW, std::bit_cast<uint64_t>(rounded) << 63};
}

MK_INLINE double Flip(double value, uint64_t sign)
{
    return std::bit_cast<double>(std::bit_cast<uint64_t>(value) ^ sign);
}

/// The sine within a quarter turn; the polynomial with the least greatest error, which is 7e-14 of the value.
MK_INLINE double Sine_Kernel(double x)
{
    // In pairs, so that terms don't wait for each other.
    const double s = x * x;
    const double t = s * s;
    const double low = 1.0 - s * 0.16666666666504606;
    const double middle = 0.0083333333210873051 - s * 0.00019841266729723640;
    const double high = (2.7556953111856344e-06 - s * 2.5030196889204642e-08) + t * 1.5409527878849644e-10;
    return x * (low + t * (middle + t * high));
}

/// 0 beyond the limit; no number for infinity.
MK_INLINE double Limit_Angle(double angle)
{
    return std::fabs(angle) < ANGLE_LIMIT ? angle : angle * 0.0;
}

/// The cube root of a number that isn't negative, in normal range or 0; good to 5e-15 of the result.
MK_INLINE double Cube_Root_Kernel(double x)
{
    // Minus a third of the exponent: r is x^(-1/3) within 3.5 %. With h = 1 - x r^3 the root is x r^2 (1 - h)^(-2/3),
    // here by the polynomial with the least greatest error.
    const auto r = std::bit_cast<double>(0x553ee95d808e21dau - std::bit_cast<uint64_t>(x) / 3);
    const double square = r * r;
    const double h = 1.0 - (x * r) * square;
    const double h2 = h * h;
    const double h4 = h2 * h2;
    const double p0 = (1.0 + h * 0.6666666666671109) + h2 * (0.5555555555566062 + h * 0.4938271596410562);
    const double p4 =
        (0.4526748958147281 + h * 0.42249702864015337) + h2 * (0.39902511214959707 + h * 0.3799230929842824);
    const double p8 = (0.36407752169015767 + h * 0.360277961479164) + h2 * 0.34886207740021596;
    return (x * square) * (p0 + h4 * (p4 + h4 * p8));
}

/// A positive, normal number to the power of e = 9.9341074625651e-9, within 1e-14: 1 + e ln x and the square of that.
MK_INLINE double Excess_Kernel(double x)
{
    constexpr double PER_EXPONENT = 6.885798579056514e-09; // e ln 2
    constexpr uint64_t MANTISSA = 0x000fffffffffffffu;
    constexpr uint64_t ONE = 0x3ff0000000000000u;
    const auto bits = std::bit_cast<uint64_t>(x);
    const double doublings = PER_EXPONENT * (static_cast<int32_t>(bits >> 52) - 1023);
    // e ln m from 1 to 2, by the polynomial with the least greatest error.
    const auto m = std::bit_cast<double>((bits & MANTISSA) | ONE);
    const double m2 = m * m;
    const double p0 = (-2.2348119791094942e-08 + m * 4.912307676835163e-08) +
                      m2 * (-5.160306645180637e-08 + m * 3.980982000500759e-08);
    const double p4 = (-2.0554250372833364e-08 + m * 6.734962586644966e-09) +
                      m2 * (-1.2665709777065883e-09 + m * 1.0415014278025568e-10);
    return (1.0 + (doublings + doublings * doublings * 0.5)) + (p0 + m2 * m2 * p4);
}

} // namespace Detail

/// Radians; good to 1e-13 of the result. Angles from 2^26 on, of which not even the turn is known, count as 0. No
/// number for an infinite one.
MK_INLINE double Sine(double angle)
{
    const auto [rest, sign] = Detail::Fold(Detail::Limit_Angle(angle));
    return Detail::Flip(Detail::Sine_Kernel(rest), sign);
}

/// Both by the rules of `Sine`, rounded.
MK_INLINE SineAndCosine Sine_And_Cosine(double angle)
{
    constexpr double QUARTER_HIGH = 1.5707963267948966;
    constexpr double QUARTER_LOW = 6.123233995736766e-17;
    const auto [rest, sign] = Detail::Fold(Detail::Limit_Angle(angle));
    const double complement = (QUARTER_HIGH - std::fabs(rest)) + QUARTER_LOW;
    return {static_cast<float>(Detail::Flip(Detail::Sine_Kernel(rest), sign)),
            static_cast<float>(Detail::Flip(Detail::Sine_Kernel(complement), sign))};
}

/// Exact where the root of a float is a float. Of a negative number the negative root.
MK_INLINE float Cube_Root(float value)
{
    const double magnitude = std::fabs(static_cast<double>(value));
    const double root =
        magnitude < std::numeric_limits<double>::infinity() ? Detail::Cube_Root_Kernel(magnitude) : magnitude;
    return static_cast<float>(std::copysign(root, static_cast<double>(value)));
}

/// The base to the power of 0.3333333432674408, the float nearest to 1/3; good to 1.5e-14 of the result.
/// No number for a negative base.
MK_INLINE double Power_Of_Third(float base)
{
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    if (!(base >= 0.0f && base < INFINITE)) [[unlikely]]
        return static_cast<double>(base > 0.0f ? base : std::numeric_limits<float>::quiet_NaN());
    const double magnitude = std::fabs(static_cast<double>(base)); // 0 has a sign
    // 1/3 and what the exponent has above it.
    return Detail::Cube_Root_Kernel(magnitude) * Detail::Excess_Kernel(magnitude);
}

/// The angle of (x, y) from the x axis, -pi to pi, with all signs of zeros as those of `std::atan2`. Off by 3e-7 at
/// most, for loops in which that does.
MK_INLINE float Quick_Arc_Tangent(float y, float x)
{
    constexpr float TANGENT_OF_EIGHTH = 0.41421357f; // of pi / 8
    constexpr float EIGHTH = 0.78539819f;
    constexpr float QUARTER = 1.5707964f;
    constexpr float HALF = 3.1415927f;
    const float width = std::fabs(x);
    const float height = std::fabs(y);
    const float larger = width > height ? width : height;
    const float smaller = width > height ? height : width;
    // atan(q) = pi / 4 + atan((q - 1) / (q + 1)) leaves quotients up to tan(pi / 8), where
    // atan(q) = q + q^3 p(q^2) with p through four Chebyshev nodes is right to 7e-8.
    const bool isSteep = smaller > larger * TANGENT_OF_EIGHTH;
    const float divisor = isSteep ? smaller + larger : larger;
    const float quotient = (isSteep ? smaller - larger : smaller) / (divisor > 0.0f ? divisor : 1.0f);
    const float z = quotient * quotient;
    const float p = ((0.0852049217f * z - 0.140241429f) * z + 0.199912384f) * z - 0.333332866f;
    const float first = quotient + quotient * z * p + (isSteep ? EIGHTH : 0.0f);
    const float upper = height > width ? QUARTER - first : first;
    const bool isLeft = (std::bit_cast<uint32_t>(x) & Detail::SIGN) != 0;
    const float angle = isLeft ? HALF - upper : upper;
    return std::bit_cast<float>(std::bit_cast<uint32_t>(angle) | (std::bit_cast<uint32_t>(y) & Detail::SIGN));
}

/// The angle of (x, y) from the x axis, -pi to pi; 0 for the origin. To the last places of a double.
double Arc_Tangent(double y, double x);
/// 0 to pi; the argument is cut to -1..1.
double Arc_Cosine(double value);

} // namespace Portable
