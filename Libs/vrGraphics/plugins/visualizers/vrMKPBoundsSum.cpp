#include "vrGraphics/plugins/visualizers/vrMKPBoundsSum.h"

#include "vrGraphics/particle/ParticleMath.h"

#include <algorithm>

namespace
{

constexpr int LANES = vrMKPBoundsSum::LANES;
using Axes = float[3][LANES];

enum class Radii
{
    OF_SIZES,
    OF_SIZES_AND_ASPECT,
    GIVEN
};

/// The arrays of a run, and how its radii come about.
struct Source
{
    vrMKPConstVectors Positions;
    const float *Sizes;
    const uint32_t *IDs;
    float SizeScale;
    float AspectMinimum;
    float AspectSpan;
    const float *Given;
    const float *Lifts;
};

template <Radii RADII>
MK_INLINE float Radius(const Source &source, int at)
{
    if constexpr (RADII == Radii::GIVEN) return source.Given[at];
    const float radius = (source.Sizes[at * 2] + source.Sizes[at * 2 + 1]) * source.SizeScale;
    if constexpr (RADII == Radii::OF_SIZES) return radius;
    return radius * (Particle::Unit_ID(source.IDs[at]) * source.AspectSpan + source.AspectMinimum);
}

template <Radii RADII>
MK_INLINE void Merge(const Source &source, int at, int lane, Axes &least, Axes &greatest, Axes &sum)
{
    const float radius = Radius<RADII>(source, at);
    const float position[3] = {source.Positions.X[at], source.Positions.Y[at], source.Positions.Z[at]};
    for (int axis = 0; axis < 3; ++axis) {
        float middle = position[axis];
        if constexpr (RADII == Radii::GIVEN)
            if (axis == 2) middle += source.Lifts[at];
        const float low = middle - radius;
        const float high = middle + radius;
        least[axis][lane] = low < least[axis][lane] ? low : least[axis][lane];
        greatest[axis][lane] = high > greatest[axis][lane] ? high : greatest[axis][lane];
        sum[axis][lane] += position[axis];
    }
}

/// Whole rows of lanes, from lane 0 on.
template <Radii RADII>
MK_INLINE void Merge_Rows(const Source &source, int first, int count, Axes &least, Axes &greatest, Axes &sum)
{
    Axes low;
    Axes high;
    Axes total;
    std::copy_n(&least[0][0], 3 * LANES, &low[0][0]);
    std::copy_n(&greatest[0][0], 3 * LANES, &high[0][0]);
    std::copy_n(&sum[0][0], 3 * LANES, &total[0][0]);
    for (int at = first; at < first + count; at += LANES)
        for (int lane = 0; lane < LANES; ++lane) Merge<RADII>(source, at + lane, lane, low, high, total);
    std::copy_n(&low[0][0], 3 * LANES, &least[0][0]);
    std::copy_n(&high[0][0], 3 * LANES, &greatest[0][0]);
    std::copy_n(&total[0][0], 3 * LANES, &sum[0][0]);
}

template <Radii RADII>
MK_SIMD void Merge_All_Rows(const Source &source, int first, int count, Axes &least, Axes &greatest, Axes &sum)
{
    Merge_Rows<RADII>(source, first, count, least, greatest, sum);
}

/// A part of a row, which is too short for wide registers.
template <Radii RADII>
void Merge_Part(const Source &source, int first, int count, int lane, Axes &__restrict least, Axes &__restrict greatest,
                Axes &__restrict sum)
{
    for (int at = 0; at < count; ++at) Merge<RADII>(source, first + at, lane + at, least, greatest, sum);
}

/// Adds `count` particles behind the `before` that are there already.
template <Radii RADII>
void Add(const Source &source, int before, int count, Axes &least, Axes &greatest, Axes &sum)
{
    const int lane = before % LANES;
    const int head = std::min((LANES - lane) % LANES, count);
    const int rows = (count - head) / LANES * LANES;
    Merge_Part<RADII>(source, 0, head, lane, least, greatest, sum);
    Merge_All_Rows<RADII>(source, head, rows, least, greatest, sum);
    Merge_Part<RADII>(source, head + rows, count - head - rows, 0, least, greatest, sum);
}

template <typename Join>
Vector3 Reduce(const Axes &lanes, Join &&join)
{
    Vector3 result;
    for (int axis = 0; axis < 3; ++axis) {
        float values[LANES];
        std::copy_n(lanes[axis], LANES, values);
        for (int half = LANES / 2; half > 0; half /= 2)
            for (int lane = 0; lane < half; ++lane) values[lane] = join(values[lane], values[lane + half]);
        result[axis] = values[0];
    }
    return result;
}

} // namespace

vrMKPBoundsSum::vrMKPBoundsSum(float sizeScale, const vrMKPAspect &aspect) : SizeScale(sizeScale), Aspect(aspect)
{
    Start_At(Vector3(0.0f));
}

void vrMKPBoundsSum::Start_At(const Vector3 &position)
{
    for (int axis = 0; axis < 3; ++axis) {
        std::fill_n(Least.Values[axis], LANES, position[axis]);
        std::fill_n(Greatest.Values[axis], LANES, position[axis]);
        std::fill_n(Sum.Values[axis], LANES, 0.0f);
    }
}

void vrMKPBoundsSum::Add_Span(const vrMKPBuffer &buffer, vrMKPSpan span, const float *radii, const float *lifts)
{
    if (span.Count <= 0) return;
    if (Count == 0) Start_At(buffer.WorldPosition[span.First]);
    const Source source{buffer.WorldPosition + span.First,
                        &buffer.Size[span.First].x,
                        buffer.ID + span.First,
                        SizeScale,
                        Aspect.Minimum,
                        Aspect.Maximum - Aspect.Minimum,
                        radii,
                        lifts};
    if (radii)
        Add<Radii::GIVEN>(source, Count, span.Count, Least.Values, Greatest.Values, Sum.Values);
    else if (Aspect != vrMKPAspect())
        Add<Radii::OF_SIZES_AND_ASPECT>(source, Count, span.Count, Least.Values, Greatest.Values, Sum.Values);
    else
        Add<Radii::OF_SIZES>(source, Count, span.Count, Least.Values, Greatest.Values, Sum.Values);
    Count += span.Count;
}

Vector3 vrMKPBoundsSum::Get_Minimum() const
{
    return Reduce(Least.Values, [](float a, float b) { return b < a ? b : a; });
}

Vector3 vrMKPBoundsSum::Get_Maximum() const
{
    return Reduce(Greatest.Values, [](float a, float b) { return b > a ? b : a; });
}

Vector3 vrMKPBoundsSum::Get_Sum() const
{
    return Reduce(Sum.Values, [](float a, float b) { return a + b; });
}
