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

    Reports Collected;
    RAMFileClass File;
    ChunkFileWriterClass Writer;
};

} // namespace

TEST(ChunkWriter, RefusesThe256thByteOfAMicrochunk)
{
    const struct
    {
        uint32_t mode;
        uint32_t fits;                                                                   ///< bytes of a raw value
    } rows[] = {{COMPRESSION_NONE, 255}, {MODE_VALIDATED, 250}, {COMPRESSION_XML, 250}}; // a tag and a count in front
    const Bytes data(256, 1);
    for (const auto &row : rows) {
        OpenWriter open(row.mode);
        open.Writer.Open_Micro_Chunk("Data", 42);
        EXPECT_FALSE(open.Writer.Write_Raw_Bytes(data.data(), row.fits + 1)) << row.mode;
        EXPECT_TRUE(open.Collected.Has_Assert("CurrentMicroChunk.Get_Size() + size > 255")) << row.mode;
        EXPECT_TRUE(open.Collected.Has_Log("ChunkFile: ChunkFileWriter::Write_Bytes - Microchunk 42 is too long in "));
        EXPECT_TRUE(open.Writer.Write_Raw_Bytes(data.data(), row.fits)) << row.mode;
        EXPECT_FALSE(open.Writer.Write_UInt8(1)) << row.mode;
        EXPECT_TRUE(open.Writer.Close_Micro_Chunk() && open.Writer.Close_Chunk() && open.Writer.Close());

        MemoryReader reader(Bytes(open.File.Get_Buffer(), open.File.Get_Buffer() + open.File.Get_Size()));
        Bytes read(row.fits);
        ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Micro_Chunk());
        EXPECT_TRUE(reader->Read_Raw_Bytes(read.data(), row.fits)) << row.mode;
        EXPECT_EQ(read, Bytes(row.fits, 1));
    }
}

TEST(ChunkWriter, AssertsTheOrderOfItsCalls)
{
    using Writer = ChunkFileWriterClass;
    const struct
    {
        const char *what;
        bool (*call)(Writer &);
    } rows[] = {
        {"a chunk in a microchunk", [](Writer &w) { return w.Open_Micro_Chunk(1) && w.Open_Chunk(2); }},
        {"the chunk's end in a microchunk", [](Writer &w) { return w.Open_Micro_Chunk(1) && w.Close_Chunk(); }},
        {"a microchunk in a microchunk", [](Writer &w) { return w.Open_Micro_Chunk(1) && w.Open_Micro_Chunk(2); }},
        {"an id of 256", [](Writer &w) { return w.Open_Micro_Chunk(256); }},
        {"an end too many", [](Writer &w) { return w.Close_Chunk() && w.Close_Chunk(); }},
        {"a chunk after the file's end", [](Writer &w) { return w.Close_Chunk() && w.Close() && w.Open_Chunk(1); }},
    };
    for (const auto &row : rows) {
        OpenWriter open(COMPRESSION_NONE);
        EXPECT_FALSE(row.call(open.Writer)) << row.what;
        EXPECT_EQ(open.Collected.Get_Asserts().size(), 1u) << row.what;
    }
}

TEST(ChunkWriter, KeepsValuesAndSubChunksApart)
{
    for (const uint32_t mode : {uint32_t{COMPRESSION_NONE}, uint32_t{COMPRESSION_XML}}) {
        OpenWriter open(mode);
        EXPECT_TRUE(open.Writer.Write_UInt8(1));
        EXPECT_FALSE(open.Writer.Open_Chunk(2));
        EXPECT_TRUE(open.Collected.Has_Log("Sub-chunk 2 stands beside values in chunk 1"));
        open.Writer.Close_Chunk();
        EXPECT_FALSE(open.Writer.Write_UInt8(1));
        EXPECT_TRUE(open.Collected.Has_Log("A value stands outside of every chunk"));
        open.Writer.Open_Chunk(3);
        open.Writer.Open_Chunk(4);
        open.Writer.Close_Chunk();
        EXPECT_FALSE(open.Writer.Open_Micro_Chunk(1));
        EXPECT_TRUE(open.Collected.Has_Log("A value stands beside sub-chunks in chunk 3"));
    }
}

TEST(ChunkWriter, RefusesStringsThatTheirLengthCannotTell)
{
    for (const uint32_t mode : {uint32_t{COMPRESSION_NONE}, uint32_t{COMPRESSION_XML}}) {
        OpenWriter open(mode);
        EXPECT_FALSE(open.Writer.Write_String(std::string(65536, 'x')));
        EXPECT_TRUE(open.Collected.Has_Log("A string of 65536 bytes is too long in "));
        EXPECT_FALSE(open.Writer.Write_Wstring(std::u16string(65536, u'x')));
        EXPECT_TRUE(open.Collected.Has_Log("A wide string of 65536 units is too long in "));
        EXPECT_TRUE(open.Writer.Write_String(std::string(65535, 'x')));
    }
}

TEST(ChunkWriter, RefusesModesAndLevelsThatItDoesNotKnow)
{
    const struct
    {
        uint32_t mode;
        uint32_t level;
        const char *report;
    } rows[] = {
        {3, 6, "is not using a supported compression mode"},
        {1, 10, "ChunkFileWriter - Could not initialize ZLib: error code -2"},
        {256, 6, "assert mode < 256"},
    };
    for (const auto &row : rows) {
        Reports reports;
        RAMFileClass file;
        ChunkFileWriterClass writer(&file, row.mode, row.level, false);
        EXPECT_FALSE(writer.Is_Initialized()) << row.mode;
        EXPECT_NE(reports.Get_Text().find(row.report), std::string::npos) << row.mode << "\n" << reports.Get_Text();
        EXPECT_FALSE(writer.Open_Chunk(1));
        EXPECT_EQ(file.Get_Size(), 0);
    }
}

TEST(ChunkWriter, TellsAFullDisk)
{
    for (const ModeRow &mode : All_Modes()) {
        Reports reports;
        FileClass file("/dev/full");
        ChunkFileWriterClass writer(&file, mode.mode, 6, false);
        if (!writer.Is_Initialized()) GTEST_SKIP() << "no /dev/full here";
        Write_Sample_Tree(writer);
        EXPECT_FALSE(writer.Close()) << mode.what;
        EXPECT_TRUE(reports.Has_Log("Could not write to /dev/full")) << mode.what << "\n" << reports.Get_Text();
    }
}

TEST(ChunkWriter, ClosesWhatItsCallerLeftOpen)
{
    for (const ModeRow &mode : All_Modes()) {
        Reports reports;
        RAMFileClass file;
        ChunkFileWriterClass writer(&file, mode.mode, 6, false);
        writer.Open_Chunk(1);
        writer.Open_Chunk(2);
        writer.Open_Micro_Chunk(0);
        writer.Write_UInt32(5);
        EXPECT_FALSE(writer.Close()) << mode.what;
        EXPECT_TRUE(reports.Has_Log("is closed with 2 chunks open")) << mode.what;
        if (mode.mode == COMPRESSION_XML) {
            EXPECT_TRUE(reports.Has_Assert("XMLDepth == 1"));
        }
        MemoryReader reader(Bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size()));
        EXPECT_EQ(Walk(*reader), " (1 (2 m0=5))") << mode.what;
    }
}

TEST(ChunkWriter, WritesTheSameAfterAnotherFileOfTheThread)
{
    const Bytes first = Written(129, Write_Sample_Tree);
    Written(1, [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(1);
        const Bytes noise(100000, 0x5a);
        writer.Write_Bytes(noise.data(), static_cast<uint32_t>(noise.size()));
        writer.Close_Chunk();
    });
    EXPECT_NE(Written(129, Write_Sample_Tree, 1), first) << "another level";
    EXPECT_EQ(Written(129, Write_Sample_Tree), first);
}
