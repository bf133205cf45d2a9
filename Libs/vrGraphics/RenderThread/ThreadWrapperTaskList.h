#pragma once

#include "MKLib/NoCopy.h"
#include "MKPlatform/Threads.h"

#include <memory>
#include <vector>

/// One change that another thread asks for, run when the threads meet.
class ThreadWrapperTask
{
public:
    virtual ~ThreadWrapperTask() = default;
    virtual void Execute() = 0;
};

/// The changes that wait for the threads to meet. Owns its tasks. A task must neither add nor remove any: that asserts,
/// and what it adds runs last, what it removes stays.
class ThreadWrapperTaskList : public MK::NoCopy
{
public:
    /// Without the lock all of it belongs to one thread.
    explicit ThreadWrapperTaskList(bool useLock) : Lock(useLock) {}

    /// Takes the task over. Null does nothing.
    void Add(ThreadWrapperTask *task);
    /// Deletes the task. False, with nothing deleted, for one that isn't in the list.
    bool Remove(const ThreadWrapperTask *task);
    /// The same, and asserts that this is the thread to ask: the main one, unless a parallel section runs.
    bool Remove_Checked(const ThreadWrapperTask *task);
    /// Runs all in the order of adding and empties the list. Only where the threads meet.
    void Execute_All();
    int Get_Count() const { return static_cast<int>(Tasks.size()); }

private:
    FastThreadLockClass Lock;
    std::vector<std::unique_ptr<ThreadWrapperTask>> Tasks;
    bool ExecutingTasks = false;
};
