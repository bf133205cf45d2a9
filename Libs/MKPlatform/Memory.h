#pragma once

#include <cstddef>

/// The engine's heap. `_MK_malloc` throws std::bad_alloc when there is no memory, as operator new does; `_MK_free` takes
/// null. Any thread.
void *_MK_malloc(std::size_t size);
void _MK_free(void *memory) noexcept;

/// Resizes a block of `_MK_malloc`, moving it when needed. Null when there is no memory: the block then stays as it was.
void *_MK_realloc(void *memory, std::size_t size) noexcept;
