#include "vrGraphics/plugins/ensembles/vrHWParticles.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/ensembles/Hardware.h"

#include <algorithm>
#include <cmath>

using Particle::Cross;
using Particle::Dot;
using Particle::Minus;
using Particle::Plus;
using Particle::Times;
using Particle::Unit;

namespace
{

/// Particles so near to the axis aren't turned about it.
constexpr float LEAST_RADIUS = 0.1f;
/// Room for births ahead of the deaths of the frame.
constexpr int SPARE_PARTICLES = 2;
/// What falls on the stop time comes too late, whatever tenths of seconds come to in floats.
constexpr double SHARE_OF_STOP = 1.0 - 1e-6;
/// A burst finds the one before still there, to its last frame.
constexpr double BURSTS_AT_ONCE = 2.0;

struct Motion
{
    Vector3 Position;
    Vector3 Velocity;
};

/// One step under an acceleration that stays the same meanwhile, and then a turn about the axis.
MK_INLINE Motion Step(const Vector3 &position, const Vector3 &velocity, const vrHWForces &forces, float dt)
{
    const Vector3 out = Minus(position, Times(forces.Axis, Dot(position, forces.Axis)));
    const Vector3 acceleration =
        Plus(forces.Acceleration, Plus(Times(Unit(position), forces.Attraction), Times(Unit(out), forces.Repulsion)));
    const Vector3 moved = Plus(position, Plus(Times(velocity, dt), Times(acceleration, 0.5f * dt * dt)));
    const Vector3 quicker = Plus(velocity, Times(acceleration, dt));

    const Vector3 radius = Minus(moved, Times(forces.Axis, Dot(moved, forces.Axis)));
    const float distance = std::sqrt(Dot(radius, radius));
    // The tangent of the angle that the way along the circle comes to; its length stays.
    const float tangent = distance > LEAST_RADIUS ? forces.Rotation * dt / distance : 0.0f;
    const float cosine = 1.0f / std::sqrt(1.0f + tangent * tangent);
    const float sine = tangent * cosine;
    const auto turn = [&](const Vector3 &vector) __attribute__((always_inline))
    {
        const Vector3 along = Times(forces.Axis, Dot(vector, forces.Axis));
        return Plus(along, Plus(Times(Minus(vector, along), cosine), Times(Cross(forces.Axis, vector), sine)));
    };
    return {turn(moved), turn(quicker)};
}

MK_SIMD void Move_All(vrMKPVectors positions, vrMKPVectors velocities, int count, vrHWForces forces, float dt)
{
#pragma GCC ivdep
    for (int at = 0; at < count; ++at) {
        const Motion motion = Step(positions[at], velocities[at], forces, dt);
        positions.Put(at, motion.Position);
        velocities.Put(at, motion.Velocity);
    }
}

/// 0 for what is no number or not above 0.
double Positive(float value)
{
    return value > 0.0f ? static_cast<double>(value) : 0.0;
}

int Find_Capacity(const vrHWSpawnRules &rules)
{
    const double count = Positive(rules.Count);
    const double living =
        rules.IsBurst ? std::trunc(count) * BURSTS_AT_ONCE : std::ceil(count * Positive(rules.Life)) + SPARE_PARTICLES;
    return living < vrHWParticles::MAX_PARTICLES ? static_cast<int>(living) : vrHWParticles::MAX_PARTICLES;
}

} // namespace

vrHWParticles *vrHWParticles::Create(const vrMKPHardwareSpawner &spawner, const vrMKPBuffer &layer)
{
    SmartPtr<vrMKPBuffer> particles = vrMKPBuffer::Create(Find_Capacity(spawner.Get_Rules()), "hardware particles");
    return particles ? new vrHWParticles(spawner, layer, std::move(particles)) : nullptr;
}

vrHWParticles::vrHWParticles(const vrMKPHardwareSpawner &spawner, const vrMKPBuffer &layer,
                             SmartPtr<vrMKPBuffer> particles)
    : Spawner(&spawner), State(*layer.State), Particles(std::move(particles))
{
    Particles->Random.Seed(layer.Random.Get_State());
}

vrHWParticles::~vrHWParticles() = default;

void vrHWParticles::Start_Spawning()
{
    Clock = NextCycle = NextBirth = 0.0;
    IsStopped = false;
    IsPastEnd = false;
}

bool vrHWParticles::Update(float dt, const Vector3 & /*boxMinimum*/, const Vector3 & /*boxMaximum*/)
{
    if (!(dt > 0.0f)) return false;
    const vrHWSpawnRules rules = Spawner->Get_Rules();
    const vrHWForces forces = Spawner->Get_Forces();
    Life = rules.Life;
    Clock += static_cast<double>(dt);
    Age_And_Move(dt, rules.Life, forces);
    return Spawn(rules, forces);
}

void vrHWParticles::Age_And_Move(float dt, float life, const vrHWForces &forces)
{
    vrMKPBuffer &particles = *Particles;
    for (const vrMKPSpan span : particles.Live_Spans()) Particle::Add_Float(particles.Age + span.First, span.Count, dt);
    int dead = 0;
    for (int slot = particles.Head; dead < particles.ActiveCount && !(particles.Age[slot] < life);
         slot = particles.Next_Slot(slot))
        ++dead;
    if (dead > 0) particles.Remove_Oldest(dead);
    for (const vrMKPSpan span : particles.Live_Spans())
        Move_All(particles.Position + span.First, particles.Velocity + span.First, span.Count, forces, dt);
}

bool vrHWParticles::Spawn(const vrHWSpawnRules &rules, const vrHWForces &forces)
{
    const double now = Clock - static_cast<double>(rules.StartDelay) - static_cast<double>(State.StartTimeOffset);
    const double stop = Positive(rules.StopTime);
    IsPastEnd = stop > 0.0 && now >= stop * SHARE_OF_STOP;
    const double life = Positive(rules.Life);
    const double count = Positive(rules.Count);
    if (IsStopped || !(now >= 0.0 && now < HUGE_VAL) || life == 0.0 || count == 0.0) return false;

    const double end = stop > 0.0 ? stop * SHARE_OF_STOP : HUGE_VAL;
    const bool beginsCycle = now >= NextCycle && NextCycle <= end;
    if (beginsCycle) {
        // Of cycles that passed within the frame the last one counts, if it began ahead of the end.
        const double passed = std::floor((std::min(now, end) - NextCycle) / life);
        const double start = NextCycle + passed * life;
        NextCycle = start + life;
        if (rules.IsBurst && now - start < life) Add(std::trunc(count), now - start, 0.0, forces);
    }
    if (!rules.IsBurst) Spawn_At_Rate(rules, forces, now, end);
    return beginsCycle;
}

void vrHWParticles::Spawn_At_Rate(const vrHWSpawnRules &rules, const vrHWForces &forces, double now, double end)
{
    const double interval = 1.0 / static_cast<double>(rules.Count);
    const double last = std::min(now, end);
    // Those that are dead already aren't born.
    const double oldest = now - static_cast<double>(rules.Life);
    if (NextBirth < oldest) NextBirth += std::ceil((oldest - NextBirth) / interval) * interval;
    if (!(NextBirth <= last)) return;
    const double count = std::floor((last - NextBirth) / interval) + 1.0;
    Add(count, now - NextBirth, interval, forces);
    NextBirth += count * interval;
}

void vrHWParticles::Add(double count, double age, double interval, const vrHWForces &forces)
{
    vrMKPBuffer &particles = *Particles;
    const vrMKPShapeSource source = Spawner->Get_Shapes();
    source.Check();
    int slot = 0;
    const int granted = particles.Grant_Slots(static_cast<int>(std::min(count, 1e9)), slot);
    for (int added = 0; added < granted; ++added, slot = particles.Next_Slot(slot)) {
        const Vector3 position = source.Position(particles.Random);
        const Vector3 velocity = source.Velocity(particles.Random, position);
        const auto seconds = static_cast<float>(std::max(age - added * interval, 0.0));
        const Motion motion = Step(position, velocity, forces, seconds);
        particles.Position.Put(slot, motion.Position);
        particles.Velocity.Put(slot, motion.Velocity);
        particles.Age[slot] = seconds;
    }
}
