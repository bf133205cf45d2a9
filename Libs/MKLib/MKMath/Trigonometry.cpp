#include "MKLib/MKMath/Trigonometry.h"

#include <cmath>

namespace MKMath
{

void Sin_Cos_Far(float radians, float &sine, float &cosine)
{
    sine = static_cast<float>(std::sin(static_cast<double>(radians)));
    cosine = static_cast<float>(std::cos(static_cast<double>(radians)));
}

} // namespace MKMath
