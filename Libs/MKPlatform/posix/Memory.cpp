#include "MKPlatform/Memory.h"

#include <cstdlib>
#include <new>

void *_MK_malloc(std::size_t size)
{
    if (void *memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

void _MK_free(void *memory) noexcept
{
    std::free(memory);
}

void *_MK_realloc(void *memory, std::size_t size) noexcept
{
    return std::realloc(memory, size ? size : 1);
}
