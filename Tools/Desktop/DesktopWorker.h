#pragma once

#include "Code/ThreadWorker.h"

#include <QObject>

class DesktopApplication;

/// A background worker that reports through Qt's event queue.
class DesktopWorker final : public ThreadWorker
{
public:
    explicit DesktopWorker(DesktopApplication &application) : application(application) {}
    ~DesktopWorker() override;

private:
    void Post(std::function<void()> report) override;

    DesktopApplication &application;
    QObject receiver; ///< of the queued reports, which go when it goes
};
