#pragma once

#include <cstddef>
#include <cstdint>

/// Sizes and limits of the layout that the reader and the writer share; docs/formats/chunk.md tells the whole.
namespace ChunkFile
{

constexpr uint32_t FILE_HEADER_SIZE = 36;
constexpr uint32_t SECTION_HEADER_OFFSET = 8; ///< of the first section's header
constexpr uint32_t MICRO_CHUNK_LIMIT = 255;
constexpr size_t STRING_LIMIT = 65535; ///< bytes of a string, or units of a wide one

} // namespace ChunkFile
