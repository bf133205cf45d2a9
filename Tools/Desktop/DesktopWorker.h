#pragma once

#include "Code/BackgroundWorker.h"

#include <QObject>
#include <thread>

class DesktopApplication;

/// A background worker on a thread of its own, which reports through Qt's event queue.
class DesktopWorker final : public BackgroundWorker
{
public:
    explicit DesktopWorker(DesktopApplication &application) : application(application) {}
    DesktopWorker(const DesktopWorker &) = delete;
    DesktopWorker &operator=(const DesktopWorker &) = delete;
    ~DesktopWorker() override;

    void Set_Reports_Progress(bool enabled) override { reportsProgress = enabled; }
    void Run_Worker_Async(ProgressDialog *argument) override;
    void Report_Progress(int percentage, const ProgressDialogUserState &state) override;

private:
    void Work(ProgressDialog *argument);

    DesktopApplication &application;
    QObject receiver; ///< of the queued reports, which go when it goes
    std::thread thread;
    bool reportsProgress = false;
};
