#pragma once

#include <cstdint>
#include <string_view>

/// The container of every engine asset: a tree of numbered chunks, whose leaves hold typed values and tiny records called
/// microchunks, in a binary, a zlib or an XML form. docs/formats/chunk.md has the layout in bytes.
namespace ChunkFile
{

constexpr int MAX_CHUNK_DEPTH = 256;
constexpr uint32_t COMPRESSION_BUFFER_SIZE = 32768;

/// Bits of the mode byte.
enum ModeType : uint32_t
{
    COMPRESSION_NONE = 0,
    COMPRESSION_ZLIB = 1,
    COMPRESSION_XML = 2,
    COMPRESSION_LAST = 3,
    COMPRESSION_MASK = 0x0f,
    MODE_SECTIONED = 0x10, ///< chunk headers stand in a stream of their own; each top-level chunk ends a section
    MODE_VALIDATED = 0x20, ///< each typed value has a one-byte type tag in front
    MODE_SWAPPED = 0x40,   ///< written in the opposite byte order
    MODE_NATIVE = 0x80     ///< on the writer's argument only: clears MODE_SWAPPED and itself
};

/// One byte in front of each typed value of a validated file, and the element names of the XML form.
enum ValidationType : uint8_t
{
    TYPE_INT8 = 0x20,
    TYPE_INT16 = 0x21,
    TYPE_INT32 = 0x22,
    TYPE_INT64 = 0x23,
    TYPE_FLOAT = 0x24,
    TYPE_STRING = 0x25,
    TYPE_WSTRING = 0x26,
    TYPE_BOOL = 0x27,
    TYPE_VECTOR2 = 0x28,
    TYPE_VECTOR3 = 0x29,
    TYPE_VECTOR4 = 0x2a,
    TYPE_QUATERNION = 0x2b,
    TYPE_RGBA = 0x2c,
    TYPE_BIT_STREAM = 0x2d,
    TYPE_POINTER = 0x2e,
    TYPE_MATRIX3D = 0x2f,
    TYPE_VECTOR2I = 0x30,
    TYPE_VECTOR4I = 0x32,
    TYPE_MICROCHUNK = 0x33,
    TYPE_FLAGS = 0x34,
    TYPE_RAW = 0x35,
    TYPE_FACING = 0x36,
    TYPE_TIME = 0x37,
    TYPE_MATRIX3 = 0x38,
    TYPE_VECTOR3I = 0x3b
};

/// The XML element name of a tag; "Unknown" for a tag that has none.
const char *Type_Name(uint8_t tag);
/// The tag of an XML element name; 0 for a name that is none.
uint8_t Type_Of_Name(std::string_view name);

constexpr uint32_t CONTAINS_CHUNKS = 0x80000000u;

struct ChunkHeader
{
    uint32_t Id = 0;
    uint32_t SizeWord = 0; ///< top bit: holds sub-chunks; the rest: their number, or a leaf's bytes

    bool Contains_Chunks() const { return (SizeWord & CONTAINS_CHUNKS) != 0; }
    uint32_t Get_Size() const { return SizeWord & ~CONTAINS_CHUNKS; }
};

/// 20 bytes on disk, five words in this order.
struct SectionHeader
{
    uint32_t CRC = 0;
    uint32_t DataOffset = 0;
    uint32_t DataSize = 0;
    uint32_t ChunkOffset = 0;
    uint32_t ChunkSize = 0;
};

/// 36 bytes on disk.
struct ChunkFileHeader
{
    uint8_t Magic[2] = {'C', 'H'};
    uint8_t Major = 2;
    uint8_t Minor = 1;
    uint8_t Mode = 0;
    uint8_t Reserved[3] = {0xff, 0xff, 0xff};
    SectionHeader Section;
    uint32_t UserInt32[2] = {0, 0};
};

} // namespace ChunkFile
