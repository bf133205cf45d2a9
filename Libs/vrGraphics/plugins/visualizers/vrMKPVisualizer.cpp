#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace
{

constexpr const char *SHADER_NAME = "Shader Name";
constexpr const char *SHADER_TEXT = "Name of shader";

// Indices into these are a file format.
constexpr const char *ANCHOR_POINTS[] = {"Center", "Bottom", "Top", "Bottom To Top With Age"};
constexpr const char *TEXTURE_ROTATIONS[] = {"None", "90 Degrees", "180 Degrees", "270 Degrees"};
constexpr const char *SORT_TYPES[] = {"Normal", "Stop After Max Sort Age"};
constexpr const char *LIGHTING_SOURCES[] = {"Sun", "Particle Light Source"};

constexpr RGBAClass OPAQUE_BLACK{0.0f, 0.0f, 0.0f, 1.0f};

/// A least fraction so close to 1 thins nothing.
constexpr float LOD_TOLERANCE = 0.0001f;
constexpr float GREATEST_ID = 65535.0f;
/// A centroid farther off than that has jumped.
constexpr float MAX_CENTROID_LAG_DISTANCE = 1000.0f;

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
    const int threshold = selects ? Visible_Threshold(buffer, glm::length(context.Camera.Get_Translation() - buffer.State->Get_Position())) : 0;
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
    const vrMKPRenderState &state = *buffer.State;
    const bool isScaledAtSpawn = buffer.ScaleType == PARTICLE_SCALE_AT_SPAWN;
    vrMKPBoundsSum::AspectRange range;
    return vrMKPBoundsSum(isScaledAtSpawn ? state.RenderSizeMultiplier * state.SizeScale : state.RenderSizeMultiplier,
                          Get_Aspect_Range(range) ? &range : nullptr);
}

void vrMKPVisualizer::End_Bounds(vrMKPBuffer &buffer, const vrMKPBoundsSum &sum, vrBounds *bounds) const
{
    if (bounds) {
        const vrMKPRenderState &state = *buffer.State;
        const bool isScaledAtDraw = buffer.ScaleType == PARTICLE_SCALE_AT_DRAW;
        const float scale = isScaledAtDraw ? state.PositionScale : 1.0f;
        const Vector3 offset = isScaledAtDraw ? state.PositionOffset : Vector3(0.0f);
        Vector3 minimum = state.Get_Position();
        Vector3 maximum = minimum;
        if (sum.Get_Count() > 0) {
            minimum = sum.Get_Minimum();
            maximum = sum.Get_Maximum();
            buffer.Centroid = sum.Get_Sum() / static_cast<float>(sum.Get_Count()) * scale + offset;
        }
        minimum = minimum * scale + offset;
        maximum = maximum * scale + offset;
        bounds->Center = (minimum + maximum) * 0.5f;
        bounds->Extent = (maximum - minimum) * 0.5f;
        MK_ASSERT(Is_Valid(bounds->Center), "set_bounds->Center.Is_Valid()");
        MK_ASSERT(Is_Valid(bounds->Extent), "set_bounds->Extent.Is_Valid()");
    }
    Smooth_Centroid(buffer);
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

vrMKPSimpleVisualizer::vrMKPSimpleVisualizer(bool usesAspectRatio)
    : ShaderName(new StringParameterClass(SHADER_NAME, SHADER_TEXT, "Unknown"))
{
    Parameters.Add_Bool(0, "Normal Render Mode", true, "Render this particle system in the normal render mode.");
    Parameters.Add_Bool(1, "Reflection Render Mode", false,
                        "Render this particle system in the reflection render mode.");
    Parameters.Add_Bool(2, "Refraction Render Mode", false,
                        "Return this particle system in the refraction render mode.");
    Parameters.Add_Bool(3, "Shadow-map Render Mode", false,
                        "Render this particle system in the shadow map render mode.");
    Parameters.Add_Bool(4, "Disable Depth Test", false, "Disables depth testing during render.");
    Parameters.Add_Float(7, "Depth Offset", 0.0f, -100.0f, 100.0f,
                         "Depth offset for each particle. Positive value \"pushes\" them further away. Negative value "
                         "\"pulls\" them closer.");
    if (usesAspectRatio) {
        MinAspectRatio = Parameters.Add_Float(5, "Min Aspect Ratio", 1.0f, 0.0f, 100.0f,
                                              "Minimum possible aspect ratio for each particle.");
        MaxAspectRatio = Parameters.Add_Float(6, "Max Aspect Ratio", 1.0f, 0.0f, 100.0f,
                                              "Maximum possible aspect ratio for each particle.");
    }
}

bool vrMKPSimpleVisualizer::Get_Aspect_Range(vrMKPBoundsSum::AspectRange &range) const
{
    if (!MinAspectRatio) return false;
    range = {MinAspectRatio->Get_Value(), MaxAspectRatio->Get_Value()};
    return true;
}

TextureNameParameterClass *vrMKPSimpleVisualizer::Add_Texture_Name(int32_t id, std::string_view value)
{
    return Parameters.Add_Texture(id, "Texture Name", value, "Name of texture");
}

void vrMKPSimpleVisualizer::Add_Shader_Name(int32_t id, std::string_view value)
{
    ShaderName = Parameters.Add_Shader(id, SHADER_NAME, value, SHADER_TEXT);
}

void vrMKPSimpleVisualizer::Add_Anchor_Point(int32_t id)
{
    Parameters.Add_Enum(id, "Anchor Point", ANCHOR_POINTS, 0,
                        "Place within the particle to anchor from for rendering.");
}

void vrMKPSimpleVisualizer::Add_Texture_Rotation(int32_t id)
{
    Parameters.Add_Enum(id, "Texture Rotation", TEXTURE_ROTATIONS, 0, "Rotate particle texture by the given amount");
}

void vrMKPSimpleVisualizer::Add_Bump_Texture_Name()
{
    Parameters.Add_Texture(108, "Bump Texture Name", "smokenormals.tga", "Name of bump texture");
}

void vrMKPSimpleVisualizer::Add_Sorting()
{
    Parameters.Add_Bool(102, "Sort", false, "Sort particles by distance from camera if true");
    Parameters.Add_Enum(105, "Sort Type", SORT_TYPES, SORT_STOP_AFTER_MAX_AGE, "Type of sorting.");
    Parameters.Add_Float(
        106, "Max Sort Age", 0.5f, 0.0f, 200.0f,
        "When the sort type is set to \"Stop After Max Sort Age\", all particles younger than this age "
        "will be sorted, while all particles older than this age will keep their previous value.\nUse "
        "this to alleviate popping of sorted particles.");
}

void vrMKPSimpleVisualizer::Add_Lighting()
{
    Parameters.Add_RGBA(109, "Specular", OPAQUE_BLACK, "Specular Color");
    Parameters.Add_RGBA(110, "Emissive", OPAQUE_BLACK, "Emissive Color");
    Parameters.Add_Float(111, "Light Wrap", 2.0f, 0.0f, 8.0f,
                         "Use to soften lighting.  Normal lighting is 1.0, default is 2.0.  Increase this value to "
                         "soften the apparent light angle, decrease to harshen it.");
    Parameters.Add_Float(112, "Normal Scale", 1.0f, 0.0f, 100.0f, "Increase to bend normals for more extreme shading.");
    Parameters.Add_Enum(113, "Lighting Source", LIGHTING_SOURCES, 0, "Where to evaluate light from");
    Parameters.Add_String(114, "Light Source Name", "Light", "Name of the particle light source to use");
    Parameters.Add_Bool(115, "Scene Lighting Adj.", true,
                        "Using the environment settings in the terrain file, multiplies particle color by the particle "
                        "diffuse multiplier, and adds to the emissive using the particle emissive adder.");
}
