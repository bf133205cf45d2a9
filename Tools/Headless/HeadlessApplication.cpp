#include "Headless/HeadlessApplication.h"

#include "Headless/HeadlessForms.h"
#include "Headless/HeadlessTimer.h"
#include "Headless/HeadlessWorker.h"

#include <algorithm>

namespace
{

/// How long the event loop waits for an event before it looks at the timers.
constexpr std::chrono::milliseconds EVENT_WAIT(5);

} // namespace

HeadlessApplication::HeadlessApplication() : startupPath(Application::Get_Startup_Path())
{
}

HeadlessApplication::~HeadlessApplication() = default;

DialogResult HeadlessApplication::Decline(const ShownMessageBox &box)
{
    switch (box.Buttons) {
    case MessageBoxButtons::YesNo: return DialogResult::No;
    case MessageBoxButtons::RetryCancel: return DialogResult::Cancel;
    case MessageBoxButtons::OK: break;
    }
    return DialogResult::OK;
}

HeadlessApplication::MessageBoxPolicy HeadlessApplication::Accept()
{
    return [retried = false](const ShownMessageBox &box) mutable {
        const bool isRetry = box.Buttons == MessageBoxButtons::RetryCancel;
        retried = isRetry && !retried;
        if (isRetry) return retried ? DialogResult::Retry : DialogResult::Cancel;
        return box.Buttons == MessageBoxButtons::YesNo ? DialogResult::Yes : DialogResult::OK;
    };
}

void HeadlessApplication::Set_Mouse(Point position, int buttons)
{
    cursor = position;
    mouseButtons = buttons;
}

void HeadlessApplication::Fire_Timers()
{
    const std::vector<HeadlessTimer *> current = timers;
    for (HeadlessTimer *timer : current)
        if (timer->Get_Enabled()) timer->Fire();
}

DialogResult HeadlessApplication::Show_Message_Box(const std::string &text, const std::string &caption,
                                                   MessageBoxButtons buttons, MessageBoxIcon icon)
{
    ShownMessageBox box{text, caption, buttons, icon};
    box.Answer = messageBoxPolicy(box);
    messageBoxes.push_back(box);
    return box.Answer;
}

DialogResult HeadlessApplication::Show_Folder_Picker(FolderPicker &picker)
{
    if (!pickedFolder) return DialogResult::Cancel;
    picker.SelectedPath = *pickedFolder;
    return DialogResult::OK;
}

DialogResult HeadlessApplication::Show_File_Picker(FilePicker &picker)
{
    if (!pickedFile) return DialogResult::Cancel;
    picker.FileName = *pickedFile;
    return DialogResult::OK;
}

std::unique_ptr<UITimer> HeadlessApplication::Create_Timer()
{
    return std::make_unique<HeadlessTimer>(timers);
}

std::unique_ptr<BackgroundWorker> HeadlessApplication::Create_Background_Worker()
{
    return std::make_unique<HeadlessWorker>(queue);
}

std::unique_ptr<ProgressDialog> HeadlessApplication::Create_Progress_Dialog()
{
    return std::make_unique<HeadlessProgressDialog>(*this);
}

std::unique_ptr<SceneViewForm> HeadlessApplication::Create_Scene_View_Form(IFlareTrimUIManager &manager)
{
    return std::make_unique<HeadlessSceneViewForm>(*this, manager);
}

void HeadlessApplication::Do_Events()
{
    while (queue.Run_Next(std::chrono::milliseconds(0))) {
    }
}

void HeadlessApplication::Run(IFlareTrimUIManager &manager)
{
    HeadlessMainForm form(manager);
    form.Activate();
    if (session) session(form);
    Do_Events();
}

std::string HeadlessApplication::Get_Startup_Path() const
{
    return startupPath;
}

void HeadlessApplication::Run_Until(const bool &done)
{
    while (!done) {
        queue.Run_Next(EVENT_WAIT);
        const std::vector<HeadlessTimer *> current = timers;
        for (HeadlessTimer *timer : current)
            if (!done && timer->Is_Due()) timer->Fire();
    }
}
