#pragma once

#include <atomic>
#include <mutex>

/// Critical section with a switch: while it is off, lock and unlock do nothing. Re-entrant on its thread.
class FastThreadLockClass
{
public:
    explicit FastThreadLockClass(bool inForce = true) : InForce(inForce) {}

    void lock()
    {
        if (InForce) Mutex.lock();
    }
    void unlock()
    {
        if (InForce) Mutex.unlock();
    }

private:
    const bool InForce;
    std::recursive_mutex Mutex;
};
