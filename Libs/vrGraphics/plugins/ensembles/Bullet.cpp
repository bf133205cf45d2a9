#include "vrGraphics/plugins/ensembles/Bullet.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/particle/vrWorld.h"

#include <algorithm>
#include <cmath>

namespace
{

// Indices into these are a file format.
constexpr const char *TRAJECTORY_TYPES[] = {"Linear", "Arc", "Ground"};
constexpr const char *TRACK_MODES[] = {"Normal", "Homing"};

using Particle::Dot;
using Particle::Minus;
using Particle::Planes;
using Particle::Select_Bits;

constexpr int BLOCK = Planes::BLOCK;

/// a (1 - t) + b t
MK_INLINE Vector3 Mix(const Vector3 &a, const Vector3 &b, float t)
{
    const float rest = 1.0f - t;
    return {a.x * rest + b.x * t, a.y * rest + b.y * t, a.z * rest + b.z * t};
}

/// What the loops read of a block, a value or a vector each.
struct Shots
{
    vrMKPConstVectors Origins; ///< in the world, as the targets
    vrMKPConstVectors Targets;
    float Times[BLOCK]; ///< of the way, at most 1
    float Spreads[BLOCK];
    const float *Ages;
    const float *Durations;
    const uint32_t *IDs;
};

struct Course
{
    float Gravity;
    float HoverHeight;
};

template <int Trajectory>
MK_INLINE Vector3 Place_On_Way(const Shots &shots, int i, const Course &course)
{
    const Vector3 origin = shots.Origins[i];
    const Vector3 target = shots.Targets[i];
    const float time = shots.Times[i];
    if constexpr (Trajectory == vrMKPBulletModifier::TRAJECTORY_LINEAR) {
        return Mix(origin, target, time);
    } else {
        const Vector3 delta = Minus(target, origin);
        const Vector3 unit = Particle::Unit(delta);
        const float length = std::sqrt(Dot(delta, delta));
        const Vector3 way(unit.x * length * time, unit.y * length * time, unit.z * length * time);
        float height = course.HoverHeight;
        if constexpr (Trajectory == vrMKPBulletModifier::TRAJECTORY_ARC) {
            const float duration = shots.Durations[i] > 0.0f ? shots.Durations[i] : 0.01f;
            const float age = shots.Ages[i];
            const float rise = course.Gravity * duration * 0.5f * age - course.Gravity * age * age * 0.5f;
            height = origin.z + rise + way.z;
        }
        return {origin.x + way.x, origin.y + way.y, height};
    }
}

/// The places without the spread.
template <int Trajectory>
MK_SIMD void Place_On_Ways(Planes &__restrict places, const Shots &shots, int count, Course course)
{
    Particle::For_Whole_Registers(
        count, [&](int i) MK_INLINE_LAMBDA { places.Put(i, Place_On_Way<Trajectory>(shots, i, course)); });
}

/// Six bits of an ID as a value in [-1, 1]. The second and the third of the three share two bits.
MK_INLINE float Signed_Six_Bits(uint32_t id, int low)
{
    return static_cast<float>(static_cast<int32_t>(id >> low & 63)) * 0.015873017f * 2.0f - 1.0f;
}

/// Lets them stray across their way, or level; an arc's is the way that they have come.
template <bool Level, bool Arc>
MK_SIMD void Stray(Planes &__restrict places, const Shots &shots, int count)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) {
        const Vector3 place = places[i];
        const Vector3 origin = shots.Origins[i];
        const Vector3 way = Particle::Unit(Minus(Arc ? place : shots.Targets[i], origin));
        const Vector3 across = Level ? Vector3(0.0f, 0.0f, 1.0f) : way;
        const float spread = shots.Spreads[i];
        const uint32_t id = shots.IDs[i];
        const Vector3 offset(Signed_Six_Bits(id, 0) * spread, Signed_Six_Bits(id, 6) * spread,
                             Signed_Six_Bits(id, 10) * spread);
        const float along = Dot(offset, across);
        const uint32_t strays = spread > 0.0f ? ~0u : 0u;
        places.Put(i, {Select_Bits(strays, place.x + (offset.x - across.x * along), place.x),
                       Select_Bits(strays, place.y + (offset.y - across.y * along), place.y),
                       Select_Bits(strays, place.z + (offset.z - across.z * along), place.z)});
    }
}

MK_SIMD bool Any_Spread(const float *__restrict spreads, int count)
{
    uint32_t any = 0;
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { any |= spreads[i] > 0.0f ? ~0u : 0u; });
    return any != 0;
}

MK_SIMD void Limit_Times(float *__restrict times, const float *__restrict from, int count)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { times[i] = 1.0f < from[i] ? 1.0f : from[i]; });
}

/// `to` may be one of the two.
MK_SIMD void Blend_In(vrMKPVectors to, vrMKPConstVectors own, vrMKPConstVectors places, const float *blends, int count)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) to.Put(i, Mix(own[i], places[i], blends[i]));
}

void Add_Ground(Planes &places, int count, const vrTerrain &terrain)
{
    for (int i = 0; i < count; ++i) places.Z[i] += terrain.Get_Height(places.X[i], places.Y[i]);
}

} // namespace

/// What all particles of one run share. The flight is in the world.
struct vrMKPBulletModifier::Flight
{
    const vrMKPRenderState &State;
    bool IsWorld;
    int Trajectory;
    bool IsHoming;
    bool SpreadsLevel; ///< and not across the way
    Course Shape;

    /// Puts the vectors into the world, for which they may take `room`.
    vrMKPConstVectors Map(const vrMKPConstVectors &from, int count, Planes &room) const
    {
        if (IsWorld) return from;
        Particle::Transform_Points(room, from, count, State.Transform);
        return room;
    }

    vrMKPConstVectors Get_Targets(const vrMKPConstVectors &atBirth, int count, Planes &room) const
    {
        if (!IsHoming) return Map(atBirth, count, room);
        Particle::Fill(room, State.HomingTarget, count);
        return room;
    }

    /// The places in the world.
    void Place(Planes &places, const Shots &shots, int count) const
    {
        switch (Trajectory) {
        case TRAJECTORY_LINEAR: Place_On_Ways<TRAJECTORY_LINEAR>(places, shots, count, Shape); break;
        case TRAJECTORY_GROUND: Place_On_Ways<TRAJECTORY_GROUND>(places, shots, count, Shape); break;
        default: Place_On_Ways<TRAJECTORY_ARC>(places, shots, count, Shape);
        }
        if (Any_Spread(shots.Spreads, count)) {
            const bool isArc = Trajectory == TRAJECTORY_ARC;
            const auto across = isArc ? Stray<false, true> : Stray<false, false>;
            (SpreadsLevel ? Stray<true, false> : across)(places, shots, count);
        }
        if (Trajectory == TRAJECTORY_GROUND && State.Terrain) Add_Ground(places, count, *State.Terrain);
    }
};

vrMKPBulletModifier::vrMKPBulletModifier()
{
    Trajectory = Parameters.Add_Enum(2, "Trajectory Types", TRAJECTORY_TYPES, 0,
                                     "WARNING:  Turrets are unable to aim to match the Arc setting of Bullet "
                                     "modifiers;\nInstead, put a Simple Projectile modifier on the Group.");
    Track = Parameters.Add_Enum(5, "Track Mode", TRACK_MODES, 0, "How the projectile tracks the target.");
    // The text breaks off there, and is kept.
    Spread = Parameters.Add_Float(0, "Spread", 0.0f, 0.0f, 250.0f,
                                  "Maximum distance variation from the target.\n0.0 will make the particles hi");
    KeyedSpread =
        Parameters.Add_Keyed_Float(7, "Keyed Spread", "Use to keyframe the spread over the bullet's lifetime.");
    KeyedSpread->Add_Key(0.0f, 0.0f);
    KeyedSpread->Add_Key(1.0f, 0.0f);
    Blend = Parameters.Add_Keyed_Float(1, "Blend", "Use to blend the bullet effect in and out.");
    Blend->Add_Key(0.0f, 1.0f);
    Blend->Add_Key(1.0f, 1.0f);
    Gravity =
        Parameters.Add_Float(3, "Gravity", 100.0f, 0.0f, 1000.0f, "The downward acceleration for Arc projectiles.");
    HoverHeight =
        Parameters.Add_Float(4, "Hover Height", 0.0f, 0.0f, 100.0f, "Amount Ground projectiles hover above ground.");
    UseKeyedSpread = Parameters.Add_Bool(8, "Use Keyed Spread", false, "Do we keyframed spread?");
    SpreadFromTargetRadius = Parameters.Add_Bool(6, "Spread From Target Radius", false,
                                                 "Do we use a spread value passed in from the game logic?");
    UseXYSpread = Parameters.Add_Bool(9, "Use XY Spread", false, "Apply spread in the horizontal X-Y plane?");
}

void vrMKPBulletModifier::Modifier_Post_Load(vrMKPRenderState &state) const
{
    state.IsProjectile = true;
    if (Track->Get_Value() == TRACK_HOMING) state.IsHoming = true;
}

vrMKPBulletModifier::Flight vrMKPBulletModifier::Get_Flight(const vrMKPBuffer &buffer) const
{
    return {*buffer.State,
            buffer.Is_World(),
            Trajectory->Get_Value(),
            Track->Get_Value() == TRACK_HOMING,
            UseXYSpread->Get_Value(),
            {Gravity->Get_Value(), HoverHeight->Get_Value()}};
}

void vrMKPBulletModifier::Evaluate_Spreads(const vrMKPBuffer &buffer, const float *times, int count,
                                           float *spreads) const
{
    if (UseKeyedSpread->Get_Value()) return KeyedSpread->Evaluate_Many(times, count, false, spreads);
    const float base = SpreadFromTargetRadius->Get_Value() ? buffer.State->Get_Target_Radius() : Spread->Get_Value();
    Particle::Multiply(spreads, times, count, base);
}

void vrMKPBulletModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Flight flight = Get_Flight(buffer);
    Shots shots;
    Planes origins, targets, own, places;
    float blends[BLOCK];
    for (int at = 0; at < span.Count; at += BLOCK) {
        const int first = span.First + at;
        const int count = std::min(BLOCK, span.Count - at);
        const vrMKPVectors positions = buffer.Position + first;
        shots.Ages = buffer.Age + first;
        shots.Durations = buffer.ProjectileFlightDuration + first;
        shots.IDs = buffer.ID + first;
        Limit_Times(shots.Times, buffer.Time + first, count);
        shots.Origins = flight.Map(buffer.ProjectileStartingPosition + first, count, origins);
        shots.Targets = flight.Get_Targets(buffer.ProjectileTargetPosition + first, count, targets);
        Evaluate_Spreads(buffer, shots.Times, count, shots.Spreads);
        Blend->Evaluate_Many(shots.Times, count, false, blends);
        flight.Place(places, shots, count);
        const vrMKPVectors results = buffer.MayHaveStopped ? vrMKPVectors(places) : positions;
        const vrMKPConstVectors mapped = flight.Map(positions, count, own);
        if (flight.IsWorld) {
            Blend_In(results, mapped, places, blends, count);
        } else {
            Blend_In(places, mapped, places, blends, count);
            Particle::Transform_Points(results, places, count, buffer.State->InverseTransform);
        }
        if (!buffer.MayHaveStopped) continue;
        for (int i = 0; i < count; ++i)
            if (!(buffer.Flags[first + i] & PARTICLE_STOPPED)) positions.Put(i, results[i]);
    }
}
