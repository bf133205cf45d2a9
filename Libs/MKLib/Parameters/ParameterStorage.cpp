#include "MKLib/Parameters/ParameterStorage.h"

#include "MKPlatform/Memory.h"

#include <algorithm>
#include <new>
#include <utility>

namespace
{
thread_local ExpectedParameters::SizeStruct Expected;
} // namespace

ParameterStorageClass::~ParameterStorageClass()
{
    while (BlockStruct *block = Last) {
        Last = block->Previous;
        Release(block, LIST_USERS - block->Made);
    }
}

void ParameterStorageClass::Release(BlockStruct *block, uint32_t users)
{
    if (block->Users.fetch_sub(users, std::memory_order_acq_rel) == users) _MK_free(block);
}

void ParameterStorageClass::Add_Block(size_t size)
{
    static_assert(sizeof(BlockStruct) % ALIGNMENT == 0);
    size = std::min(size, MAX_BLOCK_SIZE - sizeof(BlockStruct));
    auto *memory = static_cast<uint8_t *>(_MK_malloc(sizeof(BlockStruct) + size));
    Last = new (memory) BlockStruct{Last, LIST_USERS, 0};
    Free = memory + sizeof(BlockStruct);
    End = Free + size;
    NextBlockSize = size * 2;
}

void *ParameterStorageClass::Allocate(size_t size, uint16_t &place)
{
    size = (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (static_cast<size_t>(End - Free) < size) Add_Block(std::max(size, NextBlockSize));
    Used += size;
    ++Last->Made;
    place = static_cast<uint16_t>(static_cast<size_t>(Free - reinterpret_cast<uint8_t *>(Last)) / ALIGNMENT);
    return std::exchange(Free, Free + size);
}

void ParameterStorageClass::End_Object(void *object, uint16_t place)
{
    Release(reinterpret_cast<BlockStruct *>(static_cast<uint8_t *>(object) - size_t{place} * ALIGNMENT), 1);
}

ExpectedParameters::ExpectedParameters(uint32_t count, uint32_t bytes) { Expected = {count, bytes}; }

ExpectedParameters::~ExpectedParameters() { Expected = {}; }

ExpectedParameters::SizeStruct ExpectedParameters::Take() { return std::exchange(Expected, {}); }
