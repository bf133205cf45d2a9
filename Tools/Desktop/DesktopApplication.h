#pragma once

#include "Code/Application.h"

#include <exception>
#include <functional>
#include <memory>
#include <utility>

class DesktopMainForm;
class DesktopSceneViewForm;
class QApplication;
class QWidget;
class Theme;

/// The interface layer of Qt widgets. Qt's event loop carries no exceptions, so every handler calls the core through
/// `Guard`: what the core throws ends the loops, and comes out of the call that ran the innermost one, at the end
/// `Run`.
class DesktopApplication final : public Application
{
public:
    using Session = std::function<void(DesktopMainForm &form)>;

    /// Both as `main` got them; they must outlive the object. What Qt understands of them is taken out.
    DesktopApplication(int &argc, char **argv);
    ~DesktopApplication() override;

    /// What is done to the main form, from inside the event loop, once it stands. Nothing at first.
    void Set_Session(Session userSession) { session = std::move(userSession); }
    Theme &Get_Theme() { return *theme; }
    /// The connection to the X server that the windows are on, as Xlib has it; null on other platforms.
    void *Get_X_Display() const;
    DesktopMainForm *Get_Main_Form() const { return mainForm; }      ///< null while there is none
    DesktopSceneViewForm *Get_View_Form() const { return viewForm; } ///< null while there is none

    /// Runs an action of the core's. What it throws is kept, and the event loops end.
    template <typename Action>
    void Guard(Action action)
    {
        try {
            action();
        } catch (...) {
            Fail(std::current_exception());
        }
    }
    /// Throws what was kept, if anything was.
    void Rethrow();
    /// Ends the event loop of `Run`.
    void Leave();

    DialogResult Show_Message_Box(const std::string &text, const std::string &caption, MessageBoxButtons buttons,
                                  MessageBoxIcon icon) override;
    DialogResult Show_Folder_Picker(FolderPicker &picker) override;
    DialogResult Show_File_Picker(FilePicker &picker) override;
    std::unique_ptr<UITimer> Create_Timer() override;
    std::unique_ptr<BackgroundWorker> Create_Background_Worker() override;
    std::unique_ptr<ProgressDialog> Create_Progress_Dialog() override;
    std::unique_ptr<SceneViewForm> Create_Scene_View_Form(IFlareTrimUIManager &manager) override;
    void Begin_Wait(const std::string &what) override;
    void End_Wait() override;
    void Do_Events() override;
    void Run(IFlareTrimUIManager &manager) override;
    Point Get_Cursor_Position() const override;
    int Get_Mouse_Buttons() const override;

private:
    friend class DesktopMainForm;
    friend class DesktopSceneViewForm;

    void Fail(std::exception_ptr exception);
    QWidget *Get_Dialog_Parent() const;

    std::unique_ptr<QApplication> qt;
    std::unique_ptr<Theme> theme;
    Session session;
    std::exception_ptr failure;
    bool isRunning = false;
    DesktopMainForm *mainForm = nullptr;
    DesktopSceneViewForm *viewForm = nullptr;
};
