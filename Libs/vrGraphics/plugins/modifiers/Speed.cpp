#include "vrGraphics/plugins/modifiers/Speed.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <algorithm>

namespace
{

using namespace Motion;

MK_SIMD bool Limit(const Run &run, float least, float greatest)
{
    return Steer(run, [=](int, const Vector3 &, Vector3 &velocity) MK_INLINE_LAMBDA {
        const float speed = std::sqrt(Dot(velocity, velocity));
        const float raised = speed < least ? least : speed;
        velocity = Times(Particle::Unit(velocity), raised > greatest ? greatest : raised);
        return TOUCHED;
    });
}

template <bool Smooth>
MK_INLINE bool Set_Speed(const Run &run, const vrMKPLinearWeight &from, float startSpeed, float endSpeed)
{
    const vrMKPLinearWeight weight = from;
    const float *__restrict times = run.Time;
    return Steer(run, [=](int i, const Vector3 &, Vector3 &velocity) MK_INLINE_LAMBDA {
        // With equal times the quotient is infinite or no number, and the clamp makes an end of it.
        const float w = Smooth ? weight.At<true>(times[i])
                               : Particle::Clamp_01((times[i] - weight.Start) / (weight.End - weight.Start));
        velocity = Times(Particle::Unit(velocity), (1.0f - w) * startSpeed + w * endSpeed);
        return TOUCHED;
    });
}
MK_SIMD bool Set_Linear_Speed(const Run &run, const vrMKPLinearWeight &weight, float startSpeed, float endSpeed)
{
    return Set_Speed<false>(run, weight, startSpeed, endSpeed);
}
MK_SIMD bool Set_Smooth_Speed(const Run &run, const vrMKPLinearWeight &weight, float startSpeed, float endSpeed)
{
    return Set_Speed<true>(run, weight, startSpeed, endSpeed);
}

MK_SIMD bool Brake(const Run &run, const float *__restrict frictions, float frameTime)
{
    return Steer(run, [=](int i, const Vector3 &, Vector3 &velocity) MK_INLINE_LAMBDA {
        const float part = Particle::Clamp_01(frameTime * frictions[i]);
        const float speed = std::sqrt(Dot(velocity, velocity));
        const Vector3 slower = Minus(velocity, Times(Times(Particle::Unit(velocity), speed), part));
        const uint32_t rests =
            As_Mask(speed < 0.01f) | As_Mask(part >= 1.0f); // what is left of a full stop is rounding
        velocity = Select_Bits(rests, Vector3(0.0f), slower);
        return TOUCHED;
    });
}

} // namespace

vrMKPSpeedLimitModifier::vrMKPSpeedLimitModifier()
{
    MinSpeed = Parameters.Add_Float(100, "Min Speed", 0.0f, 0.0f, 1000.0f, "Minimum speed of a particle");
    MaxSpeed = Parameters.Add_Float(101, "Max Speed", 100.0f, 0.0f, 1000.0f, "Maximum speed of a particle");
}

void vrMKPSpeedLimitModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const auto [least, greatest] = std::minmax(MinSpeed->Get_Value(), MaxSpeed->Get_Value());
    const bool invalid = Limit(Run(buffer, span), least, greatest);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPLinearSpeedModifier::vrMKPLinearSpeedModifier()
{
    StartSpeed = Parameters.Add_Float(200, "Start Speed", 0.0f, 0.0f, 1000.0f, "Starting speed");
    EndSpeed = Parameters.Add_Float(201, "End Speed", 20.0f, 0.0f, 1000.0f, "Ending speed");
}

void vrMKPLinearSpeedModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Run run(buffer, span);
    const float start = StartSpeed->Get_Value();
    const float end = EndSpeed->Get_Value();
    const bool invalid =
        Is_Smooth() ? Set_Smooth_Speed(run, Get_Weight(), start, end) : Set_Linear_Speed(run, Get_Weight(), start, end);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPKeyedFrictionModifier::vrMKPKeyedFrictionModifier()
{
    Friction = Parameters.Add_Keyed_Float(300, "Friction", "Friction coefficients - higher means more slowdown");
}

void vrMKPKeyedFrictionModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    float frictions[MKP_CURVE_BLOCK];
    bool invalid = false;
    For_Each_Curve_Block(span, [&](int first, int count) {
        const Run run(buffer, {first, count});
        Friction->Evaluate_Many(run.Time, count, Is_Smooth(), frictions);
        invalid |= Brake(run, frictions, buffer.State->FrameTime);
    });
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}
