#pragma once

#include "Code/ApplicationSettings.h"
#include "Code/BindingSource.h"
#include "Code/IFlareTrimUIManager.h"

#include <chrono>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class BackgroundWorker;
class EmitterData;
class MegaFileManagerClass;
class PreviewDriver;
class SceneViewForm;
class UITimer;
class vrAssetManager;
struct DoWorkEventArgs;
struct ProgressChangedEventArgs;
struct RunWorkerCompletedEventArgs;

/// A scan can't list its files. The text names the directory and the reason.
class ScanError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Two modified emitters have one name. The text names both files.
class DuplicateEmitterError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The running state of the whole tool: settings, assets, the loaded emitters and their rows, and the choice of what
/// the preview shows. It answers the user's actions and holds no widget. Everything runs on the user interface's thread
/// but for the work function of a scan, which fills new lists while that thread sits in the progress dialog.
///
/// Needs an Application. The order at the end matters: every reference into the engine goes before the assets that it
/// refers to, and those go before the device.
class ApplicationCore : public IFlareTrimUIManager
{
public:
    using EmitterList = std::vector<std::shared_ptr<EmitterData>>;
    using ModifiedEmitters = std::map<std::string, std::shared_ptr<EmitterData>>; ///< by emitter name

    /// Loads the settings and does nothing else.
    explicit ApplicationCore(std::unique_ptr<PreviewDriver> preview);
    ~ApplicationCore() override;

    bool Initialize();
    bool Shutdown();
    void Dispose();

    ApplicationSettings &Get_Settings() { return appSettings; }
    /// The three are null until the first scan.
    const ParticleList *Get_Particle_List() const { return particleList.get(); }
    const EmitterList *Get_Emitter_List() const { return emitterList.get(); }
    const ModifiedEmitters *Get_Modified_Emitters() const { return modifiedEmitters.get(); }
    const EmitterData *Get_Current_Emitter() const { return currentEmitter.get(); }
    const EmitterData *Get_Preview_Emitter() const { return previewEmitter.get(); }

    /// True when the grid holds a new, complete working set. After a failure only a further scan brings the grid back.
    bool Scan_Emitter_Files();

    void Register_Main_Form(MainForm *form) override;
    void Main_Form_Activated(Sender sender, const EventArgs &args) override;
    void Main_Form_Closing(Sender sender, CancelEventArgs &args) override;
    void Main_Form_Resize(Sender sender, const EventArgs &args) override;
    void Scan_Button_Click(Sender sender, const EventArgs &args) override;
    void Browse_Button_Click(Sender sender, const EventArgs &args) override;
    void Save_Button_Click(Sender sender, const EventArgs &args) override;
    void Save_All_Button_Click(Sender sender, const EventArgs &args) override;
    void Auto_Checkout_Check_Box_Click(Sender sender, const EventArgs &args) override;
    void Preview_Button_Changed(Sender sender, const EventArgs &args) override;
    void Convert_To_Heat_Button_Click(Sender sender, const EventArgs &args) override;
    void View_Form_Activated(Sender sender, const EventArgs &args) override;
    void View_Form_Closing(Sender sender, CancelEventArgs &args) override;
    void View_Form_Closed(Sender sender, const EventArgs &args) override;
    void View_Panel_Resize(Sender sender, const EventArgs &args) override;
    void View_Panel_Paint(Sender sender, const PaintEventArgs &args) override;
    void View_Panel_Mouse_Down(Sender sender, const MouseEventArgs &args) override;
    void View_Panel_Mouse_Up(Sender sender, const MouseEventArgs &args) override;
    void View_Panel_Mouse_Move(Sender sender, const MouseEventArgs &args) override;
    void View_Panel_Mouse_Wheel(Sender sender, const MouseEventArgs &args) override;
    void View_Mode_Changed(Sender sender, const EventArgs &args) override;
    void Render_Axes_Click(Sender sender, const EventArgs &args) override;
    void Render_Background_Click(Sender sender, const EventArgs &args) override;
    void Set_Background_Click(Sender sender, const EventArgs &args) override;
    void Heat_Click(Sender sender, const EventArgs &args) override;
    void Bloom_Click(Sender sender, const EventArgs &args) override;
    void Reset_Camera_Click(Sender sender, const EventArgs &args) override;
    void Reset_Animation_Click(Sender sender, const EventArgs &args) override;
    void Pause_Click(Sender sender, const EventArgs &args) override;
    void Single_Step_Click(Sender sender, const EventArgs &args) override;
    void Speed_Changed(Sender sender, const EventArgs &args) override;
    void Ground_Plane_Click(Sender sender, const EventArgs &args) override;
    void Target_Click(Sender sender, const EventArgs &args) override;

private:
    void Scan_Emitter_Files_DoWork(BackgroundWorker &worker, DoWorkEventArgs &args);
    void Scan_Emitter_Files_ProgressChanged(BackgroundWorker &worker, const ProgressChangedEventArgs &args);
    void Scan_Emitter_Files_RunWorkerCompleted(BackgroundWorker &worker, const RunWorkerCompletedEventArgs &args);
    bool Scan_File(const std::string &path);
    bool Fail_Scan(std::string reason); ///< false
    void Forget_Namesake(const std::string &path);
    void Add_Rows(EmitterData &emitterData);
    void Subscribe_To_Particle_List();
    void Unsubscribe_From_Particle_List();

    void Particle_List_Changed(Sender sender, const ListChangedEventArgs &args);
    void Particle_List_Current_Changed(Sender sender, const EventArgs &args);
    void Push_Emitter(int index);
    void Add_Modified_Emitter(EmitterData &emitterData);

    void Init_Preview();
    void Set_Preview_Paths();
    void Show_Preview(bool resetScene);
    void Hide_Preview();
    void Init_Scene();
    void Reset_Scene();
    void Render_Scene();
    void Reset_Camera();
    void Show_Camera_Distance();
    void Enable_Heat(bool enabled);
    void Enable_Bloom(bool enabled);
    void Animation_Timer_Tick(Sender sender, const EventArgs &args);
    float Get_Elapsed_Seconds();
    float Advance_Scene(float elapsed);
    void Set_Paused(bool value);

    Point Get_Panel_Cursor_Position();
    void Update_Mouse_Position(int x, int y);
    void Left_Button_Down(int x, int y);
    void Left_Button_Up(int x, int y);
    void Right_Button_Down(int x, int y);
    void Right_Button_Up(int x, int y);
    void Mouse_Move(int x, int y);

    std::string settingsFile = "FlareTrimSettings.xml"; ///< in the current directory
    std::unique_ptr<vrAssetManager> assetManager;
    std::shared_ptr<ParticleList> particleList;
    std::unique_ptr<EmitterList> emitterList;
    std::unique_ptr<ModifiedEmitters> modifiedEmitters; ///< those with unsaved changes
    std::shared_ptr<EmitterData> previewEmitter;        ///< in the preview's scene now
    std::shared_ptr<EmitterData> currentEmitter;        ///< of the current row
    MainForm *mainForm = nullptr;
    std::unique_ptr<SceneViewForm> viewForm; ///< made by the first Show_Preview
    bool mainFormFirstActivate = true;       ///< the saved placement isn't restored yet
    bool viewFormFirstActivate = true;
    bool mainFormMinimized = false;
    ApplicationSettings appSettings;
    std::unique_ptr<PreviewDriver> vorenData; ///< the live scene
    bool vorenInitialized = false;            ///< its device is up
    bool showPreview = false;                 ///< the main window's toggle
    bool sceneInitialized = false;
    std::unique_ptr<UITimer> animationTimer;
    bool firstTick = true;    ///< the next tick has no elapsed time
    bool renderMutex = false; ///< re-entrancy latch between the tick and a change of the current row, not a lock
    bool leftButtonDown = false;
    bool rightButtonDown = false;
    float mouseX = 0.0f; ///< -1 to 1 over the view panel
    float mouseY = 0.0f; ///< -1 to 1, up
    std::chrono::steady_clock::time_point lastTick;
    bool paused = false;
    int pendingSteps = 0; ///< single steps that the next tick takes while paused
    float speed = 1.0f;   ///< of the animation; 1 is real time
    bool groundPlane = false;
    bool target = false;
    std::string scanFailure; ///< why the last scan ended early; written by its work function
    std::unique_ptr<MegaFileManagerClass> megaFileManager; ///< what TheMegaFileManager points to
};
