#include "vrGraphics/plugins/modifiers/SizeModifiers.h"

#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <algorithm>
#include <bit>

namespace
{

constexpr const char *START_TEXT = "Starting size";
constexpr const char *END_TEXT = "Ending size";
constexpr const char *UNIFORM_VARIATION_TEXT = "Size Variation Percentage";
constexpr const char *WIDTH_VARIATION_TEXT = "Width Variation Percentage";
constexpr const char *HEIGHT_VARIATION_TEXT = "Height Variation Percentage";

constexpr float LEAST_DIFFERENCE = 0.0001f; ///< ends that are nearer count as one size
constexpr float LEAST_SPAN = 0.01f;         ///< stands in for distances without a span

RangedFloatParameter *Add_Size(ParameterListClass &parameters, int32_t id, const char *name, const char *description)
{
    return parameters.Add_Float(id, name, 1.0f, 0.0f, 200.0f, description);
}

RangedFloatParameter *Add_Constant_Size(ParameterListClass &parameters, int32_t id, const char *name,
                                        const char *description)
{
    return parameters.Add_Float(id, name, 1.0f, 0.0f, 1000.0f, description);
}

/// A fraction: 0.25 varies a size by a quarter either way.
RangedFloatParameter *Add_Variation(ParameterListClass &parameters, int32_t id, const char *name,
                                    const char *description)
{
    return parameters.Add_Float(id, name, 0.0f, 0.0f, 1.0f, description);
}

BoolParameter *Add_Scale_By_Target_Radius(ParameterListClass &parameters, int32_t id)
{
    return parameters.Add_Bool(id, "Scale by Target Radius", false,
                               "Multiply the size by the target radius passed in from XML.");
}

float Radius_Factor(const BoolParameter &scaleByTargetRadius, const vrMKPBuffer &buffer)
{
    return scaleByTargetRadius.Get_Value() ? buffer.State->Get_Target_Radius() : 1.0f;
}

// A size is a float, for both width and height, or a Vector2 of the two. Its sources tell it of a particle by its place
// in the run.

template <typename Size>
struct ConstantSize
{
    Size Value;

    MK_INLINE Size At(int) const { return Value; }
};

template <bool Smooth, typename Size>
struct LinearSize
{
    const float *Times;
    vrMKPLinearWeight Weight;
    Size Start;
    Size Difference;

    MK_INLINE Size At(int i) const { return Difference * Weight.At<Smooth>(Times[i]) + Start; }
};

struct KeyedSize
{
    const float *Values;
    float Scale;

    MK_INLINE float At(int i) const { return Values[i] * Scale; }
};

struct KeyedWidthAndHeight
{
    const float *Widths;
    const float *Heights;
    float Scale;

    MK_INLINE Vector2 At(int i) const { return {Widths[i] * Scale, Heights[i] * Scale}; }
};

MK_INLINE float Factor(uint32_t id, float variation)
{
    return Particle::Signed_Factor(id, variation) + 1.0f;
}
MK_INLINE Vector2 Factor(uint32_t id, const Vector2 &variation)
{
    return {Factor(Particle::Width_Bits(id), variation.x), Factor(Particle::Height_Bits(id), variation.y)};
}

MK_INLINE Vector2 Both(float size)
{
    return {size, size};
}
MK_INLINE Vector2 Both(const Vector2 &size)
{
    return size;
}

/// The same pair of floats to all.
MK_SIMD void Write_Same(float *__restrict sizes, int count, float width, float height)
{
    if (std::bit_cast<uint32_t>(width) == std::bit_cast<uint32_t>(height)) {
        std::fill_n(sizes, count * 2, width);
        return;
    }
    for (int i = 0; i < count; ++i) {
        sizes[2 * i] = width;
        sizes[2 * i + 1] = height;
    }
}

template <typename Source>
MK_SIMD void Write_Plain(Vector2 *__restrict sizes, int count, Source source)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { sizes[i] = Both(source.At(i)); });
}

template <typename Source, typename Size>
MK_SIMD void Write_Varied(Vector2 *__restrict sizes, const uint32_t *__restrict ids, int count, Source source,
                          Size variation)
{
    Particle::For_Whole_Registers(
        count, [&](int i) MK_INLINE_LAMBDA { sizes[i] = Both(source.At(i) * Factor(ids[i], variation)); });
}

template <typename Source, typename Size>
void Write_Sizes(vrMKPBuffer &buffer, vrMKPSpan span, const Source &source, const Size &variation)
{
    // A factor of 1 is exact, and can be left out.
    if (variation == Size(0.0f))
        Write_Plain(buffer.Size + span.First, span.Count, source);
    else
        Write_Varied(buffer.Size + span.First, buffer.ID + span.First, span.Count, source, variation);
}

/// What to add over the way from start to end. Ends that count as one stay at the start, to the sign of a zero.
float Difference(float start, float end)
{
    const float difference = end - start;
    return std::fabs(difference) > LEAST_DIFFERENCE ? difference : -0.0f;
}
Vector2 Difference(const Vector2 &start, const Vector2 &end)
{
    return {Difference(start.x, end.x), Difference(start.y, end.y)};
}

template <typename Size>
void Write_Constant_Sizes(vrMKPBuffer &buffer, vrMKPSpan span, const Size &size, const Size &variation)
{
    if (variation != Size(0.0f)) return Write_Sizes(buffer, span, ConstantSize<Size>{size}, variation);
    const Vector2 both = Both(size);
    Write_Same(&buffer.Size[span.First].x, span.Count, both.x, both.y);
}

template <typename Size>
void Write_Linear_Sizes(vrMKPBuffer &buffer, vrMKPSpan span, const vrMKPLinearWeight &weight, bool smooth,
                        const Size &start, const Size &end, const Size &variation)
{
    const float *times = buffer.Time + span.First;
    const Size difference = Difference(start, end);
    if (difference == Size(0.0f))
        Write_Constant_Sizes(buffer, span, start, variation);
    else if (smooth)
        Write_Sizes(buffer, span, LinearSize<true, Size>{times, weight, start, difference}, variation);
    else
        Write_Sizes(buffer, span, LinearSize<false, Size>{times, weight, start, difference}, variation);
}

/// Where particles stand between two radii around a centre, 0 to 1.
struct SphericalTime
{
    Mat3DClass ToWorld;
    Vector3 Center;
    float Start;
    float Span;

    MK_INLINE float At(const Vector3 &worldPosition) const
    {
        const float x = worldPosition.x - Center.x;
        const float y = worldPosition.y - Center.y;
        const float z = worldPosition.z - Center.z;
        return Particle::Clamp_01((std::sqrt(x * x + y * y + z * z) - Start) / Span);
    }
};

template <bool World>
MK_SIMD void Find_Spherical_Times(float *__restrict times, vrMKPConstVectors positions, int count,
                                  SphericalTime spherical)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const Vector3 position = positions[i];
        times[i] = spherical.At(World ? position : spherical.ToWorld.Transform(position));
    });
}

struct NearAndFar
{
    Vector3 Axis;
    float Near;
    float Span;
    float NearSize;
    float Difference;
};

MK_SIMD void Write_Near_And_Far(Vector2 *__restrict sizes, vrMKPConstVectors positions, int count, NearAndFar ramp)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const Vector3 position = positions[i];
        const float distance = position.x * ramp.Axis.x + position.y * ramp.Axis.y + position.z * ramp.Axis.z;
        const float size = ramp.NearSize + Particle::Clamp_01((distance - ramp.Near) / ramp.Span) * ramp.Difference;
        sizes[i] = {size, size};
    });
}

} // namespace

vrMKPLinearUniformSizeModifier::vrMKPLinearUniformSizeModifier()
{
    StartSize = Add_Size(Parameters, 200, "Start Size", START_TEXT);
    EndSize = Add_Size(Parameters, 201, "End Size", END_TEXT);
    Variation = Add_Variation(Parameters, 202, "Size Variation", UNIFORM_VARIATION_TEXT);
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 203);
}

void vrMKPLinearUniformSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    Write_Linear_Sizes(buffer, span, Get_Weight(), Is_Smooth(), StartSize->Get_Value() * radius,
                       EndSize->Get_Value() * radius, Variation->Get_Value());
}

vrMKPLinearSizeModifier::vrMKPLinearSizeModifier()
{
    StartWidth = Add_Size(Parameters, 200, "Start Width", START_TEXT);
    EndWidth = Add_Size(Parameters, 201, "End Width", END_TEXT);
    WidthVariation = Add_Variation(Parameters, 202, "Width Variation", WIDTH_VARIATION_TEXT);
    StartHeight = Add_Size(Parameters, 203, "Start Height", START_TEXT);
    EndHeight = Add_Size(Parameters, 204, "End Height", END_TEXT);
    HeightVariation = Add_Variation(Parameters, 205, "Height Variation", HEIGHT_VARIATION_TEXT);
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 206);
}

void vrMKPLinearSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    const Vector2 start(StartWidth->Get_Value() * radius, StartHeight->Get_Value() * radius);
    const Vector2 end(EndWidth->Get_Value() * radius, EndHeight->Get_Value() * radius);
    const Vector2 variation(WidthVariation->Get_Value(), HeightVariation->Get_Value());
    Write_Linear_Sizes(buffer, span, Get_Weight(), Is_Smooth(), start, end, variation);
}

vrMKPConstantUniformSizeModifier::vrMKPConstantUniformSizeModifier()
{
    Size = Add_Constant_Size(Parameters, 200, "Size", "Size of a particle.");
    Variation = Add_Variation(Parameters, 201, "Size Variation", "Percentage to vary the size by.");
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 202);
}

void vrMKPConstantUniformSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    Write_Constant_Sizes(buffer, span, Size->Get_Value() * radius, Variation->Get_Value());
}

vrMKPConstantSizeModifier::vrMKPConstantSizeModifier()
{
    Width = Add_Constant_Size(Parameters, 200, "Width", "Width of a particle.");
    Height = Add_Constant_Size(Parameters, 201, "Height", "Height of a particle.");
    WidthVariation = Add_Variation(Parameters, 202, "Width Variation", "Percentage to vary the width by.");
    HeightVariation = Add_Variation(Parameters, 203, "Height Variation", "Percentage to vary the height by.");
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 204);
}

void vrMKPConstantSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    const Vector2 size(Width->Get_Value() * radius, Height->Get_Value() * radius);
    const Vector2 variation(WidthVariation->Get_Value(), HeightVariation->Get_Value());
    Write_Constant_Sizes(buffer, span, size, variation);
}

vrMKPKeyedUniformSizeModifier::vrMKPKeyedUniformSizeModifier()
{
    Size = Parameters.Add_Keyed_Float(300, "Size", "Size of particle");
    Variation = Add_Variation(Parameters, 301, "Size Variation", UNIFORM_VARIATION_TEXT);
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 302);
}

void vrMKPKeyedUniformSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    float values[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        Size->Evaluate_Many(buffer.Time + first, count, Is_Smooth(), values);
        Write_Sizes(buffer, {first, count}, KeyedSize{values, radius}, Variation->Get_Value());
    });
}

vrMKPKeyedWidthAndHeightModifier::vrMKPKeyedWidthAndHeightModifier()
{
    Width = Parameters.Add_Keyed_Float(300, "Width", "Width of particle");
    Height = Parameters.Add_Keyed_Float(301, "Height", "Height of particle");
    WidthVariation = Add_Variation(Parameters, 302, "Width Variation", WIDTH_VARIATION_TEXT);
    HeightVariation = Add_Variation(Parameters, 303, "Height Variation", HEIGHT_VARIATION_TEXT);
}

void vrMKPKeyedWidthAndHeightModifier::Write_Keyed_Sizes(vrMKPBuffer &buffer, int first, int count, const float *times,
                                                         float scale) const
{
    float widths[MKP_CURVE_BLOCK];
    float heights[MKP_CURVE_BLOCK];
    Width->Evaluate_Many(times, count, Is_Smooth(), widths);
    Height->Evaluate_Many(times, count, Is_Smooth(), heights);
    const Vector2 variation(WidthVariation->Get_Value(), HeightVariation->Get_Value());
    Write_Sizes(buffer, {first, count}, KeyedWidthAndHeight{widths, heights, scale}, variation);
}

vrMKPKeyedSizeModifier::vrMKPKeyedSizeModifier()
{
    ScaleByTargetRadius = Add_Scale_By_Target_Radius(Parameters, 304);
}

void vrMKPKeyedSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float radius = Radius_Factor(*ScaleByTargetRadius, buffer);
    For_Each_Curve_Block(
        span, [&](int first, int count) { Write_Keyed_Sizes(buffer, first, count, buffer.Time + first, radius); });
}

vrMKPKeyedSphericalSizeModifier::vrMKPKeyedSphericalSizeModifier()
{
    StartRadius = Parameters.Add_Float(305, "Start Radius", 0.0f, 0.0f, 10000.0f, "Radius to start at");
    EndRadius = Parameters.Add_Float(306, "End Radius", 35.0f, 0.0f, 10000.0f, "Radius to end at");
}

void vrMKPKeyedSphericalSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float start = StartRadius->Get_Value();
    const float difference = EndRadius->Get_Value() - start;
    const SphericalTime spherical{buffer.State->Transform, buffer.SmoothedCentroid, start,
                                  difference <= 0.0f ? LEAST_SPAN : difference};
    float times[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        if (buffer.Is_World())
            Find_Spherical_Times<true>(times, buffer.Position + first, count, spherical);
        else
            Find_Spherical_Times<false>(times, buffer.Position + first, count, spherical);
        Write_Keyed_Sizes(buffer, first, count, times, 1.0f);
    });
}

vrMKPNearAndFarUniformSizeModifier::vrMKPNearAndFarUniformSizeModifier()
{
    NearDistance = Parameters.Add_Float(300, "Near Distance", 10.0f, -1000.0f, 1000.0f,
                                        "Distance from the center of the group at which the near size displays.");
    FarDistance = Parameters.Add_Float(301, "Far Distance", -10.0f, -1000.0f, 1000.0f,
                                       "Distance from the center of the group at which the far size displays.");
    NearSize = Parameters.Add_Float(302, "Near Size", 10.0f, 0.0f, 1000.0f, "Size at the start.");
    FarSize = Parameters.Add_Float(303, "Far Size", 10.0f, 0.0f, 1000.0f, "Size at the end.");
}

void vrMKPNearAndFarUniformSizeModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 toCamera = state.Camera.Get_Translation() - state.Get_Position();
    const Vector3 axis = Particle::Unit({toCamera.x, toCamera.y, 0.0f});
    const float distance = FarDistance->Get_Value() - NearDistance->Get_Value();
    const NearAndFar ramp{.Axis = buffer.Is_World() ? axis : state.InverseTransform.Rotate(axis),
                          .Near = NearDistance->Get_Value(),
                          .Span = distance == 0.0f ? LEAST_SPAN : distance,
                          .NearSize = NearSize->Get_Value(),
                          .Difference = FarSize->Get_Value() - NearSize->Get_Value()};
    Write_Near_And_Far(buffer.Size + span.First, buffer.Position + span.First, span.Count, ramp);
}
