#include "Desktop/DesktopWorker.h"

#include "Desktop/DesktopApplication.h"

DesktopWorker::~DesktopWorker()
{
    Join();
}

void DesktopWorker::Post(std::function<void()> report)
{
    const auto guarded = [&application = application, report = std::move(report)] { application.Guard(report); };
    QMetaObject::invokeMethod(&receiver, guarded, Qt::QueuedConnection);
}
