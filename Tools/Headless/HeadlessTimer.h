#pragma once

#include "Code/Application.h"

#include <chrono>
#include <vector>

/// A timer that the application's event loop ticks. It stands in the application's list for as long as it lives.
class HeadlessTimer final : public UITimer
{
public:
    explicit HeadlessTimer(std::vector<HeadlessTimer *> &list) : list(list) { list.push_back(this); }
    HeadlessTimer(const HeadlessTimer &) = delete;
    HeadlessTimer &operator=(const HeadlessTimer &) = delete;
    ~HeadlessTimer() override { std::erase(list, this); }

    void Set_Interval(int milliseconds) override { interval = std::chrono::milliseconds(milliseconds); }
    int Get_Interval() const override { return static_cast<int>(interval.count()); }
    bool Get_Enabled() const override { return enabled; }
    void Set_Enabled(bool value) override
    {
        enabled = value;
        due = Clock::now() + interval;
    }

    bool Is_Due() const { return enabled && Clock::now() >= due; }
    void Fire()
    {
        due = Clock::now() + interval;
        Tick.Raise(this, EventArgs());
    }

private:
    using Clock = std::chrono::steady_clock;

    std::vector<HeadlessTimer *> &list;
    std::chrono::milliseconds interval{100};
    Clock::time_point due;
    bool enabled = false;
};
