#include "vrGraphics/plugins/modifiers/Attractors.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

namespace
{

using namespace Motion;

constexpr const char *CONSTANT_TEXT = "Constant attraction factor";
constexpr const char *LINEAR_TEXT = "Linear attraction constant";
constexpr const char *INVERSE_TEXT = "Inverse linear attraction constant";

/// Ids in a row. Negative values attract.
void Add_Attraction(ParameterListClass &parameters, vrMKPDistanceLaw &law, int32_t firstId)
{
    law.Constant = parameters.Add_Float(firstId, "Constant Attraction", 0.0f, -1000.0f, 1000.0f, CONSTANT_TEXT);
    law.Linear = parameters.Add_Float(firstId + 1, "Linear Attraction", 0.0f, -100.0f, 0.0f, LINEAR_TEXT);
    law.Inverse = parameters.Add_Float(firstId + 2, "Inv. Linear Attraction", 0.0f, -1000.0f, 1000.0f, INVERSE_TEXT);
}

/// Ids in a row.
void Add_Cutoffs(ParameterListClass &parameters, vrMKPDistanceLaw &law, int32_t firstId)
{
    law.InnerCutoff = parameters.Add_Float(firstId, "Inner Cutoff Dist.", 5.0f, 0.0f, 10000.0f,
                                           "Inner distance that the attractor has no influence");
    law.OuterCutoff = parameters.Add_Float(firstId + 1, "Outer Cutoff Dist.", 10000.0f, 0.0f, 10000.0f,
                                           "Outer distance after which the attractor has no influence");
}

Vector3Parameter *Add_Axis(ParameterListClass &parameters)
{
    return parameters.Add_Vector3(200, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis of rotational acceleration.");
}

/// What a loop about a target needs. All of it is in the space of the buffer.
struct Field
{
    Field(const vrMKPDistanceLaw &law, const vrMKPBuffer &buffer, const Vector3 &target)
        : Target(target), FrameTime(buffer.State->FrameTime), Constant(law.Constant->Get_Value()),
          Linear(law.Linear->Get_Value()), Inverse(law.Inverse->Get_Value()), Inner(law.InnerCutoff->Get_Value()),
          Outer(law.OuterCutoff->Get_Value())
    {
    }

    MK_INLINE uint32_t Reaches(float distance) const
    {
        return As_Mask(distance != 0.0f) & As_Mask(distance > Inner) & As_Mask(distance < Outer);
    }
    /// `inverse` is the term that falls with the distance.
    MK_INLINE Vector3 Push_Along(const Vector3 &direction, float inverse, float distance) const
    {
        return Times(Times(direction, inverse + Constant + distance * Linear), FrameTime);
    }

    Vector3 Target;
    Vector3 Axis{0.0f}; ///< of unit length
    float FrameTime;
    float Constant, Linear, Inverse, Inner, Outer;
};

void Report(const Faults &faults)
{
    // A fault of an acceleration always shows in the velocity.
    MK_ASSERT(!(faults.Push && faults.Velocity), "acc.Is_Valid()");
    MK_ASSERT(!faults.Velocity, "vel.Is_Valid()");
}

MK_SIMD bool Push_From(const Run &run, const Vector3 &from, float strength)
{
    const Vector3 center = from;
    const auto kernel = [=](int, const Vector3 &position, Vector3 &push) MK_INLINE_LAMBDA {
        push = Times(Particle::Unit(Minus(position, center)), strength);
        return TOUCHED;
    };
    return Accelerate(run, kernel).Velocity;
}

/// A push by `direct(way from the target, inverse)`, which answers the distance, turns the way into a unit direction
/// and writes the term that falls with the distance.
template <typename Direct>
MK_INLINE Faults Push_In_Field(const Run &run, const Field &source, const Direct &direct)
{
    const Field field = source;
    return Accelerate(run, [=](int, const Vector3 &position, Vector3 &push) MK_INLINE_LAMBDA {
        Vector3 way = Minus(position, field.Target);
        float inverse;
        const float distance = direct(way, inverse);
        push = field.Push_Along(way, inverse, distance);
        return field.Reaches(distance);
    });
}

MK_SIMD Faults Push_From_Point(const Run &run, const Field &field)
{
    const float factor = field.Inverse;
    return Push_In_Field(run, field, [=](Vector3 &way, float &inverse) MK_INLINE_LAMBDA {
        const float distance = std::sqrt(Dot(way, way));
        way = Particle::Unit(way);
        inverse = 1.0f / distance * factor;
        return distance;
    });
}

MK_SIMD Faults Push_From_Axis(const Run &run, const Field &field)
{
    const Vector3 axis = field.Axis;
    const float factor = field.Inverse;
    return Push_In_Field(run, field, [=](Vector3 &way, float &inverse) MK_INLINE_LAMBDA {
        way = Minus(way, Times(axis, Dot(way, axis)));
        const float distance = std::sqrt(Dot(way, way));
        inverse = factor / distance;
        way = Particle::Unit(way);
        return distance;
    });
}

MK_SIMD Faults Push_Around_Axis(const Run &run, const Field &field)
{
    const Vector3 axis = field.Axis;
    const float factor = field.Inverse;
    return Push_In_Field(run, field, [=](Vector3 &way, float &inverse) MK_INLINE_LAMBDA {
        way = Minus(way, Times(axis, Dot(way, axis)));
        const float distance = std::sqrt(Dot(way, way));
        inverse = factor / distance;
        way = Cross(axis, Particle::Unit(way));
        return distance;
    });
}

MK_INLINE uint32_t Is_Nearly_Zero(const Vector3 &vector)
{
    return As_Mask(std::abs(vector.x) <= 0.0001f) & As_Mask(std::abs(vector.y) <= 0.0001f) &
           As_Mask(std::abs(vector.z) <= 0.0001f);
}

/// The acceleration at a place, and how far that is from the target.
MK_INLINE Vector3 Push_At(const Field &field, const Vector3 &position, Vector3 &direction, float &distance)
{
    const Vector3 way = Minus(position, field.Target);
    distance = std::sqrt(Dot(way, way));
    direction = Particle::Unit(way);
    return field.Push_Along(direction, 1.0f / distance * field.Inverse, distance);
}

MK_SIMD Faults Turn_From_Point(const Run &run, const Field &source)
{
    const Field field = source;
    Faults faults;
    faults.Velocity = Push(run, [=](int, const Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        Vector3 direction;
        float distance;
        const Vector3 acceleration = Push_At(field, position, direction, distance);
        const float speed = std::sqrt(Dot(velocity, velocity));
        const Vector3 turned = Plus(velocity, acceleration);
        const Vector3 course = Select_Bits(Is_Nearly_Zero(turned), direction, turned);
        velocity = Times(Particle::Unit(course), speed);
        return field.Reaches(distance);
    });
    for (int i = 0; faults.Velocity && i < run.Count; ++i) {
        Vector3 direction;
        float distance;
        const Vector3 acceleration = Push_At(field, run.Position[i], direction, distance);
        faults.Push |= field.Reaches(distance) != 0 && Is_Invalid(acceleration);
    }
    return faults;
}

MK_SIMD bool Speed_Up(const Run &run, const Field &source, float distanceOffset)
{
    const Field field = source;
    return Push(run, [=](int, const Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        const Vector3 way = Minus(position, field.Target);
        const float distance = std::sqrt(Dot(way, way)) + distanceOffset;
        const float gain = (field.Inverse / distance + field.Constant + distance * field.Linear) * field.FrameTime;
        velocity = Times(Particle::Unit(velocity), std::sqrt(Dot(velocity, velocity)) + gain);
        return field.Reaches(distance);
    });
}

} // namespace

vrMKPAttractAccelerationModifier::vrMKPAttractAccelerationModifier()
{
    Attract = Parameters.Add_Float(200, "Attract", -1.0f, -1000.0f, 1000.0f,
                                   "Acceleration in units per second second, positive for repulsion");
}

void vrMKPAttractAccelerationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Vector3 center = buffer.Is_World() ? buffer.State->Get_Position() : Vector3(0.0f);
    const float strength = Attract->Get_Value() * buffer.State->FrameTime;
    const bool invalid = Push_From(Run(buffer, span), center, strength);
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

vrMKPAttractorModifier::vrMKPAttractorModifier()
{
    Add_Attraction(Parameters, Law, 200);
    Add_Cutoffs(Parameters, Law, 203);
    Swim = Parameters.Add_Bool(205, "Swim", false,
                               "Causes particles to maintain speed while only velocity direction is altered by the "
                               "attractor");
}

void vrMKPAttractorModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    const Field field(Law, buffer, Get_Buffer_Target(buffer, index));
    const Run run(buffer, span);
    Report(Swim->Get_Value() ? Turn_From_Point(run, field) : Push_From_Point(run, field));
}

vrMKPAxisAttractorModifier::vrMKPAxisAttractorModifier()
{
    Axis = Add_Axis(Parameters);
    Add_Attraction(Parameters, Law, 201);
    Add_Cutoffs(Parameters, Law, 204);
}

void vrMKPAxisAttractorModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    Field field(Law, buffer, Get_Buffer_Target(buffer, index));
    field.Axis = Particle::Unit(Axis->Get_Value());
    Report(Push_From_Axis(Run(buffer, span), field));
}

vrMKPTorqueModifier::vrMKPTorqueModifier()
{
    Axis = Add_Axis(Parameters);
    Law.Constant =
        Parameters.Add_Float(201, "Constant Acceleration", 0.0f, -1000.0f, 1000.0f, "Constant Acceleration factor");
    Law.Linear = Parameters.Add_Float(202, "Linear Acceleration", 0.0f, -2.0f, 2.0f, "Linear Acceleration constant");
    Law.Inverse = Parameters.Add_Float(203, "Inv. Linear Acceleration", 0.0f, -1000.0f, 1000.0f,
                                       "Inverse linear Acceleration constant");
    Add_Cutoffs(Parameters, Law, 204);
}

void vrMKPTorqueModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    Field field(Law, buffer, Get_Buffer_Target(buffer, index));
    field.Axis = Particle::Unit(Axis->Get_Value());
    Report(Push_Around_Axis(Run(buffer, span), field));
}

vrMKPTargetAccelerationFieldModifier::vrMKPTargetAccelerationFieldModifier()
{
    Law.Constant = Parameters.Add_Float(200, "Constant Acceleration", 0.0f, 0.0f, 1000.0f, CONSTANT_TEXT);
    Law.Linear = Parameters.Add_Float(201, "Linear Acceleration", 0.0f, 0.0f, 100.0f, LINEAR_TEXT);
    Law.Inverse = Parameters.Add_Float(202, "Inv. Linear Acceleration", 0.0f, 0.0f, 1000.0f, INVERSE_TEXT);
    Add_Cutoffs(Parameters, Law, 203);
    DistanceOffset = Parameters.Add_Float(205, "Distance Offset", 0.0f, -500.0f, 500.0f,
                                          "Amount to offset calculated distance by to create different speed effects.");
}

void vrMKPTargetAccelerationFieldModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    const Field field(Law, buffer, Get_Buffer_Target(buffer, index));
    const bool invalid = Speed_Up(Run(buffer, span), field, DistanceOffset->Get_Value());
    MK_ASSERT(!invalid, "vel.Is_Valid()");
}
