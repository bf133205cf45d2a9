#include "Code/ApplicationCore.h"

#include "Code/Application.h"
#include "Code/EmitterData.h"
#include "Code/MainForm.h"
#include "Code/ParticleData.h"
#include "Code/PreviewDriver.h"
#include "Code/SceneDrawing.h"
#include "Code/SceneViewForm.h"
#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/MegaFile/MegaFileManager.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/postfx/vrPostFxModes.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace
{

/// A reset and a frame move the camera by a thirtieth of a second, whatever the time.
constexpr float CAMERA_STEP_SECONDS = 0.0333333351f;
constexpr float SINGLE_STEP_SECONDS = 0.0333333351f;
constexpr float LEAST_SPEED = 0.1f;
constexpr float GREATEST_SPEED = 4.0f;

/// Set for as long as it lives.
class ScopedLatch
{
public:
    explicit ScopedLatch(bool &latch) : Latch(latch) { Latch = true; }
    ScopedLatch(const ScopedLatch &) = delete;
    ScopedLatch &operator=(const ScopedLatch &) = delete;
    ~ScopedLatch() { Latch = false; }

private:
    bool &Latch;
};

} // namespace

void ApplicationCore::Show_Preview(bool resetScene)
{
    if (!viewForm) {
        viewForm = Application::Get_Instance().Create_Scene_View_Form(*this);
        Init_Preview();
    }
    viewForm->Set_View_Mode_Index(appSettings.ViewMode);
    viewForm->Set_Render_Axes(appSettings.RenderAxes);
    viewForm->Set_Render_Background(appSettings.RenderBackground);
    viewForm->Set_Heat(appSettings.EnableHeat);
    viewForm->Set_Bloom(appSettings.EnableBloom);
    viewForm->Set_Paused(paused);
    viewForm->Set_Speed(speed);
    viewForm->Set_Ground_Plane(groundPlane);
    viewForm->Set_Target(target);
    if (!vorenInitialized) return;
    firstTick = true;
    if (resetScene) Reset_Scene();
    vorenData->Set_Background_Image(appSettings.BackgroundImageName);
    viewForm->Set_Visible(true);
    viewForm->Bring_To_Front();
    animationTimer->Start();
}

void ApplicationCore::Hide_Preview()
{
    if (!viewForm) return;
    animationTimer->Stop();
    viewForm->Set_Visible(false);
}

void ApplicationCore::Set_Preview_Paths()
{
    vorenData->Set_Search_Paths(Get_Preview_Paths(appSettings.WorkingDirectory));
}

/// What the whole engine needs runs in any case; only the device may be missing.
void ApplicationCore::Init_Preview()
{
    Set_Preview_Paths();
    Init_Floating_Point_Mode();
    if (!TheMegaFileManager) {
        megaFileManager = std::make_unique<MegaFileManagerClass>();
        TheMegaFileManager = megaFileManager.get();
        megaFileManager->Load_Default_Mega_Files(static_cast<MegaFileClass::MegaFileAccess>(0));
    }
    Register_vrGraphics_Enums();
    const bool hasDevice = vorenData->Init_Device(viewForm->Get_View_Panel());
    vrMKPRenderable::Set_In_Editor(true);
    vorenInitialized = hasDevice;
}

void ApplicationCore::Init_Scene()
{
    vorenData->Init_Scene();
    Reset_Camera();
    Enable_Heat(appSettings.EnableHeat);
    Enable_Bloom(appSettings.EnableBloom);
    sceneInitialized = true;
}

void ApplicationCore::Reset_Scene()
{
    if (!sceneInitialized) Init_Scene();
    if (previewEmitter) vorenData->Remove_Emitter(*previewEmitter->Get_Emitter());
    if (!currentEmitter) return;
    firstTick = true;
    vorenData->Add_Emitter(*currentEmitter->Get_Emitter());
    previewEmitter = currentEmitter;
}

void ApplicationCore::Render_Scene()
{
    if (!vorenInitialized) return;
    vorenData->Update_Camera(CAMERA_STEP_SECONDS);
    vorenData->Render(appSettings.RenderAxes, appSettings.RenderBackground);
}

float ApplicationCore::Get_Elapsed_Seconds()
{
    const auto now = std::chrono::steady_clock::now();
    const float elapsed = std::chrono::duration<float>(now - lastTick).count();
    lastTick = now;
    return std::exchange(firstTick, false) ? 0.0f : elapsed;
}

/// The milliseconds that it took. A paused animation moves by its single steps alone.
float ApplicationCore::Advance_Scene(float elapsed)
{
    const int steps = std::exchange(pendingSteps, 0);
    if (paused && steps == 0) return 0.0f;
    const auto start = std::chrono::steady_clock::now();
    if (!paused) vorenData->Update_Scene(elapsed * speed);
    for (int step = 0; paused && step < steps; ++step) vorenData->Update_Scene(SINGLE_STEP_SECONDS);
    return std::chrono::duration<float, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void ApplicationCore::Animation_Timer_Tick(Sender, const EventArgs &)
{
    if (renderMutex) return;
    if (viewForm->Get_Window_State() == FormWindowState::Minimized) {
        firstTick = true; // time that nobody saw pass doesn't count
        return;
    }
    const ScopedLatch latch(renderMutex);
    const float elapsed = Get_Elapsed_Seconds();
    vorenData->Update_Camera(elapsed);
    const float simulateMilliseconds = Advance_Scene(elapsed);
    viewForm->Set_Particles_Simulated(vorenData->Get_Statistics().ParticlesSimulated);
    PreviewStatistics statistics = vorenData->Get_Statistics();
    viewForm->Set_Particles_Rendered(statistics.ParticlesRendered);
    statistics.SimulateMilliseconds = simulateMilliseconds;
    viewForm->Set_Statistics(statistics);
    // An effect that has run out begins again.
    if (previewEmitter && !vorenData->Is_Alive(*previewEmitter->Get_Emitter())) Reset_Scene();
    Render_Scene();
}

void ApplicationCore::Particle_List_Current_Changed(Sender, const EventArgs &)
{
    const std::shared_ptr<ParticleData> row = mainForm->Get_Particle_Data_Source().Get_Current();
    if (!row) return;
    const std::shared_ptr<EmitterData> emitterData = row->Get_EmitterData().shared_from_this();
    const bool changed = emitterData != currentEmitter;
    currentEmitter = emitterData;
    if (!showPreview || !changed) return;
    // The holder isn't on this thread's stack below: no event is handled in the middle of a frame.
    while (renderMutex) std::this_thread::yield();
    const ScopedLatch latch(renderMutex);
    animationTimer->Stop();
    Reset_Scene();
    animationTimer->Start();
}

void ApplicationCore::Preview_Button_Changed(Sender, const EventArgs &)
{
    showPreview = mainForm->Get_Preview();
    if (showPreview)
        Show_Preview(true);
    else
        Hide_Preview();
}

void ApplicationCore::Main_Form_Resize(Sender, const EventArgs &)
{
    if (mainForm->Get_Window_State() == FormWindowState::Minimized) {
        if (showPreview) Hide_Preview();
        mainFormMinimized = true;
    } else if (std::exchange(mainFormMinimized, false)) {
        if (showPreview && viewForm) Show_Preview(false);
    }
}

void ApplicationCore::View_Form_Closing(Sender, CancelEventArgs &args)
{
    args.Cancel = true;
    Hide_Preview();
    if (mainForm) mainForm->Set_Preview(false); // its window opens ahead of the main one
}

void ApplicationCore::View_Form_Closed(Sender, const EventArgs &)
{
    if (animationTimer) animationTimer->Stop();
    vorenInitialized = false;
}

void ApplicationCore::Reset_Camera()
{
    vorenData->Reset_Camera();
    vorenData->Update_Camera(CAMERA_STEP_SECONDS);
    Show_Camera_Distance();
}

void ApplicationCore::Show_Camera_Distance()
{
    if (viewForm) viewForm->Set_Camera_Distance(static_cast<int>(vorenData->Get_Camera_Distance()));
}

void ApplicationCore::Enable_Heat(bool enabled)
{
    if (vorenInitialized && viewForm) vorenData->Enable_Heat(enabled);
}

void ApplicationCore::Enable_Bloom(bool enabled)
{
    if (vorenInitialized && viewForm) vorenData->Enable_Bloom(enabled);
}

void ApplicationCore::View_Mode_Changed(Sender, const EventArgs &)
{
    appSettings.ViewMode = viewForm->Get_View_Mode_Index();
    vrMKPSpawner::Set_Global_LOD(static_cast<float>(appSettings.ViewMode * 0.25));
}

void ApplicationCore::Render_Axes_Click(Sender, const EventArgs &)
{
    appSettings.RenderAxes = !appSettings.RenderAxes;
    viewForm->Set_Render_Axes(appSettings.RenderAxes);
}

void ApplicationCore::Render_Background_Click(Sender, const EventArgs &)
{
    appSettings.RenderBackground = !appSettings.RenderBackground;
    viewForm->Set_Render_Background(appSettings.RenderBackground);
}

void ApplicationCore::Heat_Click(Sender, const EventArgs &)
{
    appSettings.EnableHeat = !appSettings.EnableHeat;
    viewForm->Set_Heat(appSettings.EnableHeat);
    Enable_Heat(appSettings.EnableHeat);
}

void ApplicationCore::Bloom_Click(Sender, const EventArgs &)
{
    appSettings.EnableBloom = !appSettings.EnableBloom;
    viewForm->Set_Bloom(appSettings.EnableBloom);
    Enable_Bloom(appSettings.EnableBloom);
}

void ApplicationCore::Set_Background_Click(Sender, const EventArgs &)
{
    Application &application = Application::Get_Instance();
    const std::string directory = application.Get_Current_Directory();
    FilePicker picker{"tga", "tga files(*.tga)|*.tga", "..\\Art\\Textures\\Game", ""};
    if (application.Show_File_Picker(picker) == DialogResult::OK) {
        appSettings.BackgroundImageName = MKPlatform::Path_File_Name(picker.FileName);
        vorenData->Set_Background_Image(appSettings.BackgroundImageName);
    }
    application.Set_Current_Directory(directory);
    viewForm->Get_View_Panel().Invalidate();
}

void ApplicationCore::Reset_Camera_Click(Sender, const EventArgs &)
{
    Reset_Camera();
}

void ApplicationCore::Reset_Animation_Click(Sender, const EventArgs &)
{
    Reset_Scene();
}

void ApplicationCore::Set_Paused(bool value)
{
    paused = value;
    pendingSteps = 0;
    viewForm->Set_Paused(paused);
}

void ApplicationCore::Pause_Click(Sender, const EventArgs &)
{
    if (viewForm) Set_Paused(!paused);
}

void ApplicationCore::Single_Step_Click(Sender, const EventArgs &)
{
    if (!viewForm) return;
    if (!paused) Set_Paused(true);
    ++pendingSteps;
}

/// What isn't a number plays at real time.
void ApplicationCore::Speed_Changed(Sender, const EventArgs &)
{
    const float wanted = viewForm->Get_Speed();
    speed = std::isfinite(wanted) ? std::clamp(wanted, LEAST_SPEED, GREATEST_SPEED) : 1.0f;
}

void ApplicationCore::Ground_Plane_Click(Sender, const EventArgs &)
{
    groundPlane = !groundPlane;
    viewForm->Set_Ground_Plane(groundPlane);
    if (vorenInitialized) vorenData->Enable_Ground_Plane(groundPlane);
}

void ApplicationCore::Target_Click(Sender, const EventArgs &)
{
    target = !target;
    viewForm->Set_Target(target);
    if (vorenInitialized) vorenData->Enable_Target(target);
}
