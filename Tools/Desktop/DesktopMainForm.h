#pragma once

#include "Code/MainForm.h"
#include "Desktop/DesktopGrid.h"
#include "Desktop/WindowPlacement.h"

#include <QMainWindow>
#include <memory>

class DesktopApplication;
class IFlareTrimUIManager;
class ParticleRowFilter;
class ParticleTableModel;
class ParticleTableView;
class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QToolBar;
class SelectionPanel;

/// The commands of the main window, each of which stands in a menu and most in the toolbar.
struct MainFormActions
{
    QAction *Browse;
    QAction *Scan;
    QAction *Save;
    QAction *SaveAll;
    QAction *AutoCheckout;
    QAction *Quit;
    QAction *SelectAll;
    QAction *SelectEffects;
    QAction *Filter;
    QAction *Convert;
    QAction *Preview;
    QAction *Pause;
    QAction *Step;
    QAction *ResetAnimation;
    QAction *ResetCamera;
};

class DesktopMainForm final : public QMainWindow, public MainForm
{
public:
    DesktopMainForm(DesktopApplication &application, IFlareTrimUIManager &manager);
    ~DesktopMainForm() override;

    DesktopBindingSource &Get_Particle_Data_Source() override { return source; }
    DesktopGrid &Get_Particle_Grid_View() override { return *grid; }
    void Set_Settings_Controls_Enabled(bool enabled) override;
    void Set_Save_All_Button_Enabled(bool enabled) override;
    void Set_Current_Path(const std::string &path) override;
    bool Get_Auto_Checkout() const override;
    void Set_Auto_Checkout(bool enabled) override;
    bool Get_Preview() const override;
    void Set_Preview(bool enabled) override;
    void Resize_Columns() override;
    void Set_Scan_Failure(const std::string &reason) override;
    void Set_Preview_Available(bool available) override;
    Point Get_Location() const override { return placement.Get_Location(); }
    void Set_Location(Point location) override { placement.Set_Location(location); }
    Size Get_Size() const override { return placement.Get_Size(); }
    void Set_Size(Size size) override { placement.Set_Size(size); }
    FormWindowState Get_Window_State() const override { return placement.Get_State(); }
    void Set_Window_State(FormWindowState state) override { placement.Set_State(state); }

    /// Restores the placement ahead of the first showing, and turns the preview's toggle on when its window is open.
    void Open();
    /// Tells what the tool waits for, at once, since no event is handled until the wait is over; empty when it is.
    void Show_Wait(const QString &what);

    ParticleTableModel &Get_Model() { return *model; }
    ParticleTableView &Get_Table() { return *table; }
    SelectionPanel &Get_Selection_Panel() { return *panel; }
    QLineEdit &Get_Filter_Field() { return *filterField; }
    const MainFormActions &Get_Actions() const { return actions; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void Make_Actions();
    void Make_Tool_Bar();
    void Make_Centre();
    void Make_Menus();
    void Make_Theme_Menu(QMenu &menu);
    void Make_Preview_Menu();
    void Make_Status_Bar();
    void Connect_Grid();
    QAction *Add_Action(const QString &text, const QString &icon, const QKeySequence &keys,
                        void (DesktopMainForm::*run)());
    /// An operation of the manager's that takes no more than the event.
    using Operation = void (IFlareTrimUIManager::*)(Sender sender, const EventArgs &args);
    void Report(Operation operation);

    void Scan();
    void Save();
    void Save_All();
    void Convert();
    void Browse();
    void Select_Effects();
    void Focus_Filter();
    void Pause();
    void Step();
    void Reset_Animation();
    void Reset_Camera();

    void Commit_Edits();
    void Row_Edited(int row);
    void Schedule_Update();
    void Update_State();
    void Update_Message();
    void Update_Counts(size_t selected);
    void Tell_Saved(int modifiedBefore);
    template <typename Counts>
    int Count_Effects_That(Counts counts) const;
    int Count_Modified_Effects() const;
    void Keep_Layout() const;
    void Restore_Layout();
    void Rows_Reset(Sender sender, const ListChangedEventArgs &args);
    void Grid_Refreshed();

    DesktopApplication &application;
    IFlareTrimUIManager &manager;
    WindowPlacement placement;
    std::unique_ptr<ParticleTableModel> model;
    std::unique_ptr<ParticleRowFilter> filter;
    DesktopBindingSource source;
    std::unique_ptr<DesktopGrid> grid;
    MainFormActions actions{};
    ParticleTableView *table = nullptr;
    SelectionPanel *panel = nullptr;
    QWidget *panelFrame = nullptr;
    QLineEdit *pathField = nullptr;
    QLineEdit *filterField = nullptr;
    QLabel *message = nullptr; ///< over the grid while that has no rows
    QLabel *counts = nullptr;
    QLabel *previewState = nullptr;
    QString currentPath;
    QString scanFailure;
    bool settingsControlsEnabled = false;
    bool isUpdateScheduled = false;
    bool closed = false;
};
