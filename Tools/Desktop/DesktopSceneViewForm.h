#pragma once

#include "Code/PreviewDriver.h"
#include "Code/SceneViewForm.h"
#include "Desktop/WindowPlacement.h"

#include <QTimer>
#include <QWidget>

class DesktopApplication;
class DesktopViewPanel;
class IFlareTrimUIManager;
class QAction;
class QComboBox;
class QLabel;
class QToolBar;

/// The commands of the view window.
struct ViewFormActions
{
    QAction *Axes;
    QAction *Background;
    QAction *Heat;
    QAction *Bloom;
    QAction *Ground;
    QAction *Target;
    QAction *Statistics;
    QAction *SetBackground;
    QAction *ResetCamera;
    QAction *ResetAnimation;
    QAction *Pause;
    QAction *Step;
};

class DesktopSceneViewForm final : public QWidget, public SceneViewForm
{
public:
    DesktopSceneViewForm(DesktopApplication &application, IFlareTrimUIManager &manager);
    ~DesktopSceneViewForm() override;

    ViewPanel &Get_View_Panel() override;
    int Get_View_Mode_Index() const override;
    void Set_View_Mode_Index(int index) override;
    void Set_Render_Axes(bool enabled) override;
    void Set_Render_Background(bool enabled) override;
    void Set_Heat(bool enabled) override;
    void Set_Bloom(bool enabled) override;
    void Set_Camera_Distance(int distance) override;
    void Set_Particles_Simulated(int count) override;
    void Set_Particles_Rendered(int count) override;
    void Set_Paused(bool paused) override;
    float Get_Speed() const override;
    void Set_Speed(float speed) override;
    void Set_Ground_Plane(bool enabled) override;
    void Set_Target(bool enabled) override;
    void Set_Statistics(const PreviewStatistics &value) override;
    void Set_Visible(bool visible) override;
    void Bring_To_Front() override;
    Point Get_Location() const override { return placement.Get_Location(); }
    void Set_Location(Point location) override { placement.Set_Location(location); }
    Size Get_Size() const override { return placement.Get_Size(); }
    void Set_Size(Size size) override { placement.Set_Size(size); }
    FormWindowState Get_Window_State() const override { return placement.Get_State(); }
    void Set_Window_State(FormWindowState state) override { placement.Set_State(state); }

    DesktopViewPanel &Get_Panel() { return *panel; }
    const ViewFormActions &Get_Actions() const { return actions; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    using Operation = void (IFlareTrimUIManager::*)(Sender sender, const EventArgs &args);

    QAction *Add_Action(const QString &text, const QString &icon, const QString &keys, Operation operation);
    QAction *Add_Toggle(const QString &text, const QString &icon, const QString &keys, Operation operation);
    void Place_At_First();
    void Make_Actions();
    QToolBar *Make_Upper_Bar();
    QToolBar *Make_Lower_Bar();
    void Report(Operation operation);
    void Show_Counters_Soon();
    void Show_Counters();

    DesktopApplication &application;
    IFlareTrimUIManager &manager;
    WindowPlacement placement;
    ViewFormActions actions{};
    DesktopViewPanel *panel;
    QLabel *overlay; ///< over the panel's corner
    QComboBox *viewMode = nullptr;
    QComboBox *speed = nullptr;
    QLabel *counters = nullptr;
    QTimer counterTimer; ///< figures that change with each frame are shown as often as they can be read
    int cameraDistance = 0;
    int particlesSimulated = 0;
    int particlesRendered = 0;
    PreviewStatistics statistics;
};
