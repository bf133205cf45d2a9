#pragma once

#include "Code/BackgroundWorker.h"

#include <functional>
#include <thread>

/// A background worker on a thread of its own. An interface layer adds how reports reach its thread.
class ThreadWorker : public BackgroundWorker
{
public:
    ThreadWorker() = default;
    ThreadWorker(const ThreadWorker &) = delete;
    ThreadWorker &operator=(const ThreadWorker &) = delete;

    void Set_Reports_Progress(bool enabled) override { reportsProgress = enabled; }
    void Run_Worker_Async(ProgressDialog *argument) override;
    void Report_Progress(int percentage, const ProgressDialogUserState &state) override;

protected:
    /// Waits for the work to end. The derived class's destructor calls it first, since the work calls `Post`.
    void Join();

private:
    /// From the worker's thread: has a report run on the user interface's, unless the worker is gone by then.
    virtual void Post(std::function<void()> report) = 0;
    void Work(ProgressDialog *argument);

    std::thread thread;
    bool reportsProgress = false;
};
