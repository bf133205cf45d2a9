#include "MKPlatform/Memory.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <new>

namespace
{

constexpr std::size_t HUGE_PAGE = std::size_t(2) << 20;

/// Blocks of at least one huge page come from the system directly, the others from the heap.
bool Is_Mapped(std::size_t size)
{
    return size >= HUGE_PAGE;
}

} // namespace

void *_MK_malloc(std::size_t size)
{
    if (void *memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

void _MK_free(void *memory) noexcept
{
    std::free(memory);
}

void *Allocate_Pages(std::size_t size) noexcept
{
    if (!Is_Mapped(size)) return std::calloc(1, size ? size : 1);
    // A huge page begins at a multiple of its size, so room for one more is asked for and what stands over given back.
    const std::size_t asked = size + HUGE_PAGE;
    void *const mapped = mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    auto *const begin = static_cast<uint8_t *>(mapped);
    const std::size_t ahead = (HUGE_PAGE - reinterpret_cast<uintptr_t>(begin) % HUGE_PAGE) % HUGE_PAGE;
    if (ahead > 0) munmap(begin, ahead);
    const std::size_t page = 4096;
    const std::size_t kept = (size + page - 1) / page * page;
    if (asked - ahead > kept) munmap(begin + ahead + kept, asked - ahead - kept);
    madvise(begin + ahead, kept, MADV_HUGEPAGE); // a wish: without it the pages are small
    return begin + ahead;
}

void Free_Pages(void *memory, std::size_t size) noexcept
{
    if (!Is_Mapped(size))
        std::free(memory);
    else if (memory)
        munmap(memory, (size + 4095) / 4096 * 4096);
}

void *_MK_realloc(void *memory, std::size_t size) noexcept
{
    return std::realloc(memory, size ? size : 1);
}
