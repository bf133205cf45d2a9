#include "MKLib/ChunkFile/ChunkTestFiles.h"

namespace MKTest
{

using namespace ChunkFile;

ByteList &ByteList::Number(uint32_t value, int size)
{
    for (int i = 0; i < size; ++i) Content.push_back(static_cast<uint8_t>(value >> 8 * (IsSwapped ? size - 1 - i : i)));
    return *this;
}

ByteList &ByteList::Words(std::initializer_list<uint32_t> values)
{
    for (const uint32_t value : values) Word(value);
    return *this;
}

ByteList &ByteList::Raw(std::initializer_list<int> bytes)
{
    for (const int byte : bytes) Content.push_back(static_cast<uint8_t>(byte));
    return *this;
}

ByteList &ByteList::Text(std::string_view text)
{
    Content.insert(Content.end(), text.begin(), text.end());
    return *this;
}

ByteList &ByteList::Add(const Bytes &bytes)
{
    Content.insert(Content.end(), bytes.begin(), bytes.end());
    return *this;
}

Bytes Header_Bytes(uint8_t mode, uint32_t dataOffset, uint32_t dataSize, uint32_t chunkOffset, uint32_t chunkSize,
                   uint8_t minor, uint32_t crc)
{
    return ByteList((mode & MODE_SWAPPED) != 0)
        .Raw({'C', 'H', 2, minor, mode, 0xff, 0xff, 0xff})
        .Words({crc, dataOffset, dataSize, chunkOffset, chunkSize, 0, 0})
        .Get();
}

Bytes Plain_File(const Bytes &stream, uint8_t mode)
{
    return ByteList().Add(Header_Bytes(mode, 8, static_cast<uint32_t>(stream.size()), 0, 0)).Add(stream).Get();
}

uint32_t Plain_CRC(const Bytes &bytes, uint32_t start)
{
    uint32_t crc = ~start;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320u : 0u);
    }
    return ~crc;
}

void Write_Sample_Tree(ChunkFileWriterClass &writer)
{
    for (const uint32_t top : {1u, 2u}) {
        const Chunk settings =
            Micros(10, {{0, top * 1000}, {1, top * 1000 + 1}, {2, top * 1000 + 2}, {3, std::string("campfire")}});
        const Chunk layers = Parent(12, {Micros(13, {{9, 0.5f}})});
        Write_Chunk(writer, Parent(top, {settings, Parent(11, {}), layers}));
    }
}

namespace
{

void Walk_Leaf(ChunkFileReaderClass &reader, std::string &seen)
{
    while (reader.Open_Micro_Chunk()) {
        const uint32_t id = reader.Cur_Micro_Chunk_ID();
        MK::String text = "!";
        float number = -1.0f;
        uint32_t count = 0;
        if (id == 3) {
            reader.Read_String(text);
        } else if (id == 9 && reader.Read_Float(number)) {
            text = std::to_string(number);
        } else if (id < 3 && reader.Read_UInt32(count)) {
            text = std::to_string(count);
        }
        seen += " m" + std::to_string(id) + "=" + std::string(text);
        reader.Close_Micro_Chunk();
    }
}

void Walk_Level(ChunkFileReaderClass &reader, std::string &seen)
{
    while (reader.Open_Chunk()) {
        seen += " (" + std::to_string(reader.Cur_Chunk_ID());
        if (reader.Contains_Chunks())
            Walk_Level(reader, seen);
        else
            Walk_Leaf(reader, seen);
        seen += reader.Close_Chunk() ? ")" : ")!";
    }
}

} // namespace

std::string Walk(ChunkFileReaderClass &reader)
{
    std::string seen;
    if (reader.Is_Initialized()) Walk_Level(reader, seen);
    return seen;
}

} // namespace MKTest
