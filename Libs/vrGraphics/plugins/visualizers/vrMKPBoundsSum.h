#pragma once

/// The sums behind the bounds of a layer: the box around its particles and their mean position.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/visualizers/vrMKPAspect.h"

/// Takes live particles in ring order, in runs of any lengths, which leave no trace in the result: a frame may add each
/// block while it is in the cache. A running sum of floats would go at the speed of one addition after the other, and
/// lose more digits the longer it gets, so that there are `LANES` of them: particle n of the ring goes to lane n mod
/// LANES, and the lanes are added up in a fixed order, whatever the processor has.
class vrMKPBoundsSum
{
public:
    static constexpr int LANES = 16;

    /// A particle's radius is the sum of its width and height, times `sizeScale` and its aspect.
    explicit vrMKPBoundsSum(float sizeScale, const vrMKPAspect &aspect = {});

    void Add_Span(const vrMKPBuffer &buffer, vrMKPSpan span) { Add_Span(buffer, span, nullptr, nullptr); }
    /// With radii of their own, and middles that stand so much above the particles, both by particle of the span. The
    /// mean position isn't lifted.
    void Add_Span(const vrMKPBuffer &buffer, vrMKPSpan span, const float *radii, const float *lifts);

    int Get_Count() const { return Count; }
    // Of at least one particle; in the world.
    Vector3 Get_Minimum() const;
    Vector3 Get_Maximum() const;
    Vector3 Get_Sum() const;

private:
    void Start_At(const Vector3 &position);

    /// x of all lanes, then y, then z.
    struct alignas(64) Lanes
    {
        float Values[3][LANES];
    };

    Lanes Least;
    Lanes Greatest;
    Lanes Sum;
    int Count = 0;
    float SizeScale;
    vrMKPAspect Aspect;
};
