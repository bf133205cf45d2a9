#pragma once

/// Arithmetic of vectors for loops that are built for several processors: glm's own isn't inlined into these. And
/// selects, which are on bits: the compiler makes a branch around the store of a value that may be the old one, and
/// then can't take the loop.

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/MKMath/Simd.h"

#include <bit>
#include <cstdint>

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
MK_INLINE float Distance_Squared(const Vector3 &a, const Vector3 &b)
{
    const Vector3 way = Minus(a, b);
    return Dot(way, way);
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

/// 0, or not where a component is infinite or no number: of those alone x - x isn't 0.
MK_INLINE uint32_t Invalid_Bits(const Vector3 &vector)
{
    return std::bit_cast<uint32_t>((vector.x - vector.x) + (vector.y - vector.y) + (vector.z - vector.z));
}

/// All ones for true, and else 0.
MK_INLINE uint32_t As_Mask(bool value)
{
    return value ? ~0u : 0u;
}
/// `a` where the mask is all ones and `b` where it is 0.
MK_INLINE float Select_Bits(uint32_t mask, float a, float b)
{
    return std::bit_cast<float>((std::bit_cast<uint32_t>(a) & mask) | (std::bit_cast<uint32_t>(b) & ~mask));
}
MK_INLINE Vector3 Select_Bits(uint32_t mask, const Vector3 &a, const Vector3 &b)
{
    return {Select_Bits(mask, a.x, b.x), Select_Bits(mask, a.y, b.y), Select_Bits(mask, a.z, b.z)};
}

} // namespace Particle
