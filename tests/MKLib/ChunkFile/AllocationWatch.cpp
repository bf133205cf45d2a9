#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include <cstdlib>
#include <new>

namespace MKTest
{

std::atomic<size_t> LargestAllocation{0};

} // namespace MKTest

void *operator new(size_t size)
{
    if (size > MKTest::LargestAllocation) MKTest::LargestAllocation = size;
    if (void *memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}
