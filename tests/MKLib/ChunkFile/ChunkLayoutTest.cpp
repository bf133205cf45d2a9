#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include <gtest/gtest.h>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

// chunk 0x11 { chunk 0x22: a microchunk 5 with the u16 0x1234, then the byte 7; chunk 0x33: empty }
void Write_Tiny_Tree(ChunkFileWriterClass &writer)
{
    writer.Open_Chunk(0x11);
    writer.Open_Chunk(0x22);
    writer.Open_Micro_Chunk(5);
    writer.Write_UInt16(0x1234);
    writer.Close_Micro_Chunk();
    writer.Write_UInt8(7);
    writer.Close_Chunk();
    writer.Open_Chunk(0x33);
    writer.Close_Chunk();
    writer.Close_Chunk();
}

Bytes Two_Tops(uint32_t mode)
{
    return Build({Bytes_Leaf(1, "\xaa\xbb"), Parent(2, {Bytes_Leaf(3, "\xcc")})}, mode);
}

Bytes Part(const Bytes &bytes, size_t start, size_t size)
{
    return Bytes(bytes.begin() + static_cast<ptrdiff_t>(start), bytes.begin() + static_cast<ptrdiff_t>(start + size));
}

uint32_t Word_Of(const Bytes &bytes, size_t at)
{
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<uint32_t>(bytes[at + 3]) << 24;
}

/// The CRC over the streams and then over the four fields behind it, which start at `fields`.
uint32_t Section_CRC(const Bytes &file, size_t fields, size_t streams, size_t size)
{
    return Plain_CRC(Part(file, fields, 16), Plain_CRC(Part(file, streams, size)));
}

} // namespace

TEST(ChunkLayout, StoresMode129AsPlainZlib)
{
    const Bytes file = Written(129, Write_Tiny_Tree);
    ASSERT_GT(file.size(), 38u);
    const auto size = static_cast<uint32_t>(file.size() - 36);
    EXPECT_EQ(Part(file, 0, 36), Header_Bytes(1, 8, size, 0, 0, 1, Section_CRC(file, 12, 36, size)));
    EXPECT_EQ(Part(file, 36, 2), (Bytes{0x78, 0x9c})) << "zlib's two bytes for level 6";
}

TEST(ChunkLayout, WritesTheTreeDepthFirstInBothByteOrders)
{
    for (const bool isSwapped : {false, true}) {
        const auto mode = static_cast<uint8_t>(isSwapped ? 0x40 : 0);
        ByteList parts(isSwapped);
        parts.Words({0x11, 0x80000002, 0x22, 5}).Raw({5, 2}).Half(0x1234).Raw({7}).Words({0x33, 0});
        const Bytes stream = parts.Get();
        const Bytes fields = ByteList(isSwapped).Words({8, 29, 0, 0}).Get();
        const uint32_t crc = Plain_CRC(fields, Plain_CRC(stream));
        const Bytes expected = ByteList().Add(Header_Bytes(mode, 8, 29, 0, 0, 1, crc)).Add(stream).Get();
        EXPECT_EQ(Written(mode, Write_Tiny_Tree), expected) << "swapped: " << isSwapped;
    }
}

TEST(ChunkLayout, PutsTagsInFrontOfValuesAndMicrochunks)
{
    const Bytes file = Written(MODE_VALIDATED, Write_Tiny_Tree);
    ASSERT_EQ(file.size(), 36u + 8 + 4 + 12 + 8);
    EXPECT_EQ(Part(file, 48, 12), ByteList().Word(8).Raw({0x33, 5, 3, 0x21, 0x34, 0x12, 0x20, 7}).Get());
}

TEST(ChunkLayout, GivesEachTopLevelChunkOfASectionedFileItsSection)
{
    for (const bool isSwapped : {false, true}) {
        const uint32_t mode = isSwapped ? 0x50 : 0x10;
        const Bytes first = ByteList(isSwapped).Raw({0xaa, 0xbb}).Words({1, 2}).Get();
        const Bytes second = ByteList(isSwapped).Raw({0xcc}).Words({2, 0x80000001, 3, 1}).Get();
        const Bytes firstFields = ByteList(isSwapped).Words({8, 2, 10, 8}).Get();
        const Bytes secondFields = ByteList(isSwapped).Words({0, 1, 1, 16}).Get();
        const uint32_t firstCRC = Plain_CRC(firstFields, Plain_CRC(first));
        ByteList expected(isSwapped);
        expected.Add(Header_Bytes(static_cast<uint8_t>(mode), 8, 2, 10, 8, 1, firstCRC)).Add(first);
        expected.Word(Plain_CRC(secondFields, Plain_CRC(second))).Add(secondFields).Add(second).Add(Bytes(20, 0));
        EXPECT_EQ(Two_Tops(mode), expected.Get()) << "swapped: " << isSwapped;
    }
}

TEST(ChunkLayout, CountsTheSectionCRCOverBothZlibStreams)
{
    const Bytes file = Two_Tops(COMPRESSION_ZLIB | MODE_SECTIONED);
    size_t fields = 12;
    for (const size_t front : {24, 16}) { // up to the streams: the first section's fields have the user words behind
        const uint32_t size = Word_Of(file, fields + 4) + Word_Of(file, fields + 12);
        EXPECT_EQ(Word_Of(file, fields - 4), Section_CRC(file, fields, fields + front, size));
        fields += front + size + 4;
    }
    EXPECT_EQ(Part(file, fields - 4, 20), Bytes(20, 0));
    EXPECT_GT(file.size(), fields + 16) << "the final blocks of both streams";
}
