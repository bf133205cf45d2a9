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

// chunk 1: AA BB; chunk 2 { chunk 3: CC }
void Write_Two_Tops(ChunkFileWriterClass &writer)
{
    writer.Open_Chunk(1);
    writer.Write_Bytes("\xaa\xbb", 2);
    writer.Close_Chunk();
    writer.Open_Chunk(2);
    writer.Open_Chunk(3);
    writer.Write_Bytes("\xcc", 1);
    writer.Close_Chunk();
    writer.Close_Chunk();
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
    EXPECT_EQ(Part(file, 0, 8), ByteList().Raw({0x43, 0x48, 2, 1, 1, 0xff, 0xff, 0xff}).Get());
    EXPECT_EQ(Word_Of(file, 8), Section_CRC(file, 12, 36, file.size() - 36));
    EXPECT_EQ(Part(file, 12, 4), ByteList().Word(8).Get());
    EXPECT_EQ(Word_Of(file, 16), file.size() - 36);
    EXPECT_EQ(Part(file, 20, 16), Bytes(16, 0)); // chunk offset and size, user words
    EXPECT_EQ(Part(file, 36, 2), ByteList().Raw({0x78, 0x9c}).Get()) << "zlib's two bytes for level 6";
}

TEST(ChunkLayout, WritesTheTreeDepthFirstInBothByteOrders)
{
    for (const bool isSwapped : {false, true}) {
        const auto mode = static_cast<uint8_t>(isSwapped ? 0x40 : 0);
        ByteList parts(isSwapped);
        parts.Words({0x11, 0x80000002, 0x22, 5}).Raw({5, 2}).Half(0x1234).Raw({7}).Words({0x33, 0});
        const Bytes stream = parts.Get();
        const Bytes fields = ByteList(isSwapped).Word(8).Word(29).Word(0).Word(0).Get();
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
        const Bytes first = ByteList(isSwapped).Raw({0xaa, 0xbb}).Word(1).Word(2).Get();
        const Bytes second = ByteList(isSwapped).Raw({0xcc}).Word(2).Word(0x80000001).Word(3).Word(1).Get();
        const Bytes firstFields = ByteList(isSwapped).Word(8).Word(2).Word(10).Word(8).Get();
        const Bytes secondFields = ByteList(isSwapped).Word(0).Word(1).Word(1).Word(16).Get();
        const uint32_t firstCRC = Plain_CRC(firstFields, Plain_CRC(first));
        ByteList expected(isSwapped);
        expected.Add(Header_Bytes(static_cast<uint8_t>(mode), 8, 2, 10, 8, 1, firstCRC)).Add(first);
        expected.Word(Plain_CRC(secondFields, Plain_CRC(second))).Add(secondFields).Add(second).Add(Bytes(20, 0));
        EXPECT_EQ(Written(mode, Write_Two_Tops), expected.Get()) << "swapped: " << isSwapped;
    }
}

TEST(ChunkLayout, CountsTheSectionCRCOverBothZlibStreams)
{
    const Bytes file = Written(COMPRESSION_ZLIB | MODE_SECTIONED, Write_Two_Tops);
    const uint32_t dataSize = Word_Of(file, 16);
    const uint32_t chunkSize = Word_Of(file, 24);
    EXPECT_EQ(Word_Of(file, 20), 8 + dataSize);
    EXPECT_EQ(Word_Of(file, 8), Section_CRC(file, 12, 36, dataSize + chunkSize));
    const size_t second = 36 + dataSize + chunkSize;
    const uint32_t secondSize = Word_Of(file, second + 8) + Word_Of(file, second + 16);
    EXPECT_EQ(Word_Of(file, second), Section_CRC(file, second + 4, second + 20, secondSize));
    const size_t last = second + 20 + secondSize;
    EXPECT_EQ(Part(file, last, 20), Bytes(20, 0));
    EXPECT_GT(file.size(), last + 20) << "the final blocks of both streams";
}

TEST(ChunkLayout, ReachesTheFileOnlyAtCloseUnlessSectioned)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, 129, 6, false);
    Write_Tiny_Tree(writer);
    EXPECT_EQ(file.Get_Size(), 36);
    EXPECT_TRUE(writer.Close());
    EXPECT_GT(file.Get_Size(), 36);
}

TEST(ChunkLayout, HoldsItsPlaceInAFileThatHasBytesInFront)
{
    RAMFileClass file;
    file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE);
    file.Write("front", 5);
    ChunkFileWriterClass writer(&file, 0, 6, false);
    Write_Tiny_Tree(writer);
    EXPECT_TRUE(writer.Close());
    const Bytes bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
    EXPECT_EQ(Part(bytes, 5, bytes.size() - 5), Written(0, Write_Tiny_Tree));

    RAMFileClass source(bytes.data(), static_cast<int64_t>(bytes.size()));
    source.Open(MKPlatform::FILE_OPEN_GENERIC_READ);
    source.Seek(5, MKPlatform::FILE_SEEK_BEGIN);
    ChunkFileReaderClass reader(&source);
    ASSERT_TRUE(reader.Open_Chunk());
    EXPECT_EQ(reader.Cur_Chunk_ID(), 0x11u);
}
