#pragma once

#include "Code/Application.h"
#include "Headless/UIQueue.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class HeadlessMainForm;
class HeadlessProgressDialog;
class HeadlessSceneViewForm;
class HeadlessTimer;

/// A message box that was shown, with the answer that it got.
struct ShownMessageBox
{
    std::string Text;
    std::string Caption;
    MessageBoxButtons Buttons;
    MessageBoxIcon Icon;
    DialogResult Answer = DialogResult::None;
};

/// The interface layer of plain objects, for tests and scripts. Message boxes are answered by a policy and recorded,
/// pickers by what was laid out beforehand, and what a user does is a session: a function that gets the main form.
class HeadlessApplication final : public Application
{
public:
    using MessageBoxPolicy = std::function<DialogResult(const ShownMessageBox &box)>;
    using Session = std::function<void(HeadlessMainForm &form)>;
    using ProgressObserver = std::function<void(const HeadlessProgressDialog &dialog)>;

    HeadlessApplication();
    ~HeadlessApplication() override;

    /// Answers OK, No and Cancel.
    static DialogResult Decline(const ShownMessageBox &box);
    /// A policy that answers OK and Yes, and Retry to every other box in a row of Retry boxes, beginning with the
    /// first: one try more, and then Cancel.
    static MessageBoxPolicy Accept();

    /// Decline at first.
    void Set_Message_Box_Policy(MessageBoxPolicy policy) { messageBoxPolicy = std::move(policy); }
    const std::vector<ShownMessageBox> &Get_Message_Boxes() const { return messageBoxes; }
    void Clear_Message_Boxes() { messageBoxes.clear(); }
    /// What the tool has waited for.
    const std::vector<std::string> &Get_Waits() const { return waits; }
    /// What the next pickers answer: nothing means Cancel, which is what they do at first.
    void Set_Picked_Folder(std::optional<std::string> path) { pickedFolder = std::move(path); }
    void Set_Picked_File(std::optional<std::string> path) { pickedFile = std::move(path); }
    /// What the user does while the main form stands. The form goes away when the session returns, closed or not.
    void Set_Session(Session userSession) { session = std::move(userSession); }
    /// Called at each step of a progress dialog.
    void Set_Progress_Observer(ProgressObserver observer) { progressObserver = std::move(observer); }
    void Set_Startup_Path(std::string path) { startupPath = std::move(path); }
    /// Where the mouse is, and which buttons it holds.
    void Set_Mouse(Point position, int buttons);

    HeadlessSceneViewForm *Get_View_Form() const { return viewForm; } ///< null while there is none
    /// Ticks every enabled timer once, due or not.
    void Fire_Timers();

    DialogResult Show_Message_Box(const std::string &text, const std::string &caption, MessageBoxButtons buttons,
                                  MessageBoxIcon icon) override;
    DialogResult Show_Folder_Picker(FolderPicker &picker) override;
    DialogResult Show_File_Picker(FilePicker &picker) override;
    std::unique_ptr<UITimer> Create_Timer() override;
    std::unique_ptr<BackgroundWorker> Create_Background_Worker() override;
    std::unique_ptr<ProgressDialog> Create_Progress_Dialog() override;
    std::unique_ptr<SceneViewForm> Create_Scene_View_Form(IFlareTrimUIManager &manager) override;
    void Begin_Wait(const std::string &what) override { waits.push_back(what); }
    void End_Wait() override {}
    void Do_Events() override;
    void Run(IFlareTrimUIManager &manager) override;
    std::string Get_Startup_Path() const override;
    Point Get_Cursor_Position() const override { return cursor; }
    int Get_Mouse_Buttons() const override { return mouseButtons; }

    /// Runs the event loop, ticking the timers that are due, until `done`.
    void Run_Until(const bool &done);

private:
    friend class HeadlessProgressDialog;
    friend class HeadlessSceneViewForm;
    friend class HeadlessTimer;

    UIQueue queue;
    MessageBoxPolicy messageBoxPolicy = Decline;
    std::vector<ShownMessageBox> messageBoxes;
    std::vector<std::string> waits;
    std::optional<std::string> pickedFolder;
    std::optional<std::string> pickedFile;
    Session session;
    ProgressObserver progressObserver;
    std::string startupPath;
    Point cursor;
    int mouseButtons = 0;
    HeadlessSceneViewForm *viewForm = nullptr;
    std::vector<HeadlessTimer *> timers;
};
