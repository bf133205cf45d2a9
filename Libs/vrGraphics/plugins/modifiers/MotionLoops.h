#pragma once

/// What the loops of the modifiers that move particles share. Private to their sources.
///
/// A loop is a free function marked MK_SIMD that hands a kernel, an inlined lambda over the values of one particle, to
/// `Accelerate`, `Steer`, `Push` or `Move`. The kernel answers, as a mask, whether it touched the particle, and those
/// at rest are left alone, by selects and without a branch. Each loop yields whether something that it wrote is
/// infinite or no number.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

namespace Motion
{

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

    vrMKPVectors Position;
    vrMKPVectors Velocity;
    const uint32_t *Flags;
    const uint32_t *ID;
    float *Time;
    int Count;
    bool MayHaveStopped;
};

using Particle::As_Mask;
using Particle::Cross;
using Particle::Dot;
using Particle::Invalid_Bits;
using Particle::Map;
using Particle::Minus;
using Particle::Plus;
using Particle::Select_Bits;
using Particle::Times;
using Particle::Turn;
MK_INLINE bool Is_Invalid(const Vector3 &vector)
{
    return Invalid_Bits(vector) != 0;
}

/// What a kernel answers: all ones where it touched the particle, or else 0. Truth values are for single comparisons
/// alone, since they have the width of a byte, by which the compiler would choose how many particles a loop takes at
/// once.
constexpr uint32_t TOUCHED = ~0u;

/// Without those at rest.
template <bool MayRest>
MK_INLINE uint32_t Mask(uint32_t touched, const uint32_t *flags)
{
    return MayRest ? touched & ((*flags >> 1 & 1u) - 1u) : touched; // PARTICLE_STOPPED
}

/// What a kernel reads besides the velocity, and what it writes.
enum LoopForm
{
    VELOCITY_ALONE,
    READS_POSITION,
    WRITES_POSITION
};

/// Bits that aren't 0 where a velocity is infinite or no number.
template <LoopForm Form, bool MayRest, typename Kernel>
MK_INLINE uint32_t Run_Kernel(const Run &run, const Kernel &kernel)
{
    const vrMKPVectors positions = run.Position;
    const vrMKPVectors velocities = run.Velocity;
    const uint32_t *const flags = run.Flags;
    const int count = run.Count;
    uint32_t invalid = 0;
#pragma GCC ivdep // each particle is read before it is written
    for (int i = 0; i < count; ++i) {
        const Vector3 oldPosition = Form == VELOCITY_ALONE ? Vector3(0.0f) : positions[i];
        const Vector3 oldVelocity = velocities[i];
        Vector3 position = oldPosition;
        Vector3 velocity = oldVelocity;
        const uint32_t mask = Mask<MayRest>(kernel(i, position, velocity), flags + i);
        const Vector3 newVelocity = Select_Bits(mask, velocity, oldVelocity);
        invalid |= Invalid_Bits(newVelocity);
        velocities.Put(i, newVelocity);
        if constexpr (Form == WRITES_POSITION) positions.Put(i, Select_Bits(mask, position, oldPosition));
    }
    return invalid;
}

template <LoopForm Form, typename Kernel>
MK_INLINE uint32_t Run_All(const Run &run, const Kernel &kernel)
{
    return run.MayHaveStopped ? Run_Kernel<Form, true>(run, kernel) : Run_Kernel<Form, false>(run, kernel);
}

/// Whether one that the kernel touches has a velocity that is infinite or no number.
template <typename Kernel>
bool Has_Invalid(const Run &run, const Kernel &kernel)
{
    for (int i = 0; i < run.Count; ++i) {
        if (!Is_Invalid(run.Velocity[i])) continue;
        Vector3 position = run.Position[i];
        Vector3 velocity = run.Velocity[i];
        const uint32_t touched = kernel(i, position, velocity);
        if ((run.MayHaveStopped ? Mask<true>(touched, run.Flags + i) : touched) != 0) return true;
    }
    return false;
}

template <LoopForm Form, typename Kernel>
MK_INLINE bool Loop(const Run &run, const Kernel &kernel)
{
    return Run_All<Form>(run, kernel) != 0 && Has_Invalid(run, kernel);
}

/// Velocities alone: `kernel(i, position, velocity)` changes the velocity and mustn't look at the position.
template <typename Kernel>
MK_INLINE bool Steer(const Run &run, const Kernel &kernel)
{
    return Loop<VELOCITY_ALONE>(run, kernel);
}

/// Velocities by the positions too.
template <typename Kernel>
MK_INLINE bool Push(const Run &run, const Kernel &kernel)
{
    return Loop<READS_POSITION>(run, kernel);
}

/// Positions too.
template <typename Kernel>
MK_INLINE bool Move(const Run &run, const Kernel &kernel)
{
    return Loop<WRITES_POSITION>(run, kernel);
}

/// What was infinite or no number.
struct Faults
{
    bool Push = false; ///< of what was added to somebody; those that nobody added are none
    bool Velocity = false;
};

/// Looks closer at what `Accelerate` did.
template <typename Kernel>
Faults Find_Faults(const Run &run, const Kernel &kernel)
{
    Faults faults;
    for (int i = 0; i < run.Count; ++i) {
        Vector3 push(0.0f);
        const uint32_t touched = kernel(i, run.Position[i], push);
        if ((run.MayHaveStopped ? Mask<true>(touched, run.Flags + i) : touched) == 0) continue;
        faults.Push |= Is_Invalid(push);
        faults.Velocity |= Is_Invalid(run.Velocity[i]);
    }
    return faults;
}

/// Adds to the velocities what `kernel(i, position, push)` writes to the push.
template <typename Kernel>
MK_INLINE Faults Accelerate(const Run &run, const Kernel &kernel)
{
    const auto add = [&kernel](int i, const Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        Vector3 push(0.0f);
        const uint32_t touched = kernel(i, position, push);
        velocity = Plus(velocity, push);
        return touched;
    };
    return Run_All<READS_POSITION>(run, add) != 0 ? Find_Faults(run, kernel) : Faults();
}

} // namespace Motion
