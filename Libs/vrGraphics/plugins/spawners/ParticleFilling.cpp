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
using Particle::Turn;

void Scale(const vrMKPVectors &vectors, int count, float factor)
{
    for (float *values : {vectors.X, vectors.Y, vectors.Z}) Particle::Multiply(values, values, count, factor);
}

MK_SIMD void Ages_Along_The_Way(float *__restrict ages, const float *__restrict fractions, int count, float frameTime)
{
    for (int i = 0; i < count; ++i) ages[i] = (1.0f - fractions[i]) * frameTime;
}

/// What moves newborns from where they begin.
struct Departure
{
    Mat3DClass Place; ///< for the starts
    Mat3DClass Turn;  ///< for the velocities
    Vector3 Way{NOTHING};
    Vector3 Inherited{NOTHING};

    static constexpr float NOTHING = -0.0f; ///< leaves what it's added to as it is, which 0 doesn't
};

template <bool Places, bool Turns, bool Moves>
MK_INLINE void Depart_In_Form(vrMKPNewborns &newborns, int count, const Departure &source)
{
    const Departure d = source;
    const vrMKPVectors starts = newborns.Starts;
    const vrMKPVectors velocities = newborns.Velocities;
    const vrMKPVectors positions = newborns.Positions;
    const int whole = RandomLanes::Round_Up(count);
#pragma GCC ivdep
    for (int i = 0; i < whole; ++i) {
        const Vector3 start = Places ? Map(d.Place, starts[i]) : starts[i];
        Vector3 velocity = velocities[i];
        if constexpr (Turns) velocity = Plus(Turn(d.Turn, velocity), Vector3(0.0f));
        velocity = Plus(velocity, d.Inherited);
        Vector3 position = Plus(start, Times(d.Way, newborns.Fractions[i]));
        if constexpr (Moves) position = Plus(position, Times(velocity, newborns.Ages[i]));
        if constexpr (Places) starts.Put(i, start);
        velocities.Put(i, velocity);
        positions.Put(i, position);
    }
}
MK_SIMD void Depart(vrMKPNewborns &newborns, int count, const Departure &departure, bool turns, bool moves)
{
    if (turns && moves) return Depart_In_Form<false, true, true>(newborns, count, departure);
    if (turns) return Depart_In_Form<false, true, false>(newborns, count, departure);
    if (moves) return Depart_In_Form<false, false, true>(newborns, count, departure);
    return Depart_In_Form<false, false, false>(newborns, count, departure);
}
MK_SIMD void Place_And_Depart(vrMKPNewborns &newborns, int count, const Departure &departure, bool turns)
{
    if (turns) return Depart_In_Form<true, true, true>(newborns, count, departure);
    return Depart_In_Form<true, false, true>(newborns, count, departure);
}

/// The slots of newborns, and what they get besides places, velocities and ages.
struct Slots
{
    vrMKPVectors Starts;
    vrMKPVectors PreviousPositions;
    vrMKPVectors Positions;
    vrMKPVectors Targets;
    vrMKPVectors Velocities;
    float *Ages;
    float *MaxAges;
    float *Times;
    float *FlightDurations;
    uint32_t *Flags;
    uint32_t *IDs;
    uint32_t *Numbers;
    Vector2 *Sizes;
    uint32_t *Rotations;
    float *Relative; ///< how much nearer to the camera than `Base`, the square of a distance, by its square
    Vector3 Target;
    float TargetRadius;
    uint32_t FirstNumber;
    Mat3DClass ToWorld;
    Vector3 Camera;
    float Base;
};

/// What to make of newborns as they stand.
struct Measures
{
    uint32_t InvalidPositions = 0; ///< not 0 where one is infinite or no number
    uint32_t InvalidVelocities = 0;
};

template <bool Maps>
MK_INLINE Measures Write_In_Form(const vrMKPNewborns &newborns, int count, const Slots &slots)
{
    const Slots to = slots;
    Measures measures;
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) {
        const Vector3 start = newborns.Starts[i];
        const Vector3 position = newborns.Positions[i];
        const Vector3 velocity = newborns.Velocities[i];
        to.Starts.Put(i, start);
        to.PreviousPositions.Put(i, start);
        to.Positions.Put(i, position);
        to.Targets.Put(i, to.Target);
        to.Velocities.Put(i, velocity);
        to.Ages[i] = newborns.Ages[i];
        to.MaxAges[i] = -1.0f; // the stomper's to give
        to.Times[i] = 0.0f;
        to.FlightDurations[i] = to.TargetRadius;
        to.Flags[i] = 0;
        to.IDs[i] = newborns.IDs[i];
        to.Numbers[i] = to.FirstNumber + static_cast<uint32_t>(i);
        to.Sizes[i] = Vector2(1.0f);
        to.Rotations[i] = 0;
        to.Relative[i] = to.Base - Particle::Distance_Squared(Maps ? Map(to.ToWorld, position) : position, to.Camera);
        measures.InvalidPositions |= Invalid_Bits(position);
        measures.InvalidVelocities |= Invalid_Bits(velocity);
    }
    return measures;
}
MK_SIMD Measures Write(const vrMKPNewborns &newborns, int count, const Slots &slots, bool isWorld)
{
    if (isWorld) return Write_In_Form<false>(newborns, count, slots);
    return Write_In_Form<true>(newborns, count, slots);
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

void vrMKPFilling::Finish(vrMKPBuffer &buffer, vrMKPSpan block, Newborns &newborns)
{
    const vrMKPRenderState &state = *buffer.State;
    const int first = block.First;
    Run_Clock(newborns, block.Count);
    if (Rules.VelocityFactor != 1.0f) Scale(newborns.Velocities, block.Count, Rules.VelocityFactor);
    if (IsWorld)
        Place_World(buffer, newborns, block.Count);
    else
        Place_Local(newborns, block.Count);

    const Vector3 camera = state.Camera.Get_Translation();
    const Measures measures = Write(newborns, block.Count,
                                    {.Starts = buffer.ProjectileStartingPosition + first,
                                     .PreviousPositions = buffer.PreviousPosition + first,
                                     .Positions = buffer.Position + first,
                                     .Targets = buffer.ProjectileTargetPosition + first,
                                     .Velocities = buffer.Velocity + first,
                                     .Ages = buffer.Age + first,
                                     .MaxAges = buffer.MaxAge + first,
                                     .Times = buffer.Time + first,
                                     .FlightDurations = buffer.ProjectileFlightDuration + first,
                                     .Flags = buffer.Flags + first,
                                     .IDs = buffer.ID + first,
                                     .Numbers = buffer.Number + first,
                                     .Sizes = buffer.Size + first,
                                     .Rotations = buffer.Rotation + first,
                                     .Relative = buffer.SortingRelativeToGroup + first,
                                     .Target = state.TargetPosition,
                                     .TargetRadius = state.Get_Target_Radius(),
                                     .FirstNumber = buffer.NextSerial,
                                     .ToWorld = *Transform,
                                     .Camera = camera,
                                     .Base = Particle::Distance_Squared(camera, state.Get_Position())},
                                    IsWorld);
    buffer.NextSerial += static_cast<uint32_t>(block.Count);
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

void vrMKPFilling::Run_Clock(Newborns &newborns, int count)
{
    Clock clock = Progress;
    for (int i = 0; i < count; ++i) {
        newborns.Ages[i] = clock.Remaining;
        newborns.Fractions[i] = clock.Fraction;
        LastTime = clock.Next;
        if (++clock.InCluster < Births.ClusterSize) continue;
        clock.InCluster = 0;
        clock.Remaining -= Births.ClusterStep;
        clock.Next += Births.ClusterStep;
        clock.Fraction += clock.FractionStep;
    }
    Progress = clock;
    Newborns::Fill_Up(newborns.Ages, count);
    Newborns::Fill_Up(newborns.Fractions, count);
}

void vrMKPFilling::Place_Local(Newborns &newborns, int count) const
{
    const bool turns = !Rules.VelocityInLocalSpace;
    Departure departure;
    if (turns) departure.Turn = *Transform;
    Depart(newborns, count, departure, turns, !Rules.DistanceAsTime);
}

void vrMKPFilling::Place_World(const vrMKPBuffer &buffer, Newborns &newborns, int count) const
{
    const vrMKPRenderState &state = *buffer.State;
    const vrMKPVectors starts = newborns.Starts;
    const vrMKPVectors positions = newborns.Positions;
    const vrMKPVectors velocities = newborns.Velocities;
    if (Rules.DistanceAsTime) Ages_Along_The_Way(newborns.Ages, newborns.Fractions, count, state.FrameTime);
    if (Rules.HiResRotate) Turn_Along_The_Way(newborns, count);
    if (Rules.HiResRotate || SnapsToTerrain) Particle::Transform_Points(starts, starts, count, *PreviousTransform);
    if (SnapsToTerrain)
        for (int i = 0; i < count; ++i) starts.Z[i] = Get_Snapped_Height(state, starts[i]);
    if (Rules.HiResRotate) {
        if (Rules.InheritVelocity) Particle::Add_Vector(velocities, count, Inherited);
        for (int i = 0; i < count; ++i) positions.Put(i, Plus(positions[i], Times(velocities[i], newborns.Ages[i])));
    } else {
        const bool turns = Rules.VelocityInLocalSpace;
        Departure departure{.Place = *PreviousTransform, .Turn = *PreviousTransform, .Way = Way};
        if (Rules.InheritVelocity) departure.Inherited = Inherited;
        if (SnapsToTerrain)
            Depart(newborns, count, departure, turns, true);
        else
            Place_And_Depart(newborns, count, departure, turns);
    }
    if (buffer.ScaleType == PARTICLE_SCALE_AT_SPAWN) {
        Scale(positions, count, state.PositionScale);
        Particle::Add_Vector(positions, count, state.PositionOffset);
        Scale(velocities, count, state.VelocityScale);
    }
}

void vrMKPFilling::Turn_Along_The_Way(Newborns &newborns, int count) const
{
    const RotationPath path(PreviousTransform->Get_Rotation(), Transform->Get_Rotation());
    const Vector3 start = PreviousTransform->Get_Translation();
    QuaternionClass rotations[Newborns::BLOCK];
    path.At_Many(newborns.Fractions, count, rotations);
    for (int i = 0; i < count; ++i) {
        const auto turn = Mat3DClass::From_Quaternion(rotations[i]);
        if (Rules.VelocityInLocalSpace) newborns.Velocities.Put(i, turn.Rotate(newborns.Velocities[i]));
        newborns.Positions.Put(i, turn.Rotate(newborns.Starts[i]) + (start + Way * newborns.Fractions[i]));
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
