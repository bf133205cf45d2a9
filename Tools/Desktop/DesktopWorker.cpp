#include "Desktop/DesktopWorker.h"

#include "Desktop/DesktopApplication.h"

#include <stdexcept>

DesktopWorker::~DesktopWorker()
{
    if (thread.joinable()) thread.join();
}

void DesktopWorker::Run_Worker_Async(ProgressDialog *argument)
{
    if (thread.joinable()) throw std::logic_error("the background worker is running already");
    thread = std::thread([this, argument] { Work(argument); });
}

void DesktopWorker::Work(ProgressDialog *argument)
{
    DoWorkEventArgs args{argument, ProgressDialogResult(false, argument)};
    std::exception_ptr error;
    try {
        DoWork.Raise(*this, args);
    } catch (...) {
        error = std::current_exception();
    }
    QMetaObject::invokeMethod(
        &receiver,
        [this, completed = RunWorkerCompletedEventArgs{args.Result, error}] {
            application.Guard([&] { RunWorkerCompleted.Raise(*this, completed); });
        },
        Qt::QueuedConnection);
}

void DesktopWorker::Report_Progress(int percentage, const ProgressDialogUserState &state)
{
    if (!reportsProgress) throw std::logic_error("the background worker doesn't report progress");
    QMetaObject::invokeMethod(
        &receiver,
        [this, args = ProgressChangedEventArgs{percentage, state}] {
            application.Guard([&] { ProgressChanged.Raise(*this, args); });
        },
        Qt::QueuedConnection);
}
