#include "MKLib/Singleton.h"

#include "MKLib/Vector.h"
#include "MKPlatform/Threads.h"

#include <chrono>
#include <mutex>
#include <thread>

namespace
{

struct Registry
{
    FastThreadLockClass Lock;
    DynamicVectorClass<SingletonManager *, VECTOR_STORAGE_PLAIN> Singletons; ///< in the order of creation

    /// Made by the first singleton, and never destroyed: statics may ask for singletons at any time.
    static Registry &Get()
    {
        static Registry *registry = new Registry;
        return *registry;
    }
};

} // namespace

int SingletonManager::Get_Singleton_Count()
{
    Registry &registry = Registry::Get();
    const std::lock_guard guard(registry.Lock);
    return registry.Singletons.Get_Count();
}

void SingletonManager::Destroy_All()
{
    Registry &registry = Registry::Get();
    const std::lock_guard guard(registry.Lock);
    while (!registry.Singletons.Is_Empty()) registry.Singletons[registry.Singletons.Get_Count() - 1]->Destroy_Object();
}

void SingletonManager::Register()
{
    Registry &registry = Registry::Get();
    const std::lock_guard guard(registry.Lock);
    registry.Singletons.Add(this);
}

void SingletonManager::Unregister()
{
    Registry &registry = Registry::Get();
    const std::lock_guard guard(registry.Lock);
    const int32_t index = registry.Singletons.Find(this);
    if (index >= 0) registry.Singletons.Remove(index);
}

void SingletonManager::Sleep_Shortly()
{
    std::this_thread::sleep_for(std::chrono::microseconds(50));
}
