#pragma once

#include "MKLib/MKMath/Vectors.h"

/// A 3 by 4 affine transform, by rows: a point p maps to (dot(Row[i].xyz, p) + Row[i].w) for i in 0..2.
struct Mat3DClass
{
    Vector4 Row[3] = {{1.0f, 0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f, 0.0f}};

    friend bool operator==(const Mat3DClass &, const Mat3DClass &) = default;

    /// Moves to `position` and nothing else.
    static Mat3DClass From_Translation(const Vector3 &position);
    /// Turns about the x axis, then y, then z of the world; radians.
    static Mat3DClass From_Angles(const Vector3 &radians);
    static Mat3DClass From_Quaternion(const QuaternionClass &rotation);
    /// The turn that takes the z axis to `direction`, with no roll: the x axis stays level. The identity for a zero
    /// direction; straight up or down the x axis stays where it is.
    static Mat3DClass Look_Along(const Vector3 &direction);
    /// A camera at `eye` whose negative z axis points at `target`, its y axis up as far as it can.
    static Mat3DClass Look_At(const Vector3 &eye, const Vector3 &target);

    Vector3 Get_Translation() const { return {Row[0].w, Row[1].w, Row[2].w}; }
    void Set_Translation(const Vector3 &position);
    /// Where an axis of the frame points: 0 x, 1 y, 2 z. Its length is the scale along it.
    Vector3 Get_Axis(int axis) const { return {Row[0][axis], Row[1][axis], Row[2][axis]}; }

    /// Maps a point.
    Vector3 Transform(const Vector3 &point) const
    {
        return {Row[0].x * point.x + Row[0].y * point.y + Row[0].z * point.z + Row[0].w,
                Row[1].x * point.x + Row[1].y * point.y + Row[1].z * point.z + Row[1].w,
                Row[2].x * point.x + Row[2].y * point.y + Row[2].z * point.z + Row[2].w};
    }
    /// Maps a direction: as a point, without the translation.
    Vector3 Rotate(const Vector3 &direction) const
    {
        return {Row[0].x * direction.x + Row[0].y * direction.y + Row[0].z * direction.z,
                Row[1].x * direction.x + Row[1].y * direction.y + Row[1].z * direction.z,
                Row[2].x * direction.x + Row[2].y * direction.y + Row[2].z * direction.z};
    }

    /// Any affine inverse; the identity for a transform that has none.
    Mat3DClass Inverse() const;
    /// The cube root of the volume of the unit cube's image: the scale of a uniformly scaled transform. Not negative.
    float Get_Uniform_Scale() const;
    /// The frame's axes times `factor`; the translation stays.
    Mat3DClass Scaled(float factor) const;
    /// The rotation, of unit length. Expects no shear; a scale is taken out.
    QuaternionClass Get_Rotation() const;

    /// `right` first, then `left`.
    friend Mat3DClass operator*(const Mat3DClass &left, const Mat3DClass &right);
};

bool Is_Valid(const Mat3DClass &transform);
