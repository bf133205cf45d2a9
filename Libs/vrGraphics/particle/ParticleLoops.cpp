#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/ParticleMath.h"

#include <bit>


namespace
{

/// A pattern of three floats repeats after 3 vectors of 16 floats.
constexpr int PATTERN = 48;
constexpr uint32_t EXPONENT = 0x7f800000u;

MK_SIMD void Add_Pattern(float *__restrict to, int count, const float *__restrict pattern)
{
    int at = 0;
    for (; at + PATTERN <= count; at += PATTERN)
        for (int lane = 0; lane < PATTERN; ++lane) to[at + lane] += pattern[lane];
    for (int lane = 0; at < count; ++at, ++lane) to[at] += pattern[lane];
}

MK_SIMD void Add_Scaled_Floats(float *__restrict to, const float *__restrict from, int count, float factor)
{
    for (int at = 0; at < count; ++at) to[at] += from[at] * factor;
}

MK_SIMD uint32_t Integrate_Floats(float *__restrict to, const float *__restrict from, const float *__restrict velocity,
                                  int count, float step)
{
    uint32_t found = 0;
    for (int at = 0; at < count; ++at) {
        const float moved = from[at] + velocity[at] * step;
        to[at] = moved;
        found |= (std::bit_cast<uint32_t>(moved) & EXPONENT) == EXPONENT ? 1u : 0u;
    }
    return found;
}

MK_SIMD uint32_t Find_Invalid(const uint32_t *__restrict bits, int count)
{
    uint32_t found = 0;
    for (int at = 0; at < count; ++at) found |= (bits[at] & EXPONENT) == EXPONENT ? 1u : 0u;
    return found;
}

MK_SIMD void Transform_Floats(float *to, const float *from, int count, const Mat3DClass &transform)
{
    const Vector4 x = transform.Row[0];
    const Vector4 y = transform.Row[1];
    const Vector4 z = transform.Row[2];
#pragma GCC ivdep // each point is read before it is written
    for (int at = 0; at < count; ++at) {
        const float px = from[at * 3];
        const float py = from[at * 3 + 1];
        const float pz = from[at * 3 + 2];
        to[at * 3] = x.x * px + x.y * py + x.z * pz + x.w;
        to[at * 3 + 1] = y.x * px + y.y * py + y.z * pz + y.w;
        to[at * 3 + 2] = z.x * px + z.y * py + z.z * pz + z.w;
    }
}

} // namespace

namespace Particle
{

void Add_Vector(Vector3 *vectors, int count, const Vector3 &add)
{
    float pattern[PATTERN];
    for (int lane = 0; lane < PATTERN; ++lane) pattern[lane] = add[lane % 3];
    Add_Pattern(&vectors->x, count * 3, pattern);
}

void Add_Scaled(Vector3 *to, const Vector3 *from, int count, float factor)
{
    Add_Scaled_Floats(&to->x, &from->x, count * 3, factor);
}

bool Integrate(Vector3 *to, const Vector3 *from, const Vector3 *velocity, int count, float step)
{
    return Integrate_Floats(&to->x, &from->x, &velocity->x, count * 3, step) == 0;
}

bool Has_Invalid(const Vector3 *vectors, int count)
{
    return Find_Invalid(reinterpret_cast<const uint32_t *>(vectors), count * 3) != 0;
}

void Transform_Points(Vector3 *to, const Vector3 *from, int count, const Mat3DClass &transform)
{
    Transform_Floats(&to->x, &from->x, count, transform);
}

} // namespace Particle
