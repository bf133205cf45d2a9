#pragma once

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrBounds.h"

#include <array>

/// A 4 by 4 matrix by columns, as shaders take it: element 4 * column + row.
struct vrMatrix44
{
    std::array<float, 16> Elements{};

    Vector4 Transform(const Vector4 &point) const;
    /// The identity for one without an inverse.
    vrMatrix44 Inverse() const;
    static vrMatrix44 From_Transform(const Mat3DClass &transform);
    friend vrMatrix44 operator*(const vrMatrix44 &left, const vrMatrix44 &right);
};

/// A plane with its inner side where dot(Normal, p) + Distance >= 0.
struct vrPlane
{
    Vector3 Normal{0.0f};
    float Distance = 0.0f;
};

/// A view: where it stands, how wide it sees, and how deep. Looks down its negative z axis, with x to the right and y
/// up. Derived values are kept up to date by the setters.
class vrCamera : public RefCountClass
{
public:
    enum ProjectionType : int
    {
        PERSPECTIVE,
        ORTHOGRAPHIC
    };

    vrCamera();

    void Set_Transform(const Mat3DClass &transform);
    const Mat3DClass &Get_Transform() const { return Transform; }
    Vector3 Get_Position() const { return Transform.Get_Translation(); }

    /// World units ahead of the camera; asserts that neither is negative.
    void Set_Depth_Range(float znear, float zfar);
    float Get_Near() const { return Near; }
    float Get_Far() const { return Far; }
    /// Where objects begin to fade; the end of the fade is kept behind it.
    void Set_Object_Fade_Depth(float depth);
    float Get_Object_Fade_Depth() const { return ObjectFadeDepth; }
    float Get_Object_Fade_End() const { return ObjectFadeEnd; }

    /// `fov` is the vertical angle in radians, `aspect` width by height. Selects the perspective projection.
    void Set_Perspective(float fov, float aspect);
    /// Either may be null.
    void Get_Perspective_Params(float *fov, float *aspect) const;
    /// World units across. Selects the orthographic projection.
    void Set_Orthographic(float width, float height);
    ProjectionType Get_Projection_Type() const { return Projection; }

    const vrMatrix44 &Get_View() const { return View; }
    /// Depth goes to -1 at the near and 1 at the far end.
    const vrMatrix44 &Get_Projection() const { return ProjectionMatrix; }
    const vrMatrix44 &Get_View_Projection() const { return ViewProjection; }
    /// Left, right, bottom, top, near, far; in the world.
    const std::array<vrPlane, 6> &Get_Planes() const { return Planes; }
    /// Whether a box may be in view: false only for one that is wholly outside of a plane.
    bool Sees(const vrBounds &box) const;
    /// From the camera to a corner of the far end, in the world: top left, bottom left, bottom right, top right.
    Vector3 Get_Corner_Ray(int corner) const;

private:
    void Rebuild();

    Mat3DClass Transform;
    float Near = 1.0f;
    float Far = 10000.0f;
    float ObjectFadeDepth = 1000.0f;
    float ObjectFadeEnd = 1000.1f;
    ProjectionType Projection = PERSPECTIVE;
    float FieldOfView = 0.6108652353f;
    float Aspect = 1.3333333731f;
    float Width = 100.0f;
    float Height = 100.0f;
    vrMatrix44 View;
    vrMatrix44 ProjectionMatrix;
    vrMatrix44 ViewProjection;
    std::array<vrPlane, 6> Planes;
};
