#pragma once

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "common/EmitterBuilder.h"

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace MKTest
{

/// The most bytes that one `new` of this program asked for since it was last set to 0.
extern std::atomic<size_t> LargestAllocation;

using ChunkFile::ChunkFileReaderClass;
using ChunkFile::ChunkFileWriterClass;

/// Writes with `write` into memory and gives the file's bytes; fails the test when `Close` or the writer fails.
template <typename Write>
Bytes Written(uint32_t mode, Write write, uint32_t level = 6)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, mode, level, false);
    write(writer);
    if (!writer.Close()) return {};
    return Bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
}

/// A reader on bytes in memory.
class MemoryReader
{
public:
    explicit MemoryReader(Bytes bytes) : Content(std::move(bytes)), File(Content.data(), Size()), Reader(&File) {}
    ChunkFileReaderClass *operator->() { return &Reader; }
    ChunkFileReaderClass &operator*() { return Reader; }

private:
    int64_t Size() const { return static_cast<int64_t>(Content.size()); }

    Bytes Content;
    RAMFileClass File;
    ChunkFileReaderClass Reader;
};

/// Bytes from parts written by hand: words, bytes and texts.
class ByteList
{
public:
    explicit ByteList(bool isSwapped = false) : IsSwapped(isSwapped) {}
    ByteList &Word(uint32_t value) { return Number(value, 4); }
    ByteList &Words(std::initializer_list<uint32_t> values);
    ByteList &Half(uint16_t value) { return Number(value, 2); }
    ByteList &Raw(std::initializer_list<int> bytes);
    ByteList &Text(std::string_view text);
    ByteList &Add(const Bytes &bytes);
    const Bytes &Get() const { return Content; }

private:
    ByteList &Number(uint32_t value, int size);

    bool IsSwapped;
    Bytes Content;
};

/// A file header with the given fields, 36 bytes.
Bytes Header_Bytes(uint8_t mode, uint32_t dataOffset, uint32_t dataSize, uint32_t chunkOffset, uint32_t chunkSize,
                   uint8_t minor = 1, uint32_t crc = 0);

/// An uncompressed file that holds just this stream.
Bytes Plain_File(const Bytes &stream, uint8_t mode = 0);

/// CRC-32 bit by bit, as the polynomial defines it.
uint32_t Plain_CRC(const Bytes &bytes, uint32_t start = 0);

/// A small tree with sub-chunks, microchunks, strings and numbers, the same in every mode.
void Write_Sample_Tree(ChunkFileWriterClass &writer);

/// Walks everything the way loaders do, and tells what it saw; ends at the first failure of a level.
std::string Walk(ChunkFileReaderClass &reader);

} // namespace MKTest
