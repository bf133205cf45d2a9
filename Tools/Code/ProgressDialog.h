#pragma once

#include <string>
#include <utility>

enum class DialogResult : int;

/// A modal window that shows how far a long job has come. On the user interface's thread.
class ProgressDialog
{
public:
    virtual ~ProgressDialog() = default;

    virtual void Set_Title(const std::string &title) = 0;
    virtual void Set_Step_Count(int count) = 0;
    virtual void Set_Steps(int done) = 0;
    virtual void Set_Step_Name(const std::string &name) = 0; ///< what the step works on; may be empty
    /// Closes the dialog.
    virtual void Done(bool success) = 0;
    /// Runs the event loop until `Done`: OK after Done(true), anything else after Done(false). What a handler throws
    /// meanwhile comes out of here.
    virtual DialogResult Show_Dialog() = 0;
};

/// One progress report, on its way from the worker to the dialog.
struct ProgressDialogUserState
{
    ProgressDialogUserState(int count, int index, ProgressDialog *dialog, std::string name = "")
        : Steps(index), StepCount(count), CurrentDialog(dialog), StepName(std::move(name))
    {
    }

    int Steps;
    int StepCount;
    ProgressDialog *CurrentDialog; ///< only dereferenced on the user interface's thread
    std::string StepName;
};

struct ProgressDialogResult
{
    ProgressDialogResult(bool success, ProgressDialog *dialog) : Success(success), CurrentDialog(dialog) {}

    bool Success;
    ProgressDialog *CurrentDialog;
};
