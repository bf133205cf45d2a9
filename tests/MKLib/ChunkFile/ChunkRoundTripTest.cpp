#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

using Reader = ChunkFileReaderClass;
using Writer = ChunkFileWriterClass;

constexpr float NINE[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
const Vector3 Position(1.5f, -2.25f, 1024.0f);

Mat3DClass Some_Matrix()
{
    Mat3DClass matrix;
    for (int i = 0; i < 12; ++i) matrix.Row[i / 4][i % 4] = static_cast<float>(i) * 0.5f;
    return matrix;
}

/// A value of a type: how to write it, and whether it reads back as it was.
struct ValueRow
{
    const char *what;
    std::function<bool(Writer &)> write;
    std::function<bool(Reader &)> reads;
    bool fromXML = true; ///< the XML form gives it back
};

template <typename Read, typename Given>
ValueRow Row(const char *what, bool (Writer::*write)(Given), bool (Reader::*read)(Read &),
             const std::type_identity_t<Read> &value, bool fromXML = true)
{
    return {what, [=](Writer &writer) { return (writer.*write)(value); },
            [=](Reader &reader) {
                Read back{};
                if (!(reader.*read)(back)) return false;
                if constexpr (std::is_same_v<Read, float>)
                    return std::bit_cast<uint32_t>(back) == std::bit_cast<uint32_t>(value);
                else
                    return back == value;
            },
            fromXML};
}

const char *const SAMPLE_WALK = " (1 (10 m0=1000 m1=1001 m2=1002 m3=campfire) (11) (12 (13 m9=0.500000)))"
                                " (2 (10 m0=2000 m1=2001 m2=2002 m3=campfire) (11) (12 (13 m9=0.500000)))";
constexpr float INF = std::numeric_limits<float>::infinity();
constexpr bool (Reader::*READ_STRING)(MK::String &) = &Reader::Read_String;

const ValueRow ValueRows[] = {
    Row("Int8", &Writer::Write_Int8, &Reader::Read_Int8, -128),
    Row("UInt8", &Writer::Write_UInt8, &Reader::Read_UInt8, 255),
    Row("Int16", &Writer::Write_Int16, &Reader::Read_Int16, -32768),
    Row("UInt16", &Writer::Write_UInt16, &Reader::Read_UInt16, 0xfedc),
    Row("Int32", &Writer::Write_Int32, &Reader::Read_Int32, INT32_MIN),
    Row("UInt32", &Writer::Write_UInt32, &Reader::Read_UInt32, 0xfedcba98u),
    Row("Int64", &Writer::Write_Int64, &Reader::Read_Int64, INT64_MIN),
    Row("UInt64", &Writer::Write_UInt64, &Reader::Read_UInt64, UINT64_MAX - 1),
    Row("Float", &Writer::Write_Float, &Reader::Read_Float, -0.015625f),
    Row("Float infinite", &Writer::Write_Float, &Reader::Read_Float, -INF),
    Row("Float NaN", &Writer::Write_Float, &Reader::Read_Float, std::numeric_limits<float>::quiet_NaN()),
    Row("String", &Writer::Write_String, READ_STRING, " <a href=\"x\">&amp;\r\n\t\x01\xff\xef\x80\x81 "),
    Row("String empty", &Writer::Write_String, READ_STRING, ""),
    Row("String with a NUL", &Writer::Write_String, READ_STRING, MK::String("a\0b", 3)),
    Row("String not ASCII", &Writer::Write_String, READ_STRING, "F\xc3\xbcnke \xf0\x9f\x94\xa5"),
    {"String as a name", [](Writer &w) { return w.Write_String("smoke.tga"); },
     [](Reader &r) {
         NameTableRef name;
         return r.Read_String(name) && name == NameTableRef("smoke.tga");
     }},
    Row("Wstring", &Writer::Write_Wstring, &Reader::Read_Wstring, u"F\u00fcnke <\U0001f525>"),
    Row("Bool", &Writer::Write_Bool, &Reader::Read_Bool, true),
    Row("Vector2", &Writer::Write_Vector2, &Reader::Read_Vector2, {0.25f, -8.0f}),
    Row("Vector3", &Writer::Write_Vector3, &Reader::Read_Vector3, Position),
    Row("Vector4", &Writer::Write_Vector4, &Reader::Read_Vector4, {1, 2, 3, 4}),
    Row("Quaternion", &Writer::Write_Quaternion, &Reader::Read_Quaternion, {0.5f, 1.0f, 2.0f, 3.0f}),
    Row("RGBA", &Writer::Write_RGBA, &Reader::Read_RGBA, {0.5f, 0.25f, 1.0f, 0.0f}),
    {"BitStream", [](Writer &w) { return w.Write_Bit_Stream(reinterpret_cast<const uint8_t *>("\xa5\x01"), 9, 77); },
     [](Reader &r) {
         std::vector<uint8_t> bits;
         uint32_t count = 0;
         uint32_t second = 0;
         return r.Read_Bit_Stream(bits, count, second) && bits == Bytes{0xa5, 0x01} && count == 9 && second == 77;
     },
     false},
    Row("Pointer", &Writer::Write_Pointer, &Reader::Read_Pointer, 0x00ab12cd),
    Row("Matrix3D", &Writer::Write_Matrix3D, &Reader::Read_Matrix3D, Some_Matrix()),
    Row("Vector2i", &Writer::Write_Vector2i, &Reader::Read_Vector2i, {-1, 2}),
    Row("Vector3i", &Writer::Write_Vector3i, &Reader::Read_Vector3i, {-1, 2, INT32_MAX}),
    Row("Vector4i", &Writer::Write_Vector4i, &Reader::Read_Vector4i, {-1, 2, INT32_MAX, 0}),
    Row("Flags", &Writer::Write_Flags, &Reader::Read_Flags, 0x83),
    Row("Facing", &Writer::Write_Facing, &Reader::Read_Facing, Position),
    Row("Time", &Writer::Write_Time, &Reader::Read_Time, 0x0123456789abcdefull, false),
    {"Matrix3", [](Writer &w) { return w.Write_Matrix3(NINE); },
     [](Reader &r) {
         float values[9] = {};
         return r.Read_Matrix3(values) && std::equal(values, values + 9, NINE);
     },
     false},
    {"Raw", [](Writer &w) { return w.Write_Raw_Bytes("\x00\xff\x10", 3); },
     [](Reader &r) {
         char bytes[3];
         int read = 0;
         return r.Read_Raw_Bytes(bytes, 3, &read) && read == 3 && std::memcmp(bytes, "\x00\xff\x10", 3) == 0;
     }},
};

/// Every value in a leaf and then in microchunks, `forXML` those alone that the XML form gives back.
Bytes File_Of_All_Values(uint32_t mode, bool forXML)
{
    return Written(mode, [&](Writer &writer) {
        writer.Open_Chunk("Values", 1);
        for (const bool inMicroChunk : {false, true}) {
            writer.Open_Chunk("Leaf", 2);
            for (const ValueRow &row : ValueRows) {
                if (forXML && !row.fromXML) continue;
                if (inMicroChunk) writer.Open_Micro_Chunk(row.what, 3);
                EXPECT_TRUE(row.write(writer)) << row.what << " in " << mode;
                if (inMicroChunk) writer.Close_Micro_Chunk();
            }
            writer.Close_Chunk();
        }
        writer.Close_Chunk();
    });
}

Bytes Copied(const Bytes &source, uint32_t mode, bool &copied)
{
    return Written(mode, [&](Writer &writer) {
        MemoryReader reader(source);
        copied = Copy(writer, *reader);
    });
}

} // namespace

TEST(ChunkRoundTrip, GivesBackEveryTypeInEveryMode)
{
    for (const uint32_t mode : All_Emitter_Modes()) {
        const bool isXML = mode == COMPRESSION_XML;
        MemoryReader reader(File_Of_All_Values(mode, isXML));
        ASSERT_TRUE(reader->Open_Chunk()) << mode;
        for (const bool inMicroChunk : {false, true}) {
            ASSERT_TRUE(reader->Open_Chunk()) << mode;
            for (const ValueRow &row : ValueRows) {
                if (isXML && !row.fromXML) continue;
                const std::string where = std::string(row.what) + " in " + std::to_string(mode);
                ASSERT_TRUE(!inMicroChunk || reader->Open_Micro_Chunk()) << where;
                ASSERT_TRUE(row.reads(*reader)) << where;
                ASSERT_TRUE(!inMicroChunk || reader->Close_Micro_Chunk()) << where;
            }
            EXPECT_EQ(reader->Cur_Chunk_Remaining(), 0u) << mode;
            EXPECT_TRUE(reader->Close_Chunk());
        }
        EXPECT_TRUE(reader->Close_Chunk());
        EXPECT_FALSE(reader->Open_Chunk() || reader->Is_Damaged()) << mode;
    }
}

TEST(ChunkRoundTrip, ReadsTheSameTreeFromEveryMode)
{
    for (const uint32_t mode : All_Emitter_Modes()) {
        MemoryReader reader(Written(mode, Write_Sample_Tree));
        EXPECT_EQ(Walk(*reader), SAMPLE_WALK) << mode;
        EXPECT_FALSE(reader->Is_Damaged()) << mode;
        MemoryReader skipper(Written(mode, Write_Sample_Tree));
        for (uint32_t top = 1; skipper->Open_Chunk(); ++top) {
            EXPECT_EQ(skipper->Cur_Chunk_ID(), top) << mode;
            EXPECT_TRUE(skipper->Open_Chunk() && skipper->Open_Micro_Chunk()) << mode;
            EXPECT_TRUE(skipper->Close_Micro_Chunk() && skipper->Close_Chunk()) << "with the rest unread " << mode;
            EXPECT_TRUE(skipper->Close_Chunk()) << "two sub-chunks unread " << mode;
        }
        EXPECT_FALSE(skipper->Is_Damaged()) << mode;
    }
}

// Values and chunk headers that lie across the 32 KiB windows, with content that doesn't compress to nothing.
TEST(ChunkRoundTrip, CarriesFilesOfManyWindows)
{
    const auto value = [](uint32_t leaf, uint32_t i) { return (leaf * 4 + i) * 2654435761u; };
    for (const uint32_t mode : All_Emitter_Modes()) {
        MemoryReader reader(Written(mode, [&](Writer &writer) {
            for (uint32_t leaf = 0; leaf < 10000; ++leaf) {
                if (leaf % 5000 == 0) writer.Open_Chunk(leaf);
                writer.Open_Chunk(leaf);
                for (uint32_t i = 0; i < 4; ++i) writer.Write_UInt32(value(leaf, i));
                writer.Close_Chunk();
                if (leaf % 5000 == 4999) writer.Close_Chunk();
            }
        }));
        uint32_t wrong = 0;
        for (uint32_t leaf = 0; leaf < 10000; ++leaf) {
            if (leaf % 5000 == 0) wrong += !reader->Open_Chunk();
            wrong += !reader->Open_Chunk() || reader->Cur_Chunk_ID() != leaf;
            for (uint32_t i = 0; i < 3; ++i) {
                uint32_t read = 0;
                wrong += !reader->Read_UInt32(read) || read != value(leaf, i);
            }
            wrong += !reader->Close_Chunk();
            if (leaf % 5000 == 4999) wrong += !reader->Close_Chunk();
        }
        EXPECT_EQ(wrong, 0u) << mode;
        EXPECT_FALSE(reader->Open_Chunk() || reader->Is_Damaged()) << mode;
    }
}

TEST(ChunkRoundTrip, KeepsADepthOf255)
{
    for (const uint32_t mode : All_Emitter_Modes()) {
        MemoryReader reader(Written(mode, [](Writer &writer) {
            const Reports reports;
            for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(writer.Open_Chunk(id));
            EXPECT_FALSE(writer.Open_Chunk(255));
            EXPECT_TRUE(reports.Has_Assert("StackIndex < MAX_CHUNK_DEPTH - 1"));
            for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(writer.Close_Chunk());
        }));
        for (uint32_t id = 0; id < 255; ++id) ASSERT_TRUE(reader->Open_Chunk()) << mode << " " << id;
        for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(reader->Close_Chunk()) << mode;
        EXPECT_FALSE(reader->Is_Damaged()) << mode;
    }
}

TEST(ChunkCopy, GivesWhatTheSameCallsWouldHaveWritten)
{
    for (const uint32_t from : All_Emitter_Modes()) {
        for (const uint32_t to : All_Emitter_Modes()) {
            if (to == COMPRESSION_XML) continue; // names get lost
            // Untyped leaves go byte for byte, into an untyped file of the same byte order.
            const bool isTyped = from == COMPRESSION_XML || from & MODE_VALIDATED;
            if (!isTyped && (to & MODE_VALIDATED || (from ^ to) & MODE_SWAPPED)) continue;
            const bool forXML = from == COMPRESSION_XML;
            bool copied = false;
            EXPECT_EQ(Copied(File_Of_All_Values(from, forXML), to, copied), File_Of_All_Values(to, forXML))
                << from << " to " << to;
            EXPECT_TRUE(copied) << from << " to " << to;
        }
    }
    bool toXML = false;
    bool fromXML = false;
    const Bytes binary = File_Of_All_Values(MODE_VALIDATED, true);
    EXPECT_EQ(Copied(Copied(binary, COMPRESSION_XML, toXML), MODE_VALIDATED, fromXML), binary);
    EXPECT_TRUE(toXML && fromXML);
}

// The seeds of the chunk reader's fuzz target hold one tree in every mode, as an earlier build wrote it.
TEST(ChunkCopy, ReadsTheFilesOfEarlierBuilds)
{
    const auto kept = [](const std::string &name) { return Read_Whole_File(MK_CHUNK_CORPUS "/" + name + ".chunk"); };
    bool copied = false;
    for (const char *name : {"zlib", "binary+sectioned", "binary+validated", "zlib+sectioned+validated+swapped"})
        EXPECT_EQ(Copied(kept(name), COMPRESSION_NONE, copied), kept("binary")) << name;
    MemoryReader xml(kept("xml"));
    EXPECT_EQ(Walk(*xml), SAMPLE_WALK);
}

TEST(ChunkCopy, TellsWhatUntypedValuesKeepItFrom)
{
    Reports reports;
    bool copied = false;
    const Bytes untyped = Plain_File(ByteList().Word(1).Word(2).Raw({1, 2}).Get());
    const Bytes swapped = Copied(untyped, MODE_SWAPPED, copied);
    EXPECT_TRUE(copied);
    EXPECT_EQ(Bytes(swapped.begin() + 36, swapped.end()), ByteList(true).Word(1).Word(2).Raw({1, 2}).Get());
    EXPECT_TRUE(reports.Has_Log("Copy keeps the byte order of the untyped values"));
    Copied(untyped, MODE_VALIDATED, copied);
    EXPECT_FALSE(copied);
    EXPECT_TRUE(reports.Has_Assert("!reader->Is_Validated() && writer->Is_Validated()"));
}

TEST(ChunkCopy, FailsOnWhatItCannotTell)
{
    const std::pair<const char *, Bytes> rows[] = {
        {"an unknown tag", {0x31, 1}},
        {"a value cut short", {TYPE_INT32, 1}},
        {"raw bytes past the leaf", {TYPE_RAW, 0xff, 0xff, 0xff, 0x7f, 1}},
        {"a microchunk past the leaf", {TYPE_MICROCHUNK, 1, 9, TYPE_INT8, 1}},
    };
    for (const auto &[what, leaf] : rows) {
        Reports reports;
        bool copied = true;
        const Bytes stream = ByteList().Word(1).Word(static_cast<uint32_t>(leaf.size())).Add(leaf).Get();
        MemoryReader reader(Copied(Plain_File(stream, MODE_VALIDATED), MODE_VALIDATED, copied));
        EXPECT_FALSE(copied) << what;
        EXPECT_TRUE(reader->Open_Chunk() && reader->Close_Chunk()) << what;
    }
}
