#include "MKLib/MKMath/PortableMath.h"

namespace Portable
{

namespace
{

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
    if (!(value > -1.0)) return value <= -1.0 ? PI : value;
    if (value >= 1.0) return 0.0;
    return Arc_Tangent(std::sqrt((1.0 - value) * (1.0 + value)), value);
}

} // namespace Portable
