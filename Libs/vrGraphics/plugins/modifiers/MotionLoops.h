#pragma once

/// What the loops of the modifiers that move particles share. Private to their sources.
///
/// A loop is a free function marked MK_SIMD that hands a kernel, an inlined lambda over the values of one particle, to
/// `Push` or `Move`. The kernel answers whether it touched the particle, and those at rest are left alone, by selects
/// and without a branch. Each loop yields whether something that it wrote is infinite or no number.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <bit>

#define MK_KERNEL __attribute__((always_inline))

namespace Motion
{

/// Particles at a time for what an array on the stack holds between two loops.
constexpr int BLOCK = 256;

constexpr const char *INVALID_VELOCITY = "buffer->Velocity[where].Is_Valid()";

/// What a modifier keeps for the buffer, or null.
template <typename Data>
Data *Get_Data(const vrMKPBuffer &buffer, int index)
{
    const bool exists = index >= 0 && static_cast<size_t>(index) < buffer.ModifierData.size();
    return exists ? MK_Dynamic_Cast<Data>(buffer.ModifierData[static_cast<size_t>(index)].Get()) : nullptr;
}

/// The channels of one run of slots.
struct Run
{
    Run(vrMKPBuffer &buffer, vrMKPSpan span)
        : Position(buffer.Position + span.First), Velocity(buffer.Velocity + span.First),
          Flags(buffer.Flags + span.First), ID(buffer.ID + span.First), Time(buffer.Time + span.First),
          Count(span.Count), MayHaveStopped(buffer.MayHaveStopped)
    {
    }

    Vector3 *Position;
    Vector3 *Velocity;
    const uint32_t *Flags;
    const uint32_t *ID;
    float *Time;
    int Count;
    bool MayHaveStopped;
};

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
/// 0, or not where a component is infinite or no number: of those alone x - x isn't 0. As bits, since a truth value has
/// the width of a byte, by which the compiler would choose how many particles a loop takes at once.
MK_INLINE uint32_t Invalid_Bits(const Vector3 &vector)
{
    return std::bit_cast<uint32_t>((vector.x - vector.x) + (vector.y - vector.y) + (vector.z - vector.z));
}
MK_INLINE bool Is_Invalid(const Vector3 &vector)
{
    return Invalid_Bits(vector) != 0;
}

/// `a` where the mask is all ones and `b` where it is 0. On bits, since the compiler makes a branch around the store of
/// a value that may be the old one, and then can't take the loop.
MK_INLINE float Select_Bits(uint32_t mask, float a, float b)
{
    return std::bit_cast<float>((std::bit_cast<uint32_t>(a) & mask) | (std::bit_cast<uint32_t>(b) & ~mask));
}
MK_INLINE void Store(float *at, uint32_t mask, const Vector3 &fresh, const Vector3 &old)
{
    at[0] = Select_Bits(mask, fresh.x, old.x);
    at[1] = Select_Bits(mask, fresh.y, old.y);
    at[2] = Select_Bits(mask, fresh.z, old.z);
}

/// The flags of a block in which nobody is at rest. One masked loop does for both cases: without the mask the compiler
/// groups the three components in a way that repeats each square root and division for them.
inline constexpr uint32_t NOBODY_RESTS[BLOCK] = {};

template <bool WritesPosition, typename Kernel>
MK_INLINE uint32_t Loop_Block(const Run &run, int first, int count, const Kernel &kernel)
{
    float *__restrict positions = &run.Position->x;
    float *__restrict velocities = &run.Velocity->x;
    const uint32_t *__restrict flags = run.MayHaveStopped ? run.Flags + first : NOBODY_RESTS;
    uint32_t invalid = 0;
#pragma GCC ivdep
    for (int i = first; i < first + count; ++i) {
        const Vector3 oldPosition(positions[3 * i], positions[3 * i + 1], positions[3 * i + 2]);
        const Vector3 oldVelocity(velocities[3 * i], velocities[3 * i + 1], velocities[3 * i + 2]);
        Vector3 position = oldPosition;
        Vector3 velocity = oldVelocity;
        const uint32_t touched = kernel(i, position, velocity) ? ~0u : 0u;
        const uint32_t mask = touched & ((flags[i - first] >> 1 & 1u) - 1u); // PARTICLE_STOPPED
        Store(velocities + 3 * i, mask, velocity, oldVelocity);
        if constexpr (WritesPosition) Store(positions + 3 * i, mask, position, oldPosition);
        invalid |= mask & Invalid_Bits(velocity);
    }
    return invalid;
}
template <bool WritesPosition, typename Kernel>
MK_INLINE bool Loop(const Run &run, const Kernel &kernel)
{
    uint32_t invalid = 0;
    for (int first = 0; first < run.Count; first += BLOCK)
        invalid |=
            Loop_Block<WritesPosition>(run, first, run.Count - first < BLOCK ? run.Count - first : BLOCK, kernel);
    return invalid != 0;
}

/// Velocities: `kernel(i, position, velocity)` changes the velocity.
template <typename Kernel>
MK_INLINE bool Push(const Run &run, const Kernel &kernel)
{
    return Loop<false>(run, kernel);
}

/// Positions too.
template <typename Kernel>
MK_INLINE bool Move(const Run &run, const Kernel &kernel)
{
    return Loop<true>(run, kernel);
}

} // namespace Motion
