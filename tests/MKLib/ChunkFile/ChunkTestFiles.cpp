#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include <algorithm>
#include <cstring>

namespace MKTest
{

using namespace ChunkFile;

std::vector<ModeRow> All_Modes()
{
    std::vector<ModeRow> modes = {{COMPRESSION_XML, "xml"}};
    for (const uint32_t compression : {COMPRESSION_NONE, COMPRESSION_ZLIB})
        for (const uint32_t sectioned : {0u, uint32_t{MODE_SECTIONED}})
            for (const uint32_t validated : {0u, uint32_t{MODE_VALIDATED}})
                for (const uint32_t swapped : {0u, uint32_t{MODE_SWAPPED}})
                    modes.push_back({compression | sectioned | validated | swapped,
                                     std::string(compression ? "zlib" : "binary") + (sectioned ? "+sectioned" : "") +
                                         (validated ? "+validated" : "") + (swapped ? "+swapped" : "")});
    return modes;
}

ByteList &ByteList::Word(uint32_t value)
{
    for (int i = 0; i < 4; ++i) Content.push_back(static_cast<uint8_t>(value >> 8 * (IsSwapped ? 3 - i : i)));
    return *this;
}

ByteList &ByteList::Words(std::initializer_list<uint32_t> values)
{
    for (const uint32_t value : values) Word(value);
    return *this;
}

ByteList &ByteList::Half(uint16_t value)
{
    for (int i = 0; i < 2; ++i) Content.push_back(static_cast<uint8_t>(value >> 8 * (IsSwapped ? 1 - i : i)));
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
    for (uint32_t top = 1; top <= 2; ++top) {
        writer.Open_Chunk("Effect", top);
        writer.Open_Chunk("Settings", 10);
        for (uint32_t id = 0; id < 3; ++id) {
            writer.Open_Micro_Chunk("Count", id);
            writer.Write_UInt32(top * 1000 + id);
            writer.Close_Micro_Chunk();
        }
        writer.Open_Micro_Chunk("Label", 3);
        writer.Write_String("campfire");
        writer.Close_Micro_Chunk();
        writer.Close_Chunk();
        writer.Open_Chunk("Empty", 11);
        writer.Close_Chunk();
        writer.Open_Chunk("Layers", 12);
        writer.Open_Chunk("Layer", 13);
        writer.Open_Micro_Chunk("Scale", 9);
        writer.Write_Float(0.5f);
        writer.Close_Micro_Chunk();
        writer.Close_Chunk();
        writer.Close_Chunk();
        writer.Close_Chunk();
    }
}

void Write_All_Types(ChunkFileWriterClass &writer)
{
    const float nine[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    writer.Open_Chunk("Types", 1);
    writer.Open_Chunk("Leaf", 2);
    writer.Write_Int8(-1);
    writer.Write_Int16(-2);
    writer.Write_Int32(-3);
    writer.Write_Int64(-4);
    writer.Write_Float(0.5f);
    writer.Write_String("ember");
    writer.Write_Wstring(u"ember");
    writer.Write_Bool(true);
    writer.Write_Vector2({1, 2});
    writer.Write_Vector3({1, 2, 3});
    writer.Write_Vector4({1, 2, 3, 4});
    writer.Write_Quaternion(QuaternionClass(1, 2, 3, 4));
    writer.Write_RGBA({});
    writer.Write_Bit_Stream(reinterpret_cast<const uint8_t *>("\xa5\xa5"), 16, 0);
    writer.Write_Pointer(77);
    writer.Write_Matrix3D({});
    writer.Write_Vector2i({1, 2});
    writer.Write_Vector3i({1, 2, 3});
    writer.Write_Vector4i({1, 2, 3, 4});
    writer.Write_Flags(0x83);
    writer.Write_Facing({0, 0, 1});
    writer.Write_Time(99);
    writer.Write_Matrix3(nine);
    writer.Write_Raw_Bytes("raw", 3);
    writer.Open_Micro_Chunk("Empty", 1);
    writer.Close_Micro_Chunk();
    writer.Open_Micro_Chunk("Full", 2);
    writer.Write_String("spark");
    writer.Write_Flags(0x01);
    writer.Write_Raw_Bytes("raw", 3);
    writer.Close_Micro_Chunk();
    writer.Write_UInt8(5);
    writer.Close_Chunk();
    writer.Open_Chunk("Empty", 3);
    writer.Close_Chunk();
    writer.Close_Chunk();
    writer.Open_Chunk("Last", 4);
    writer.Open_Micro_Chunk("End", 9);
    writer.Write_Int32(1);
    writer.Close_Micro_Chunk();
    writer.Close_Chunk();
}

namespace
{

void Walk_Leaf(ChunkFileReaderClass &reader, std::string &seen)
{
    while (reader.Open_Micro_Chunk()) {
        seen += " m" + std::to_string(reader.Cur_Micro_Chunk_ID()) + "=";
        if (reader.Cur_Micro_Chunk_ID() == 3) {
            MK::String text;
            seen += reader.Read_String(text) ? std::string(text) : "!";
        } else if (reader.Cur_Micro_Chunk_ID() == 9) {
            float value = 0.0f;
            seen += reader.Read_Float(value) ? std::to_string(value) : "!";
        } else {
            uint32_t value = 0;
            seen += reader.Read_UInt32(value) ? std::to_string(value) : "!";
        }
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

int64_t FailingFile::Read(void *buffer, int64_t size)
{
    if (ReadCount++ == FailAt) return 0;
    const int64_t left = Get_Size() - Position;
    const int64_t read = std::max<int64_t>(std::min({size, PerRead, left}), 0);
    if (read > 0) std::memcpy(buffer, Content.data() + Position, static_cast<size_t>(read));
    Position += read;
    return read;
}

int64_t FailingFile::Seek(int64_t offset, MKPlatform::FileSeekOrigin origin)
{
    const int64_t base = origin == MKPlatform::FILE_SEEK_BEGIN     ? 0
                         : origin == MKPlatform::FILE_SEEK_CURRENT ? Position
                                                                   : Get_Size();
    Position = base + offset;
    return Position;
}

} // namespace MKTest
