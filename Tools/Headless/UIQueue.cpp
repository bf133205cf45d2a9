#include "Headless/UIQueue.h"

void UIQueue::Post(const void *owner, std::function<void()> event)
{
    {
        const std::lock_guard lock(Lock);
        Events.emplace_back(owner, std::move(event));
    }
    Arrived.notify_one();
}

void UIQueue::Remove(const void *owner)
{
    const std::lock_guard lock(Lock);
    std::erase_if(Events, [owner](const auto &event) { return event.first == owner; });
}

bool UIQueue::Run_Next(std::chrono::milliseconds wait)
{
    std::function<void()> event;
    {
        std::unique_lock lock(Lock);
        if (!Arrived.wait_for(lock, wait, [this] { return !Events.empty(); })) return false;
        event = std::move(Events.front().second);
        Events.pop_front();
    }
    event();
    return true;
}
