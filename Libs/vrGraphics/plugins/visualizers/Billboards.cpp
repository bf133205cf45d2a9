#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPEmitterFace.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/visualizers/QuadCorners.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>

namespace
{

constexpr float DEGREE = 0.017453292f; ///< radians
constexpr Vector3 PLAIN_NORMAL(0.0f, 0.0f, 1.0f);

/// One coordinate of the corners of quads with one long axis between them.
MK_SIMD void Span_Corners(float *__restrict topLeft, float *__restrict bottomLeft, float *__restrict bottomRight,
                          float *__restrict topRight, const float *__restrict widths, int count, float center,
                          float side, float half)
{
    for (int at = 0; at < count; ++at) {
        const float wide = side * widths[at];
        topLeft[at] = center - wide + half;
        bottomLeft[at] = center - wide - half;
        bottomRight[at] = center + wide - half;
        topRight[at] = center + wide + half;
    }
}

} // namespace

vrMKPBillboardVisualizer::vrMKPBillboardVisualizer() : vrMKPSimpleVisualizer(true)
{
    Add_Texture_Name(100, "p_particle_master.tga");
    EnableBump = Parameters.Add_Bool(107, "Enable Bump", false, "Enables Bump Mapping");
    BumpTextureName = Add_Bump_Texture_Name();
    Add_Shader_Name(101, "ParticleBillboardAdditive.mks");
    Sorting = Add_Sorting();
    Lighting = Add_Lighting();
}

bool vrMKPBillboardVisualizer::Has_Bump() const
{
    return EnableBump->Get_Value();
}

vrMKPSorting vrMKPBillboardVisualizer::Get_Sorting() const
{
    const bool stops = Sorting.SortType->Get_Value() == SORT_STOP_AFTER_MAX_AGE;
    return {Sorting.Sort->Get_Value(), stops ? std::max(Sorting.MaxSortAge->Get_Value(), 0.0f) : -1.0f};
}

bool vrMKPBillboardVisualizer::Begin_Draw(vrMKPQuadDraw &draw, vrMKPBuffer &buffer,
                                          const vrPreRenderContext &context) const
{
    if (!draw.Begin(buffer, context, Lighting.SceneLighting->Get_Value())) return false;
    draw.Sort(Get_Sorting());
    return true;
}

void vrMKPBillboardVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!Begin_Draw(draw, buffer, context)) return;
    if (!draw.Allocate(draw.Get_Count(), Get_Vertex_Type(), "vrMKPBillboardVisualizer")) return;
    const vrMKPQuadAxes axes{draw.Camera.Get_Axis(0), draw.Camera.Get_Axis(1)};
    vrMKPQuadBlock quads;
    quads.Set_Normals(draw.Is_Bump() ? draw.Camera.Get_Axis(2) : PLAIN_NORMAL);
    if (draw.Is_Bump()) quads.Set_Binormals(Vector3(0.0f)); // on purpose: the shaders make their own
    draw.Write_Quads(quads, Get_Aspect(), [&](const vrMKPParticleRun &run, vrMKPQuadBlock &block) {
        uint32_t room[vrMKPParticleRun::SIZE];
        const uint32_t *rotations = run.Fetch(buffer.Rotation, room);
        Turn_Corners(block, rotations, axes);
        if (draw.Is_Bump()) Turn_Tangents(block, rotations, axes);
    });
}

vrMKPXYZAlignedVisualizer::vrMKPXYZAlignedVisualizer()
{
    LocalSpace = Parameters.Add_Bool(200, "LocalSpace", false, "If true, align to local space of the bone");
    RotateX = Parameters.Add_Float(201, "Rotate X", 0.0f, -360.0f, 360.0f, "Rotates each particle around the X-axis.");
    RotateY = Parameters.Add_Float(202, "Rotate Y", 0.0f, -360.0f, 360.0f, "Rotates each particle around the Y-axis.");
    RotateZ = Parameters.Add_Float(203, "Rotate Z", 0.0f, -360.0f, 360.0f, "Rotates each particle around the Z-axis.");
}

vrMKPSorting vrMKPXYZAlignedVisualizer::Get_Sorting() const
{
    return {Get_Sort().Get_Value(), -1.0f};
}

Mat3DClass vrMKPXYZAlignedVisualizer::Get_Alignment(const Mat3DClass &local) const
{
    const Mat3DClass turn = Mat3DClass::From_Angles(
        {RotateX->Get_Value() * DEGREE, RotateY->Get_Value() * DEGREE, RotateZ->Get_Value() * DEGREE});
    return LocalSpace->Get_Value() ? local * turn : turn;
}

void vrMKPXYZAlignedVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!Begin_Draw(draw, buffer, context)) return;
    if (!draw.Allocate(draw.Get_Count(), Get_Vertex_Type(), "vrMKPXYZAlignedVisualizer")) return;
    const Mat3DClass alignment = Get_Alignment(draw.State->Transform);
    const vrMKPQuadAxes axes{alignment.Get_Axis(0), alignment.Get_Axis(1)};
    vrMKPQuadBlock quads;
    quads.Set_Normals(PLAIN_NORMAL);
    draw.Write_Quads(quads, Get_Aspect(), [&](const vrMKPParticleRun &run, vrMKPQuadBlock &block) {
        uint32_t room[vrMKPParticleRun::SIZE];
        Turn_Corners(block, run.Fetch(buffer.Rotation, room), axes);
    });
}

vrMKPInstantProjectileVisualizer::vrMKPInstantProjectileVisualizer()
{
    TextureRotation = Add_Texture_Rotation(203);
}

void vrMKPInstantProjectileVisualizer::Bind_To_Emitter(vrMKPEmitterFace &emitter)
{
    emitter.Keep_Updating();
}

void vrMKPInstantProjectileVisualizer::Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const
{
    vrMKPVisualizer::Compute_Bounds(buffer, bounds); // for the centroid
    if (!bounds || buffer.ActiveCount <= 0) return;
    float largest = 0.0f;
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot)
            largest = std::max(largest, buffer.Size[slot].x + buffer.Size[slot].y);
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 grown(largest * vrMKPQuadDraw::Get_Size_Multiplier(buffer));
    const Vector3 source = state.Get_Position();
    Set_Bounds(*bounds, buffer, glm::min(source, state.ProjectileTarget) - grown,
               glm::max(source, state.ProjectileTarget) + grown);
}

void vrMKPInstantProjectileVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!Begin_Draw(draw, buffer, context)) return;
    if (!draw.Allocate(draw.Get_Count(), Get_Vertex_Type(), "vrMKPInstantProjectileVisualizer")) return;
    const Vector3 source = draw.State->Get_Position();
    const Vector3 half = (draw.State->ProjectileTarget - source) * 0.5f;
    const Vector3 center = source + half;
    const Vector3 along = Particle::Unit(half);
    const Vector3 toCamera = Particle::Unit(draw.Camera.Get_Translation() - center);
    const Vector3 side = Particle::Unit(glm::cross(toCamera, along));
    vrMKPQuadBlock quads(TextureRotation->Get_Value());
    quads.Set_Normals(toCamera);
    quads.Set_Tangents(side);
    quads.Set_Binormals(along);
    draw.Write_Quads(quads, Get_Aspect(), [&](const vrMKPParticleRun &, vrMKPQuadBlock &block) {
        vrMKPQuadBlock::Plane *const planes[3] = {block.X, block.Y, block.Z};
        for (int axis = 0; axis < 3; ++axis)
            Span_Corners(planes[axis][0], planes[axis][1], planes[axis][2], planes[axis][3], block.Width, block.Count,
                         center[axis], side[axis], half[axis]);
    });
}
