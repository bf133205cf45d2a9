#include "Code/ThreadWorker.h"

#include <stdexcept>

void ThreadWorker::Join()
{
    if (thread.joinable()) thread.join();
}

void ThreadWorker::Run_Worker_Async(ProgressDialog *argument)
{
    if (thread.joinable()) throw std::logic_error("the background worker is running already");
    thread = std::thread([this, argument] { Work(argument); });
}

void ThreadWorker::Work(ProgressDialog *argument)
{
    DoWorkEventArgs args{argument, ProgressDialogResult(false, argument)};
    std::exception_ptr error;
    try {
        DoWork.Raise(*this, args);
    } catch (...) {
        error = std::current_exception();
    }
    Post([this, completed = RunWorkerCompletedEventArgs{args.Result, error}] {
        RunWorkerCompleted.Raise(*this, completed);
    });
}

void ThreadWorker::Report_Progress(int percentage, const ProgressDialogUserState &state)
{
    if (!reportsProgress) throw std::logic_error("the background worker doesn't report progress");
    Post([this, args = ProgressChangedEventArgs{percentage, state}] { ProgressChanged.Raise(*this, args); });
}
