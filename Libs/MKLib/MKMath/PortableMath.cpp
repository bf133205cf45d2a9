#include "MKLib/MKMath/PortableMath.h"

#include <limits>

namespace Portable
{

namespace
{

constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
// ln 2 in two parts, the first of which has 33 bits, so that its multiples are exact.
constexpr double LN_2_HIGH = 0x1.62e42fee0p-1;
constexpr double LN_2_LOW = 0x1.a39ef35793c76p-33;
constexpr double TANGENT_OF_EIGHTH = 0.41421356237309503; ///< of pi / 8

/// The arc tangent's Taylor series for arguments up to TANGENT_OF_EIGHTH.
double Arc_Tangent_Kernel(double x)
{
    const double s = x * x;
    double sum = 0.0;
    for (int power = 45; power >= 3; power -= 2) sum = s * ((power & 2 ? -1.0 : 1.0) / power + sum);
    return x + x * sum;
}

} // namespace

SineAndCosine Detail::Sine_And_Cosine_Far(double angle)
{
    if (!std::isfinite(angle)) return {NO_NUMBER, NO_NUMBER};
    // The remainder is exact; what is lost lies in the last digits of pi, as it does in the angle itself.
    return Sine_And_Cosine_Direct(std::fmod(angle, 2.0 * PI));
}

double Logarithm(double value)
{
    if (value == 0.0) return -INFINITE;
    if (!(value > 0.0) || !std::isfinite(value)) return value > 0.0 ? INFINITE : NO_NUMBER;
    int exponent = 0;
    double mantissa = std::frexp(value, &exponent); // 0.5 to 1
    if (mantissa < 0.70710678118654752) {
        mantissa *= 2.0;
        --exponent;
    }
    // ln m = 2 artanh((m - 1) / (m + 1))
    const double t = (mantissa - 1.0) / (mantissa + 1.0);
    const double s = t * t;
    double sum = 0.0;
    for (int power = 23; power >= 3; power -= 2) sum = s * (1.0 / power + sum);
    return exponent * LN_2_HIGH + (exponent * LN_2_LOW + 2.0 * (t + t * sum));
}

double Exponential(double value)
{
    if (!(value > -745.0)) return value <= -745.0 ? 0.0 : NO_NUMBER;
    if (value > 709.0) return INFINITE;
    const double turns = value / (LN_2_HIGH + LN_2_LOW);
    const int exponent = static_cast<int>(turns + (turns < 0.0 ? -0.5 : 0.5));
    const double x = (value - exponent * LN_2_HIGH) - exponent * LN_2_LOW;
    double sum = 1.0;
    for (int term = 15; term >= 1; --term) sum = 1.0 + sum * (x / term);
    return std::ldexp(sum, exponent);
}

double Power(double base, double exponent)
{
    if (exponent == 0.0 || base == 1.0) return 1.0;
    if (base == 0.0) return exponent > 0.0 ? 0.0 : INFINITE;
    return Exponential(exponent * Logarithm(base));
}

float Cube_Root(float value)
{
    const double magnitude = std::fabs(static_cast<double>(value));
    return std::copysign(static_cast<float>(Power(magnitude, 1.0 / 3.0)), value);
}

double Arc_Tangent(double y, double x)
{
    const double across = std::fabs(y);
    const double along = std::fabs(x);
    if (across == 0.0 && along == 0.0) return 0.0;
    const bool isSteep = across > along;
    const double ratio = isSteep ? along / across : across / along;
    double angle = ratio > TANGENT_OF_EIGHTH ? PI / 4.0 + Arc_Tangent_Kernel((ratio - 1.0) / (ratio + 1.0))
                                             : Arc_Tangent_Kernel(ratio);
    if (isSteep) angle = PI / 2.0 - angle;
    if (x < 0.0) angle = PI - angle;
    return std::copysign(angle, y);
}

double Arc_Cosine(double value)
{
    if (!(value > -1.0)) return value <= -1.0 ? PI : NO_NUMBER;
    if (value >= 1.0) return 0.0;
    return Arc_Tangent(std::sqrt((1.0 - value) * (1.0 + value)), value);
}

} // namespace Portable
