#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

/// The event queue of the user interface's thread: any thread posts, that one runs.
class UIQueue
{
public:
    /// `owner` names whom the event is about, for `Remove`.
    void Post(const void *owner, std::function<void()> event);
    /// Drops the events of an owner that are still waiting.
    void Remove(const void *owner);
    /// Runs the next event, waiting for one as long as told. False when none came. What the event throws comes out.
    bool Run_Next(std::chrono::milliseconds wait);

private:
    std::mutex Lock;
    std::condition_variable Arrived;
    std::deque<std::pair<const void *, std::function<void()>>> Events;
};
