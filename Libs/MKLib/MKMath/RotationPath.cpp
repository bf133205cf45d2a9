#include "MKLib/MKMath/RotationPath.h"

#include "MKLib/MKMath/PortableMath.h"

#include <glm/gtc/quaternion.hpp>

namespace
{

void Weigh_Straight(const float *fractions, int count, double *ofFrom, double *ofTo)
{
    for (int i = 0; i < count; ++i) {
        ofTo[i] = static_cast<double>(fractions[i]);
        ofFrom[i] = 1.0 - ofTo[i];
    }
}

MK_SIMD void Weigh(const float *__restrict fractions, int count, double angle, double sineOfAngle,
                   double *__restrict ofFrom, double *__restrict ofTo)
{
    for (int i = 0; i < count; ++i) {
        const auto along = static_cast<double>(fractions[i]);
        ofFrom[i] = Portable::Sine((1.0 - along) * angle) / sineOfAngle;
        ofTo[i] = Portable::Sine(along * angle) / sineOfAngle;
    }
}

} // namespace

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
    QuaternionClass rotation;
    At_Many(&fraction, 1, &rotation);
    return rotation;
}

void RotationPath::At_Many(const float *fractions, int count, QuaternionClass *rotations) const
{
    constexpr int BLOCK = 128;
    double ofFrom[BLOCK];
    double ofTo[BLOCK];
    for (int first = 0; first < count; first += BLOCK) {
        const int size = count - first < BLOCK ? count - first : BLOCK;
        if (Angle == 0.0)
            Weigh_Straight(fractions + first, size, ofFrom, ofTo);
        else
            Weigh(fractions + first, size, Angle, SineOfAngle, ofFrom, ofTo);
        for (int i = 0; i < size; ++i) rotations[first + i] = QuaternionClass(From * ofFrom[i] + To * ofTo[i]);
    }
}
