#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrBoundsUnion.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrWorld.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

/// Reflections, refractions and shadows show no more than these.
constexpr uint32_t MIRROR_PHASES = 0x18DB;
constexpr uint32_t SHADOW_PHASES = 0x2DB;
constexpr uint32_t NO_SCENE_MODES = 0x10 | 0x20 | 0x40 | 0x80;
constexpr float GREATEST_TASK_DISTANCE = 1000000.0f; ///< world units; what is farther doesn't count for the bounds
constexpr float TERRAIN_HEADROOM = 1.5f;
constexpr vrColor FRUSTUM_COLOR = Pack_Color(255, 255, 0, 255);
constexpr size_t LINES_A_DRAW = 16384;

/// Gives the tasks of a render back, whatever ends it.
class TaskScope
{
public:
    explicit TaskScope(vrRenderTaskPool &pool) : Pool(pool), Taken(pool.Get_Taken_Count()) {}
    ~TaskScope() { Pool.Give_Back_To(Taken); }
    TaskScope(const TaskScope &) = delete;
    TaskScope &operator=(const TaskScope &) = delete;

private:
    vrRenderTaskPool &Pool;
    size_t Taken;
};

bool Is_Normal(vrRenderModeType mode)
{
    return mode == VR_RENDER_MODE_NORMAL || mode == VR_RENDER_MODE_FULL_SCREEN;
}

} // namespace

void vrSimpleScene::Render(vrCamera *camera, vrRenderModeType mode, bool /*flag*/)
{
    if (!MK_VERIFY(camera, "camera")) return;
    MK_ASSERT((mode & NO_SCENE_MODES) == 0, "(render_mode & 0xF0) == 0");
    const TaskScope tasks(Get_Tasks());
    vrRenderContext context(camera);
    context.Scene = this;
    context.Mode = mode;
    context.PreRender.ParticleDiffuseMultiplier = Get_Light_Context()->Get_Particle_Diffuse_Multiplier();
    context.ParticleEmissiveAdder = Get_Light_Context()->Get_Particle_Emissive_Adder();
    if (mode == VR_RENDER_MODE_NORMAL) Set_Camera(camera->Get_Transform());

    vrGraphicsDriver *driver = TheGraphicsDriver;
    const vrRenderModeType previous = driver ? driver->Get_Render_Mode() : mode;
    if (driver) Tell_Driver(*camera, mode);
    Pre_Render_Effects(context);
    Start_Rendering(context);
    if (driver) {
        driver->Render_Tasks(context);
        if (mode == VR_RENDER_MODE_NORMAL) Draw_Debug_Helpers();
    }
    if (mode == VR_RENDER_MODE_NORMAL) DebugLines.clear();
    Get_Light_Context()->Clear_All_Lights(false, false);
    if (!driver) return;
    driver->Set_Fog_Enabled(false);
    driver->Set_Render_Mode(previous, nullptr);
}

void vrSimpleScene::Tell_Driver(vrCamera &camera, vrRenderModeType mode) const
{
    TheGraphicsDriver->Set_Camera(&camera);
    Set_Render_Parameters(mode);
    TheGraphicsDriver->Set_Render_Mode(mode, nullptr);
    TheGraphicsDriver->Set_Light_Context(Get_Light_Context());
}

/// An effect may add others, and may render a scene into a target of its own: the driver is then told of this one
/// again.
void vrSimpleScene::Pre_Render_Effects(vrRenderContext &context)
{
    if (Get_Effects().empty()) return;
    for (size_t index = 0; index < Get_Effects().size(); ++index) {
        const SmartPtr<vrSceneEffect> effect = Get_Effects()[index];
        effect->Pre_Render(context);
    }
    if (TheGraphicsDriver) Tell_Driver(*context.Camera, context.Mode);
}

void vrSimpleScene::Set_Render_Parameters(vrRenderModeType mode) const
{
    const vrFogParameters &fog = Get_Fog();
    vrEnvironmentValues values;
    values.Ambient = Get_Light_Context()->Get_Ambient();
    values.FogColor = fog.Color;
    values.FogNear = fog.Near;
    values.FogFar = fog.Far;
    values.FogDensity = fog.Density;
    values.FogEnabled = fog.Enabled && Is_Normal(mode) && vrGraphicsDriver::Is_Enabled(vrGraphicsDriver::STATE_FOG);
    values.DayNightFactor = Get_Day_Night_Factor();
    values.Time = Get_Time();
    TheGraphicsDriver->Set_Environment(values);
    vrGraphicsDriver::Set_Untextured(Is_Untextured());
}

void vrSimpleScene::Start_Rendering(vrRenderContext &context)
{
    if (Is_Normal(context.Mode)) {
        context.PhaseMask = 0xFFFF;
        context.PostFxMask = Get_Scene_Effects_Params().Get_PostFx_Mask();
    } else if (context.Mode == VR_RENDER_MODE_REFLECTION || context.Mode == VR_RENDER_MODE_REFRACTION) {
        context.PhaseMask = MIRROR_PHASES;
        context.PostFxMask = 0;
    } else if (context.Mode == VR_RENDER_MODE_SHADOW_MAP) {
        context.PhaseMask = SHADOW_PHASES;
        context.PostFxMask = 0;
    } else {
        MK_ASSERT(false, "false && \"Invalid render mode.\"");
    }
    if (context.Mode == VR_RENDER_MODE_NORMAL && Is_Light_Field_Enabled() && TheGraphicsDriver &&
        TheGraphicsDriver->Get_Renderer_Type() == VR_RENDERER_FORWARD &&
        vrGraphicsDriver::Is_Enabled(vrGraphicsDriver::STATE_LIGHT_FIELD))
        Refresh_Light_Field();

    uint64_t needed = vrGraphicsDriver::STATE_RENDERABLES;
    if (context.Mode == VR_RENDER_MODE_REFRACTION) needed |= vrGraphicsDriver::STATE_REFRACTION;
    const bool usesSecond = DebugCameras.UseSecond && context.Mode != VR_RENDER_MODE_SHADOW_MAP;
    if (vrGraphicsDriver::Is_Enabled(needed)) Collect_All(context, usesSecond ? *SecondDebugCamera : *context.Camera);
    Merge_Task_Bounds(context);
}

/// What stays where it is comes first, then the rest, each in the order of adding: draws that blend keep theirs,
/// however the trees stand.
void vrSimpleScene::Collect_All(vrRenderContext &context, const vrCamera &camera)
{
    if (!StillTree) {
        for (const ListEntry &entry : Renderables) Collect_One(context, *entry.Renderable);
        return;
    }
    MovingTree->Refresh_Bounds();
    for (TreeCull *tree : {StillTree.get(), MovingTree.get()}) {
        Visible.clear();
        tree->Find_Visible(camera, Visible);
        std::sort(Visible.begin(), Visible.end(),
                  [](const auto *left, const auto *right) { return left->Order < right->Order; });
        for (const TreeCull::Entry *entry : Visible) Collect_One(context, *entry->Renderable);
    }
}

void vrSimpleScene::Collect_One(vrRenderContext &context, vrRenderable &renderable) const
{
    if (renderable.Is_Hidden() || (renderable.Get_Render_Modes() & context.Mode) == 0) return;
    vrBounds box;
    if (const auto water = Get_Water_Height(); water && renderable.Get_Cull_Box(box)) {
        if (context.Mode == VR_RENDER_MODE_REFLECTION && box.Center.z + box.Extent.z < *water) return;
        if (context.Mode == VR_RENDER_MODE_REFRACTION && box.Center.z - box.Extent.z > *water) return;
    }
    renderable.Collect(context);
}

void vrSimpleScene::Merge_Task_Bounds(vrRenderContext &context) const
{
    const Vector3 eye = context.Camera->Get_Position();
    vrBoundsUnion all;
    for (int phase = 0; phase < PHASE_COUNT; ++phase) {
        for (const vrRenderTask *task : context.Get_Tasks(static_cast<vrRenderPhaseEnum>(phase))) {
            const vrBounds box = task->Get_Bounds();
            const Vector3 way = box.Center - eye;
            if (!(glm::dot(way, way) <= GREATEST_TASK_DISTANCE * GREATEST_TASK_DISTANCE)) continue;
            all.Add(box);
        }
    }
    if (const vrTerrain *terrain = Get_Terrain(); terrain && !all.IsEmpty) {
        const vrHeightRange heights = terrain->Get_Height_Range();
        if (std::isfinite(heights.Least) && std::isfinite(heights.Greatest)) {
            all.Low.z = heights.Least;
            all.High.z = std::max(std::min(all.High.z, heights.Greatest * TERRAIN_HEADROOM), all.Low.z);
        }
    }
    context.TaskBounds = all.Get();
}

/// The debug lines, and the edges of what the first debug camera sees.
void vrSimpleScene::Draw_Debug_Helpers()
{
    if (DebugCameras.ShowFrustum) {
        const vrMatrix44 toWorld = FrustumDebugCamera->Get_View_Projection().Inverse();
        std::array<Vector3, 8> corners; // bit n of the index: the high end of axis n
        for (int index = 0; index < 8; ++index) {
            const auto end = [index](int axis) { return index & (1 << axis) ? 1.0f : -1.0f; };
            const Vector4 point = toWorld.Transform({end(0), end(1), end(2), 1.0f});
            corners[static_cast<size_t>(index)] = Vector3(point) / point.w;
        }
        for (size_t index = 0; index < 8; ++index)
            for (size_t bit = 1; bit < 8; bit *= 2)
                if ((index & bit) == 0) Add_Debug_Line(corners[index], corners[index | bit], FRUSTUM_COLOR);
    }
    if (DebugLines.empty()) return;
    const Mat3DClass identity;
    TheGraphicsDriver->Set_World_Transform(&identity);
    TheGraphicsDriver->Set_Texture(0, TheGraphicsDriver->Get_Generic_Texture().Get(), VR_SAMPLER_PLAIN);
    TheGraphicsDriver->Begin_Primitive_State(0, 0, 0);
    for (size_t first = 0; first < DebugLines.size(); first += LINES_A_DRAW) {
        const size_t last = std::min(first + LINES_A_DRAW, DebugLines.size());
        vrPrimVertex *vertices = nullptr;
        if (!TheGraphicsDriver->Begin_Prim_Vertices(VR_PRIMITIVE_LINES, static_cast<int>(2 * (last - first)),
                                                    &vertices))
            break;
        for (size_t index = first; index < last; ++index) {
            const DebugLine &line = DebugLines[index];
            *vertices++ = {line.From, Vector2(0.0f), line.Color};
            *vertices++ = {line.To, Vector2(0.0f), line.Color};
        }
        TheGraphicsDriver->End_Prim_Vertices();
    }
    TheGraphicsDriver->End_Primitive_State();
}
