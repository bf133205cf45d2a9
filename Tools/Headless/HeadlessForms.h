#pragma once

#include "Code/MainForm.h"
#include "Code/PreviewDriver.h"
#include "Code/ProgressDialog.h"
#include "Code/SceneViewForm.h"
#include "Headless/HeadlessGrid.h"

class HeadlessApplication;
class IFlareTrimUIManager;

/// Placement of a window that exists as data alone.
struct HeadlessPlacement
{
    Point location;
    Size size{800, 600};
    FormWindowState state = FormWindowState::Normal;
};

/// The main window as a plain object. The first half is what the core sees; the second is what a user does, each as the
/// widget would: what is disabled answers false and reports nothing, and so does a closed window.
class HeadlessMainForm final : public MainForm
{
public:
    explicit HeadlessMainForm(IFlareTrimUIManager &manager);

    HeadlessBindingSource &Get_Particle_Data_Source() override { return source; }
    HeadlessGrid &Get_Particle_Grid_View() override { return grid; }
    void Set_Settings_Controls_Enabled(bool enabled) override { settingsControlsEnabled = enabled; }
    void Set_Save_All_Button_Enabled(bool enabled) override { saveAllButtonEnabled = enabled; }
    void Set_Current_Path(const std::string &path) override { currentPath = path; }
    bool Get_Auto_Checkout() const override { return autoCheckout; }
    void Set_Auto_Checkout(bool enabled) override { autoCheckout = enabled; }
    bool Get_Preview() const override { return preview; }
    void Set_Preview(bool enabled) override;
    void Resize_Columns() override { ++resizeCount; }
    void Set_Scan_Failure(const std::string &reason) override { scanFailure = reason; }
    void Set_Preview_Available(bool available) override { previewAvailable = available; }
    Point Get_Location() const override { return placement.location; }
    void Set_Location(Point location) override { placement.location = location; }
    Size Get_Size() const override { return placement.size; }
    void Set_Size(Size size) override { placement.size = size; }
    FormWindowState Get_Window_State() const override { return placement.state; }
    void Set_Window_State(FormWindowState state) override { placement.state = state; }

    bool Are_Settings_Controls_Enabled() const { return settingsControlsEnabled; }
    bool Is_Save_All_Button_Enabled() const { return saveAllButtonEnabled; }
    const std::string &Get_Current_Path() const { return currentPath; }
    int Get_Resize_Count() const { return resizeCount; }
    const std::string &Get_Scan_Failure() const { return scanFailure; }
    bool Is_Preview_Available() const { return previewAvailable; }
    bool Is_Closed() const { return closed; }

    void Activate();
    /// The user minimises, maximises or restores the window.
    void Change_Window_State(FormWindowState state);
    void Click_Scan();
    void Click_Browse();
    void Click_Save();
    bool Click_Save_All();
    void Check_Auto_Checkout(bool enabled);
    /// Enabled for a current row that supports heat and has no heat visualizer yet.
    bool Click_Convert_To_Heat();
    /// Writes a property of the current row; see HeadlessGrid::Edit_Current.
    bool Edit_Current(std::string_view property, std::string_view text);
    /// False when the core wants the window kept.
    bool Close();

private:
    IFlareTrimUIManager &manager;
    HeadlessBindingSource source;
    HeadlessGrid grid;
    HeadlessPlacement placement;
    bool settingsControlsEnabled = false;
    bool saveAllButtonEnabled = false;
    bool autoCheckout = false;
    bool preview = false;
    bool closed = false;
    bool previewAvailable = false;
    int resizeCount = 0;
    std::string currentPath;
    std::string scanFailure;
};

class HeadlessViewPanel final : public ViewPanel
{
public:
    void *Get_Handle() const override { return nullptr; }
    Rectangle Get_Client_Rectangle() const override { return {0, 0, size.Width, size.Height}; }
    int Get_Width() const override { return size.Width; }
    int Get_Height() const override { return size.Height; }
    void Invalidate() override { ++invalidateCount; }
    void Focus() override { focused = true; }
    Point Screen_To_Client(Point screen) const override { return {screen.X - origin.X, screen.Y - origin.Y}; }

    Size size{640, 480};
    Point origin; ///< of the panel on the screen
    int invalidateCount = 0;
    bool focused = false;
};

/// What the view window shows, as data.
struct HeadlessViewState
{
    int viewModeIndex = -1;
    bool renderAxes = false;
    bool renderBackground = false;
    bool heat = false;
    bool bloom = false;
    int cameraDistance = 0;
    int particlesSimulated = 0;
    int particlesRendered = 0;
    bool paused = false;
    float speed = 1.0f;
    bool groundPlane = false;
    bool target = false;
    PreviewStatistics statistics;
    bool visible = false;
    int raiseCount = 0;
};

class HeadlessSceneViewForm final : public SceneViewForm
{
public:
    /// `owner` is told when the window goes away.
    HeadlessSceneViewForm(HeadlessApplication &owner, IFlareTrimUIManager &manager);
    HeadlessSceneViewForm(const HeadlessSceneViewForm &) = delete;
    HeadlessSceneViewForm &operator=(const HeadlessSceneViewForm &) = delete;
    ~HeadlessSceneViewForm() override;

    HeadlessViewPanel &Get_View_Panel() override { return panel; }
    int Get_View_Mode_Index() const override { return state.viewModeIndex; }
    void Set_View_Mode_Index(int index) override { state.viewModeIndex = index; }
    void Set_Render_Axes(bool enabled) override { state.renderAxes = enabled; }
    void Set_Render_Background(bool enabled) override { state.renderBackground = enabled; }
    void Set_Heat(bool enabled) override { state.heat = enabled; }
    void Set_Bloom(bool enabled) override { state.bloom = enabled; }
    void Set_Camera_Distance(int distance) override { state.cameraDistance = distance; }
    void Set_Particles_Simulated(int count) override { state.particlesSimulated = count; }
    void Set_Particles_Rendered(int count) override { state.particlesRendered = count; }
    void Set_Paused(bool paused) override { state.paused = paused; }
    float Get_Speed() const override { return state.speed; }
    void Set_Speed(float speed) override { state.speed = speed; }
    void Set_Ground_Plane(bool enabled) override { state.groundPlane = enabled; }
    void Set_Target(bool enabled) override { state.target = enabled; }
    void Set_Statistics(const PreviewStatistics &statistics) override { state.statistics = statistics; }
    void Set_Visible(bool visible) override { state.visible = visible; }
    void Bring_To_Front() override { ++state.raiseCount; }
    Point Get_Location() const override { return placement.location; }
    void Set_Location(Point location) override { placement.location = location; }
    Size Get_Size() const override { return placement.size; }
    void Set_Size(Size size) override { placement.size = size; }
    FormWindowState Get_Window_State() const override { return placement.state; }
    void Set_Window_State(FormWindowState windowState) override { placement.state = windowState; }

    const HeadlessViewState &Get_State() const { return state; }
    void Activate();
    /// The user picks a view mode.
    void Select_View_Mode(int index);
    /// The user picks how fast the animation plays.
    void Select_Speed(float speed);
    /// The user closes the window. False when the core wants it kept.
    bool Close();

private:
    HeadlessApplication &owner;
    IFlareTrimUIManager &manager;
    HeadlessViewPanel panel;
    HeadlessPlacement placement;
    HeadlessViewState state;
};

class HeadlessProgressDialog final : public ProgressDialog
{
public:
    explicit HeadlessProgressDialog(HeadlessApplication &application) : application(application) {}

    void Set_Title(const std::string &text) override { title = text; }
    void Set_Step_Count(int count) override { stepCount = count; }
    void Set_Steps(int done) override;
    void Set_Step_Name(const std::string &name) override { stepName = name; }
    void Done(bool success) override;
    DialogResult Show_Dialog() override;

    const std::string &Get_Title() const { return title; }
    int Get_Step_Count() const { return stepCount; }
    int Get_Steps() const { return steps; }
    const std::string &Get_Step_Name() const { return stepName; }

private:
    HeadlessApplication &application;
    std::string title;
    std::string stepName;
    int stepCount = 0;
    int steps = 0;
    bool done = false;
    bool succeeded = false;
};
