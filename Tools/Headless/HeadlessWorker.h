#pragma once

#include "Code/ThreadWorker.h"
#include "Headless/UIQueue.h"

/// A background worker that reports through the queue of the user interface's thread.
class HeadlessWorker final : public ThreadWorker
{
public:
    explicit HeadlessWorker(UIQueue &queue) : queue(queue) {}
    ~HeadlessWorker() override;

private:
    void Post(std::function<void()> report) override;

    UIQueue &queue;
};
