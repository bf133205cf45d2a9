#include "Code/ScenePreview.h"

#include "Code/SceneDrawing.h"
#include "Code/SceneViewForm.h"
#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrDevice.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"
#include "vrGraphics/effect/vrMKPGameState.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrSimpleCameraController.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <algorithm>
#include <chrono>
#include <exception>

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

constexpr int SHADOW_MAP_SIZE = 2048;
constexpr float MOUSE_SCALE = 100.0f;
constexpr float AXIS_LENGTH = 30.0f; ///< world units
/// Where the target stands when it is wanted: to the side, so that the way to it is seen.
const Vector3 TARGET_PLACE(150.0f, 0.0f, 40.0f);
constexpr float TARGET_RADIUS = 20.0f;
constexpr float PROJECTILE_SPEED = 200.0f;

/// What an update or a frame throws is left out of the preview, and told.
template <typename Work>
void Guarded(const char *what, Work &&work)
{
    try {
        work();
    } catch (const std::exception &error) {
        MK_LOG(VorenLog, MKDebug::LogLevel::Error, "The preview's %s failed: %s", what, error.what());
    }
}

float Milliseconds_Since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<float, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

ScenePreview::ScenePreview(DeviceMaker makeDevice)
    : MakeDevice(std::move(makeDevice)), Camera(new vrCamera), Controller(std::make_unique<vrSimpleCameraController>())
{
}

ScenePreview::~ScenePreview()
{
    Free_Scene();
    Shutdown_Device();
}

void ScenePreview::Set_Search_Paths(const PreviewPaths &paths)
{
    Apply_Preview_Paths(paths);
}

bool ScenePreview::Init_Device(ViewPanel &panel)
{
    Device = MakeDevice(panel, DeviceError);
    if (Device && Device->Init() && Device->Create_Device(DeviceError)) return true;
    MK_LOG(VorenLog, MKDebug::LogLevel::Error, "There is no preview: %s", DeviceError.c_str());
    Shutdown_Device();
    return false;
}

void ScenePreview::Init_Scene()
{
    if (!Device) return;
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    Prepare_Scene_Driver();
    driver.Set_Renderer_Type(driver.Get_Renderer_Type(), true);
    vrGraphicsDriver::Load_PostFxs_Chain("ParticleEditorChain.xml");
    ShadowTarget = driver.Create_Render_Target("APP_CORE_SHADOWMAP_RT", SHADOW_MAP_SIZE, SHADOW_MAP_SIZE, 0, 0, 1);
    ShadowDepth = driver.Create_Depth_Buffer(SHADOW_MAP_SIZE, SHADOW_MAP_SIZE, 1, 0, 0);

    Scene = new vrSimpleScene;
    Scene->Get_Frustum_Debug_Camera()->Set_Depth_Range(20.0f, 20000.0f);
    Scene->Enable_Particle_Sleep_Mode(true);
    Scene->Set_Terrain(Ground.get());
    vrLightContext *lights = Scene->Get_Light_Context();
    lights->Clear_All_Lights(false, true);
    Scene->Enable_Light_Field(true);
    Scene->Set_Use_Light_Field_Scene_Bounds(false);
    Scene->Set_Day_Night_Factor(1.0f);
    for (auto &light : Lights) light = new vrDirectionalLight;
    lights->Set_Sun_Light(Lights[0].Get());
    lights->Add_Light(Lights[1].Get());
    lights->Add_Light(Lights[2].Get());
    Choose_Scene_Renderer();
}

void ScenePreview::Free_Scene()
{
    Emitter = nullptr;
    Scene = nullptr;
    Background = nullptr;
    for (auto &light : Lights) light = nullptr;
    ShadowTarget = nullptr;
    ShadowDepth = nullptr;
}

void ScenePreview::Shutdown_Device()
{
    if (!Device) return;
    Release_Scene_Textures();
    Device->Shutdown();
    Device.reset();
}

void ScenePreview::Add_Emitter(vrMKParticleEmitter &emitter)
{
    if (!Scene) return;
    Emitter = &emitter;
    Tell_Game_State();
    emitter.Restart();
    Scene->Add_Renderable(&emitter);
}

void ScenePreview::Remove_Emitter(vrMKParticleEmitter &emitter)
{
    if (Scene) Scene->Remove_Renderable(&emitter);
    if (Emitter == &emitter) Emitter = nullptr;
}

bool ScenePreview::Is_Alive(vrMKParticleEmitter &emitter)
{
    for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index) {
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(emitter.Peek_Particle_Renderable(index));
        if (group && !group->Is_Ended() && !group->Is_Depleted()) return true;
    }
    return false;
}

void ScenePreview::Update_Camera(float seconds)
{
    Controller->Update_Camera(Camera.Get(), seconds);
}

void ScenePreview::Update_Scene(float seconds)
{
    if (!Scene) return;
    Scene->Set_Camera(Camera->Get_Transform());
    Guarded("update", [&] { Scene->Update(seconds); });
}

bool ScenePreview::Begin_Frame()
{
    if (!Device || !Scene || !Device->Is_Device_Operational() || vrGraphicsDriver::Is_Inside_Frame()) return false;
    Begin_Scene_Frame(*Camera, RGBAClass{0.0f, 0.0f, 0.0f, 0.0f});
    return true;
}

void ScenePreview::Render(bool axes, bool background)
{
    if (!Begin_Frame()) return;
    const auto start = std::chrono::steady_clock::now();
    if (background && Background) Draw_Scene_Background(*Background);
    Guarded("frame", [&] { Scene->Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false); });
    if (axes) Draw_Axes();
    TheGraphicsDriver->End_Frame();
    FrameMilliseconds = Milliseconds_Since(start);
    const auto flip = std::chrono::steady_clock::now();
    TheGraphicsDriver->Page_Flip(true);
    FlipMilliseconds = Milliseconds_Since(flip);
}

/// Of the update before and the frame before that, also while no frame can be drawn.
PreviewStatistics ScenePreview::Get_Statistics()
{
    const vrGraphicsStats::Values counted = vrGraphicsStats::Get_Stats(true);
    PreviewStatistics statistics;
    statistics.ParticlesSimulated = counted.ParticlesSimulated;
    statistics.ParticlesRendered = counted.ParticlesRendered;
    statistics.Vertices = counted.Vertices;
    statistics.Draws = counted.Draws;
    statistics.PrepareMilliseconds = static_cast<float>(counted.PrepareMicroseconds) / 1000.0f;
    statistics.DrawMilliseconds = std::max(FrameMilliseconds - statistics.PrepareMilliseconds, 0.0f);
    statistics.PresentMilliseconds = FlipMilliseconds;
    return statistics;
}

void ScenePreview::Draw_Axes()
{
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    const Mat3DClass identity;
    driver.Set_World_Transform(&identity);
    driver.Set_Texture(0, vrRenderUtils::Get_Generic_White_Texture().Get(), VR_SAMPLER_PLAIN);
    driver.Begin_Primitive_State(0, 0, 0);
    vrPrimVertex *vertices = nullptr;
    if (driver.Begin_Prim_Vertices(VR_PRIMITIVE_LINES, 6, &vertices) && vertices) {
        for (int axis = 0; axis < 3; ++axis) {
            const vrColor color = Pack_Color(axis == 0 ? 255 : 0, axis == 1 ? 255 : 0, axis == 2 ? 255 : 0, 255);
            Vector3 end(0.0f);
            end[axis] = AXIS_LENGTH;
            vertices[2 * axis] = {Vector3(0.0f), Vector2(0.0f), color};
            vertices[2 * axis + 1] = {end, Vector2(0.0f), color};
        }
        driver.End_Prim_Vertices();
    }
    driver.End_Primitive_State();
}

void ScenePreview::Reset_Camera()
{
    Set_Scene_Lens(*Camera, 1.3333333731f);
    Controller->Set_Camera_Location(Vector3(0.0f));
    Controller->Set_Pitch(35.0f);
    Controller->Set_Yaw(45.0f);
    Controller->Set_Distance(550.0f);
    Controller->Set_Yaw_Rate(-120.0f);
    Controller->Set_Pitch_Rate(60.0f);
    Controller->Set_Max_Camera_Distance(10000.0f);
}

float ScenePreview::Get_Camera_Distance() const
{
    return Controller->Get_Distance();
}

void ScenePreview::Set_Camera_Distance(float distance)
{
    Controller->Set_Distance(distance);
}

void ScenePreview::On_Rotate_Begin()
{
    Controller->On_Rotate_Begin();
}

void ScenePreview::On_Rotate_End()
{
    Controller->On_Rotate_End();
}

void ScenePreview::On_Mouse_Move(float deltaX, float deltaY)
{
    Controller->On_Mouse_Move(deltaX, deltaY, false, MOUSE_SCALE);
}

void ScenePreview::Resize(int width, int height)
{
    if (!Device || width <= 0 || height <= 0) return;
    Device->Resize_Back_Buffer(-1, -1);
    float fieldOfView = 0.0f;
    Camera->Get_Perspective_Params(&fieldOfView, nullptr);
    Camera->Set_Perspective(fieldOfView, static_cast<float>(width) / static_cast<float>(height));
}

void ScenePreview::Set_Background_Image(const std::string &name)
{
    Background = nullptr;
    if (Device && !name.empty())
        Background = vrAssetManager::Get_Instance()->Get_Texture(name.c_str(), true, true, 0, true, false, 8, false);
}

void ScenePreview::Enable_PostFx(uint32_t mask, bool enabled)
{
    if (!Scene) return;
    vrSceneEffectsParams effects = Scene->Get_Scene_Effects_Params();
    effects.Enable_PostFx(mask, enabled);
    Scene->Set_Scene_Effects_Params(effects);
}

void ScenePreview::Enable_Heat(bool enabled)
{
    Enable_PostFx(VR_POSTFX_HEAT_DISTORTION, enabled);
}

void ScenePreview::Enable_Bloom(bool enabled)
{
    Enable_PostFx(VR_POSTFX_BLOOM, enabled);
}

void ScenePreview::Enable_Ground_Plane(bool enabled)
{
    Ground = enabled ? std::make_unique<vrGroundPlane>(0.0f) : nullptr;
    if (Scene) Scene->Set_Terrain(Ground.get());
}

void ScenePreview::Enable_Target(bool enabled)
{
    HasTarget = enabled;
    Tell_Game_State();
}

void ScenePreview::Tell_Game_State()
{
    if (!Emitter) return;
    vrMKPGameState game;
    if (HasTarget) {
        game.TargetPosition = game.ProjectileTarget = game.HomingTarget = TARGET_PLACE;
        game.ProjectileSpeed = PROJECTILE_SPEED;
        game.TargetCircleRadius = TARGET_RADIUS;
    }
    Emitter->Set_Game_State(game);
}
