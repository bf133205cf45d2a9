#pragma once

#include "Code/Event.h"
#include "Code/FormTypes.h"

#include <memory>
#include <string>

class BackgroundWorker;
class IFlareTrimUIManager;
class ProgressDialog;
class SceneViewForm;

enum class DialogResult : int
{
    None = 0,
    OK = 1,
    Cancel = 2,
    Abort = 3,
    Retry = 4,
    Ignore = 5,
    Yes = 6,
    No = 7
};

enum class MessageBoxButtons : int
{
    OK = 0,
    YesNo = 4,
    RetryCancel = 5
};

enum class MessageBoxIcon : int
{
    None = 0,
    Error = 16,
    Question = 32
};

/// A timer of the user interface's thread: `Tick` is raised between other events, never in the middle of one.
class UITimer
{
public:
    virtual ~UITimer() = default;

    virtual void Set_Interval(int milliseconds) = 0;
    virtual int Get_Interval() const = 0;
    virtual bool Get_Enabled() const = 0;
    virtual void Set_Enabled(bool enabled) = 0;
    void Start() { Set_Enabled(true); }
    void Stop() { Set_Enabled(false); }

    Event<Sender, const EventArgs &> Tick;
};

struct FolderPicker
{
    std::string SelectedPath; ///< where it opens, and then what was picked
};

struct FilePicker
{
    std::string DefaultExt;
    std::string Filter;
    std::string InitialDirectory;
    std::string FileName; ///< what was picked, with its directory
};

/// What the core asks of the platform besides the forms. The interface layer makes the one instance, ahead of the core,
/// and it outlives the core. All texts are UTF-8. On the user interface's thread.
class Application
{
public:
    Application();
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;
    virtual ~Application();

    /// Expects that there is one.
    static Application &Get_Instance();

    virtual DialogResult Show_Message_Box(const std::string &text, const std::string &caption = "",
                                          MessageBoxButtons buttons = MessageBoxButtons::OK,
                                          MessageBoxIcon icon = MessageBoxIcon::None) = 0;
    /// Modal; OK when the user picked something.
    virtual DialogResult Show_Folder_Picker(FolderPicker &picker) = 0;
    virtual DialogResult Show_File_Picker(FilePicker &picker) = 0;

    virtual std::unique_ptr<UITimer> Create_Timer() = 0;
    virtual std::unique_ptr<BackgroundWorker> Create_Background_Worker() = 0;
    virtual std::unique_ptr<ProgressDialog> Create_Progress_Dialog() = 0;
    virtual std::unique_ptr<SceneViewForm> Create_Scene_View_Form(IFlareTrimUIManager &manager) = 0;

    /// The thread of the user interface is about to wait for something outside of the tool, and handles no event until
    /// `End_Wait`. The windows show the text meanwhile.
    virtual void Begin_Wait(const std::string &what) = 0;
    virtual void End_Wait() = 0;

    /// Handles the events that are waiting, and returns.
    virtual void Do_Events() = 0;
    /// Makes the main form and runs the event loop until it is closed.
    virtual void Run(IFlareTrimUIManager &manager) = 0;

    virtual std::string Get_Startup_Path() const; ///< the directory of the executable
    virtual std::string Get_Current_Directory() const;
    virtual void Set_Current_Directory(const std::string &path);
    virtual Point Get_Cursor_Position() const = 0; ///< screen pixels
    virtual int Get_Mouse_Buttons() const = 0;     ///< MouseButtons bits that are held now
};
