#include "vrGraphics/plugins/spawners/ParticleFilling.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrWorld.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/RotationPath.h"

#include <glm/geometric.hpp>

#include <cmath>

namespace
{

using Particle::Invalid_Bits;
using Particle::Map;
using Particle::Plus;
using Particle::Times;

void Scale(const vrMKPVectors &vectors, int count, float factor)
{
    for (float *values : {vectors.X, vectors.Y, vectors.Z}) Particle::Multiply(values, values, count, factor);
}

MK_SIMD void Ages_Along_The_Way(float *__restrict ages, const float *__restrict fractions, int count, float frameTime)
{
    for (int i = 0; i < count; ++i) ages[i] = (1.0f - fractions[i]) * frameTime;
}

/// The newborns of a block and what moves them from where they begin.
struct Departures
{
    vrMKPConstVectors Origins;
    vrMKPVectors Copies; ///< of the origins
    vrMKPVectors Positions;
    vrMKPVectors Velocities;
    const float *Fractions;
    const float *Ages;
    int Count;
    Mat3DClass Turn; ///< for the velocities
    Vector3 Way{NOTHING};
    Vector3 Inherited{NOTHING};

    static constexpr float NOTHING = -0.0f; ///< leaves what it's added to as it is, which 0 doesn't
};

template <bool Turns, bool Moves>
MK_INLINE void Depart_In_Form(const Departures &source)
{
    const Departures d = source;
    const Vector4 x = d.Turn.Row[0];
    const Vector4 y = d.Turn.Row[1];
    const Vector4 z = d.Turn.Row[2];
#pragma GCC ivdep
    for (int i = 0; i < d.Count; ++i) {
        const Vector3 origin = d.Origins[i];
        const Vector3 drawn = d.Velocities[i];
        const float fraction = d.Fractions[i];
        Vector3 velocity = drawn;
        if constexpr (Turns)
            velocity = {x.x * drawn.x + x.y * drawn.y + x.z * drawn.z + 0.0f,
                        y.x * drawn.x + y.y * drawn.y + y.z * drawn.z + 0.0f,
                        z.x * drawn.x + z.y * drawn.y + z.z * drawn.z + 0.0f};
        velocity = Plus(velocity, d.Inherited);
        Vector3 position = Plus(origin, Times(d.Way, fraction));
        if constexpr (Moves) position = Plus(position, Times(velocity, d.Ages[i]));
        d.Copies.Put(i, origin);
        d.Velocities.Put(i, velocity);
        d.Positions.Put(i, position);
    }
}
MK_SIMD void Depart(const Departures &departures, bool turns, bool moves)
{
    if (turns && moves) return Depart_In_Form<true, true>(departures);
    if (turns) return Depart_In_Form<true, false>(departures);
    if (moves) return Depart_In_Form<false, true>(departures);
    return Depart_In_Form<false, false>(departures);
}

/// What a slot gets besides its place, its velocity and its age.
struct Constants
{
    vrMKPVectors Targets;
    float *MaxAges;
    float *Times;
    float *FlightDurations;
    uint32_t *Flags;
    uint32_t *Numbers;
    Vector2 *Sizes;
    uint32_t *Rotations;
    Vector3 Target;
    float TargetRadius;
    uint32_t FirstNumber;
};

MK_SIMD void Write_Constants(const Constants &source, int count)
{
    const Constants c = source;
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) {
        c.Targets.Put(i, c.Target);
        c.MaxAges[i] = -1.0f; // the stomper's to give
        c.Times[i] = 0.0f;
        c.FlightDurations[i] = c.TargetRadius;
        c.Flags[i] = 0;
        c.Numbers[i] = c.FirstNumber + static_cast<uint32_t>(i);
        c.Sizes[i] = Vector2(1.0f);
        c.Rotations[i] = 0;
    }
}

void Write_Constants(vrMKPBuffer &buffer, vrMKPSpan block)
{
    const vrMKPRenderState &state = *buffer.State;
    const int first = block.First;
    Write_Constants(Constants{buffer.ProjectileTargetPosition + first, buffer.MaxAge + first, buffer.Time + first,
                              buffer.ProjectileFlightDuration + first, buffer.Flags + first, buffer.Number + first,
                              buffer.Size + first, buffer.Rotation + first, state.TargetPosition,
                              state.Get_Target_Radius(), buffer.NextSerial},
                    block.Count);
    buffer.NextSerial += static_cast<uint32_t>(block.Count);
}

/// What to make of newborns as they stand.
struct Measures
{
    uint32_t InvalidPositions = 0; ///< not 0 where one is infinite or no number
    uint32_t InvalidVelocities = 0;
};

/// Writes how much nearer to the camera than `base`, the square of a distance, each particle is, by its square.
template <bool Maps>
MK_INLINE Measures Measure_In_Form(float *relative, vrMKPConstVectors positions, vrMKPConstVectors velocities,
                                   int count, const Mat3DClass &toWorld, const Vector3 &viewer, float base)
{
    const Mat3DClass map = toWorld;
    const Vector3 camera = viewer;
    Measures measures;
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) {
        const Vector3 position = positions[i];
        relative[i] = base - Particle::Distance_Squared(Maps ? Map(map, position) : position, camera);
        measures.InvalidPositions |= Invalid_Bits(position);
        measures.InvalidVelocities |= Invalid_Bits(velocities[i]);
    }
    return measures;
}
MK_SIMD Measures Measure(float *relative, vrMKPConstVectors positions, vrMKPConstVectors velocities, int count,
                         const Mat3DClass &toWorld, const Vector3 &camera, float base)
{
    return Measure_In_Form<true>(relative, positions, velocities, count, toWorld, camera, base);
}
MK_SIMD Measures Measure(float *relative, vrMKPConstVectors positions, vrMKPConstVectors velocities, int count,
                         const Vector3 &camera, float base)
{
    return Measure_In_Form<false>(relative, positions, velocities, count, {}, camera, base);
}

Mat3DClass Turn_Of(Mat3DClass transform)
{
    transform.Set_Translation(Vector3(0.0f));
    return transform;
}

} // namespace

void vrMKPFilling::Begin(const vrMKPBuffer &buffer)
{
    const vrMKPRenderState &state = *buffer.State;
    IsWorld = buffer.Is_World();
    SnapsToTerrain = Rules.TerrainSnap && state.Terrain != nullptr;
    Progress = {};
    Progress.Remaining = Births.Span;
    Progress.Next = LastTime = Births.FirstTime;
    ArePositionsValid = AreVelocitiesValid = true;
    if (!IsWorld) return;

    const float total = Births.Lead + Births.Span;
    Progress.Fraction = total != 0.0f ? Particle::Clamp_01(Births.Lead / total) : 1.0f;
    Progress.FractionStep = total != 0.0f ? Births.ClusterStep / total : 0.0f;
    Way = Transform->Get_Translation() - PreviousTransform->Get_Translation();
    if (Rules.InheritVelocity) Inherited = Get_Inherited_Velocity(state);
}

Vector3 vrMKPFilling::Get_Inherited_Velocity(const vrMKPRenderState &state) const
{
    const Vector3 velocity = state.FrameTime != 0.0f ? Way / state.FrameTime : Vector3(0.0f);
    MK_ASSERT(Is_Valid(velocity), "emitter_velocity.Is_Valid()");
    Vector3 scaled = velocity * Rules.InheritedVelocityScale;
    const float speed = glm::length(scaled);
    if (speed > Rules.MaxInheritSpeed) scaled *= Rules.MaxInheritSpeed / speed;
    MK_ASSERT(Is_Valid(scaled), "scaled_emitter_velocity.Is_Valid()");
    return scaled;
}

void vrMKPFilling::Finish(vrMKPBuffer &buffer, vrMKPSpan block)
{
    const vrMKPRenderState &state = *buffer.State;
    float fractions[BLOCK];
    Run_Clock(buffer.Age + block.First, fractions, block.Count);
    const vrMKPVectors velocities = buffer.Velocity + block.First;
    if (Rules.VelocityFactor != 1.0f) Scale(velocities, block.Count, Rules.VelocityFactor);
    if (IsWorld)
        Place_World(buffer, block, fractions);
    else
        Place_Local(buffer, block, fractions);
    Write_Constants(buffer, block);

    const Vector3 camera = state.Camera.Get_Translation();
    const float base = Particle::Distance_Squared(camera, state.Get_Position());
    float *relative = buffer.SortingRelativeToGroup + block.First;
    const vrMKPConstVectors positions = buffer.Position + block.First;
    const Measures measures = IsWorld ? Measure(relative, positions, velocities, block.Count, camera, base)
                                      : Measure(relative, positions, velocities, block.Count, *Transform, camera, base);
    ArePositionsValid &= measures.InvalidPositions == 0;
    AreVelocitiesValid &= measures.InvalidVelocities == 0;
}

void vrMKPFilling::End(vrMKPBuffer &buffer) const
{
    buffer.LastSpawnTime = LastTime;
    buffer.SpawnInterval = Births.ClusterStep;
    buffer.ClusterSize = Births.ClusterSize;
    MK_ASSERT(ArePositionsValid, "position.Is_Valid()");
    MK_ASSERT(AreVelocitiesValid, "velocity.Is_Valid()");
}

void vrMKPFilling::Run_Clock(float *__restrict ages, float *__restrict fractions, int count)
{
    Clock clock = Progress;
    for (int i = 0; i < count; ++i) {
        ages[i] = clock.Remaining;
        fractions[i] = clock.Fraction;
        LastTime = clock.Next;
        if (++clock.InCluster < Births.ClusterSize) continue;
        clock.InCluster = 0;
        clock.Remaining -= Births.ClusterStep;
        clock.Next += Births.ClusterStep;
        clock.Fraction += clock.FractionStep;
    }
    Progress = clock;
}

void vrMKPFilling::Place_Local(vrMKPBuffer &buffer, vrMKPSpan block, const float *fractions) const
{
    const bool turns = !Rules.VelocityInLocalSpace;
    Depart({.Origins = buffer.ProjectileStartingPosition + block.First,
            .Copies = buffer.PreviousPosition + block.First,
            .Positions = buffer.Position + block.First,
            .Velocities = buffer.Velocity + block.First,
            .Fractions = fractions,
            .Ages = buffer.Age + block.First,
            .Count = block.Count,
            .Turn = turns ? Turn_Of(*Transform) : Mat3DClass()},
           turns, !Rules.DistanceAsTime);
}

void vrMKPFilling::Place_World(vrMKPBuffer &buffer, vrMKPSpan block, const float *fractions) const
{
    const vrMKPRenderState &state = *buffer.State;
    const int count = block.Count;
    const vrMKPVectors locals = buffer.ProjectileStartingPosition + block.First;
    const vrMKPVectors origins = buffer.PreviousPosition + block.First;
    const vrMKPVectors positions = buffer.Position + block.First;
    const vrMKPVectors velocities = buffer.Velocity + block.First;
    float *ages = buffer.Age + block.First;

    Particle::Transform_Points(origins, locals, count, *PreviousTransform);
    if (SnapsToTerrain)
        for (int i = 0; i < count; ++i) origins.Z[i] = Get_Snapped_Height(state, origins[i]);
    if (Rules.DistanceAsTime) Ages_Along_The_Way(ages, fractions, count, state.FrameTime);
    if (Rules.HiResRotate) {
        Turn_Along_The_Way(positions, velocities, locals, fractions, count);
        if (Rules.InheritVelocity) Particle::Add_Vector(velocities, count, Inherited);
        for (int i = 0; i < count; ++i) positions.Put(i, Plus(positions[i], Times(velocities[i], ages[i])));
        Particle::Copy(locals, origins, count);
    } else {
        const bool turns = Rules.VelocityInLocalSpace;
        Departures departures{.Origins = origins,
                              .Copies = locals,
                              .Positions = positions,
                              .Velocities = velocities,
                              .Fractions = fractions,
                              .Ages = ages,
                              .Count = count,
                              .Turn = turns ? Turn_Of(*PreviousTransform) : Mat3DClass(),
                              .Way = Way};
        if (Rules.InheritVelocity) departures.Inherited = Inherited;
        Depart(departures, turns, true);
    }
    if (buffer.ScaleType == PARTICLE_SCALE_AT_SPAWN) {
        Scale(positions, count, state.PositionScale);
        Particle::Add_Vector(positions, count, state.PositionOffset);
        Scale(velocities, count, state.VelocityScale);
    }
}

void vrMKPFilling::Turn_Along_The_Way(const vrMKPVectors &positions, const vrMKPVectors &velocities,
                                      const vrMKPConstVectors &locals, const float *fractions, int count) const
{
    const RotationPath path(PreviousTransform->Get_Rotation(), Transform->Get_Rotation());
    const Vector3 start = PreviousTransform->Get_Translation();
    QuaternionClass rotations[BLOCK];
    path.At_Many(fractions, count, rotations);
    for (int i = 0; i < count; ++i) {
        const auto turn = Mat3DClass::From_Quaternion(rotations[i]);
        if (Rules.VelocityInLocalSpace) velocities.Put(i, turn.Rotate(velocities[i]));
        positions.Put(i, turn.Rotate(locals[i]) + (start + Way * fractions[i]));
    }
}

float vrMKPFilling::Get_Snapped_Height(const vrMKPRenderState &state, const Vector3 &worldPosition) const
{
    const float variation = std::abs(Rules.TerrainOffsetVariation);
    return state.Terrain->Get_Height(worldPosition.x, worldPosition.y) + Rules.TerrainOffset +
           state.Random.Get_Float(-variation, variation);
}

Vector3 vrMKPFilling::Snap_Local(const vrMKPBuffer &buffer, const Vector3 &position) const
{
    Vector3 inWorld = Transform->Transform(position);
    inWorld.z = Get_Snapped_Height(*buffer.State, inWorld);
    return InverseTransform->Transform(inWorld);
}
