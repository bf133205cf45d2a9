#include "vrGraphics/plugins/visualizers/VelocityAligned.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"
#include "vrGraphics/plugins/visualizers/VelocityQuads.h"

#include <algorithm>

namespace
{

constexpr const char *UP_AXIS = "Up Axis";
constexpr Vector3 WORLD_UP(0.0f, 0.0f, 1.0f);
/// What counts as a frame in the bounds of a scene that stands still.
constexpr float LEAST_FRAME_TIME = 0.01f;

/// Where the boxes go, in radii up the long axis.
constexpr float LIFTS[] = {0.0f, 1.0f, -1.0f, 0.0f};

/// From the space that the particles move in to the world. A screen's has no turn.
Mat3DClass Find_Turn(const vrMKPBuffer &buffer)
{
    return buffer.TransformType == MKP_TRANSFORM_LOCAL ? buffer.State->Transform : Mat3DClass();
}

} // namespace

vrMKPVelocityAlignedVisualizer::vrMKPVelocityAlignedVisualizer()
    : FixEdgeView(new BoolParameter("Fix Edge View",
                                    "Rotate particles away from the camera slightly when viewed edge-on", false))
{
    AnchorPoint = Add_Anchor_Point(200);
    TextureRotation = Add_Texture_Rotation(203);
    SlowStretch = Parameters.Add_Float(205, "Slow Stretch", 1.0f, 0.0f, 100.0f,
                                       "Stretch amount when particles are at their slowest.");
    FastStretch = Parameters.Add_Float(206, "Fast Stretch", 1.0f, 0.0f, 100.0f,
                                       "Stretch amount when particles are at their fastest.");
    SlowSpeed = Parameters.Add_Float(207, "Slow Stretch Speed", 10.0f, -1000.0f, 1000.0f,
                                     "Speed at which particles use the Slow Stretch.");
    FastSpeed = Parameters.Add_Float(208, "Fast Stretch Speed", 10.0f, -1000.0f, 1000.0f,
                                     "Speed at which particles use the Fast Stretch.");
}

vrMKPVelocityAlignedVisualizer::Kind vrMKPVelocityAlignedVisualizer::Get_Kind(const vrMKPBuffer &buffer) const
{
    const bool isScreen = buffer.TransformType == MKP_TRANSFORM_SCREEN;
    return {"vrMKPVelocityAlignedVisualizer", isScreen ? vrMKPAlignment::SCREEN : vrMKPAlignment::CAMERA, WORLD_UP};
}

vrMKPVelocityView vrMKPVelocityAlignedVisualizer::Get_View(const Kind &kind, const Mat3DClass &camera) const
{
    vrMKPVelocityView view;
    view.CameraPosition = camera.Get_Translation();
    view.CameraX = camera.Get_Axis(0);
    view.CameraY = camera.Get_Axis(1);
    view.Axis = Particle::Unit(kind.Axis);
    view.Stretch = {SlowStretch->Get_Value(), FastStretch->Get_Value(), SlowSpeed->Get_Value(),
                    FastSpeed->Get_Value() - SlowSpeed->Get_Value()};
    view.Anchor = ANCHORS[AnchorPoint->Get_Value()];
    return view;
}

void vrMKPVelocityAlignedVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    const float frameTime = buffer.State->FrameTime;
    if (!(frameTime > 0.0f)) return vrMKPQuadDraw::Drop_Vertices(buffer);
    const Kind kind = Get_Kind(buffer);
    vrMKPQuadDraw draw;
    if (!Begin_Draw(draw, buffer, context)) return;
    if (!draw.Allocate(draw.Get_Count(), Get_Vertex_Type(), kind.ClassName)) return;

    const vrMKPVelocityView view = Get_View(kind, draw.Camera);
    const Mat3DClass turn = Find_Turn(buffer);
    const float rate = 1.0f / frameTime;
    Particle::Planes velocities;
    Particle::Planes positionRoom;
    Particle::Planes previousRoom;
    vrMKPQuadBlock quads(TextureRotation->Get_Value());
    draw.Write_Quads(quads, Get_Aspect(), [&](const vrMKPParticleRun &run, vrMKPQuadBlock &block) {
        const vrMKPConstVectors positions = run.Fetch(buffer.Position, positionRoom);
        const vrMKPConstVectors previous = run.Fetch(buffer.PreviousPosition, previousRoom);
        VelocityQuads::Find_Velocities(velocities, positions, previous, block.Count, rate, turn);
        float room[vrMKPParticleRun::SIZE];
        VelocityQuads::Align(kind.Alignment, block, velocities, run.Fetch(buffer.Time, room), view);
    });
}

void vrMKPVelocityAlignedVisualizer::Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const
{
    vrMKPBoundsSum sum = Begin_Bounds(buffer);
    if (bounds) {
        const Kind kind = Get_Kind(buffer);
        const vrMKPVelocityView view = Get_View(kind, Mat3DClass());
        const float frameTime = buffer.State->FrameTime;
        const float rate = 1.0f / (frameTime > 0.0f ? frameTime : LEAST_FRAME_TIME);
        const Mat3DClass turn = Find_Turn(buffer);
        VelocityQuads::Measures measures;
        measures.Aspect = Get_Aspect();
        measures.SizeMultiplier = vrMKPQuadDraw::Get_Size_Multiplier(buffer);
        measures.Lift = LIFTS[AnchorPoint->Get_Value()];
        for (const vrMKPSpan span : buffer.Live_Spans())
            for (int done = 0; done < span.Count; done += vrMKPQuadBlock::SIZE) {
                const vrMKPSpan block{span.First + done, std::min(span.Count - done, vrMKPQuadBlock::SIZE)};
                measures.Measure(kind.Alignment, buffer, block, rate, turn, view);
                sum.Add_Span(buffer, block, measures.Radii, measures.Lifts);
            }
    }
    End_Bounds(buffer, sum, bounds);
}

vrMKPVelocityAlignedWorldSpaceVisualizer::vrMKPVelocityAlignedWorldSpaceVisualizer()
{
    UpAxis = Parameters.Add_Vector3(300, UP_AXIS, WORLD_UP, "Axis to use as \"up\" when rendering particles.");
}

vrMKPVelocityAlignedVisualizer::Kind
vrMKPVelocityAlignedWorldSpaceVisualizer::Get_Kind(const vrMKPBuffer & /*buffer*/) const
{
    return {"vrMKPVelocityAlignedWorldSpaceVisualizer", vrMKPAlignment::WORLD_SPACE, UpAxis->Get_Value()};
}

vrMKPVelocityAlignedVisualizer::Kind vrMKPVelocityAlignedNormalVisualizer::Get_Kind(const vrMKPBuffer &buffer) const
{
    const Vector3 up = vrMKPVelocityAlignedWorldSpaceVisualizer::Get_Kind(buffer).Axis;
    return {"vrMKPVelocityAlignedNormalVisualizer", vrMKPAlignment::NORMAL, up};
}

vrMKPVelocityAlignedPlanarVisualizer::vrMKPVelocityAlignedPlanarVisualizer()
{
    UpAxis = Parameters.Add_Vector3(300, UP_AXIS, WORLD_UP, "Axis to \"squash\" particles along.");
}

vrMKPVelocityAlignedVisualizer::Kind
vrMKPVelocityAlignedPlanarVisualizer::Get_Kind(const vrMKPBuffer & /*buffer*/) const
{
    return {"vrMKPVelocityAlignedPlanarVisualizer", vrMKPAlignment::PLANAR, UpAxis->Get_Value()};
}

vrMKPAxisAlignedVisualizer::vrMKPAxisAlignedVisualizer()
{
    Axis = Parameters.Add_Vector3(300, "Axis", WORLD_UP, "Axis to align particles to.");
}

vrMKPVelocityAlignedVisualizer::Kind vrMKPAxisAlignedVisualizer::Get_Kind(const vrMKPBuffer & /*buffer*/) const
{
    return {"vrMKPAxisAlignedVisualizer", vrMKPAlignment::AXIS, Axis->Get_Value()};
}
