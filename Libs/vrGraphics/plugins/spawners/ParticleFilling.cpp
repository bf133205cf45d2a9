#include "vrGraphics/plugins/spawners/ParticleFilling.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrWorld.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/RotationPath.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

MK_SIMD void Scale_Floats(float *__restrict values, int count, float factor)
{
    for (int i = 0; i < count; ++i) values[i] *= factor;
}

MK_SIMD void Add_Scaled_Pattern(float *__restrict to, const float *__restrict factors, int count, const Vector3 &way)
{
    const float x = way.x;
    const float y = way.y;
    const float z = way.z;
    for (int i = 0; i < count; ++i) {
        to[i * 3] += x * factors[i];
        to[i * 3 + 1] += y * factors[i];
        to[i * 3 + 2] += z * factors[i];
    }
}

MK_SIMD void Add_Moved(float *__restrict to, const float *__restrict velocities, const float *__restrict seconds,
                       int count)
{
    for (int i = 0; i < count; ++i) {
        to[i * 3] += velocities[i * 3] * seconds[i];
        to[i * 3 + 1] += velocities[i * 3 + 1] * seconds[i];
        to[i * 3 + 2] += velocities[i * 3 + 2] * seconds[i];
    }
}

MK_SIMD void Ages_Along_The_Way(float *__restrict ages, const float *__restrict fractions, int count, float frameTime)
{
    for (int i = 0; i < count; ++i) ages[i] = (1.0f - fractions[i]) * frameTime;
}

/// How much nearer to the camera than `base`, the square of a distance, each position is, by its square.
MK_SIMD void Relate_Distances(float *__restrict relative, const float *__restrict positions, int count,
                              const Vector3 &camera, float base)
{
    const float cx = camera.x;
    const float cy = camera.y;
    const float cz = camera.z;
    for (int i = 0; i < count; ++i) {
        const float x = positions[i * 3] - cx;
        const float y = positions[i * 3 + 1] - cy;
        const float z = positions[i * 3 + 2] - cz;
        relative[i] = base - (x * x + y * y + z * z);
    }
}

MK_SIMD void Fill_Points(float *__restrict to, int count, const Vector3 &point)
{
    const float x = point.x;
    const float y = point.y;
    const float z = point.z;
    for (int i = 0; i < count; ++i) {
        to[i * 3] = x;
        to[i * 3 + 1] = y;
        to[i * 3 + 2] = z;
    }
}

MK_SIMD void Fill_Floats(float *__restrict to, int count, float value)
{
    for (int i = 0; i < count; ++i) to[i] = value;
}

MK_SIMD void Fill_Serials(uint32_t *__restrict to, int count, uint32_t first)
{
    for (int i = 0; i < count; ++i) to[i] = first + static_cast<uint32_t>(i);
}

void Rotate_Directions(Vector3 *directions, int count, Mat3DClass transform)
{
    transform.Set_Translation(Vector3(0.0f));
    Particle::Transform_Points(directions, directions, count, transform);
}

float Squared_Distance(const Vector3 &from, const Vector3 &to)
{
    const Vector3 way = to - from;
    return way.x * way.x + way.y * way.y + way.z * way.z;
}

/// What a slot gets besides its place, its velocity and its age.
void Write_Constants(vrMKPBuffer &buffer, vrMKPSpan block)
{
    const vrMKPRenderState &state = *buffer.State;
    const int first = block.First;
    const int count = block.Count;
    const auto zero = [&](auto *channel) {
        std::memset(channel + first, 0, static_cast<size_t>(count) * sizeof(*channel));
    };
    Fill_Points(&buffer.ProjectileTargetPosition[first].x, count, state.TargetPosition);
    Fill_Floats(buffer.MaxAge + first, count, -1.0f); // the stomper's to give
    zero(buffer.Time);
    Fill_Floats(buffer.ProjectileFlightDuration + first, count, state.Get_Target_Radius());
    zero(buffer.Flags);
    Fill_Serials(buffer.Number + first, count, buffer.NextSerial);
    buffer.NextSerial += static_cast<uint32_t>(count);
    Fill_Floats(&buffer.Size[first].x, count * 2, 1.0f);
    zero(buffer.Rotation);
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
    Vector3 *velocities = buffer.Velocity + block.First;
    const Vector3 *positions = buffer.Position + block.First;
    Scale_Floats(&velocities->x, block.Count * 3, Rules.VelocityFactor);
    Vector3 inWorld[BLOCK];
    if (IsWorld) {
        Place_World(buffer, block, fractions);
    } else {
        Place_Local(buffer, block);
        Particle::Transform_Points(inWorld, positions, block.Count, *Transform);
    }
    ArePositionsValid &= !Particle::Has_Invalid(positions, block.Count);
    AreVelocitiesValid &= !Particle::Has_Invalid(velocities, block.Count);
    Write_Constants(buffer, block);
    const Vector3 camera = state.Camera.Get_Translation();
    Relate_Distances(buffer.SortingRelativeToGroup + block.First, IsWorld ? &positions->x : &inWorld->x, block.Count,
                     camera, Squared_Distance(camera, state.Get_Position()));
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

void vrMKPFilling::Place_Local(vrMKPBuffer &buffer, vrMKPSpan block) const
{
    const Vector3 *origins = buffer.ProjectileStartingPosition + block.First;
    Vector3 *positions = buffer.Position + block.First;
    Vector3 *velocities = buffer.Velocity + block.First;
    const size_t bytes = static_cast<size_t>(block.Count) * sizeof(Vector3);
    if (!Rules.VelocityInLocalSpace) Rotate_Directions(velocities, block.Count, *Transform);
    std::memcpy(static_cast<void *>(positions), origins, bytes);
    if (!Rules.DistanceAsTime) Add_Moved(&positions->x, &velocities->x, buffer.Age + block.First, block.Count);
    std::memcpy(static_cast<void *>(buffer.PreviousPosition + block.First), origins, bytes);
}

void vrMKPFilling::Place_World(vrMKPBuffer &buffer, vrMKPSpan block, const float *fractions) const
{
    const vrMKPRenderState &state = *buffer.State;
    const int count = block.Count;
    Vector3 *locals = buffer.ProjectileStartingPosition + block.First;
    Vector3 *origins = buffer.PreviousPosition + block.First;
    Vector3 *positions = buffer.Position + block.First;
    Vector3 *velocities = buffer.Velocity + block.First;
    float *ages = buffer.Age + block.First;
    const size_t bytes = static_cast<size_t>(count) * sizeof(Vector3);

    Particle::Transform_Points(origins, locals, count, *PreviousTransform);
    if (SnapsToTerrain)
        for (int i = 0; i < count; ++i) origins[i].z = Get_Snapped_Height(state, origins[i]);
    if (Rules.HiResRotate) {
        Turn_Along_The_Way(positions, velocities, locals, fractions, count);
    } else {
        if (Rules.VelocityInLocalSpace) Rotate_Directions(velocities, count, *PreviousTransform);
        std::memcpy(static_cast<void *>(positions), origins, bytes);
        Add_Scaled_Pattern(&positions->x, fractions, count, Way);
    }
    if (Rules.InheritVelocity) Particle::Add_Vector(velocities, count, Inherited);
    if (Rules.DistanceAsTime) Ages_Along_The_Way(ages, fractions, count, state.FrameTime);
    Add_Moved(&positions->x, &velocities->x, ages, count);
    if (buffer.ScaleType == PARTICLE_SCALE_AT_SPAWN) {
        Scale_Floats(&positions->x, count * 3, state.PositionScale);
        Particle::Add_Vector(positions, count, state.PositionOffset);
        Scale_Floats(&velocities->x, count * 3, state.VelocityScale);
    }
    std::memcpy(static_cast<void *>(locals), origins, bytes);
}

void vrMKPFilling::Turn_Along_The_Way(Vector3 *positions, Vector3 *velocities, const Vector3 *locals,
                                      const float *fractions, int count) const
{
    const RotationPath path(PreviousTransform->Get_Rotation(), Transform->Get_Rotation());
    const Vector3 start = PreviousTransform->Get_Translation();
    QuaternionClass rotations[BLOCK];
    path.At_Many(fractions, count, rotations);
    for (int i = 0; i < count; ++i) {
        const auto turn = Mat3DClass::From_Quaternion(rotations[i]);
        if (Rules.VelocityInLocalSpace) velocities[i] = turn.Rotate(velocities[i]);
        positions[i] = turn.Rotate(locals[i]) + (start + Way * fractions[i]);
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
