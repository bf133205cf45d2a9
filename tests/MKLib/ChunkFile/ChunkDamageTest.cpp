#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

/// A file in memory that hands out at most `perRead` bytes a read and fails at read number `failAt`, from 0.
class FailingFile final : public FileClass
{
public:
    FailingFile(const Bytes &bytes, int64_t perRead, int failAt)
        : Memory(bytes.data(), static_cast<int64_t>(bytes.size())), PerRead(perRead), FailAt(failAt)
    {
        Memory.Open(MKPlatform::FILE_OPEN_GENERIC_READ);
    }
    bool Open(MKPlatform::FileAccess, bool = false, int = -1) override { return true; }
    bool Open(std::string_view, MKPlatform::FileAccess, bool = false, int = -1) override { return true; }
    void Close() override {}
    int64_t Read(void *buffer, int64_t size) override
    {
        return ReadCount++ == FailAt ? 0 : Memory.Read(buffer, std::min(size, PerRead));
    }
    int64_t Write(const void *, int64_t) override { return -1; }
    int64_t Seek(int64_t offset, MKPlatform::FileSeekOrigin origin) override { return Memory.Seek(offset, origin); }
    int64_t Tell() override { return Memory.Tell(); }
    int64_t Get_Size() override { return Memory.Get_Size(); }
    bool Is_Open() const override { return true; }

    int ReadCount = 0;

private:
    RAMFileClass Memory;
    int64_t PerRead;
    int FailAt;
};

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
    for (const uint32_t mode : All_Emitter_Modes()) {
        const Bytes whole = Written(mode, Write_Sample_Tree);
        MemoryReader complete(whole);
        const std::string expected = Walk(*complete);
        for (size_t size = 0; size < whole.size(); ++size) {
            const Bytes prefix(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            MemoryReader reader(prefix);
            const std::string seen = Walk(*reader);
            const bool isTold = !reader->Is_Initialized() || reader->Is_Damaged();
            // A sectioned file's last words are the ends of zlib's streams, which hold nothing.
            EXPECT_TRUE(isTold || seen == expected) << mode << " cut to " << size << ": " << seen;
            EXPECT_TRUE(isTold || mode & MODE_SECTIONED || mode == COMPRESSION_XML) << mode << " " << size;
            MemoryReader skipper(prefix);
            Skip_All(*skipper);
            EXPECT_EQ(reader->Cur_Chunk_Depth() + skipper->Cur_Chunk_Depth(), 0);
        }
    }
}

TEST(ChunkDamage, EndsCleanlyOnEveryFlippedBit)
{
    Reports reports(MKDebug::LogLevel::Off);
    for (const uint32_t mode : All_Emitter_Modes()) {
        Bytes bytes = Written(mode, Write_Sample_Tree);
        for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
            bytes[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
            MemoryReader reader(bytes);
            Walk(*reader);
            MemoryReader skipper(bytes);
            Skip_All(*skipper);
            EXPECT_FALSE(reader->Cur_Chunk_Depth() || skipper->Cur_Chunk_Depth() || skipper->Open_Chunk());
            bytes[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
        }
    }
}

TEST(ChunkDamage, EndsCleanlyWhenAnyReadFails)
{
    Reports reports(MKDebug::LogLevel::Off);
    for (const uint32_t mode : All_Emitter_Modes()) {
        const Bytes whole = Written(mode, Write_Sample_Tree);
        const bool isXML = mode == COMPRESSION_XML;
        const int64_t perRead = isXML ? INT64_MAX : 7; // XML is loaded in one piece
        FailingFile good(whole, perRead, -1);
        ChunkFileReaderClass all(&good);
        const std::string expected = Walk(all);
        EXPECT_FALSE(all.Is_Damaged()) << mode;
        ASSERT_GT(good.ReadCount, isXML ? 1 : 10) << mode;
        for (int n = 0; n < good.ReadCount; ++n) {
            FailingFile file(whole, perRead, n);
            ChunkFileReaderClass reader(&file);
            const std::string seen = Walk(reader);
            EXPECT_TRUE(!reader.Is_Initialized() || reader.Is_Damaged() || seen == expected) << mode << " " << n;
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
    EXPECT_TRUE(reports.Has_Log("exceeded maximum chunk depth.  Probable corrupted/tampered file.  Filename:   "
                                "ChunkDepth: 255"));
    EXPECT_TRUE(reader->Is_Damaged());
    while (reader->Cur_Chunk_Depth() > 0) EXPECT_FALSE(reader->Close_Chunk());
    EXPECT_FALSE(reader->Open_Chunk());
}

TEST(ChunkDamage, EndsPromptlyWhereCountsAndSizesLie)
{
    const std::pair<Bytes, bool> rows[] = {
        {ByteList().Words({1, 0xffffffff, 2, 0}).Get(), true},          // 2^31 - 1 children
        {ByteList().Words({1, 0x7fffffff}).Text("short").Get(), false}, // a leaf of 2 GiB
        {ByteList().Words({1, 0x80000002, 2, 20, 3, 0}).Get(), true},   // a child that takes its sister's bytes
    };
    for (const auto &[stream, isInconsistent] : rows) {
        Reports reports;
        MemoryReader reader(Plain_File(stream));
        ASSERT_TRUE(reader->Open_Chunk());
        EXPECT_FALSE(reader->Close_Chunk() || reader->Open_Chunk());
        EXPECT_TRUE(reader->Is_Damaged());
        EXPECT_EQ(reports.Has_Log("Close_Chunk inconsistent state!"), isInconsistent) << reports.Get_Text();
    }
}

TEST(ChunkDamage, AllocatesNoMoreThanThereIs)
{
    Reports reports;
    const Bytes bitStream = ByteList().Word(0xfffffff8).Word(0).Text("few").Get();
    MemoryReader reader(Plain_File(ByteList().Word(1).Word(0x7fffffff).Add(bitStream).Get()));
    Bytes bits;
    uint32_t count = 0, second = 0;
    LargestAllocation = 0;
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Read_Bit_Stream(bits, count, second));
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

TEST(ChunkDamage, WalksWhatInflatesFarInFixedMemoryAndRefusesABomb)
{
    Reports reports;
    for (const int mebibytes : {48, 80}) {
        const Bytes file = Build(Bytes_Leaf(1, std::string(static_cast<size_t>(mebibytes) << 20, 0)), 129);
        ASSERT_LT(file.size(), 100000u);
        MemoryReader reader(file);
        LargestAllocation = 0;
        EXPECT_EQ(Skip_All(*reader), mebibytes == 48);
        EXPECT_LT(LargestAllocation, 70000u);
        EXPECT_EQ(reader->Is_Damaged(), mebibytes == 80);
    }
    EXPECT_EQ(reports.Count_Logs("inflates to over 64 MiB"), 1);
}

// 65 MiB from about 1057 KiB, where 1040 are the least that pass: every block of the input has to count, the one that
// came with the header too.
TEST(ChunkDamage, KeepsAFileJustShortOfABomb)
{
    std::string content(65 << 20, 0);
    std::mt19937 noise(1);
    for (size_t i = 0; i < 992 * 1024; ++i) content[i] = static_cast<char>(noise());
    const Bytes file = Build(Bytes_Leaf(1, content), 129);
    ASSERT_TRUE(file.size() > 1045u * 1024 && file.size() < 1070u * 1024);
    MemoryReader reader(file);
    EXPECT_TRUE(Skip_All(*reader) && !reader->Is_Damaged());
}

// Each section of this file claims the whole rest of the file as its data, so that skipping them all would read the
// file once for each of its 28-byte sections.
TEST(ChunkDamage, RefusesSectionsWhoseStreamsOverlap)
{
    Reports reports;
    ByteList file;
    file.Add(Header_Bytes(MODE_SECTIONED, 8, 0x100000, 8, 8));
    for (int section = 0; section < 10; ++section) file.Words({1, 0x100000, 0, 0, 0x100000, 0, 8});
    MemoryReader first(file.Get());
    EXPECT_FALSE(first->Is_Initialized());
    EXPECT_TRUE(reports.Has_Log("A section's streams overlap"));

    ByteList second;
    second.Add(Header_Bytes(MODE_SECTIONED, 8, 0, 8, 8)).Words({1, 0, 0, 0, 0x100000, 0, 8, 1, 0});
    MemoryReader reader(second.Get());
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Close_Chunk() || reader->Open_Chunk());
    EXPECT_TRUE(reader->Is_Damaged());
}

TEST(ChunkDamage, TellsABrokenStreamAndOneThatItsHeaderCutsShort)
{
    Reports reports;
    const Bytes file = Written(129, Write_Sample_Tree);
    MemoryReader whole(file);
    Bytes broken = file;
    broken.at(broken.size() - 1) ^= 1; // of the checksum
    MemoryReader reader(broken);
    EXPECT_FALSE(reader->Open_Chunk());
    EXPECT_TRUE(reader->Is_Damaged());
    EXPECT_TRUE(reports.Has_Log("ChunkFile: ChunkFileReader::Decompress - Stream error incorrect data check in "));
    Bytes shortened = file;
    shortened[16] = static_cast<uint8_t>(shortened[16] - 4); // the data size, which leaves out the checksum now
    MemoryReader cut(shortened);
    EXPECT_EQ(Walk(*cut), Walk(*whole));
    EXPECT_TRUE(cut->Is_Damaged());
    EXPECT_TRUE(reports.Has_Log("ends before its data does"));
}
