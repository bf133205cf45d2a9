#include "vrGraphics/drivercommon/vrParticleScratch.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKPlatform/Memory.h"

#include <atomic>
#include <cstdint>

#include <immintrin.h>

namespace
{

/// Held for a few instructions at a time.
class SpinLock
{
public:
    void lock()
    {
        while (Flag.test_and_set(std::memory_order_acquire)) _mm_pause();
    }
    void unlock() { Flag.clear(std::memory_order_release); }

private:
    std::atomic_flag Flag;
};

class SpinGuard
{
public:
    explicit SpinGuard(SpinLock &lock) : Lock(lock) { Lock.lock(); }
    SpinGuard(const SpinGuard &) = delete;
    SpinGuard &operator=(const SpinGuard &) = delete;
    ~SpinGuard() { Lock.unlock(); }

private:
    SpinLock &Lock;
};

/// Offsets from the base in place of pointers, so that no end can wrap.
struct Area
{
    SpinLock Lock;
    uint8_t *Base = nullptr;
    size_t Size = 0;
    size_t Used = 0;
};

Area area;

} // namespace

bool ParticleScratch::Start(size_t bytes)
{
    const SpinGuard guard(area.Lock);
    area.Used = 0;
    if (area.Base && area.Size == bytes) return true;
    Free_Pages(area.Base, area.Size);
    area.Base = static_cast<uint8_t *>(Allocate_Pages(bytes));
    area.Size = area.Base ? bytes : 0;
    return area.Base != nullptr;
}

void ParticleScratch::Shutdown()
{
    const SpinGuard guard(area.Lock);
    Free_Pages(area.Base, area.Size);
    area.Base = nullptr;
    area.Size = 0;
    area.Used = 0;
}

bool ParticleScratch::Is_Started()
{
    const SpinGuard guard(area.Lock);
    return area.Base != nullptr;
}

void *ParticleScratch::Allocate(int items_count, vrPrimVertexType type)
{
    if (!MK_VERIFY(items_count >= 0, "items_count >= 0")) return nullptr;
    const size_t bytes = static_cast<size_t>(items_count) * static_cast<size_t>(Get_Vertex_Size(type));
    const SpinGuard guard(area.Lock);
    if (!area.Base || bytes > area.Size - area.Used) return nullptr;
    void *room = area.Base + area.Used;
    area.Used += bytes;
    return room;
}

void ParticleScratch::Reset()
{
    const SpinGuard guard(area.Lock);
    area.Used = 0;
}

size_t ParticleScratch::Get_Used_Bytes()
{
    const SpinGuard guard(area.Lock);
    return area.Used;
}
