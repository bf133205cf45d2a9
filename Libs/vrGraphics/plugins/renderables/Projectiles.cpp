#include "vrGraphics/plugins/renderables/Projectiles.h"

#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"

#include <glm/geometric.hpp>

#include <algorithm>

/// One instance's flight.
class ProjectileDataClass final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override
    {
        IsFlying = false;
        IsHit = false;
    }

    bool IsFlying = false;
    bool IsHit = false;
    float Time = 0.0f;         ///< seconds of flight
    Vector3 Source{0.0f};      ///< where it started
    Vector3 FirstTarget{0.0f}; ///< the target as it started
    Vector3 Target{0.0f};      ///< of this frame
    Vector3 Position{0.0f};
    Vector3 Direction{0.0f}; ///< of flight; needs no length

    float Duration = 0.0f; ///< seconds of the whole flight of an arc

    Mat3DClass SpiralFrame;   ///< its z axis is that of the spiral
    float SpiralStart = 0.0f; ///< turns
    bool IsSeeking = false;
    float SeekSpeed = 0.0f;
};
MK_DEFINE_RUN_TIME_TYPE(ProjectileDataClass, vrMKPBufferPluginData)

namespace
{

enum TrackModeType : int
{
    TRACK_NORMAL,
    TRACK_HOMING
};
enum TrajectoryType : int
{
    TRAJECTORY_LINEAR,
    TRAJECTORY_ARC
};
// Indices into these are a file format.
constexpr const char *TRACK_MODES[] = {"Normal", "Homing"};
constexpr const char *TRAJECTORY_TYPES[] = {"Linear", "Arc"};

constexpr double DEGREE = Portable::PI / 180.0;

/// 0 for what isn't positive, or no number.
float Positive(float value)
{
    return value > 0.0f ? value : 0.0f;
}

/// The frame whose x axis points along `direction`, with its y axis level.
Mat3DClass Face_Along(const Vector3 &direction)
{
    // From x, y, z to z, x, y.
    static constexpr Mat3DClass NEXT_AXIS{
        {{0.0f, 1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f, 0.0f}, {1.0f, 0.0f, 0.0f, 0.0f}}};
    return Mat3DClass::Look_Along(direction) * NEXT_AXIS;
}

/// Goes `distance` along the way to the target that starts in `direction`, or hits.
void Advance(ProjectileDataClass &data, const Vector3 &direction, float distance)
{
    const float left = glm::length(data.Target - data.Position);
    data.IsHit = left <= distance;
    data.Position = data.IsHit ? data.Target : data.Position + direction * distance;
}

/// Turns the unit vector `from` toward the unit vector `to`, by `limit` radians at most.
Vector3 Turn_Toward(const Vector3 &from, const Vector3 &to, float limit)
{
    const float cosine = std::clamp(glm::dot(from, to), -1.0f, 1.0f);
    if (Portable::Arc_Cosine(static_cast<double>(cosine)) <= static_cast<double>(limit)) return to;
    Vector3 side = Particle::Unit(to - from * cosine);
    if (side == Vector3(0.0f)) side = Mat3DClass::Look_Along(from).Get_Axis(0); // straight back, by any side
    const auto [sine, cosineOfLimit] = Portable::Sine_And_Cosine(static_cast<double>(limit));
    return Particle::Unit(from * cosineOfLimit + side * sine);
}

} // namespace

vrMKPProjectileRenderablePhysics::vrMKPProjectileRenderablePhysics()
    : TrackMode(Parameters.Add_Enum(100, "Track Mode", TRACK_MODES, 0, "How the projectile tracks the target.")),
      SpeedMultiplier(Parameters.Add_Float(101, "Speed Multiplier", 1.0f, 0.01f, 100.0f,
                                           "Multiple of the logical projectile speed at which the group flies.")),
      AlignToMotion(Parameters.Add_Bool(102, "Align To Motion", true,
                                        "Turn the group so that its X-axis points along the flight."))
{
}

vrMKPBufferPluginData *vrMKPProjectileRenderablePhysics::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new ProjectileDataClass;
}

bool vrMKPProjectileRenderablePhysics::Has_Hit(const vrMKPBufferPluginData *data) const
{
    const auto *const flight = MK_Dynamic_Cast<const ProjectileDataClass>(data);
    return flight && flight->IsHit;
}

Mat3DClass vrMKPProjectileRenderablePhysics::Get_Motion(const vrMKPMotionContext &context) const
{
    auto *const data = MK_Dynamic_Cast<ProjectileDataClass>(context.Data);
    const float speed = Positive(context.State.ProjectileSpeed * SpeedMultiplier->Get_Value());
    if (!data || !Is_Valid(speed) || (!data->IsFlying && speed == 0.0f)) return context.Base;

    if (!data->IsFlying) {
        data->IsFlying = true;
        data->Time = 0.0f;
        data->Source = data->Position = context.Base.Get_Translation();
        data->FirstTarget = data->Target = context.State.ProjectileTargetStart;
        Start_Flight(*data, context, speed);
    }
    if (!data->IsHit) {
        const float step = Positive(context.Step);
        data->Time += step;
        const bool isHoming = TrackMode->Get_Value() == TRACK_HOMING;
        data->Target = isHoming ? context.State.ProjectileTarget : data->FirstTarget;
        Fly(*data, step, speed);
    }

    const bool turns = AlignToMotion->Get_Value() && data->Direction != Vector3(0.0f);
    Mat3DClass motion = turns ? Face_Along(data->Direction).Scaled(context.Base.Get_Uniform_Scale()) : context.Base;
    motion.Set_Translation(data->Position);
    return motion;
}

vrMKPSimpleProjectileRenderablePhysics::vrMKPSimpleProjectileRenderablePhysics()
    : TrajectoryType(
          Parameters.Add_Enum(110, "Trajectory Types", TRAJECTORY_TYPES, 0, "Path from the source to the target.")),
      Gravity(Parameters.Add_Float(111, "Gravity", 100.0f, 0.0f, 1000.0f,
                                   "The downward acceleration for Arc projectiles, in units per second per second."))
{
}

void vrMKPSimpleProjectileRenderablePhysics::Start_Flight(ProjectileDataClass &data,
                                                          const vrMKPMotionContext & /*context*/, float speed) const
{
    data.Direction = Vector3(0.0f);
    data.Duration = glm::length(data.FirstTarget - data.Source) / speed;
}

void vrMKPSimpleProjectileRenderablePhysics::Fly(ProjectileDataClass &data, float step, float speed) const
{
    if (TrajectoryType->Get_Value() == TRAJECTORY_LINEAR) {
        const Vector3 direction = Particle::Unit(data.Target - data.Position);
        if (direction != Vector3(0.0f)) data.Direction = direction;
        Advance(data, direction, speed * step);
        return;
    }
    // As long on its way as it would be along the line, whatever the target does meanwhile.
    const float time = std::min(data.Time, data.Duration);
    const Vector3 way = data.Target - data.Source;
    data.IsHit = !(data.Time < data.Duration);
    if (data.Duration > 0.0f) {
        data.Direction = way / data.Duration;
        data.Direction.z += Gravity->Get_Value() * (0.5f * data.Duration - time);
    }
    data.Position = data.IsHit ? data.Target : data.Source + way * (time / data.Duration);
    data.Position.z += Gravity->Get_Value() * 0.5f * time * (data.Duration - time);
}

vrMKPSpiralAndSeekProjectileRenderablePhysics::vrMKPSpiralAndSeekProjectileRenderablePhysics()
    : SpiralTime(Parameters.Add_Float(120, "Spiral Time", 0.5f, 0.0f, 60.0f,
                                      "Time in seconds spent spiralling away before the projectile seeks its target.")),
      SpiralSpeed(Parameters.Add_Float(121, "Spiral Speed", 50.0f, 0.0f, 1000.0f,
                                       "Speed along the axis of the spiral, in units per second.")),
      SpiralAxis(Parameters.Add_Vector3(122, "Spiral Axis", Vector3(0.0f, 0.0f, 1.0f),
                                        "Direction in which to spiral away from the source.")),
      SpiralRadius(Parameters.Add_Float(123, "Spiral Radius", 25.0f, 0.0f, 500.0f,
                                        "Radius of the spiral at the end of its time.")),
      SpiralRate(Parameters.Add_Float(124, "Spiral Rate", 2.0f, -20.0f, 20.0f,
                                      "Turns per second about the axis, negative for clockwise.")),
      RandomSpiralStart(Parameters.Add_Bool(125, "Random Spiral Start", true,
                                            "Start each instance at a random angle about the axis.")),
      SeekAcceleration(Parameters.Add_Float(126, "Seek Acceleration", 500.0f, 0.0f, 10000.0f,
                                            "Acceleration toward the target, in units per second per second.")),
      SeekTurnRate(Parameters.Add_Float(127, "Seek Turn Rate", 360.0f, 0.0f, 3600.0f,
                                        "Fastest turn toward the target, in degrees per second."))
{
}

void vrMKPSpiralAndSeekProjectileRenderablePhysics::Start_Flight(ProjectileDataClass &data,
                                                                 const vrMKPMotionContext &context,
                                                                 float /*speed*/) const
{
    data.SpiralFrame = Mat3DClass::Look_Along(context.Base.Rotate(SpiralAxis->Get_Value()));
    data.SpiralStart = RandomSpiralStart->Get_Value() ? context.Random.Get_Float(0.0f, 1.0f) : 0.0f;
    data.IsSeeking = false;
}

void vrMKPSpiralAndSeekProjectileRenderablePhysics::Fly(ProjectileDataClass &data, float step, float speed) const
{
    if (!data.IsSeeking) {
        Spiral(data);
        const float spiralTime = Positive(SpiralTime->Get_Value());
        if (data.Time < spiralTime) return;
        data.IsSeeking = true;
        step = std::min(step, data.Time - spiralTime); // what is left of the step that ends the spiral
    }
    Seek(data, step, speed);
}

void vrMKPSpiralAndSeekProjectileRenderablePhysics::Spiral(ProjectileDataClass &data) const
{
    const float spiralTime = Positive(SpiralTime->Get_Value());
    const float time = std::min(data.Time, spiralTime);
    const float growth = spiralTime > 0.0f ? SpiralRadius->Get_Value() / spiralTime : 0.0f; // of the radius, a second
    const double turns = static_cast<double>(data.SpiralStart) +
                         static_cast<double>(SpiralRate->Get_Value()) * static_cast<double>(time);
    const auto [sine, cosine] = Portable::Sine_And_Cosine((turns - std::floor(turns)) * 2.0 * Portable::PI);
    const Vector3 out(cosine, sine, 0.0f);
    const Vector3 around(-out.y, out.x, 0.0f);
    const Vector3 along(0.0f, 0.0f, SpiralSpeed->Get_Value());

    const Vector3 place = along * time + out * (growth * time);
    const Vector3 velocity =
        along + out * growth + around * (growth * time * Particle::TWO_PI * SpiralRate->Get_Value());
    data.Position = data.Source + data.SpiralFrame.Rotate(place);
    data.Direction = Particle::Unit(data.SpiralFrame.Rotate(velocity));
    data.SeekSpeed = glm::length(velocity);
}

void vrMKPSpiralAndSeekProjectileRenderablePhysics::Seek(ProjectileDataClass &data, float step, float speed) const
{
    const Vector3 toTarget = Particle::Unit(data.Target - data.Position);
    if (toTarget != Vector3(0.0f)) {
        const float limit = Positive(SeekTurnRate->Get_Value()) * step * static_cast<float>(DEGREE);
        data.Direction = data.Direction == Vector3(0.0f) ? toTarget : Turn_Toward(data.Direction, toTarget, limit);
    }
    const float change = Positive(SeekAcceleration->Get_Value()) * step;
    const float before = data.SeekSpeed;
    data.SeekSpeed = before < speed ? std::min(before + change, speed) : std::max(before - change, speed);
    Advance(data, data.Direction, 0.5f * (before + data.SeekSpeed) * step);
}
