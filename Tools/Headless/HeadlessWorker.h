#pragma once

#include "Code/BackgroundWorker.h"
#include "Headless/UIQueue.h"

#include <thread>

/// A background worker on a thread of its own, which reports through the queue of the user interface's thread.
class HeadlessWorker final : public BackgroundWorker
{
public:
    explicit HeadlessWorker(UIQueue &queue) : queue(queue) {}
    HeadlessWorker(const HeadlessWorker &) = delete;
    HeadlessWorker &operator=(const HeadlessWorker &) = delete;
    ~HeadlessWorker() override;

    void Set_Reports_Progress(bool enabled) override { reportsProgress = enabled; }
    void Run_Worker_Async(ProgressDialog *argument) override;
    void Report_Progress(int percentage, const ProgressDialogUserState &state) override;

private:
    void Work(ProgressDialog *argument);

    UIQueue &queue;
    std::thread thread;
    bool reportsProgress = false;
};
