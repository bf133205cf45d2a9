#include "MKLib/MemoryPool.h"

#include <algorithm>
#include <cstdint>

MemoryPool::MemoryPool(size_t objectSize, size_t alignment, size_t poolSize)
    : ObjectSize(std::max(objectSize, sizeof(FreeObject))), PoolSize(std::max<size_t>(poolSize, 1))
{
    MK_ASSERT(poolSize != 0, "PoolSize != 0");
    alignment = std::max(alignment, alignof(FreeObject));
    if (ObjectSize <= SIZE_MAX - alignment) ObjectSize = (ObjectSize + alignment - 1) / alignment * alignment;
}

MemoryPool::~MemoryPool()
{
    for (void *block : Blocks) ::operator delete(block);
}

void *MemoryPool::Allocate()
{
    if (!FreeObjectHead) Add_Block();
    if (!MK_VERIFY(FreeObjectHead != nullptr, "FreeObjectHead != NULL")) return nullptr;
    ++UsedCount;
    return std::exchange(FreeObjectHead, FreeObjectHead->Next);
}

void MemoryPool::Free(void *memory)
{
    if (!memory) return;
    FreeObjectHead = new (memory) FreeObject{FreeObjectHead};
    --UsedCount;
}

void MemoryPool::Add_Block()
{
    if (PoolSize > SIZE_MAX / ObjectSize) return;
    auto *block = static_cast<std::byte *>(::operator new(PoolSize *ObjectSize, std::nothrow));
    if (!block) return;
    Blocks.push_back(block);
    // From the back, so that objects are given out in the order of their addresses.
    for (size_t index = PoolSize; index-- > 0;)
        FreeObjectHead = new (block + index * ObjectSize) FreeObject{FreeObjectHead};
}
