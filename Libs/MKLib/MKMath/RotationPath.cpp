#include "MKLib/MKMath/RotationPath.h"

#include "MKLib/MKMath/PortableMath.h"

#include <glm/gtc/quaternion.hpp>

RotationPath::RotationPath(const QuaternionClass &from, const QuaternionClass &to) : From(from), To(to)
{
    double cosine = glm::dot(From, To);
    if (cosine < 0.0) {
        To = -To;
        cosine = -cosine;
    }
    Angle = Portable::Arc_Cosine(cosine);
    SineOfAngle = Portable::Sine(Angle);
}

QuaternionClass RotationPath::At(float fraction) const
{
    const auto along = static_cast<double>(fraction);
    const bool isStraight = Angle == 0.0;
    const double ofFrom = isStraight ? 1.0 - along : Portable::Sine((1.0 - along) * Angle) / SineOfAngle;
    const double ofTo = isStraight ? along : Portable::Sine(along * Angle) / SineOfAngle;
    return QuaternionClass(From * ofFrom + To * ofTo);
}
