#pragma once

#include <cstddef>

/// The engine's heap. `_MK_malloc` throws std::bad_alloc when there is no memory, as operator new does; `_MK_free` takes
/// null. Any thread.
void *_MK_malloc(std::size_t size);
void _MK_free(void *memory) noexcept;

/// Zero-filled pages for large arrays, in the largest pages that the system gives, which spares address translation in
/// loops over them. Pages that nobody touches take no memory. Null when there is no memory.
void *Allocate_Pages(std::size_t size) noexcept;
/// Takes a block of `Allocate_Pages` with the size that it was made with; null is fine.
void Free_Pages(void *memory, std::size_t size) noexcept;

/// Resizes a block of `_MK_malloc`, moving it when needed. Null when there is no memory: the block then stays as it was.
void *_MK_realloc(void *memory, std::size_t size) noexcept;
