#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace
{

/// A least fraction so close to 1 thins nothing.
constexpr float LOD_TOLERANCE = 0.0001f;
constexpr float GREATEST_ID = 65535.0f;
/// A centroid farther off than that has jumped.
constexpr float MAX_CENTROID_LAG_DISTANCE = 1000.0f;

/// Where positions come to lie as they are drawn.
class DrawScale
{
public:
    explicit DrawScale(const vrMKPBuffer &buffer)
    {
        if (buffer.ScaleType != PARTICLE_SCALE_AT_DRAW) return;
        Scale = buffer.State->PositionScale;
        Offset = buffer.State->PositionOffset;
    }
    Vector3 Map(const Vector3 &position) const { return position * Scale + Offset; }

private:
    float Scale = 1.0f;
    Vector3 Offset{0.0f};
};

/// Up to which random value a particle is drawn for a camera at a distance.
int Visible_Threshold(const vrMKPBuffer &buffer, float distance)
{
    const float nearDistance = buffer.DynamicLODNear;
    const float farDistance = buffer.DynamicLODFar;
    float thinning = 0.0f;
    if (distance <= nearDistance)
        thinning = 0.0f;
    else if (distance >= farDistance)
        thinning = 1.0f;
    else
        thinning = Particle::Smooth_Step((distance - nearDistance) / (farDistance - nearDistance));
    float fraction = (1.0f - thinning) * buffer.State->GlobalDensity;
    if (buffer.MinDynamicLOD > fraction) fraction = buffer.MinDynamicLOD;
    if (fraction > 1.0f) fraction = 1.0f;
    return Particle::Truncate(fraction * GREATEST_ID);
}

MK_SIMD void List_All(uint32_t *__restrict render, int first, int count)
{
    for (int at = 0; at < count; ++at) render[at] = static_cast<uint32_t>(first + at);
}

/// Writes each slot and steps only past those that count: which do is as good as random, and a branch on it would be
/// guessed wrong half the time.
int List_Visible(uint32_t *__restrict render, const uint32_t *__restrict ids, int first, int count, int threshold)
{
    int visible = 0;
    for (int at = 0; at < count; ++at) {
        render[visible] = static_cast<uint32_t>(first + at);
        visible += static_cast<int>(ids[at] & 0xffff) <= threshold ? 1 : 0;
    }
    return visible;
}

} // namespace

vrMKPVisualizer::vrMKPVisualizer()
{
    CentroidLag =
        Parameters.Add_Float(10000, "Centroid Lag", 1.0f, 0.0f, 5.0f,
                             "Time over which to smooth out the centroid.\nIncrease this to prevent \"popping\" of the "
                             "shadows as particles pop in and out of existence.");
}

void vrMKPVisualizer::Select_Visible_Particles(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    const bool selects = !(std::abs(buffer.MinDynamicLOD - 1.0f) <= LOD_TOLERANCE);
    const int threshold =
        selects
            ? Visible_Threshold(buffer, glm::length(context.Camera.Get_Translation() - buffer.State->Get_Position()))
            : 0;
    int visible = 0;
    for (const vrMKPSpan span : buffer.Live_Spans()) {
        uint32_t *render = buffer.Render + visible;
        if (selects) {
            visible += List_Visible(render, buffer.ID + span.First, span.First, span.Count, threshold);
        } else {
            List_All(render, span.First, span.Count);
            visible += span.Count;
        }
    }
    buffer.VisibleCount = visible;
}

vrMKPBoundsSum vrMKPVisualizer::Begin_Bounds(const vrMKPBuffer &buffer) const
{
    return vrMKPBoundsSum(vrMKPQuadDraw::Get_Size_Multiplier(buffer), Get_Aspect());
}

void vrMKPVisualizer::End_Bounds(vrMKPBuffer &buffer, const vrMKPBoundsSum &sum, vrBounds *bounds) const
{
    if (bounds && sum.Get_Count() > 0) {
        const DrawScale scale(buffer);
        buffer.Centroid = scale.Map(sum.Get_Sum() / static_cast<float>(sum.Get_Count()));
        Set_Bounds(*bounds, buffer, sum.Get_Minimum(), sum.Get_Maximum());
    } else if (bounds) {
        Set_Bounds(*bounds, buffer, buffer.State->Get_Position(), buffer.State->Get_Position());
    }
    Smooth_Centroid(buffer);
}

vrBounds vrMKPVisualizer::Get_Cull_Box(const vrMKPBuffer & /*buffer*/, const vrBounds &bounds) const
{
    return bounds;
}

void vrMKPVisualizer::Set_Bounds(vrBounds &bounds, const vrMKPBuffer &buffer, const Vector3 &minimum,
                                 const Vector3 &maximum)
{
    const DrawScale scale(buffer);
    const Vector3 low = scale.Map(minimum);
    const Vector3 high = scale.Map(maximum);
    bounds.Center = (low + high) * 0.5f;
    bounds.Extent = (high - low) * 0.5f;
    MK_ASSERT(Is_Valid(bounds.Center), "set_bounds->Center.Is_Valid()");
    MK_ASSERT(Is_Valid(bounds.Extent), "set_bounds->Extent.Is_Valid()");
}

void vrMKPVisualizer::Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const
{
    vrMKPBoundsSum sum = Begin_Bounds(buffer);
    if (bounds)
        for (const vrMKPSpan span : buffer.Live_Spans()) sum.Add_Span(buffer, span);
    End_Bounds(buffer, sum, bounds);
}

void vrMKPVisualizer::Smooth_Centroid(vrMKPBuffer &buffer) const
{
    const float lag = CentroidLag->Get_Value();
    const bool isNear = glm::length(buffer.Centroid - buffer.SmoothedCentroid) <= MAX_CENTROID_LAG_DISTANCE;
    if (buffer.State->IsInstantMove || lag == 0.0f || !isNear) {
        buffer.SmoothedCentroid = buffer.Centroid;
        return;
    }
    const float share = std::min(lag, buffer.State->FrameTime) / lag;
    buffer.SmoothedCentroid = buffer.SmoothedCentroid * (1.0f - share) + buffer.Centroid * share;
}
