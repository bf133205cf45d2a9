#include "vrGraphics/plugins/ensembles/Bullet.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/particle/vrWorld.h"

#include <algorithm>

namespace
{

// Indices into these are a file format.
constexpr const char *TRAJECTORY_TYPES[] = {"Linear", "Arc", "Ground"};
constexpr const char *TRACK_MODES[] = {"Normal", "Homing"};

constexpr int BLOCK = 128;

/// Six bits of an ID as a value in [-1, 1]. The second and the third of the three share two bits.
float Signed_Six_Bits(uint32_t id, int low)
{
    return static_cast<float>(static_cast<int32_t>(id >> low & 63)) * 0.015873017f * 2.0f - 1.0f;
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
    float Gravity;
    float HoverHeight;

    Vector3 To_World(const Vector3 &point) const { return IsWorld ? point : State.Transform.Transform(point); }
    Vector3 To_Buffer(const Vector3 &point) const { return IsWorld ? point : State.InverseTransform.Transform(point); }

    /// Where the particle flies to from `origin`.
    Vector3 Get_Target(const vrMKPBuffer &buffer, int slot) const
    {
        return IsHoming ? State.HomingTarget : To_World(buffer.ProjectileTargetPosition[slot]);
    }

    /// The place without the spread, at `time` of the way.
    Vector3 Place_On_Way(const vrMKPBuffer &buffer, int slot, const Vector3 &origin, const Vector3 &target,
                         float time) const
    {
        if (Trajectory == TRAJECTORY_LINEAR) return origin * (1.0f - time) + target * time;
        const Vector3 delta = target - origin;
        const Vector3 way = Particle::Unit(delta) * glm::length(delta) * time;
        if (Trajectory == TRAJECTORY_GROUND) return {origin.x + way.x, origin.y + way.y, HoverHeight};
        const float flightTime = buffer.ProjectileFlightDuration[slot];
        const float duration = flightTime > 0.0f ? flightTime : 0.01f;
        const float age = buffer.Age[slot];
        const float rise = Gravity * duration * 0.5f * age - Gravity * age * age * 0.5f;
        return {origin.x + way.x, origin.y + way.y, origin.z + rise + way.z};
    }

    /// How far a particle strays, across `direction`.
    Vector3 Stray(uint32_t id, float spread, const Vector3 &direction) const
    {
        const Vector3 across = SpreadsLevel ? Vector3(0.0f, 0.0f, 1.0f) : direction;
        const Vector3 offset(Signed_Six_Bits(id, 0) * spread, Signed_Six_Bits(id, 6) * spread,
                             Signed_Six_Bits(id, 10) * spread);
        return offset - across * glm::dot(offset, across);
    }

    /// The place at `time`, in the world.
    Vector3 Place(const vrMKPBuffer &buffer, int slot, float time, float spread) const
    {
        const Vector3 origin = To_World(buffer.ProjectileStartingPosition[slot]);
        const Vector3 target = Get_Target(buffer, slot);
        Vector3 place = Place_On_Way(buffer, slot, origin, target, time);
        if (spread > 0.0f) {
            const Vector3 way = Trajectory == TRAJECTORY_ARC ? place - origin : target - origin;
            place += Stray(buffer.ID[slot], spread, Particle::Unit(way));
        }
        if (Trajectory == TRAJECTORY_GROUND && State.Terrain) place.z += State.Terrain->Get_Height(place.x, place.y);
        return place;
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
            Gravity->Get_Value(),
            HoverHeight->Get_Value()};
}

void vrMKPBulletModifier::Evaluate_Spreads(const vrMKPBuffer &buffer, const float *times, int count,
                                           float *spreads) const
{
    if (UseKeyedSpread->Get_Value()) return KeyedSpread->Evaluate_Many(times, count, false, spreads);
    const float base = SpreadFromTargetRadius->Get_Value() ? buffer.State->Get_Target_Radius() : Spread->Get_Value();
    for (int i = 0; i < count; ++i) spreads[i] = times[i] * base;
}

void vrMKPBulletModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Flight flight = Get_Flight(buffer);
    float times[BLOCK];
    float spreads[BLOCK];
    float blends[BLOCK];
    for (int at = 0; at < span.Count; at += BLOCK) {
        const int first = span.First + at;
        const int count = std::min(BLOCK, span.Count - at);
        for (int i = 0; i < count; ++i) times[i] = std::min(buffer.Time[first + i], 1.0f);
        Evaluate_Spreads(buffer, times, count, spreads);
        Blend->Evaluate_Many(times, count, false, blends);
        for (int i = 0; i < count; ++i) {
            const int slot = first + i;
            if (buffer.Flags[slot] & PARTICLE_STOPPED) continue;
            const Vector3 own = flight.To_World(buffer.Position[slot]);
            const Vector3 place = flight.Place(buffer, slot, times[i], spreads[i]);
            buffer.Position[slot] = flight.To_Buffer(own * (1.0f - blends[i]) + place * blends[i]);
        }
    }
}
