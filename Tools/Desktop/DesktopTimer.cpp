#include "Desktop/DesktopTimer.h"

#include "Desktop/DesktopApplication.h"

DesktopTimer::DesktopTimer(DesktopApplication &application)
{
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer,
                     [this, &application] { application.Guard([this] { Tick.Raise(this, EventArgs()); }); });
}

void DesktopTimer::Set_Enabled(bool enabled)
{
    if (enabled)
        timer.start();
    else
        timer.stop();
}
