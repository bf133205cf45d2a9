#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/NoCopy.h"
#include "MKPlatform/Threads.h"

#include <cstddef>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

/// Memory for objects of one size, had in blocks of `poolSize` of them and kept until the pool ends. No lock.
class MemoryPool : public MK::NoCopy
{
public:
    /// `alignment` is a power of two, at most that of any block of the heap. A pool of no objects asserts and has one.
    MemoryPool(size_t objectSize, size_t alignment, size_t poolSize);
    ~MemoryPool();

    /// Memory for one object, in no set state; null, with an assertion, when there is none to be had.
    void *Allocate();
    /// Takes back what `Allocate` gave; null is nothing.
    void Free(void *memory);

    size_t Get_Used_Count() const { return UsedCount; }
    size_t Get_Block_Count() const { return Blocks.size(); }

private:
    struct FreeObject
    {
        FreeObject *Next;
    };

    void Add_Block();

    size_t ObjectSize; ///< what one object takes, alignment included
    size_t PoolSize;
    size_t UsedCount = 0;
    FreeObject *FreeObjectHead = nullptr;
    std::vector<void *> Blocks;
};

/// A pool of T. The lock is taken only when it is in force.
template <typename T, size_t PoolSize, typename Lock = FastThreadLockClass>
class MemoryPoolClass : public MK::NoCopy
{
    static_assert(alignof(T) <= alignof(std::max_align_t));

public:
    explicit MemoryPoolClass(bool lockInForce = true) : PoolLock(lockInForce), Pool(sizeof(T), alignof(T), PoolSize) {}

    /// Null when there is no memory.
    template <typename... Arguments>
    T *New(Arguments &&...arguments)
    {
        void *memory = nullptr;
        {
            const std::lock_guard guard(PoolLock);
            memory = Pool.Allocate();
        }
        return memory ? new (memory) T(std::forward<Arguments>(arguments)...) : nullptr;
    }

    void Delete(T *object)
    {
        if (!object) return;
        object->~T();
        const std::lock_guard guard(PoolLock);
        Pool.Free(object);
    }

    size_t Get_Used_Count()
    {
        const std::lock_guard guard(PoolLock);
        return Pool.Get_Used_Count();
    }

private:
    Lock PoolLock;
    MemoryPool Pool;
};
