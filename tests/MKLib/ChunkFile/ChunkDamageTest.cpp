#include "MKLib/ChunkFile/AllocationWatch.h"
#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <random>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

/// Skips the whole file by opening and closing its top-level chunks, as a scan does.
bool Skip_All(ChunkFileReaderClass &reader)
{
    bool skipped = true;
    while (reader.Open_Chunk()) skipped = reader.Close_Chunk() && skipped;
    return skipped;
}

} // namespace

TEST(ChunkDamage, EndsCleanlyOnEveryPrefix)
{
    Reports reports(MKDebug::LogLevel::Off);
    for (const ModeRow &mode : All_Modes()) {
        const Bytes whole = Written(mode.mode, Write_Sample_Tree);
        const std::string expected = [&] {
            MemoryReader reader(whole);
            return Walk(*reader);
        }();
        for (size_t size = 0; size < whole.size(); ++size) {
            const Bytes prefix(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            MemoryReader reader(prefix);
            const std::string seen = Walk(*reader);
            EXPECT_EQ(reader->Cur_Chunk_Depth(), 0);
            const bool isTold = !reader->Is_Initialized() || reader->Is_Damaged();
            // A sectioned file's last words are the ends of zlib's streams, which hold nothing.
            EXPECT_TRUE(isTold || seen == expected) << mode.what << " cut to " << size << ": " << seen;
            if ((mode.mode & MODE_SECTIONED) == 0 && mode.mode != COMPRESSION_XML) {
                EXPECT_TRUE(isTold) << mode.what << " " << size;
            }
            MemoryReader skipper(prefix);
            Skip_All(*skipper);
            EXPECT_EQ(skipper->Cur_Chunk_Depth(), 0);
        }
    }
}

TEST(ChunkDamage, EndsCleanlyOnEveryFlippedBit)
{
    Reports reports(MKDebug::LogLevel::Off);
    for (const ModeRow &mode : All_Modes()) {
        Bytes bytes = Written(mode.mode, Write_Sample_Tree);
        for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
            bytes[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
            MemoryReader reader(bytes);
            Walk(*reader);
            EXPECT_EQ(reader->Cur_Chunk_Depth(), 0);
            MemoryReader skipper(bytes);
            Skip_All(*skipper);
            EXPECT_FALSE(skipper->Open_Chunk());
            bytes[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
        }
    }
}

TEST(ChunkDamage, EndsCleanlyWhenAnyReadFails)
{
    Reports reports(MKDebug::LogLevel::Off);
    for (const ModeRow &mode : All_Modes()) {
        const Bytes whole = Written(mode.mode, Write_Sample_Tree);
        const bool isXML = mode.mode == COMPRESSION_XML;
        const int64_t perRead = isXML ? INT64_MAX : 7; // XML is loaded in one piece
        FailingFile good(whole, perRead, -1);
        ChunkFileReaderClass all(&good);
        const std::string expected = Walk(all);
        EXPECT_FALSE(all.Is_Damaged()) << mode.what;
        ASSERT_GT(good.Get_Read_Count(), isXML ? 1 : 10) << mode.what;
        for (int n = 0; n < good.Get_Read_Count(); ++n) {
            FailingFile file(whole, perRead, n);
            ChunkFileReaderClass reader(&file);
            const std::string seen = Walk(reader);
            EXPECT_TRUE(!reader.Is_Initialized() || reader.Is_Damaged() || seen == expected) << mode.what << " " << n;
            EXPECT_FALSE(reader.Open_Chunk());
        }
    }
}

TEST(ChunkDamage, TellsTheDepthOfAFileThatNestsWithoutEnd)
{
    Reports reports;
    ByteList stream;
    for (uint32_t level = 0; level < 300; ++level) stream.Word(level).Word(CONTAINS_CHUNKS | 1);
    MemoryReader reader(Plain_File(stream.Get()));
    for (int level = 0; level < 255; ++level) ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Open_Chunk());
    EXPECT_TRUE(reports.Has_Log("ChunkFile: ChunkFileReaderClass::Open_Chunk exceeded maximum chunk depth.  Probable "
                                "corrupted/tampered file.  Filename:   ChunkDepth: 255"))
        << reports.Get_Text();
    EXPECT_TRUE(reports.Has_Assert("StackIndex < MAX_CHUNK_DEPTH - 1"));
    EXPECT_TRUE(reader->Is_Damaged());
    while (reader->Cur_Chunk_Depth() > 0) EXPECT_FALSE(reader->Close_Chunk());
    EXPECT_EQ(reports.Count_Logs("inconsistent state!"), 1);
    EXPECT_FALSE(reader->Open_Chunk());
}

TEST(ChunkDamage, EndsPromptlyWhereCountsAndSizesLie)
{
    const struct
    {
        const char *what;
        Bytes stream;
        bool isInconsistent; ///< told when the chunk is closed
    } rows[] = {
        {"2^31 - 1 children", ByteList().Word(1).Word(0xffffffff).Word(2).Word(0).Get(), true},
        {"2^31 - 1 children, one cut", ByteList().Word(1).Word(0xffffffff).Word(2).Get(), true},
        {"a leaf of 2 GiB", ByteList().Word(1).Word(0x7fffffff).Text("short").Get(), false},
        {"a child that takes its sister's bytes",
         ByteList().Word(1).Word(0x80000002).Word(2).Word(20).Word(3).Word(0).Get(), true},
    };
    for (const auto &row : rows) {
        Reports reports;
        MemoryReader reader(Plain_File(row.stream));
        ASSERT_TRUE(reader->Open_Chunk()) << row.what;
        EXPECT_FALSE(reader->Close_Chunk()) << row.what;
        EXPECT_TRUE(reader->Is_Damaged()) << row.what;
        EXPECT_FALSE(reader->Open_Chunk()) << row.what;
        EXPECT_EQ(reports.Has_Log("ChunkFileReaderClass::Close_Chunk inconsistent state!"), row.isInconsistent)
            << row.what << "\n"
            << reports.Get_Text();
    }
}

TEST(ChunkDamage, AllocatesNoMoreThanThereIs)
{
    Reports reports;
    const Bytes bitStream = ByteList().Word(0xfffffff8).Word(0).Text("few").Get();
    MemoryReader reader(Plain_File(ByteList().Word(1).Word(0x7fffffff).Add(bitStream).Get()));
    Bytes bits = {1, 2};
    uint32_t count = 0;
    uint32_t second = 0;
    LargestAllocation = 0;
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Read_Bit_Stream(bits, count, second));
    EXPECT_EQ(bits, (Bytes{1, 2}));
    EXPECT_LE(LargestAllocation, 100000u);

    MemoryReader raw(Plain_File(ByteList().Word(1).Word(0x7fffffff).Text("few").Get()));
    ASSERT_TRUE(raw->Open_Chunk());
    LargestAllocation = 0;
    Written(COMPRESSION_NONE, [&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(1);
        EXPECT_FALSE(Copy(writer, *raw));
        writer.Close_Chunk();
    });
    EXPECT_LE(LargestAllocation, 200000u);
}

/// One leaf of that many zero bytes, which zlib shrinks to a thousandth.
Bytes Zeros(int mebibytes)
{
    return Written(129, [mebibytes](ChunkFileWriterClass &writer) {
        const Bytes zeros(1 << 20, 0);
        writer.Open_Chunk(1);
        for (int i = 0; i < mebibytes; ++i) writer.Write_Bytes(zeros.data(), static_cast<uint32_t>(zeros.size()));
        writer.Close_Chunk();
    });
}

TEST(ChunkDamage, WalksWhatInflatesFarInFixedMemory)
{
    const Bytes file = Zeros(48);
    ASSERT_LT(file.size(), 100000u);
    MemoryReader reader(file);
    LargestAllocation = 0;
    EXPECT_TRUE(Skip_All(*reader));
    EXPECT_LT(LargestAllocation, 70000u);
}

TEST(ChunkDamage, RefusesAnInflateBomb)
{
    Reports reports;
    const Bytes bomb = Zeros(80);
    MemoryReader reader(bomb);
    EXPECT_FALSE(Skip_All(*reader));
    EXPECT_TRUE(reader->Is_Damaged());
    EXPECT_TRUE(reports.Has_Log("inflates to over 64 MiB"));
}

// 65 MiB from about 1057 KiB, where 1040 are the least that pass: every block of the input has to count, the one that
// came with the header too.
TEST(ChunkDamage, KeepsAFileJustShortOfABomb)
{
    Bytes content(65 << 20, 0);
    std::mt19937 noise(1);
    for (size_t i = 0; i < 992 * 1024; ++i) content[i] = static_cast<uint8_t>(noise());
    const Bytes file = Written(129, [&content](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(1);
        writer.Write_Bytes(content.data(), static_cast<uint32_t>(content.size()));
        writer.Close_Chunk();
    });
    ASSERT_GT(file.size(), 1045u * 1024);
    ASSERT_LT(file.size(), 1070u * 1024);
    MemoryReader reader(file);
    EXPECT_TRUE(Skip_All(*reader));
    EXPECT_FALSE(reader->Is_Damaged());
}

// Each section of this file claims the whole rest of the file as its data, so that skipping them all would read the
// file once for each of its 28-byte sections.
TEST(ChunkDamage, RefusesSectionsWhoseStreamsOverlap)
{
    Reports reports;
    ByteList file;
    file.Add(Header_Bytes(MODE_SECTIONED, 8, 0x100000, 8, 8));
    for (int section = 0; section < 10; ++section)
        file.Word(1).Word(0x100000).Word(0).Word(0).Word(0x100000).Word(0).Word(8);
    MemoryReader first(file.Get());
    EXPECT_FALSE(first->Is_Initialized());
    EXPECT_TRUE(reports.Has_Log("A section's streams overlap"));

    ByteList second;
    second.Add(Header_Bytes(MODE_SECTIONED, 8, 0, 8, 8)).Word(1).Word(0);
    second.Word(0).Word(0).Word(0x100000).Word(0).Word(8).Word(1).Word(0);
    MemoryReader reader(second.Get());
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Close_Chunk());
    EXPECT_TRUE(reader->Is_Damaged());
    EXPECT_FALSE(reader->Open_Chunk());
}

TEST(ChunkDamage, TellsABrokenStream)
{
    Reports reports;
    Bytes file = Written(129, Write_Sample_Tree);
    file.back() ^= 1; // of the checksum
    MemoryReader reader(file);
    EXPECT_FALSE(reader->Open_Chunk());
    EXPECT_TRUE(reader->Is_Damaged());
    EXPECT_TRUE(reports.Has_Assert("ret == Z_STREAM_ERROR || ret == Z_DATA_ERROR"));
    EXPECT_TRUE(reports.Has_Log("ChunkFile: ChunkFileReader::Decompress - Stream error incorrect data check in "));
}

TEST(ChunkDamage, TellsAStreamThatItsHeaderCutsShort)
{
    Reports reports;
    Bytes file = Written(129, Write_Sample_Tree);
    MemoryReader whole(file);
    file[16] = static_cast<uint8_t>(file[16] - 4); // the data size, which leaves out the checksum now
    MemoryReader cut(file);
    EXPECT_EQ(Walk(*cut), Walk(*whole));
    EXPECT_TRUE(cut->Is_Damaged());
    EXPECT_TRUE(reports.Has_Log("ends before its data does"));
}
