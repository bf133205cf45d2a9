#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/WholeRegisters.h"

#include <bit>
#include <cstring>

namespace
{

using Particle::Change_Whole_Registers;
using Particle::For_Whole_Registers;

/// What is infinite or no number less itself isn't 0, and all else is.
MK_INLINE uint32_t Invalid_Bits(float value)
{
    return std::bit_cast<uint32_t>(value - value);
}

MK_SIMD uint32_t Add_To_Floats(float *x, float *y, float *z, int count, const Vector3 &add)
{
    uint32_t invalid = 0;
    const auto change = [&](float *values, float addend) MK_INLINE_LAMBDA {
        Change_Whole_Registers(values, count, [&](float value) MK_INLINE_LAMBDA {
            const float sum = value + addend;
            invalid |= Invalid_Bits(sum);
            return sum;
        });
    };
    change(x, add.x);
    change(y, add.y);
    change(z, add.z);
    return invalid;
}

MK_SIMD uint32_t Integrate_Floats(float *__restrict to, const float *__restrict from, const float *__restrict velocity,
                                  int count, float step)
{
    uint32_t invalid = 0;
    For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const float moved = from[i] + velocity[i] * step;
        to[i] = moved;
        invalid |= Invalid_Bits(moved);
    });
    return invalid;
}

MK_SIMD uint32_t Find_Invalid(const float *__restrict values, int count)
{
    uint32_t invalid = 0;
    For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { invalid |= Invalid_Bits(values[i]); });
    return invalid;
}

MK_SIMD void Fill_Floats(float *__restrict to, float value, int count)
{
    For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { to[i] = value; });
}

MK_SIMD void Transform_Floats(const vrMKPVectors &to, const vrMKPConstVectors &from, int count,
                              const Mat3DClass &transform)
{
    const Vector4 x = transform.Row[0];
    const Vector4 y = transform.Row[1];
    const Vector4 z = transform.Row[2];
    const vrMKPVectors target = to;
    const vrMKPConstVectors source = from;
#pragma GCC ivdep // each point is read before it is written
    for (int i = 0; i < count; ++i) {
        const float px = source.X[i];
        const float py = source.Y[i];
        const float pz = source.Z[i];
        target.X[i] = x.x * px + x.y * py + x.z * pz + x.w;
        target.Y[i] = y.x * px + y.y * py + y.z * pz + y.w;
        target.Z[i] = z.x * px + z.y * py + z.z * pz + z.w;
    }
}

} // namespace

namespace Particle
{

void Copy(const vrMKPVectors &to, const vrMKPConstVectors &from, int count)
{
    const size_t bytes = static_cast<size_t>(count) * sizeof(float);
    std::memcpy(to.X, from.X, bytes);
    std::memcpy(to.Y, from.Y, bytes);
    std::memcpy(to.Z, from.Z, bytes);
}

void Fill(const vrMKPVectors &to, const Vector3 &vector, int count)
{
    Fill_Floats(to.X, vector.x, count);
    Fill_Floats(to.Y, vector.y, count);
    Fill_Floats(to.Z, vector.z, count);
}

bool Add_Vector(const vrMKPVectors &vectors, int count, const Vector3 &add)
{
    return Add_To_Floats(vectors.X, vectors.Y, vectors.Z, count, add) == 0;
}

bool Integrate(const vrMKPVectors &to, const vrMKPConstVectors &from, const vrMKPConstVectors &velocity, int count,
               float step)
{
    const uint32_t x = Integrate_Floats(to.X, from.X, velocity.X, count, step);
    const uint32_t y = Integrate_Floats(to.Y, from.Y, velocity.Y, count, step);
    const uint32_t z = Integrate_Floats(to.Z, from.Z, velocity.Z, count, step);
    return (x | y | z) == 0;
}

bool Has_Invalid(const vrMKPConstVectors &vectors, int count)
{
    return (Find_Invalid(vectors.X, count) | Find_Invalid(vectors.Y, count) | Find_Invalid(vectors.Z, count)) != 0;
}

void Transform_Points(const vrMKPVectors &to, const vrMKPConstVectors &from, int count, const Mat3DClass &transform)
{
    Transform_Floats(to, from, count, transform);
}

} // namespace Particle
