#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/WholeRegisters.h"

#include <bit>
#include <cstring>

namespace
{

using Particle::Change_In_Wide_Lanes;
using Particle::For_Whole_Registers;
using Particle::For_Wide_Lanes;
using Particle::WIDE_LANES;

/// What was infinite or no number. Each lane has its own bits, so that they stay in registers.
struct Faults
{
    MK_INLINE void Look_At(float value, int lane)
    {
        Bits[lane] |= std::bit_cast<uint32_t>(value - value); // of all other numbers that is 0
    }
    MK_INLINE bool Are_Any() const
    {
        uint32_t any = 0;
        for (int lane = 0; lane < WIDE_LANES; ++lane) any |= Bits[lane];
        return any != 0;
    }

    uint32_t Bits[WIDE_LANES] = {};
};

MK_SIMD void Add_To_All(float *values, int count, float add)
{
    Change_In_Wide_Lanes(values, count, [add](float value, int) MK_INLINE_LAMBDA { return value + add; });
}

MK_SIMD void Multiply_All(float *to, const float *from, int count, float factor)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) to[i] = from[i] * factor;
}

MK_INLINE void Add_To_Component(float *values, int count, float add, Faults &faults)
{
    Change_In_Wide_Lanes(values, count, [&](float value, int lane) MK_INLINE_LAMBDA {
        const float sum = value + add;
        faults.Look_At(sum, lane);
        return sum;
    });
}
MK_SIMD bool Add_To_Vectors(const vrMKPVectors &vectors, int count, const Vector3 &add)
{
    Faults faults;
    Add_To_Component(vectors.X, count, add.x, faults);
    Add_To_Component(vectors.Y, count, add.y, faults);
    Add_To_Component(vectors.Z, count, add.z, faults);
    return !faults.Are_Any();
}

MK_INLINE void Integrate_Component(float *__restrict to, const float *__restrict from, const float *__restrict velocity,
                                   int count, float step, Faults &faults)
{
    For_Wide_Lanes(count, [&](int i, int lane) MK_INLINE_LAMBDA {
        const float moved = from[i] + velocity[i] * step;
        to[i] = moved;
        faults.Look_At(moved, lane);
    });
}
MK_SIMD bool Integrate_Vectors(const vrMKPVectors &to, const vrMKPConstVectors &from, const vrMKPConstVectors &velocity,
                               int count, float step)
{
    Faults faults;
    Integrate_Component(to.X, from.X, velocity.X, count, step, faults);
    Integrate_Component(to.Y, from.Y, velocity.Y, count, step, faults);
    Integrate_Component(to.Z, from.Z, velocity.Z, count, step, faults);
    return !faults.Are_Any();
}

MK_INLINE void Look_At_Component(const float *__restrict values, int count, Faults &faults)
{
    For_Wide_Lanes(count, [&](int i, int lane) MK_INLINE_LAMBDA { faults.Look_At(values[i], lane); });
}
MK_SIMD bool Are_Valid(const vrMKPConstVectors &vectors, int count)
{
    Faults faults;
    Look_At_Component(vectors.X, count, faults);
    Look_At_Component(vectors.Y, count, faults);
    Look_At_Component(vectors.Z, count, faults);
    return !faults.Are_Any();
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

void Add_Float(float *values, int count, float add)
{
    Add_To_All(values, count, add);
}

void Multiply(float *to, const float *from, int count, float factor)
{
    Multiply_All(to, from, count, factor);
}

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
    return Add_To_Vectors(vectors, count, add);
}

bool Integrate(const vrMKPVectors &to, const vrMKPConstVectors &from, const vrMKPConstVectors &velocity, int count,
               float step)
{
    return Integrate_Vectors(to, from, velocity, count, step);
}

bool Has_Invalid(const vrMKPConstVectors &vectors, int count)
{
    return !Are_Valid(vectors, count);
}

void Transform_Points(const vrMKPVectors &to, const vrMKPConstVectors &from, int count, const Mat3DClass &transform)
{
    Transform_Floats(to, from, count, transform);
}

} // namespace Particle
