#include "vrGraphics/plugins/modifiers/PositionalColor.h"

#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/modifiers/ColorLoops.h"

namespace
{

using Particle::For_Whole_Registers;

constexpr RGBAClass CLEAR_BLACK = RGBA_From_Bytes(0, 0, 0, 0);
constexpr RGBAClass WHITE = RGBA_From_Bytes(255, 255, 255, 255);

constexpr const char *AXIS_TEXT = "Direction vector along which to tint the particles.";
constexpr const char *START_COLOR_TEXT = "Color at the start.";
constexpr const char *END_COLOR_TEXT = "Color at the end.";

constexpr float LEAST_SPAN = 0.01f; ///< stands in for ends without a span

RangedFloatParameter *Add_Distance(ParameterListClass &parameters, int32_t id, const char *name, float value,
                                   const char *description)
{
    return parameters.Add_Float(id, name, value, -1000.0f, 1000.0f, description);
}

RangedIntParameter *Add_Particle_Count(ParameterListClass &parameters, int32_t id)
{
    return parameters.Add_Int(
        id, "Particle Count", 0, 0, 1000,
        "Particle count at the time of max shading.\nUse this to approximate the effect of "
        "shadows becoming darker as more particles occlude the light source.\nShadows will "
        "gradually increase as the number of particles approaches this value.\nA value of 0 gives "
        "the full shading at any number of particles.");
}

/// Where a value stands between two ends, 0 to 1.
struct Ends
{
    float Start;
    float Scale;

    MK_INLINE float At(float value) const { return Particle::Clamp_01((value - Start) * Scale); }
};

Ends Ends_Between(const RangedFloatParameter &start, const RangedFloatParameter &end)
{
    const float span = end.Get_Value() - start.Get_Value();
    return {start.Get_Value(), 1.0f / (span == 0.0f ? LEAST_SPAN : span)};
}

MK_INLINE float Dot(const Vector3 &a, const Vector3 &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// What is measured about a position, as a weight of 0 to 1.

struct AlongAxis
{
    Vector3 Axis;
    Ends Distances;

    MK_INLINE float At(const Vector3 &position) const { return Distances.At(Dot(position, Axis)); }
};

struct FromPoint
{
    Vector3 Point;
    Ends Distances;

    MK_INLINE float At(const Vector3 &position) const
    {
        const Vector3 way(position.x - Point.x, position.y - Point.y, position.z - Point.z);
        return Distances.At(std::sqrt(Dot(way, way)));
    }
};

/// How much light a surface about a centre takes. A wrap above 1 takes it around to the far side.
template <bool Flat>
struct FacingLight
{
    Vector3 Center;
    Vector3 ToLight;
    float InverseWrap;

    MK_INLINE float At(const Vector3 &position) const
    {
        const float z = Flat ? 0.0f : position.z - Center.z;
        const float facing = Dot(Particle::Unit({position.x - Center.x, position.y - Center.y, z}), ToLight);
        return Particle::Clamp_01(InverseWrap * facing + (1.0f - InverseWrap));
    }
};

/// In another space than that of the particles.
template <typename Measure>
struct Mapped
{
    Mat3DClass Map;
    Measure Inner;

    MK_INLINE float At(const Vector3 &position) const { return Inner.At(Map.Transform(position)); }
};

template <typename Measure>
MK_SIMD void Find_Weights(float *__restrict weights, vrMKPConstVectors positions, int count, Measure measure)
{
    For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { weights[i] = measure.At(positions[i]); });
}

template <typename Measure>
MK_SIMD void Find_Ramp_Colors(vrColor *__restrict colors, vrMKPConstVectors positions, int count, Measure measure,
                              ColorLoops::Ramp ramp)
{
    For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { colors[i] = ramp.At(measure.At(positions[i])); });
}

/// `strength` takes the ramp's colours away from white.
template <typename Measure>
void Multiply_By_Ramp(vrMKPBuffer &buffer, vrMKPSpan span, const Measure &measure, const ColorLoops::Ramp &ramp,
                      float strength = 1.0f)
{
    vrColor factors[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        Find_Ramp_Colors(factors, buffer.Position + first, count, measure, ramp);
        if (strength < 1.0f) ColorLoops::Lerp_From_White(factors, count, strength);
        ColorLoops::Multiply_Many(buffer.Color + first, factors, count);
    });
}

/// By a measure in world space.
template <typename Measure>
void Multiply_By_World_Ramp(vrMKPBuffer &buffer, vrMKPSpan span, const Measure &measure, const ColorLoops::Ramp &ramp,
                            float strength = 1.0f)
{
    if (buffer.Is_World())
        Multiply_By_Ramp(buffer, span, measure, ramp, strength);
    else
        Multiply_By_Ramp(buffer, span, Mapped<Measure>{buffer.State->Transform, measure}, ramp, strength);
}

ColorLoops::Ramp Make_Ramp(const RGBAParameter &from, const RGBAParameter &to)
{
    return {Particle::Pack(from.Get_Value()), Particle::Pack(to.Get_Value())};
}

/// The share of the particles that bring the full effect, at most 1; all of them if there is no such number.
float Crowding(const vrMKPBuffer &buffer, const RangedIntParameter &fullCount)
{
    const int32_t full = fullCount.Get_Value();
    return full == 0 ? 1.0f : Particle::Clamp_01(static_cast<float>(buffer.ActiveCount) / static_cast<float>(full));
}

} // namespace

vrMKPPositionalKeyedColorModifier::vrMKPPositionalKeyedColorModifier()
{
    Axis = Parameters.Add_Vector3(300, "Axis", Vector3(0.0f, 0.0f, 1.0f), AXIS_TEXT);
    StartDistance = Add_Distance(Parameters, 301, "Start Distance", 0.0f,
                                 "Distance from the center of the group at which the color change starts.\nThis "
                                 "corresponds to position 0 in the graph.");
    EndDistance = Add_Distance(Parameters, 302, "End Distance", 10.0f,
                               "Distance from the center of the group at which the color change end.\nThis corresponds "
                               "to position 1 in the graph.");
    Color = Parameters.Add_Keyed_RGBA(303, "Color", "Positionally keyed color of the particle");
}

void vrMKPPositionalKeyedColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Mapped<AlongAxis> mapped{buffer.State->InverseTransform,
                                   {Axis->Get_Value(), Ends_Between(*StartDistance, *EndDistance)}};
    float weights[MKP_CURVE_BLOCK];
    RGBAClass colors[MKP_CURVE_BLOCK];
    vrColor factors[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        if (buffer.Is_World())
            Find_Weights(weights, buffer.Position + first, count, mapped);
        else
            Find_Weights(weights, buffer.Position + first, count, mapped.Inner);
        Color->Evaluate_Many(weights, count, Is_Smooth(), colors);
        ColorLoops::Pack_Many(factors, colors, count);
        ColorLoops::Multiply_Many(buffer.Color + first, factors, count);
    });
}

vrMKPPositionalColorModifier::vrMKPPositionalColorModifier()
{
    Axis = Parameters.Add_Vector3(300, "Axis", Vector3(0.0f, 0.0f, 1.0f), AXIS_TEXT);
    StartDistance = Add_Distance(Parameters, 301, "Start Distance", 0.0f,
                                 "Distance from the center of the group at which the color change starts.");
    EndDistance = Add_Distance(Parameters, 302, "End Distance", 10.0f,
                               "Distance from the center of the group at which the color change ends.");
    StartColor = Parameters.Add_RGBA(303, "Start Color", CLEAR_BLACK, START_COLOR_TEXT);
    EndColor = Parameters.Add_RGBA(304, "End Color", WHITE, END_COLOR_TEXT);
}

void vrMKPPositionalColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Vector3 &axis = Axis->Get_Value();
    const AlongAxis measure{buffer.Is_World() ? buffer.State->Transform.Rotate(axis) : axis,
                            Ends_Between(*StartDistance, *EndDistance)};
    Multiply_By_Ramp(buffer, span, measure, Make_Ramp(*StartColor, *EndColor));
}

vrMKPNearAndFarColorModifier::vrMKPNearAndFarColorModifier()
{
    NearDistance = Add_Distance(Parameters, 300, "Near Distance", 10.0f,
                                "Distance from the center of the group at which the color change starts.");
    FarDistance = Add_Distance(Parameters, 301, "Far Distance", -10.0f,
                               "Distance from the center of the group at which the color change ends.");
    NearColor = Parameters.Add_RGBA(302, "Near Color", WHITE, START_COLOR_TEXT);
    FarColor = Parameters.Add_RGBA(303, "Far Color", CLEAR_BLACK, END_COLOR_TEXT);
}

void vrMKPNearAndFarColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 toCamera = state.Camera.Get_Translation() - state.Get_Position();
    const Vector3 axis = Particle::Unit({toCamera.x, toCamera.y, 0.0f});
    const AlongAxis measure{buffer.Is_World() ? axis : state.InverseTransform.Rotate(axis),
                            Ends_Between(*NearDistance, *FarDistance)};
    Multiply_By_Ramp(buffer, span, measure, Make_Ramp(*NearColor, *FarColor));
}

vrMKPDepthColorModifier::vrMKPDepthColorModifier()
{
    NearDepth = Parameters.Add_Float(300, "Near Depth", 10.0f, 0.0f, 10000.0f,
                                     "Distance from the camera at which the color change starts.");
    FarDepth = Parameters.Add_Float(301, "Far Depth", 1200.0f, 0.0f, 10000.0f,
                                    "Distance from the camera at which the color change ends.");
    NearColor = Parameters.Add_RGBA(302, "Near Color", WHITE, START_COLOR_TEXT);
    FarColor = Parameters.Add_RGBA(303, "Far Color", CLEAR_BLACK, END_COLOR_TEXT);
}

void vrMKPDepthColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 camera = state.Camera.Get_Translation();
    const FromPoint measure{buffer.Is_World() ? camera : state.InverseTransform.Transform(camera),
                            Ends_Between(*NearDepth, *FarDepth)};
    Multiply_By_Ramp(buffer, span, measure, Make_Ramp(*NearColor, *FarColor));
}

vrMKPLitColorModifier::vrMKPLitColorModifier(int32_t particleCountId)
{
    LightColor = Parameters.Add_RGBA(0, "Light Color", WHITE, "Color of the lit portions of the system.");
    ShadowColor = Parameters.Add_RGBA(1, "Shadow Color", RGBA_From_Bytes(96, 96, 96, 255),
                                      "Color at the dark portions of the system.");
    LightWrap = Parameters.Add_Float(2, "Light Wrap", 2.0f, 1.0f, 8.0f,
                                     "Amount to extend the light around the surface.\nA value of 1 creates normal "
                                     "lighting, 2 creates softer lighting, etc.");
    ParticleCount = Add_Particle_Count(Parameters, particleCountId);
}

template <bool Flat>
void vrMKPLitColorModifier::Light(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    if (!state.HasSun) return;
    const vrColor light = Particle::Pack(LightColor->Get_Value());
    const vrColor shadow = Particle::Pack(ShadowColor->Get_Value());
    const int32_t occlusion = Particle::Fixed_Weight(Crowding(buffer, *ParticleCount));
    const FacingLight<Flat> measure{buffer.SmoothedCentroid, state.SunDirection, 1.0f / LightWrap->Get_Value()};
    Multiply_By_World_Ramp(buffer, span, measure, {Particle::Lerp_Color(light, shadow, occlusion), light});
}

vrMKPCylindricalColorModifier::vrMKPCylindricalColorModifier() : vrMKPLitColorModifier(3)
{
}

void vrMKPCylindricalColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Light<true>(buffer, span);
}

vrMKPSphericalColorModifier::vrMKPSphericalColorModifier() : vrMKPLitColorModifier(7)
{
}

void vrMKPSphericalColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Light<false>(buffer, span);
}

vrMKPRadialColorModifier::vrMKPRadialColorModifier()
{
    StartColor = Parameters.Add_RGBA(0, "Start Color", RGBA_From_Bytes(128, 128, 128, 255), "Color near the centroid.");
    EndColor = Parameters.Add_RGBA(1, "End Color", WHITE, "Color far from the centroid.");
    StartRadius = Parameters.Add_Float(2, "Start Radius", 0.0f, 0.0f, 1000.0f,
                                       "Start distance of the color (nearer the centroid).");
    EndRadius = Parameters.Add_Float(3, "End Radius", 10.0f, 0.0f, 1000.0f,
                                     "End distance of the color (farthest from the centroid)");
    ParticleCount = Add_Particle_Count(Parameters, 5);
}

void vrMKPRadialColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float difference = EndRadius->Get_Value() - StartRadius->Get_Value();
    const Ends radii{StartRadius->Get_Value(), 1.0f / (difference <= 0.0f ? LEAST_SPAN : difference)};
    Multiply_By_World_Ramp(buffer, span, FromPoint{buffer.SmoothedCentroid, radii}, Make_Ramp(*StartColor, *EndColor),
                           Crowding(buffer, *ParticleCount));
}
