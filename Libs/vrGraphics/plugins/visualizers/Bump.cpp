#include "vrGraphics/plugins/visualizers/Bump.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/visualizers/QuadCorners.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"

namespace
{

using Plane = vrMKPQuadBlock::Plane;

/// A normal for each corner of the quads of a block.
struct CornerNormals
{
    alignas(64) Plane Corner[4][3];
};

/// From where the normals of a block lean, and how far.
struct Bend
{
    Vector3 Center;
    Vector3 Flat; ///< the normal without any
    float Curvature;
    float ZWeight; ///< of the way from the centre: 0 or 1
};

MK_INLINE void Put_Bent(Plane (&normals)[3], int at, const Vector3 &way, const Bend &bend)
{
    const Vector3 away = Particle::Unit(way);
    const float flat = 1.0f - bend.Curvature;
    const float x = bend.Flat.x * flat + away.x * bend.Curvature;
    const float y = bend.Flat.y * flat + away.y * bend.Curvature;
    const float z = bend.Flat.z * flat + away.z * bend.Curvature;
    const float length = std::sqrt(x * x + y * y + z * z);
    const bool isFlat = !(length > 0.0f) || (away.x == 0.0f && away.y == 0.0f && away.z == 0.0f);
    const float scale = isFlat ? 1.0f : 1.0f / length;
    normals[0][at] = isFlat ? bend.Flat.x : x * scale;
    normals[1][at] = isFlat ? bend.Flat.y : y * scale;
    normals[2][at] = isFlat ? bend.Flat.z : z * scale;
}

MK_SIMD void Bend_From_Center(CornerNormals &__restrict normals, const vrMKPQuadBlock &__restrict quads, Bend bend)
{
    for (int corner = 0; corner < 4; ++corner)
        for (int at = 0; at < quads.Count; ++at)
            Put_Bent(normals.Corner[corner], at,
                     {quads.X[corner][at] - bend.Center.x, quads.Y[corner][at] - bend.Center.y,
                      (quads.Z[corner][at] - bend.Center.z) * bend.ZWeight},
                     bend);
}

/// The centre of a quad lies half way between opposite corners.
MK_SIMD void Bend_From_Quads(CornerNormals &__restrict normals, const vrMKPQuadBlock &__restrict quads, Bend bend)
{
    for (int corner = 0; corner < 4; ++corner) {
        const int opposite = corner ^ 2;
        for (int at = 0; at < quads.Count; ++at)
            Put_Bent(normals.Corner[corner], at,
                     {quads.X[corner][at] - quads.X[opposite][at], quads.Y[corner][at] - quads.Y[opposite][at],
                      quads.Z[corner][at] - quads.Z[opposite][at]},
                     bend);
    }
}

} // namespace

void vrMKPCurvedBumpVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!Begin_Draw(draw, buffer, context)) return;
    if (!draw.Allocate(draw.Get_Count(), Get_Vertex_Type(), Shading.ClassName)) return;
    const vrMKPQuadAxes axes{draw.Camera.Get_Axis(0), draw.Camera.Get_Axis(1)};
    const Bend bend{buffer.SmoothedCentroid, draw.Camera.Get_Axis(2), Curvature->Get_Value(),
                    Shading.From == vrMKPBumpShading::CENTROID_AXIS ? 0.0f : 1.0f};
    CornerNormals normals;
    vrMKPQuadBlock quads;
    for (int corner = 0; corner < 4; ++corner)
        for (int axis = 0; axis < 3; ++axis) quads.VertexNormal[corner][axis] = normals.Corner[corner][axis];
    quads.Set_Binormals(Vector3(0.0f)); // as a billboard's
    draw.Write_Quads(
        quads, Get_Aspect(),
        [&](const vrMKPParticleRun &run, vrMKPQuadBlock &block) {
            uint32_t room[vrMKPParticleRun::SIZE];
            const uint32_t *rotations = run.Fetch(buffer.Rotation, room);
            Turn_Corners(block, rotations, axes);
            Turn_Tangents(block, rotations, axes);
        },
        [&](const vrMKPParticleRun &, vrMKPQuadBlock &block) {
            if (Shading.From == vrMKPBumpShading::PARTICLE)
                Bend_From_Quads(normals, block, bend);
            else
                Bend_From_Center(normals, block, bend);
        });
}
