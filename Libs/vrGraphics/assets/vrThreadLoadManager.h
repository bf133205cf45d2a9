#pragma once

#include <functional>

/// Loads in the background. All loading is done by the thread that asks for it, so that none is ever outstanding; what
/// is to happen after a load waits here for the main thread.
class vrThreadLoadManager
{
public:
    /// Any thread. What an entry queues while it runs belongs to the same run.
    static void Queue_Load_Finish(std::function<void()> call);
    /// Runs all that is queued, in its order. Asserts the main thread outside of a parallel section.
    static void Synchronize();
};
