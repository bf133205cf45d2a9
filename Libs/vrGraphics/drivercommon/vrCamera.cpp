#include "vrGraphics/drivercommon/vrCamera.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/PortableMath.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <glm/mat4x4.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>

namespace
{

constexpr float FADE_WIDTH = 0.1f;   ///< what the end of the fade is kept behind its start
constexpr float LEAST_SIZE = 1e-6f;  ///< of what a projection divides by
constexpr float LEAST_DEPTH = 1e-3f; ///< between the near and the far end

glm::mat4 To_Glm(const vrMatrix44 &matrix)
{
    return glm::make_mat4(matrix.Elements.data());
}

vrMatrix44 From_Glm(const glm::mat4 &matrix)
{
    vrMatrix44 result;
    std::copy_n(glm::value_ptr(matrix), 16, result.Elements.begin());
    return result;
}

float Not_Zero(float value)
{
    return std::abs(value) > LEAST_SIZE ? value : LEAST_SIZE;
}

float Tangent(float radians)
{
    const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(radians));
    return sine / Not_Zero(cosine);
}

} // namespace

Vector4 vrMatrix44::Transform(const Vector4 &point) const
{
    return To_Glm(*this) * point;
}

vrMatrix44 vrMatrix44::Inverse() const
{
    // Of a projection the elements lie far apart.
    const glm::dmat4 matrix(To_Glm(*this));
    const double determinant = glm::determinant(matrix);
    if (determinant == 0.0 || !std::isfinite(determinant)) return From_Glm(glm::mat4(1.0f));
    return From_Glm(glm::mat4(glm::inverse(matrix)));
}

vrMatrix44 vrMatrix44::From_Transform(const Mat3DClass &transform)
{
    vrMatrix44 result;
    for (size_t column = 0; column < 4; ++column)
        for (size_t row = 0; row < 3; ++row)
            result.Elements[4 * column + row] = transform.Row[row][static_cast<int>(column)];
    result.Elements[15] = 1.0f;
    return result;
}

vrMatrix44 operator*(const vrMatrix44 &left, const vrMatrix44 &right)
{
    return From_Glm(To_Glm(left) * To_Glm(right));
}

vrCamera::vrCamera()
{
    Rebuild();
}

void vrCamera::Set_Transform(const Mat3DClass &transform)
{
    Transform = transform;
    Rebuild();
}

void vrCamera::Set_Depth_Range(float znear, float zfar)
{
    MK_ASSERT(znear >= 0.0f, "znear >= 0.0f");
    MK_ASSERT(zfar >= 0.0f, "zfar >= 0.0f");
    Near = znear;
    Far = zfar;
    Rebuild();
}

void vrCamera::Set_Object_Fade_Depth(float depth)
{
    ObjectFadeDepth = depth;
    if (!(ObjectFadeEnd > depth)) ObjectFadeEnd = depth + FADE_WIDTH;
}

void vrCamera::Set_Perspective(float fov, float aspect)
{
    FieldOfView = fov;
    Aspect = aspect;
    Projection = PERSPECTIVE;
    Rebuild();
}

void vrCamera::Get_Perspective_Params(float *fov, float *aspect) const
{
    if (fov) *fov = FieldOfView;
    if (aspect) *aspect = Aspect;
}

void vrCamera::Set_Orthographic(float width, float height)
{
    Width = width;
    Height = height;
    Projection = ORTHOGRAPHIC;
    Rebuild();
}

/// By columns: element 4 * column + row.
void vrCamera::Rebuild()
{
    View = vrMatrix44::From_Transform(Transform.Inverse());
    const float depth = Far - Near > LEAST_DEPTH ? Far - Near : LEAST_DEPTH;
    ProjectionMatrix = {};
    auto &elements = ProjectionMatrix.Elements;
    if (Projection == PERSPECTIVE) {
        const float halfHeight = Not_Zero(Tangent(FieldOfView * 0.5f));
        elements[0] = 1.0f / Not_Zero(halfHeight * Aspect);
        elements[5] = 1.0f / halfHeight;
        elements[10] = -(Far + Near) / depth;
        elements[14] = -2.0f * Far * Near / depth;
        elements[11] = -1.0f;
    } else {
        elements[0] = 2.0f / Not_Zero(Width);
        elements[5] = 2.0f / Not_Zero(Height);
        elements[10] = -2.0f / depth;
        elements[14] = -(Far + Near) / depth;
        elements[15] = 1.0f;
    }
    ViewProjection = ProjectionMatrix * View;

    // A point is inside of the first four planes when its clip coordinates lie between -w and w.
    const glm::mat4 rows = glm::transpose(To_Glm(ViewProjection));
    for (int plane = 0; plane < 4; ++plane) {
        const Vector4 row = plane % 2 == 0 ? rows[3] + rows[plane / 2] : rows[3] - rows[plane / 2];
        const float length = Not_Zero(glm::length(Vector3(row)));
        Planes[static_cast<size_t>(plane)] = {Vector3(row) / length, row.w / length};
    }
    // Depth as it is: in the projection the far end is lost in the rounding.
    const glm::mat4 viewRows = glm::transpose(To_Glm(View));
    const Vector3 back(viewRows[2]);
    Planes[4] = {-back, -viewRows[2].w - Near};
    Planes[5] = {back, viewRows[2].w + Far};
}

bool vrCamera::Sees(const vrBounds &box) const
{
    return std::none_of(Planes.begin(), Planes.end(), [&](const vrPlane &plane) {
        const float reach = glm::dot(glm::abs(plane.Normal), box.Extent);
        return glm::dot(plane.Normal, box.Center) + plane.Distance + reach < 0.0f;
    });
}

Vector3 vrCamera::Get_Corner_Ray(int corner) const
{
    const float right = corner == 2 || corner == 3 ? 1.0f : -1.0f;
    const float up = corner == 0 || corner == 3 ? 1.0f : -1.0f;
    if (Projection == ORTHOGRAPHIC) return Transform.Rotate({right * Width * 0.5f, up * Height * 0.5f, -Far});
    const float halfHeight = Far * Tangent(FieldOfView * 0.5f);
    return Transform.Rotate({right * halfHeight * Aspect, up * halfHeight, -Far});
}
