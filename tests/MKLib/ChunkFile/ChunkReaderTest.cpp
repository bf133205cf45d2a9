#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

/// A file of one leaf, id 1, with this payload.
Bytes Leaf_File(const Bytes &payload)
{
    return Plain_File(ByteList().Word(1).Word(static_cast<uint32_t>(payload.size())).Add(payload).Get());
}

} // namespace

TEST(ChunkReader, ReadsStringsOfOldFilesWithoutALengthAndIntoSmallBuffers)
{
    Reports reports;
    const struct
    {
        const char *what;
        Bytes payload;
        bool inMicroChunk, reads;
        const char *text;
    } rows[] = {
        {"a leaf without a length", ByteList().Text("Smoke").Get(), false, true, "Smoke"},
        {"an empty leaf", {}, false, true, ""},
        {"a microchunk without a length", ByteList().Raw({1, 5}).Text("Smoke").Raw({2, 0}).Get(), true, true, "Smoke"},
        {"a microchunk of one byte", ByteList().Raw({1, 1}).Text("S").Get(), true, true, ""},
        {"a length that fits the chunk and not the microchunk",
         ByteList().Raw({1, 3}).Half(4).Text("S").Raw({2, 4, 1, 1, 1, 1}).Get(), true, false, "before"},
        {"a length past the leaf's rest", ByteList().Half(5).Text("Smok").Get(), false, false, "before"},
    };
    for (const auto &row : rows) {
        MemoryReader reader(Leaf_File(row.payload));
        ASSERT_TRUE(reader->Open_Chunk() && (!row.inMicroChunk || reader->Open_Micro_Chunk())) << row.what;
        MK::String text = "before";
        EXPECT_EQ(reader->Read_String(text), row.reads) << row.what;
        EXPECT_EQ(text, row.text) << row.what;
        EXPECT_TRUE(reader->Close_Chunk()) << row.what;
    }
    MemoryReader reader(Leaf_File(ByteList().Half(5).Text("Smoke").Raw({9}).Get()));
    char buffer[4] = {};
    uint8_t next = 0;
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_TRUE(reader->Read_String(buffer, sizeof(buffer)));
    EXPECT_STREQ(buffer, "Smo");
    EXPECT_TRUE(reader->Read_UInt8(next));
    EXPECT_EQ(next, 9) << "the rest of a string that was cut is skipped";
}

TEST(ChunkReader, ReadsVersion20WhereOffsetsCountFromTheHeadersEnd)
{
    MemoryReader plain(ByteList().Add(Header_Bytes(0, 0, 9, 0, 0, 0)).Word(5).Word(1).Raw({7}).Get());
    ASSERT_TRUE(plain->Open_Chunk());
    EXPECT_EQ(plain->Cur_Chunk_ID(), 5u);

    // Sectioned: one section holds every top-level chunk.
    const Bytes chunks = ByteList().Word(5).Word(1).Word(6).Word(1).Get();
    MemoryReader sectioned(ByteList().Add(Header_Bytes(MODE_SECTIONED, 0, 2, 2, 16, 0)).Raw({7, 8}).Add(chunks).Get());
    for (const uint8_t expected : {7, 8}) {
        uint8_t value = 0;
        EXPECT_TRUE(sectioned->Open_Chunk() && sectioned->Read_UInt8(value) && sectioned->Close_Chunk());
        EXPECT_EQ(value, expected);
    }
    EXPECT_FALSE(sectioned->Open_Chunk() || sectioned->Is_Damaged());
}

TEST(ChunkReader, TreatsWhatIsNoChunkFileAsEmpty)
{
    Bytes good = Leaf_File({'x'});
    Bytes laterVersion = good;
    laterVersion[3] = 2;
    Bytes otherCompression = good;
    otherCompression[4] = 2;
    good.resize(35);
    const std::pair<Bytes, const char *> rows[] = {
        {good, "ChunkFileReader -- Could not read chunk file header from "},
        {laterVersion, "ChunkFileReader -- Could not read chunk file header from "},
        {otherCompression, "not using a supported compression mode"},
        {ByteList().Text("<ChunkFile>                           </ChunkFile>").Get(),
         "Read_Header -- XML Parse Error in "},
    };
    for (const auto &[bytes, log] : rows) {
        Reports reports;
        MemoryReader reader(bytes);
        EXPECT_FALSE(reader->Is_Initialized()) << log;
        EXPECT_TRUE(reports.Has_Log(log)) << reports.Get_Text();
        EXPECT_FALSE(reader->Open_Chunk()) << log;
    }
}

TEST(ChunkReader, StopsAtTheEndOfItsScope)
{
    MemoryReader reader(Leaf_File({1, 3, 10, 11, 12, 2, 0}));
    uint32_t word = 5;
    uint8_t byte = 0;
    EXPECT_FALSE(reader->Read_UInt8(byte)) << "outside of every chunk";
    ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Micro_Chunk());
    EXPECT_FALSE(reader->Read_UInt32(word)) << "four bytes of three";
    EXPECT_EQ(word, 5u);
    EXPECT_TRUE(reader->Read_UInt8(byte));
    EXPECT_EQ(byte, 10) << "a failed read takes nothing";
    char bytes[100];
    uint32_t read = 9;
    EXPECT_FALSE(reader->Read_Bytes(bytes, sizeof(bytes), &read)) << "more than the file has";
    EXPECT_EQ(read, 0u);
    EXPECT_TRUE(reader->Close_Micro_Chunk() && reader->Open_Micro_Chunk());
    EXPECT_EQ(reader->Cur_Micro_Chunk_ID(), 2u);
    EXPECT_TRUE(reader->Close_Micro_Chunk());
    EXPECT_FALSE(reader->Open_Micro_Chunk() || reader->Is_Damaged());
}

TEST(ChunkReader, TellsAMicrochunkThatRunsPastItsChunk)
{
    Reports reports;
    MemoryReader reader(
        Plain_File(ByteList().Word(1).Word(6).Raw({1, 200, 1, 0, 0, 0}).Word(2).Word(1).Raw({9}).Get()));
    uint32_t value = 0;
    ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Micro_Chunk());
    EXPECT_TRUE(reader->Is_Damaged());
    EXPECT_TRUE(reports.Has_Log("Microchunk 1 of 200 bytes runs past its chunk, which has 4 left"));
    EXPECT_TRUE(reader->Read_UInt32(value)) << "what is there reads";
    EXPECT_TRUE(reader->Close_Micro_Chunk() && !reader->Open_Micro_Chunk());
    ASSERT_TRUE(reader->Close_Chunk() && reader->Open_Chunk()) << "the next chunk is whole";
    EXPECT_EQ(reader->Cur_Chunk_ID(), 2u);
}

TEST(ChunkReader, ChecksTheTypeOfAValueAndTheStoredSizeOfRawBytes)
{
    const auto file = Written(MODE_VALIDATED, [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(1);
        writer.Write_Raw_Bytes("abcd", 4);
        writer.Write_Raw_Bytes("efgh", 4);
        writer.Write_UInt8(9);
        writer.Write_Float(1.0f);
        writer.Close_Chunk();
    });
    Reports reports;
    MemoryReader reader(file);
    char bytes[8] = {};
    int read = -1;
    uint8_t next = 0;
    int32_t value = 77;
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_TRUE(reader->Read_Raw_Bytes(bytes, 2, &read));
    EXPECT_EQ(std::string(bytes), "ab");
    EXPECT_FALSE(reader->Read_Raw_Bytes(bytes, 5, &read)) << "the rest of the first was skipped";
    EXPECT_EQ(read, 0);
    EXPECT_TRUE(reports.Has_Log("tried to read 5, only 4 available"));
    EXPECT_TRUE(reader->Read_Bytes(nullptr, 4)) << "a null buffer skips";
    EXPECT_TRUE(reader->Read_UInt8(next));
    EXPECT_EQ(next, 9);
    EXPECT_FALSE(reader->Read_Int32(value)) << "a value of another type";
    EXPECT_EQ(value, 77);
    EXPECT_TRUE(reports.Has_Assert("type != val"));
    EXPECT_FALSE(reader->Is_Damaged());
}

TEST(ChunkReader, AssertsTheOrderOfItsCalls)
{
    Reports reports;
    MemoryReader reader(Leaf_File({1, 0}));
    EXPECT_FALSE(reader->Close_Chunk());
    EXPECT_EQ(reader->Cur_Chunk_ID() + reader->Cur_Chunk_Length() + reader->Cur_Micro_Chunk_Length(), 0u);
    EXPECT_EQ(reports.Count_Asserts("StackIndex > 0"), 3);
    ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Micro_Chunk());
    EXPECT_FALSE(reader->Open_Micro_Chunk() || reader->Open_Chunk());
    EXPECT_EQ(reports.Count_Asserts("!InMicroChunk"), 2);
    EXPECT_TRUE(reader->Close_Chunk()) << "it closes the microchunk too";
    EXPECT_FALSE(reader->Open_Chunk());
}
