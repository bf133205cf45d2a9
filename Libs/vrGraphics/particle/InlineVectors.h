#pragma once

/// Arithmetic of vectors for loops that are built for several processors: glm's own isn't inlined into these.

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/MKMath/Simd.h"

namespace Particle
{

MK_INLINE float Dot(const Vector3 &a, const Vector3 &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
MK_INLINE Vector3 Cross(const Vector3 &a, const Vector3 &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
MK_INLINE Vector3 Times(const Vector3 &a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}
MK_INLINE Vector3 Plus(const Vector3 &a, const Vector3 &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
MK_INLINE Vector3 Minus(const Vector3 &a, const Vector3 &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
MK_INLINE Vector3 Map(const Mat3DClass &transform, const Vector3 &point)
{
    const Vector4 &x = transform.Row[0], &y = transform.Row[1], &z = transform.Row[2];
    return {x.x * point.x + x.y * point.y + x.z * point.z + x.w, y.x * point.x + y.y * point.y + y.z * point.z + y.w,
            z.x * point.x + z.y * point.y + z.z * point.z + z.w};
}
MK_INLINE Vector3 Turn(const Mat3DClass &transform, const Vector3 &direction)
{
    const Vector4 &x = transform.Row[0], &y = transform.Row[1], &z = transform.Row[2];
    return {x.x * direction.x + x.y * direction.y + x.z * direction.z,
            y.x * direction.x + y.y * direction.y + y.z * direction.z,
            z.x * direction.x + z.y * direction.y + z.z * direction.z};
}

} // namespace Particle
