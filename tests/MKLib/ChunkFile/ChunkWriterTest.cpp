#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

/// A writer on memory inside chunk 1, with what it reports.
struct OpenWriter
{
    explicit OpenWriter(uint32_t mode) : Writer(&File, mode, 6, false) { Writer.Open_Chunk("Leaf", 1); }
    Bytes Get_Bytes() { return Bytes(File.Get_Buffer(), File.Get_Buffer() + File.Get_Size()); }

    Reports Collected;
    RAMFileClass File;
    ChunkFileWriterClass Writer;
};

} // namespace

TEST(ChunkWriter, RefusesThe256thByteOfAMicrochunk)
{
    const Bytes data(256, 1);
    for (const uint32_t mode : {uint32_t{COMPRESSION_NONE}, uint32_t{MODE_VALIDATED}, uint32_t{COMPRESSION_XML}}) {
        const uint32_t fits = mode == COMPRESSION_NONE ? 255 : 250; // a tag and a count in front
        OpenWriter open(mode);
        open.Writer.Open_Micro_Chunk("Data", 42);
        EXPECT_FALSE(open.Writer.Write_Raw_Bytes(data.data(), fits + 1)) << mode;
        EXPECT_TRUE(open.Writer.Write_Raw_Bytes(data.data(), fits)) << mode;
        EXPECT_FALSE(open.Writer.Write_UInt8(1)) << mode;
        EXPECT_TRUE(open.Writer.Close_Micro_Chunk() && open.Writer.Close_Chunk() && open.Writer.Close());

        MemoryReader reader(open.Get_Bytes());
        Bytes read(fits);
        ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Micro_Chunk());
        EXPECT_TRUE(reader->Read_Raw_Bytes(read.data(), fits)) << mode;
        EXPECT_EQ(read, Bytes(fits, 1));
    }
}

TEST(ChunkWriter, AssertsTheOrderOfItsCalls)
{
    using Writer = ChunkFileWriterClass;
    const std::pair<const char *, bool (*)(Writer &)> rows[] = {
        {"a chunk in a microchunk", [](Writer &w) { return w.Open_Micro_Chunk(1) && w.Open_Chunk(2); }},
        {"the chunk's end in a microchunk", [](Writer &w) { return w.Open_Micro_Chunk(1) && w.Close_Chunk(); }},
        {"an id of 256", [](Writer &w) { return w.Open_Micro_Chunk(256); }},
        {"an end too many", [](Writer &w) { return w.Close_Chunk() && w.Close_Chunk(); }},
        {"a chunk after the file's end", [](Writer &w) { return w.Close_Chunk() && w.Close() && w.Open_Chunk(1); }},
    };
    for (const auto &[what, call] : rows) {
        OpenWriter open(COMPRESSION_NONE);
        EXPECT_FALSE(call(open.Writer)) << what;
        EXPECT_EQ(open.Collected.Get_Asserts().size(), 1u) << what;
    }
}

TEST(ChunkWriter, KeepsValuesAndSubChunksApartAndRefusesStringsThatTheirLengthCannotTell)
{
    for (const uint32_t mode : {uint32_t{COMPRESSION_NONE}, uint32_t{COMPRESSION_XML}}) {
        OpenWriter open(mode);
        EXPECT_FALSE(open.Writer.Write_String(std::string(65536, 'x')));
        EXPECT_FALSE(open.Writer.Write_Wstring(std::u16string(65536, u'x')));
        EXPECT_EQ(open.Collected.Count_Logs("is too long in "), 2);
        EXPECT_TRUE(open.Writer.Write_String(std::string(65535, 'x')));
        EXPECT_FALSE(open.Writer.Open_Chunk(2));
        open.Writer.Close_Chunk();
        EXPECT_FALSE(open.Writer.Write_UInt8(1)) << "outside of every chunk";
        open.Writer.Open_Chunk(3);
        open.Writer.Open_Chunk(4);
        open.Writer.Close_Chunk();
        EXPECT_FALSE(open.Writer.Open_Micro_Chunk(1));
        open.Writer.Close();
        MemoryReader reader(open.Get_Bytes());
        MK::String text;
        EXPECT_TRUE(reader->Open_Chunk() && reader->Read_String(text));
        EXPECT_EQ(text.size(), 65535u);
    }
}

TEST(ChunkWriter, RefusesModesAndLevelsThatItDoesNotKnow)
{
    for (const auto &[mode, level] : {std::pair(3u, 6u), {1u, 10u}, {256u, 6u}}) {
        Reports reports;
        RAMFileClass file;
        ChunkFileWriterClass writer(&file, mode, level, false);
        EXPECT_FALSE(writer.Is_Initialized()) << mode;
        EXPECT_NE(reports.Get_Text(), "") << mode;
        EXPECT_EQ(file.Get_Size(), 0);
    }
}

TEST(ChunkWriter, ClosesWhatItsCallerLeftOpen)
{
    for (const uint32_t mode : All_Emitter_Modes()) {
        OpenWriter open(mode);
        open.Writer.Open_Chunk(2);
        open.Writer.Open_Micro_Chunk(0);
        open.Writer.Write_UInt32(5);
        EXPECT_FALSE(open.Writer.Close()) << mode;
        EXPECT_TRUE(open.Collected.Has_Log("is closed with 2 chunks open")) << mode;
        MemoryReader reader(open.Get_Bytes());
        EXPECT_EQ(Walk(*reader), " (1 (2 m0=5))") << mode;
    }
}

TEST(ChunkWriter, TellsAFullDisk)
{
    for (const uint32_t mode : All_Emitter_Modes()) {
        Reports reports;
        FileClass file("/dev/full");
        ChunkFileWriterClass writer(&file, mode, 6, false);
        if (!writer.Is_Initialized()) GTEST_SKIP() << "no /dev/full here";
        Write_Sample_Tree(writer);
        EXPECT_FALSE(writer.Close()) << mode;
        EXPECT_TRUE(reports.Has_Log("Could not write to /dev/full")) << mode;
    }
}

TEST(ChunkWriter, WritesTheSameAfterAnotherFileOfTheThread)
{
    const Bytes first = Written(129, Write_Sample_Tree);
    EXPECT_NE(Written(129, Write_Sample_Tree, 1), first) << "another level";
    EXPECT_EQ(Written(129, Write_Sample_Tree), first);
}
