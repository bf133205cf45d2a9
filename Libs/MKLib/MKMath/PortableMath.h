#pragma once

/// Elementary functions that give the same bits on every x86-64. A C library picks its own by the processor that it
/// finds, with and without fused multiply-adds, and their last bits differ. These are polynomials in double precision,
/// a few units of its last place off, so that a result that is rounded to float is almost always the nearest one. They
/// have no tables and, but for the range reduction of angles beyond 100,000, no branches that matter to speed.

#include "MKLib/MKMath/Simd.h"

#include <cmath>
#include <cstdint>

namespace Portable
{

constexpr double PI = 3.141592653589793;

struct SineAndCosine
{
    double Sine;
    double Cosine;
};

namespace Detail
{

constexpr double GREATEST_DIRECT_ANGLE = 100000.0; ///< up to which the reduction in three parts is exact enough

/// Taylor series on -pi/4..pi/4, where the first term that is left out is below 1e-18.
MK_INLINE double Sine_Kernel(double x)
{
    const double s = x * x;
    double sum = 1.0 / 355687428096000.0;
    sum = sum * s - 1.0 / 1307674368000.0;
    sum = sum * s + 1.0 / 6227020800.0;
    sum = sum * s - 1.0 / 39916800.0;
    sum = sum * s + 1.0 / 362880.0;
    sum = sum * s - 1.0 / 5040.0;
    sum = sum * s + 1.0 / 120.0;
    sum = sum * s - 1.0 / 6.0;
    return x + x * s * sum;
}
MK_INLINE double Cosine_Kernel(double x)
{
    const double s = x * x;
    double sum = 1.0 / 20922789888000.0;
    sum = sum * s - 1.0 / 87178291200.0;
    sum = sum * s + 1.0 / 479001600.0;
    sum = sum * s - 1.0 / 3628800.0;
    sum = sum * s + 1.0 / 40320.0;
    sum = sum * s - 1.0 / 720.0;
    sum = sum * s + 1.0 / 24.0;
    sum = sum * s - 0.5;
    return 1.0 + s * sum;
}

/// For angles up to GREATEST_DIRECT_ANGLE. Quarter turns are taken off in parts of 33 bits, whose multiples are exact.
MK_INLINE SineAndCosine Sine_And_Cosine_Direct(double angle)
{
    constexpr double QUARTER_1 = 0x1.921fb544p+0;
    constexpr double QUARTER_2 = 0x1.0b4611a6p-34;
    constexpr double QUARTER_3 = 0x1.3198a2e037073p-69;
    const double turns = angle * (2.0 / PI);
    const auto quarter = static_cast<int32_t>(turns + (turns < 0.0 ? -0.5 : 0.5));
    const auto count = static_cast<double>(quarter);
    const double x = ((angle - count * QUARTER_1) - count * QUARTER_2) - count * QUARTER_3;
    const double sine = Sine_Kernel(x);
    const double cosine = Cosine_Kernel(x);
    const double first = quarter & 1 ? cosine : sine;
    const double second = quarter & 1 ? sine : cosine;
    return {quarter & 2 ? -first : first, (quarter + 1) & 2 ? -second : second};
}

SineAndCosine Sine_And_Cosine_Far(double angle);

} // namespace Detail

/// Radians. No number for an infinite angle.
MK_INLINE SineAndCosine Sine_And_Cosine(double angle)
{
    if (!(std::fabs(angle) < Detail::GREATEST_DIRECT_ANGLE)) [[unlikely]]
        return Detail::Sine_And_Cosine_Far(angle);
    return Detail::Sine_And_Cosine_Direct(angle);
}

inline float Sine(float angle)
{
    return static_cast<float>(Sine_And_Cosine(static_cast<double>(angle)).Sine);
}
inline float Cosine(float angle)
{
    return static_cast<float>(Sine_And_Cosine(static_cast<double>(angle)).Cosine);
}

/// The natural logarithm of a positive, finite number; no number for another one, and minus infinity for 0.
double Logarithm(double value);
/// e to the power of `value`, with 0 and infinity beyond the range.
double Exponential(double value);
/// `base` to the power of `exponent` for a base that isn't negative; no number for a negative one.
double Power(double base, double exponent);
/// Of any number; exact where the root of a float is a float.
float Cube_Root(float value);
/// The angle of (x, y) from the x axis, -pi to pi; 0 for the origin.
double Arc_Tangent(double y, double x);
/// 0 to pi; the argument is cut to -1..1.
double Arc_Cosine(double value);

} // namespace Portable
