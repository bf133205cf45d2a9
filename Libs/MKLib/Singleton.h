#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/NoCopy.h"

#include <atomic>

/// Process-wide objects that are made on first use, and one registry of those that are alive. The registry has a lock
/// of its own; creation may be raced by any number of threads, one of which constructs. An object ends when it is told
/// to.
class SingletonManager : public MK::NoCopy
{
public:
    /// How many singletons are alive.
    static int Get_Singleton_Count();
    /// Ends all of them, the last made first. No thread may use one meanwhile.
    static void Destroy_All();

protected:
    constexpr SingletonManager() = default;
    ~SingletonManager() = default;

    virtual void Destroy_Object() = 0;

    void Register();
    void Unregister();
    /// The wait between two looks for an object that another thread constructs.
    static void Sleep_Shortly();
};

template <typename T>
class SingletonInstance final : public SingletonManager
{
public:
    static T &Get()
    {
        T *object = mPtr.load(std::memory_order_acquire);
        if (!object) [[unlikely]]
            object = Create();
        return *object;
    }

    static bool IsInstantiated() { return mPtr.load(std::memory_order_acquire) != nullptr; }

    /// Ends the object; the next `Get` makes another. Asserts when there is none.
    static void Destroy() { Manager.Destroy_Object(); }

private:
    constexpr SingletonInstance() = default;

    static T *Create();
    void Destroy_Object() override;

    static inline std::atomic<T *> mPtr{nullptr};
    static inline std::atomic<int> CreationFlag{0};
    static SingletonInstance Manager;
};

template <typename T>
constinit SingletonInstance<T> SingletonInstance<T>::Manager;

template <typename T>
T *SingletonInstance<T>::Create()
{
    if (CreationFlag.fetch_add(1, std::memory_order_acq_rel) == 0) {
        Manager.Register();
        mPtr.store(new T, std::memory_order_release);
    } else {
        while (!IsInstantiated()) Sleep_Shortly();
    }
    MK_ASSERT(IsInstantiated(), "IsInstantiated()");
    return mPtr.load(std::memory_order_acquire);
}

template <typename T>
void SingletonInstance<T>::Destroy_Object()
{
    T *const object = mPtr.load(std::memory_order_acquire);
    if (!MK_VERIFY(object != nullptr, "mPtr != NULL")) return;
    Unregister();
    delete object;
    mPtr.store(nullptr, std::memory_order_release);
    CreationFlag.store(0, std::memory_order_release);
}
