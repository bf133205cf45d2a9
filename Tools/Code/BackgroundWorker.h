#pragma once

#include "Code/Event.h"
#include "Code/FormTypes.h"
#include "Code/ProgressDialog.h"

#include <exception>

struct DoWorkEventArgs
{
    ProgressDialog *Argument;
    ProgressDialogResult Result;
};

struct ProgressChangedEventArgs
{
    int ProgressPercentage;
    ProgressDialogUserState UserState;
};

struct RunWorkerCompletedEventArgs
{
    ProgressDialogResult Result;
    std::exception_ptr Error; ///< what the work function threw, or null

    /// Throws `Error` when there is one: an exception of the work surfaces where its result is asked for.
    const ProgressDialogResult &Get_Result() const
    {
        if (Error) std::rethrow_exception(Error);
        return Result;
    }
};

/// Runs the handlers of `DoWork` on another thread; progress and completion reach theirs on the user interface's
/// thread, in the order in which they were reported. The destructor waits for the work to end.
class BackgroundWorker
{
public:
    virtual ~BackgroundWorker() = default;

    virtual void Set_Reports_Progress(bool enabled) = 0;
    /// Starts the work. `argument` goes to the handlers and must outlive the worker.
    virtual void Run_Worker_Async(ProgressDialog *argument) = 0;
    /// From the work function; only with progress reports on.
    virtual void Report_Progress(int percentage, const ProgressDialogUserState &state) = 0;

    Event<BackgroundWorker &, DoWorkEventArgs &> DoWork;
    Event<BackgroundWorker &, const ProgressChangedEventArgs &> ProgressChanged;
    Event<BackgroundWorker &, const RunWorkerCompletedEventArgs &> RunWorkerCompleted;
};
