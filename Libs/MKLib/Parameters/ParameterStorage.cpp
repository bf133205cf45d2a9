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
    while (Last) Release(std::exchange(Last, Last->Previous));
}

void ParameterStorageClass::Release(BlockStruct *block)
{
    if (block->Users.fetch_sub(1, std::memory_order_acq_rel) == 1) _MK_free(block);
}

void ParameterStorageClass::Add_Block(size_t size)
{
    static_assert(sizeof(BlockStruct) % ALIGNMENT == 0);
    size = std::min(size, MAX_BLOCK_SIZE - sizeof(BlockStruct));
    auto *memory = static_cast<uint8_t *>(_MK_malloc(sizeof(BlockStruct) + size));
    Last = new (memory) BlockStruct{Last, 1u};
    Free = memory + sizeof(BlockStruct);
    End = Free + size;
    NextBlockSize = size * 2;
}

void *ParameterStorageClass::Allocate(size_t size, uint16_t &place)
{
    size = (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (static_cast<size_t>(End - Free) < size) Add_Block(std::max(size, NextBlockSize));
    Used += size;
    Last->Users.fetch_add(1, std::memory_order_relaxed);
    place = static_cast<uint16_t>(static_cast<size_t>(Free - reinterpret_cast<uint8_t *>(Last)) / ALIGNMENT);
    return std::exchange(Free, Free + size);
}

void ParameterStorageClass::End_Object(void *object, uint16_t place)
{
    Release(reinterpret_cast<BlockStruct *>(static_cast<uint8_t *>(object) - size_t{place} * ALIGNMENT));
}

ExpectedParameters::ExpectedParameters(uint32_t count, uint32_t bytes) { Expected = {count, bytes}; }

ExpectedParameters::~ExpectedParameters() { Expected = {}; }

ExpectedParameters::SizeStruct ExpectedParameters::Take() { return std::exchange(Expected, {}); }
