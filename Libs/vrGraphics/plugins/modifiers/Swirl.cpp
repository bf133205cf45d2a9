#include "vrGraphics/plugins/modifiers/Swirl.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

namespace
{

using namespace Motion;

Vector3Parameter *Add_Axis(ParameterListClass &parameters)
{
    return parameters.Add_Vector3(200, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis to spin around");
}

struct Vortex
{
    Vector3 Axis; ///< in the renderable's frame, as all that follows; of unit length
    float FrameTime;
    float Speed;
};

struct Funnel
{
    Vector3 Axis;
    float Start, Length;
    float StartSpeed, EndSpeed;
    float StartRadius, EndRadius;
    float Thickness;
    float SpeedVariation;
};

struct Torus
{
    Vector3 Axis;
    float Radius, TubeRadius, Thickness;
    float InnerSpeed, OuterSpeed, SpeedVariation;
};

MK_INLINE float Lerp(float from, float to, float fraction)
{
    return from + (to - from) * fraction;
}

template <bool World>
MK_INLINE bool Spin(const Run &run, const Vortex &from, const vrMKPRenderState &state)
{
    const Vortex vortex = from;
    const Mat3DClass toLocal = state.InverseTransform;
    const Mat3DClass toWorld = state.Transform;
    const auto kernel = [&](int, const Vector3 &position, Vector3 &push) MK_INLINE_LAMBDA {
        const Vector3 place = World ? Map(toLocal, position) : position;
        const float distance = std::sqrt(Dot(place, place));
        const Vector3 direction = Times(place, 1.0f / distance);
        const Vector3 outward = Minus(direction, Times(vortex.Axis, Dot(direction, vortex.Axis)));
        const Vector3 tangent = Particle::Unit(Cross(vortex.Axis, outward));
        const Vector3 local = Times(Times(tangent, vortex.FrameTime), vortex.Speed);
        push = World ? Turn(toWorld, local) : local;
        return As_Mask(distance > 0.1f);
    };
    return Accelerate(run, kernel).Velocity;
}
MK_SIMD bool Spin_Local(const Run &run, const Vortex &vortex, const vrMKPRenderState &state)
{
    return Spin<false>(run, vortex, state);
}
MK_SIMD bool Spin_World(const Run &run, const Vortex &vortex, const vrMKPRenderState &state)
{
    return Spin<true>(run, vortex, state);
}

/// The bits from `low` on, five of them, with their sign.
MK_INLINE float Signed_Five_Bits(uint32_t id, int low)
{
    return static_cast<float>(static_cast<int32_t>(id << (27 - low)) >> 27);
}

/// Moves particles in the renderable's frame: `shape(ID, position, velocity)` as a kernel.
template <bool World, typename Shape>
MK_INLINE bool Hold(const Run &run, const vrMKPRenderState &state, const Shape &shape)
{
    const Mat3DClass toLocal = state.InverseTransform;
    const Mat3DClass toWorld = state.Transform;
    const uint32_t *__restrict ids = run.ID;
    return Move(run, [&](int i, Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        Vector3 place = World ? Map(toLocal, position) : position;
        Vector3 course = World ? Turn(toLocal, velocity) : velocity;
        const uint32_t held = shape(ids[i], place, course);
        position = World ? Map(toWorld, place) : place;
        velocity = World ? Turn(toWorld, course) : course;
        return held;
    });
}

template <bool World>
MK_INLINE bool Hold_In_Funnel(const Run &run, const Funnel &from, const vrMKPRenderState &state)
{
    const Funnel funnel = from;
    const Vector3 axis = funnel.Axis;
    return Hold<World>(run, state, [&](uint32_t id, Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        const float height = Dot(position, axis);
        const Vector3 across = Minus(position, Times(axis, height));
        const Vector3 substitute =
            Cross(Particle::Unit({Signed_Five_Bits(id, 0), Signed_Five_Bits(id, 5), Signed_Five_Bits(id, 10)}), axis);
        const bool onAxis = Dot(across, across) == 0.0f;
        const Vector3 unit = Particle::Unit(across);
        const Vector3 outward(onAxis ? substitute.x : unit.x, onAxis ? substitute.y : unit.y,
                              onAxis ? substitute.z : unit.z);
        const float t = (height - funnel.Start) / funnel.Length;
        const float fraction = Particle::Unit_ID(id);
        const float outer = Lerp(funnel.StartRadius, funnel.EndRadius, t);
        const float inner = outer - outer * funnel.Thickness;
        const float radius = (outer - inner) * fraction + inner;
        const float variation =
            fraction * (funnel.SpeedVariation - (-funnel.SpeedVariation)) + (-funnel.SpeedVariation);
        const float speed = Lerp(funnel.StartSpeed, funnel.EndSpeed, t) + variation;
        position = Plus(Times(axis, height), Times(outward, radius));
        velocity = Plus(Times(axis, Dot(velocity, axis)), Times(Cross(axis, outward), speed));
        return As_Mask(t >= 0.0f) & As_Mask(t <= 1.0f);
    });
}
MK_SIMD bool Funnel_Local(const Run &run, const Funnel &funnel, const vrMKPRenderState &state)
{
    return Hold_In_Funnel<false>(run, funnel, state);
}
MK_SIMD bool Funnel_World(const Run &run, const Funnel &funnel, const vrMKPRenderState &state)
{
    return Hold_In_Funnel<true>(run, funnel, state);
}

template <bool World>
MK_INLINE bool Hold_On_Torus(const Run &run, const Torus &from, const vrMKPRenderState &state)
{
    constexpr float UNIT_BYTE = 0.003921569f;
    const Torus torus = from;
    const Vector3 axis = torus.Axis;
    return Hold<World>(run, state, [&](uint32_t id, Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        const float depth = static_cast<float>(static_cast<int32_t>(id & 0xff)) * UNIT_BYTE;
        const float pace = static_cast<float>(static_cast<int32_t>(id >> 8 & 0xff)) * UNIT_BYTE;
        const Vector3 outward = Particle::Unit(Minus(position, Times(axis, Dot(position, axis))));
        const Vector3 tangent = Cross(axis, outward);
        const Vector3 center = Times(outward, torus.Radius);
        const Vector3 up = Particle::Unit(Minus(position, center));
        const float tube = torus.TubeRadius - depth * torus.Thickness * torus.TubeRadius;
        const float mean = (1.0f - depth) * torus.OuterSpeed + depth * torus.InnerSpeed;
        const float speed = (pace * 2.0f - 1.0f) * mean * torus.SpeedVariation + mean;
        velocity = Times(Cross(tangent, up), speed);
        position = Plus(Times(up, tube), center);
        return TOUCHED;
    });
}
MK_SIMD bool Torus_Local(const Run &run, const Torus &torus, const vrMKPRenderState &state)
{
    return Hold_On_Torus<false>(run, torus, state);
}
MK_SIMD bool Torus_World(const Run &run, const Torus &torus, const vrMKPRenderState &state)
{
    return Hold_On_Torus<true>(run, torus, state);
}

} // namespace

vrMKPVortexModifier::vrMKPVortexModifier()
{
    Axis = Add_Axis(Parameters);
    Speed = Parameters.Add_Float(201, "Speed", 3.0f, 0.01f, 100.0f, "Speed to spin around axis at");
    IsLocal = Parameters.Add_Bool(202, "Local Space", false, "Is this acceleration local to the group");
}

void vrMKPVortexModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 &axis = Axis->Get_Value();
    const Vortex vortex = {Particle::Unit(IsLocal->Get_Value() ? axis : state.InverseTransform.Rotate(axis)),
                           state.FrameTime, Speed->Get_Value()};
    const Run run(buffer, span);
    const bool invalid = buffer.Is_World() ? Spin_World(run, vortex, state) : Spin_Local(run, vortex, state);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPFunnelModifier::vrMKPFunnelModifier()
{
    Axis = Add_Axis(Parameters);
    StartDistance = Parameters.Add_Float(
        210, "Start Distance", 0.0f, -1000.0f, 1000.0f,
        "Distance from the center of the group at which the funnel starts.\nUntil particles reach "
        "this position, they will have the speed and position of whatever the Creator gave "
        "them.\nOnce they reach this distance, they \"snap\" to the funnel shape and begin to spin.");
    EndDistance = Parameters.Add_Float(
        201, "End Distance", 50.0f, -1000.0f, 1000.0f,
        "Distance from the center of the gruop at which the effect ends.\nOnce particles reach this "
        "position, they continue on at a constant velocity.");
    StartSpeed = Parameters.Add_Float(203, "Start Speed", 10.0f, -1000.0f, 1000.0f,
                                      "Speed to spin around at the base of the funnel");
    EndSpeed = Parameters.Add_Float(204, "End Speed", 100.0f, -1000.0f, 1000.0f,
                                    "Speed to spin around at the end of the funnel");
    StartRadius = Parameters.Add_Float(207, "Radius Start", 15.0f, 0.01f, 500.0f, "Radius of the base of the funnel.");
    EndRadius = Parameters.Add_Float(208, "Radius End", 45.0f, 0.01f, 500.0f, "Radius of the end of the funnel.");
    Thickness = Parameters.Add_Float(205, "Thickness", 0.0f, 0.0f, 1.0f,
                                     "How thick the outer wall of particles shoudl be.\nSet this to 0 for a thin wall, "
                                     "and 1 to have the funnel be completely solid.");
    SpeedVariation = Parameters.Add_Float(209, "Speed vartion", 0.0f, 0.0f, 1000.0f,
                                          "Randomizes the roation speed by +/- this value.\nFor example, a value of 10 "
                                          "will add a random value betwen -10 and +10 to the speed of each particle.");
}

void vrMKPFunnelModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float length = EndDistance->Get_Value() - StartDistance->Get_Value();
    const Funnel funnel = {Particle::Unit(Axis->Get_Value()),
                           StartDistance->Get_Value(),
                           length == 0.0f ? 0.01f : length,
                           StartSpeed->Get_Value(),
                           EndSpeed->Get_Value(),
                           StartRadius->Get_Value(),
                           EndRadius->Get_Value(),
                           Thickness->Get_Value(),
                           SpeedVariation->Get_Value()};
    const Run run(buffer, span);
    const vrMKPRenderState &state = *buffer.State;
    const bool invalid = buffer.Is_World() ? Funnel_World(run, funnel, state) : Funnel_Local(run, funnel, state);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPTorusModifier::vrMKPTorusModifier()
{
    Axis = Add_Axis(Parameters);
    InnerSpeed =
        Parameters.Add_Float(201, "Inner Speed", 10.0f, -1000.0f, 1000.0f, "Speed at deeper parts of the torus.");
    Radius = Parameters.Add_Float(202, "Radius", 10.0f, 0.01f, 500.0f, "Radius of the torus.");
    TubeRadius = Parameters.Add_Float(203, "Tube Radius", 5.0f, 0.01f, 500.0f, "Radius of the tube.");
    Thickness =
        Parameters.Add_Float(204, "Thickness", 0.0f, 0.0f, 1.0f, "How thoroughly to fill the interior of the torus.");
    SpeedVariation = Parameters.Add_Float(205, "Speed Variation", 0.0f, 0.0f, 1.0f, "Randomizes the speed.");
    OuterSpeed = Parameters.Add_Float(206, "Outer Speed", 10.0f, -1000.0f, 1000.0f, "Speed at surface of the torus.");
}

void vrMKPTorusModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Torus torus = {
        Particle::Unit(Axis->Get_Value()), Radius->Get_Value(),     TubeRadius->Get_Value(),    Thickness->Get_Value(),
        InnerSpeed->Get_Value(),           OuterSpeed->Get_Value(), SpeedVariation->Get_Value()};
    const Run run(buffer, span);
    const vrMKPRenderState &state = *buffer.State;
    const bool invalid = buffer.Is_World() ? Torus_World(run, torus, state) : Torus_Local(run, torus, state);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}
