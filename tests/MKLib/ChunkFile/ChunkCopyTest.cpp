#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

Bytes Copied(const Bytes &source, uint32_t mode, bool &copied)
{
    return Written(mode, [&](ChunkFileWriterClass &writer) {
        MemoryReader reader(source);
        copied = Copy(writer, *reader);
    });
}

bool Is_Validated(uint32_t mode)
{
    return (mode & MODE_VALIDATED) != 0;
}

} // namespace

TEST(ChunkCopy, GivesWhatTheSameCallsWouldHaveWritten)
{
    for (const ModeRow &from : All_Modes()) {
        if (from.mode == COMPRESSION_XML) continue; // without bit streams' counts
        for (const ModeRow &to : All_Modes()) {
            if (to.mode == COMPRESSION_XML) continue; // names get lost
            // Untyped leaves go byte for byte, into an untyped file of the same byte order.
            if (!Is_Validated(from.mode) && (Is_Validated(to.mode) || (from.mode ^ to.mode) & MODE_SWAPPED)) continue;
            bool copied = false;
            EXPECT_EQ(Copied(Written(from.mode, Write_All_Types), to.mode, copied), Written(to.mode, Write_All_Types))
                << from.what << " to " << to.what;
            EXPECT_TRUE(copied) << from.what << " to " << to.what;
        }
    }
}

TEST(ChunkCopy, WarnsThatUntypedValuesKeepTheirByteOrder)
{
    Reports reports;
    bool copied = false;
    const Bytes file = Copied(Plain_File(ByteList().Word(1).Word(2).Raw({1, 2}).Get()), MODE_SWAPPED, copied);
    EXPECT_TRUE(copied);
    EXPECT_EQ(Bytes(file.begin() + 36, file.end()), ByteList(true).Word(1).Word(2).Raw({1, 2}).Get());
    EXPECT_TRUE(reports.Has_Log("Copy keeps the byte order of the untyped values"));
}

TEST(ChunkCopy, CarriesTypedFilesThroughXML)
{
    const auto write = [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk("Leaf", 2);
        writer.Write_String("ember");
        writer.Open_Micro_Chunk("Full", 2);
        writer.Write_Raw_Bytes("raw", 3);
        writer.Write_Bit_Stream(reinterpret_cast<const uint8_t *>("\xa5\xa5"), 16, 0);
        writer.Close_Micro_Chunk();
        writer.Write_Vector3({1, 2, 3});
        writer.Close_Chunk();
    };
    const Bytes binary = Written(MODE_VALIDATED, write);
    bool toXML = false;
    bool fromXML = false;
    const Bytes xml = Copied(binary, COMPRESSION_XML, toXML);
    EXPECT_EQ(Copied(xml, MODE_VALIDATED, fromXML), binary);
    EXPECT_TRUE(toXML && fromXML);
}

TEST(ChunkCopy, RefusesUntypedValuesForAValidatedWriter)
{
    Reports reports;
    bool copied = true;
    Copied(Written(COMPRESSION_NONE, Write_All_Types), MODE_VALIDATED, copied);
    EXPECT_FALSE(copied);
    EXPECT_TRUE(reports.Has_Assert("!reader->Is_Validated() && writer->Is_Validated()"));
}

TEST(ChunkCopy, FailsOnWhatItCannotTell)
{
    const struct
    {
        const char *what;
        Bytes leaf;
        const char *log;
    } rows[] = {
        {"an unknown tag", ByteList().Raw({0x31, 1}).Get(), "Copy met the unknown type 49"},
        {"a value cut short", ByteList().Raw({TYPE_INT32, 1}).Get(), ""},
        {"raw bytes past the leaf", ByteList().Raw({TYPE_RAW}).Word(0x7fffffff).Raw({1}).Get(), ""},
        {"a microchunk past the leaf", ByteList().Raw({TYPE_MICROCHUNK, 1, 9, TYPE_INT8, 1}).Get(),
         "runs past its chunk"},
    };
    for (const auto &row : rows) {
        Reports reports;
        bool copied = true;
        const Bytes stream = ByteList().Word(1).Word(static_cast<uint32_t>(row.leaf.size())).Add(row.leaf).Get();
        const Bytes file = Copied(Plain_File(stream, MODE_VALIDATED), MODE_VALIDATED, copied);
        EXPECT_FALSE(copied) << row.what;
        EXPECT_TRUE(reports.Has_Log(row.log)) << row.what;
        MemoryReader reader(file);
        EXPECT_TRUE(reader->Open_Chunk()) << row.what;
        EXPECT_TRUE(reader->Close_Chunk()) << row.what;
    }
}
