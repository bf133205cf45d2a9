#include "Samples/AllocationCount.h"

#include <atomic>

namespace
{

std::atomic<size_t> Count{0};

} // namespace

size_t MKTest::Get_Allocation_Count()
{
    return Count;
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define MK_SANITIZED_ALLOCATOR
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MK_SANITIZED_ALLOCATOR
#endif

#if defined(__GLIBC__) && !defined(MK_SANITIZED_ALLOCATOR)

// All ways to memory lead through these, and the C library has them under a second name. A sanitizer has an allocator
// of its own, which stays.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);
void *__libc_memalign(size_t alignment, size_t size);

void *malloc(size_t size)
{
    ++Count;
    return __libc_malloc(size);
}

void *calloc(size_t count, size_t size)
{
    ++Count;
    return __libc_calloc(count, size);
}

void *realloc(void *memory, size_t size)
{
    ++Count;
    return __libc_realloc(memory, size);
}

void *aligned_alloc(size_t alignment, size_t size)
{
    ++Count;
    return __libc_memalign(alignment, size);
}
}

#endif
