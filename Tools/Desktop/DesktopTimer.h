#pragma once

#include "Code/Application.h"

#include <QTimer>

class DesktopApplication;

class DesktopTimer final : public UITimer
{
public:
    explicit DesktopTimer(DesktopApplication &application);

    void Set_Interval(int milliseconds) override { timer.setInterval(milliseconds); }
    int Get_Interval() const override { return timer.interval(); }
    bool Get_Enabled() const override { return timer.isActive(); }
    void Set_Enabled(bool enabled) override;

private:
    QTimer timer;
};
