#include "MKLib/MKMath/Mat3D.h"

#include "MKLib/MKMath/PortableMath.h"

#include <glm/geometric.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat3x3.hpp>

#include <cmath>

namespace
{

constexpr float NO_VOLUME = 1e-30f; ///< determinants up to this have no usable inverse

/// The columns are the images of the axes.
MK_INLINE Mat3DClass From_Axes(const Vector3 &x, const Vector3 &y, const Vector3 &z, const Vector3 &position)
{
    return {{{x.x, y.x, z.x, position.x}, {x.y, y.y, z.y, position.y}, {x.z, y.z, z.z, position.z}}};
}

MK_INLINE Vector3 Unit_Or(const Vector3 &vector, const Vector3 &otherwise)
{
    const float length = std::sqrt(glm::dot(vector, vector));
    return length > 0.0f ? vector / length : otherwise;
}

float Determinant(const Mat3DClass &transform)
{
    return glm::dot(Vector3(transform.Row[0]), glm::cross(Vector3(transform.Row[1]), Vector3(transform.Row[2])));
}

} // namespace

Mat3DClass Mat3DClass::From_Translation(const Vector3 &position)
{
    Mat3DClass result;
    result.Set_Translation(position);
    return result;
}

Mat3DClass Mat3DClass::From_Angles(const Vector3 &radians)
{
    const auto about = [](int axis, float angle) {
        const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(angle));
        const int next = (axis + 1) % 3;
        const int last = (axis + 2) % 3;
        Mat3DClass turn;
        turn.Row[next][next] = cosine;
        turn.Row[next][last] = -sine;
        turn.Row[last][next] = sine;
        turn.Row[last][last] = cosine;
        return turn;
    };
    return about(2, radians.z) * (about(1, radians.y) * about(0, radians.x));
}

Mat3DClass Mat3DClass::From_Quaternion(const QuaternionClass &rotation)
{
    const glm::mat3 matrix = glm::mat3_cast(rotation);
    return From_Axes(matrix[0], matrix[1], matrix[2], Vector3(0.0f));
}

Mat3DClass Mat3DClass::Look_Along(const Vector3 &direction)
{
    const Vector3 forward = Unit_Or(direction, Vector3(0.0f));
    if (forward == Vector3(0.0f)) return {};
    const Vector3 level = Unit_Or(Vector3(-forward.y, forward.x, 0.0f), Vector3(1.0f, 0.0f, 0.0f));
    return From_Axes(level, glm::cross(forward, level), forward, Vector3(0.0f));
}

Mat3DClass Mat3DClass::Look_At(const Vector3 &eye, const Vector3 &target)
{
    Mat3DClass result = Look_Along(eye - target);
    result.Set_Translation(eye);
    return result;
}

void Mat3DClass::Set_Translation(const Vector3 &position)
{
    for (int row = 0; row < 3; ++row) Row[row].w = position[row];
}

Mat3DClass Mat3DClass::Inverse() const
{
    const float determinant = Determinant(*this);
    if (!(std::abs(determinant) > NO_VOLUME) || !std::isfinite(determinant)) return {};
    const Vector3 rows[3] = {Vector3(Row[0]), Vector3(Row[1]), Vector3(Row[2])};
    // The inverse of a 3 by 3 matrix has the cross products of its rows as columns, over the determinant.
    Mat3DClass result =
        From_Axes(glm::cross(rows[1], rows[2]) / determinant, glm::cross(rows[2], rows[0]) / determinant,
                  glm::cross(rows[0], rows[1]) / determinant, Vector3(0.0f));
    result.Set_Translation(-result.Rotate(Get_Translation()));
    return result;
}

float Mat3DClass::Get_Uniform_Scale() const
{
    return Portable::Cube_Root(std::abs(Determinant(*this)));
}

Mat3DClass Mat3DClass::Scaled(float factor) const
{
    return From_Axes(Get_Axis(0) * factor, Get_Axis(1) * factor, Get_Axis(2) * factor, Get_Translation());
}

QuaternionClass Mat3DClass::Get_Rotation() const
{
    const glm::mat3 axes(Unit_Or(Get_Axis(0), {1.0f, 0.0f, 0.0f}), Unit_Or(Get_Axis(1), {0.0f, 1.0f, 0.0f}),
                         Unit_Or(Get_Axis(2), {0.0f, 0.0f, 1.0f}));
    return glm::normalize(glm::quat_cast(axes));
}

Mat3DClass operator*(const Mat3DClass &left, const Mat3DClass &right)
{
    return From_Axes(left.Rotate(right.Get_Axis(0)), left.Rotate(right.Get_Axis(1)), left.Rotate(right.Get_Axis(2)),
                     left.Transform(right.Get_Translation()));
}

bool Is_Valid(const Mat3DClass &transform)
{
    return Is_Valid(transform.Row[0]) && Is_Valid(transform.Row[1]) && Is_Valid(transform.Row[2]);
}
