#include "Headless/HeadlessWorker.h"

#include <stdexcept>

HeadlessWorker::~HeadlessWorker()
{
    if (thread.joinable()) thread.join();
    queue.Remove(this); // what is left of the reports has nobody to go to
}

void HeadlessWorker::Run_Worker_Async(ProgressDialog *argument)
{
    if (thread.joinable()) throw std::logic_error("the background worker is running already");
    thread = std::thread([this, argument] { Work(argument); });
}

void HeadlessWorker::Work(ProgressDialog *argument)
{
    DoWorkEventArgs args{argument, ProgressDialogResult(false, argument)};
    std::exception_ptr error;
    try {
        DoWork.Raise(*this, args);
    } catch (...) {
        error = std::current_exception();
    }
    queue.Post(this, [this, completed = RunWorkerCompletedEventArgs{args.Result, error}] {
        RunWorkerCompleted.Raise(*this, completed);
    });
}

void HeadlessWorker::Report_Progress(int percentage, const ProgressDialogUserState &state)
{
    if (!reportsProgress) throw std::logic_error("the background worker doesn't report progress");
    queue.Post(this,
               [this, args = ProgressChangedEventArgs{percentage, state}] { ProgressChanged.Raise(*this, args); });
}
