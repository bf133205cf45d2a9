#include "Code/ApplicationCore.h"

#include "Code/Application.h"
#include "Code/EmitterData.h"
#include "Code/MainForm.h"
#include "Code/ParticleData.h"
#include "Code/PreviewDriver.h"
#include "Code/SceneViewForm.h"
#include "Code/Utilities.h"
#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/MegaFile/MegaFileManager.h"
#include "MKLib/ThreadPool.h"
#include "MKPlatform/Files.h"
#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/assets/vrThreadLoadManager.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include <utility>

namespace
{

constexpr int TIMER_INTERVAL_MILLISECONDS = 10;

/// Until the working directory's own paths take their place.
const PreviewPaths &Get_Start_Paths()
{
    static const PreviewPaths paths = {
        {"..\\Art\\Shaders\\PC\\DX9\\", "..\\Art\\Shaders\\PC\\DX9\\Common\\", "..\\Art\\Shaders\\PC\\DX9\\Engine\\",
         "..\\Art\\Shaders\\PC\\DX9\\Terrain\\", "..\\Art\\Shaders\\PC\\DX9\\Particle\\",
         "..\\Art\\Shaders\\PC\\DX9\\ShadowMap\\"},
        {"..\\Art\\Textures\\Game\\", "..\\Art\\Textures\\Bump\\", "..\\Art\\Textures\\NoCompression\\",
         "..\\Art\\Textures\\DDS\\", "..\\Art\\Textures\\Interface\\", "..\\Art\\Textures\\Heat\\"},
        ""};
    return paths;
}

/// Both windows keep their placement alike: the size and place of a maximised one are those that it goes back to.
template <typename Form>
void Restore_Placement(Form &form, bool maximized, Point location, Size size)
{
    form.Set_Location(location);
    form.Set_Size(size);
    if (maximized) form.Set_Window_State(FormWindowState::Maximized);
}

template <typename Form>
void Store_Placement(Form &form, bool &locationSet, bool &maximized, Point &location, Size &size)
{
    maximized = form.Get_Window_State() == FormWindowState::Maximized;
    form.Set_Window_State(FormWindowState::Normal);
    location = form.Get_Location();
    size = form.Get_Size();
    locationSet = true;
}

} // namespace

ApplicationCore::ApplicationCore(std::unique_ptr<PreviewDriver> preview)
    : appSettings(ApplicationSettings::Load(settingsFile)), vorenData(std::move(preview))
{
}

ApplicationCore::~ApplicationCore()
{
    // Rows and emitters ahead of the assets, also when the run ended without a closing.
    modifiedEmitters.reset();
    emitterList.reset();
    particleList.reset();
    currentEmitter.reset();
    previewEmitter.reset();
    Dispose();
    if (!megaFileManager) return;
    megaFileManager->Close_All();
    TheMegaFileManager = nullptr;
}

bool ApplicationCore::Initialize()
{
    Application &application = Application::Get_Instance();
    Utilities::Initialize_Logger(application.Get_Startup_Path() + "\\Tools.logger.properties");
    vrMKPRenderable::Set_Remove_With_Emitter(true);
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(1);
    vrMKParticleGroup::Enable_Forced_Additional_Asset_Loading(false);
    vorenData->Set_Search_Paths(Get_Start_Paths());
    assetManager = std::make_unique<vrAssetManager>(false);
    animationTimer = application.Create_Timer();
    animationTimer->Set_Interval(TIMER_INTERVAL_MILLISECONDS);
    animationTimer->Tick.Subscribe<&ApplicationCore::Animation_Timer_Tick>(this);
    Show_Preview(true);
    return true;
}

void ApplicationCore::Register_Main_Form(MainForm *form)
{
    mainForm = form;
    mainForm->Set_Current_Path(MKPlatform::Absolute_Path(appSettings.WorkingDirectory));
    mainForm->Set_Auto_Checkout(appSettings.AutoCheckout);
    mainForm->Set_Preview_Available(vorenInitialized);
}

void ApplicationCore::Main_Form_Activated(Sender, const EventArgs &)
{
    if (!std::exchange(mainFormFirstActivate, false) || !appSettings.MainFormLocationSet) return;
    Restore_Placement(*mainForm, appSettings.MainFormMaximized, appSettings.MainFormLocation, appSettings.MainFormSize);
}

void ApplicationCore::View_Form_Activated(Sender, const EventArgs &)
{
    if (!std::exchange(viewFormFirstActivate, false) || !appSettings.ViewFormLocationSet) return;
    Restore_Placement(*viewForm, appSettings.ViewFormMaximized, appSettings.ViewFormLocation, appSettings.ViewFormSize);
}

void ApplicationCore::Browse_Button_Click(Sender, const EventArgs &)
{
    FolderPicker picker{appSettings.WorkingDirectory};
    if (Application::Get_Instance().Show_Folder_Picker(picker) != DialogResult::OK) return;
    appSettings.WorkingDirectory = MKPlatform::Absolute_Path(picker.SelectedPath);
    mainForm->Set_Current_Path(appSettings.WorkingDirectory);
    if (viewForm) Set_Preview_Paths();
}

void ApplicationCore::Auto_Checkout_Check_Box_Click(Sender, const EventArgs &)
{
    appSettings.AutoCheckout = mainForm->Get_Auto_Checkout();
}

void ApplicationCore::Main_Form_Closing(Sender, CancelEventArgs &args)
{
    if (modifiedEmitters && !modifiedEmitters->empty()) {
        const DialogResult answer = Application::Get_Instance().Show_Message_Box(
            "Emitters have been modified, but not been saved. Continue Closing Anyway?", "Flare Trim",
            MessageBoxButtons::YesNo, MessageBoxIcon::Question);
        if (answer == DialogResult::No) {
            args.Cancel = true;
            return;
        }
    }
    Store_Placement(*mainForm, appSettings.MainFormLocationSet, appSettings.MainFormMaximized,
                    appSettings.MainFormLocation, appSettings.MainFormSize);
    if (viewForm)
        Store_Placement(*viewForm, appSettings.ViewFormLocationSet, appSettings.ViewFormMaximized,
                        appSettings.ViewFormLocation, appSettings.ViewFormSize);
    appSettings.Save(settingsFile);
    if (showPreview) Hide_Preview();
    mainForm->Get_Particle_Data_Source().Clear();
    Shutdown();
}

bool ApplicationCore::Shutdown()
{
    if (animationTimer) animationTimer->Stop();
    modifiedEmitters.reset();
    emitterList.reset();
    particleList.reset();
    currentEmitter.reset();
    if (previewEmitter) {
        vrMKParticleEmitter &emitter = *previewEmitter->Get_Emitter();
        emitter.Raise_Scene_Reassign_Hint(true);
        vorenData->Remove_Emitter(emitter);
        emitter.Raise_Scene_Reassign_Hint(false);
        previewEmitter.reset();
    }
    if (assetManager) assetManager->Free_All_Assets();
    if (vorenData) vorenData->Free_Scene();
    // The scene held assets of its own.
    vrAssetManager::Get_Instance()->Free_All_Assets();
    if (vorenInitialized) {
        vrThreadLoadManager::Synchronize();
        vorenData->Shutdown_Device();
    }
    viewForm.reset();
    Dispose();
    return true;
}

void ApplicationCore::Dispose()
{
    vorenData.reset();
    assetManager.reset();
}
