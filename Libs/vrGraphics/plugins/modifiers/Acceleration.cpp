#include "vrGraphics/plugins/modifiers/Acceleration.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/PortableMath.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <algorithm>

namespace
{

using namespace Motion;

MK_SIMD bool Add_Keyed(const Run &run, const Vector3 &acceleration, const float *__restrict factors, float frameTime)
{
    const Vector3 add = acceleration;
    const auto kernel = [=](int i, const Vector3 &, Vector3 &push) MK_INLINE_LAMBDA {
        push = Times(add, frameTime * factors[i]);
        return TOUCHED;
    };
    return Accelerate(run, kernel).Velocity;
}

MK_SIMD bool Add_To_Moving(const Run &run, const Vector3 &addend)
{
    const Vector3 add = addend;
    const auto kernel = [=](int, const Vector3 &, Vector3 &push) MK_INLINE_LAMBDA {
        push = add;
        return TOUCHED;
    };
    return Accelerate(run, kernel).Velocity;
}

/// The same vector to all but those at rest, of one of the vector channels.
bool Add_Alike(vrMKPBuffer &buffer, const vrMKPVectors &channel, vrMKPSpan span, const Vector3 &add)
{
    if (!buffer.MayHaveStopped) return !Particle::Add_Vector(channel + span.First, span.Count, add);
    Run run(buffer, span);
    run.Velocity = channel + span.First;
    return Add_To_Moving(run, add);
}

void Accelerate(vrMKPBuffer &buffer, vrMKPSpan span, const Vector3 &acceleration)
{
    const bool invalid = Add_Alike(buffer, buffer.Velocity, span, acceleration * buffer.State->FrameTime);
    // The run may have others in it.
    MK_ASSERT(!invalid || !buffer.Is_Any_Moving_Invalid(buffer.Velocity), INVALID_VELOCITY);
}

RangedFloatParameter *Add_Wind_Response(ParameterListClass &parameters, float value)
{
    return parameters.Add_Float(200, "Wind Response", value, 0.0f, 10.0f,
                                "Responsive factor to scene wind (how much the particle responds to wind).");
}

Vector3 Get_Wind(const vrMKPBuffer &buffer)
{
    return buffer.Is_World() ? buffer.State->Wind : buffer.State->InverseTransform.Rotate(buffer.State->Wind);
}

} // namespace

void vrMKPFramedAcceleration::Add_To(ParameterListClass &parameters, int32_t firstId)
{
    Acceleration = parameters.Add_Vector3(firstId, "Acceleration", Vector3(0.0f, 0.0f, -1.0f),
                                          "Acceleration in units per second second");
    IsLocal = parameters.Add_Bool(firstId + 1, "Local Space", false, "Is this acceleration local to the group");
}

Vector3 vrMKPFramedAcceleration::In_Frame_Of(const vrMKPBuffer &buffer) const
{
    const Vector3 &acceleration = Acceleration->Get_Value();
    if (IsLocal->Get_Value() != buffer.Is_World()) return acceleration;
    const vrMKPRenderState &state = *buffer.State;
    return (buffer.Is_World() ? state.Transform : state.InverseTransform).Rotate(acceleration);
}

vrMKPAccelerationModifier::vrMKPAccelerationModifier()
{
    Acceleration.Add_To(Parameters, 200);
}

void vrMKPAccelerationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Accelerate(buffer, span, Acceleration.In_Frame_Of(buffer));
}

vrMKPKeyedAccelerationModifier::vrMKPKeyedAccelerationModifier()
{
    Direction.Acceleration =
        Parameters.Add_Vector3(300, "Direction", Vector3(0.0f, 0.0f, -1.0f), "Direction vector of acceleration.");
    Acceleration = Parameters.Add_Keyed_Float(301, "Acceleration", "Accelerations of particle");
    Direction.IsLocal = Parameters.Add_Bool(302, "Local Space", false, "Apply acceleration in particle's local space");
}

void vrMKPKeyedAccelerationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Vector3 direction = Direction.In_Frame_Of(buffer);
    float factors[MKP_CURVE_BLOCK];
    bool invalid = false;
    For_Each_Curve_Block(span, [&](int first, int count) {
        const Run run(buffer, {first, count});
        Acceleration->Evaluate_Many(run.Time, count, Is_Smooth(), factors);
        invalid |= Add_Keyed(run, direction, factors, buffer.State->FrameTime);
    });
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPCircleTargetAccelerationModifier::vrMKPCircleTargetAccelerationModifier()
{
    Acceleration.Add_To(Parameters, 7000);
}

void vrMKPCircleTargetAccelerationModifier::Modify(vrMKPBuffer &buffer, int index) const
{
    vrMKPTargetModifier::Modify(buffer, index);
    if (buffer.SpawnedThisFrame > 0 && buffer.State->ProjectileSpeed != 0.0f) Throw_New_Particles(buffer, index);
}

void vrMKPCircleTargetAccelerationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Accelerate(buffer, span, Acceleration.In_Frame_Of(buffer));
}

/// The level speed is that of the projectile. It is in the air for T = D / V, in which the height comes to
/// v.z T + a T^2 / 2.
void vrMKPCircleTargetAccelerationModifier::Throw_New_Particles(vrMKPBuffer &buffer, int index) const
{
    const Vector3 target = Get_Buffer_Target(buffer, index);
    const float speed = buffer.State->ProjectileSpeed;
    const float fall = Acceleration.Acceleration->Get_Value().z * 0.5f;
    const float radius = buffer.State->TargetCircleRadius;
    RandomClass &random = buffer.State->Random;
    MK_ASSERT(!(radius < 0.0f), "low <= high"); // the draws swap such bounds
    bool invalid = false;
    for (const vrMKPSpan span : buffer.New_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            if (buffer.Flags[slot] & PARTICLE_STOPPED) continue;
            const Vector3 position = buffer.Position[slot];
            const float angle = random.Get_Float(0.0f, Particle::TWO_PI);
            const float distance = random.Get_Float(std::min(0.0f, radius), std::max(0.0f, radius));
            const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(angle));
            const Vector3 way(cosine * distance + target.x - position.x, sine * distance + target.y - position.y, 0.0f);
            const float squared = Dot(way, way);
            if (!(squared > 0.0001f)) continue;
            const Vector3 direction = Particle::Unit(way);
            const float duration = std::sqrt(squared) / speed;
            const float rise = (target.z - position.z) / duration;
            const Vector3 velocity(direction.x * speed, direction.y * speed, rise - fall * duration);
            buffer.Velocity.Put(slot, velocity);
            invalid |= Is_Invalid(velocity);
        }
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPWindAccelerationModifier::vrMKPWindAccelerationModifier()
{
    WindResponse = Add_Wind_Response(Parameters, 0.5f);
}

void vrMKPWindAccelerationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Accelerate(buffer, span, Get_Wind(buffer) * WindResponse->Get_Value());
}

vrMKPWindVelocityModifier::vrMKPWindVelocityModifier()
{
    WindResponse = Add_Wind_Response(Parameters, 0.25f);
}

void vrMKPWindVelocityModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Vector3 way = Get_Wind(buffer) * buffer.State->FrameTime * WindResponse->Get_Value();
    Add_Alike(buffer, buffer.Position, span, way);
}
