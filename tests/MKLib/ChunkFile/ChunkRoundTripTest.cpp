#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

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

const Vector3 Position(1.5f, -2.25f, 1024.0f);
const std::string LongText(65535, 'x');

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
    bool fromXML = true;      ///< the XML form gives it back
    bool inMicroChunk = true; ///< short enough for one
};

template <typename Read, typename Given>
ValueRow Row(const char *what, bool (Writer::*write)(Given), bool (Reader::*read)(Read &),
             const std::type_identity_t<Read> &value, bool fromXML = true, bool inMicroChunk = true)
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
            fromXML, inMicroChunk};
}

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
    Row("Float above all", &Writer::Write_Float, &Reader::Read_Float, std::numeric_limits<float>::max()),
    Row("Float infinite", &Writer::Write_Float, &Reader::Read_Float, -INF),
    Row("Float NaN", &Writer::Write_Float, &Reader::Read_Float, std::numeric_limits<float>::quiet_NaN()),
    Row("String", &Writer::Write_String, READ_STRING, " <a href=\"x\">&amp;\r\n\t\x01\xff\xef\x80\x81 "),
    Row("String empty", &Writer::Write_String, READ_STRING, ""),
    Row("String with a NUL", &Writer::Write_String, READ_STRING, MK::String("a\0b", 3)),
    Row("String not ASCII", &Writer::Write_String, READ_STRING, "F\xc3\xbcnke \xf0\x9f\x94\xa5"),
    Row("String of 65535 bytes", &Writer::Write_String, READ_STRING, MK::String(LongText), true, false),
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
    {"Matrix3",
     [](Writer &w) {
         const float values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
         return w.Write_Matrix3(values);
     },
     [](Reader &r) {
         float values[9] = {};
         return r.Read_Matrix3(values) && values[0] == 1.0f && values[8] == 9.0f;
     },
     false},
    {"Raw", [](Writer &w) { return w.Write_Raw_Bytes("\x00\xff\x10", 3); },
     [](Reader &r) {
         char bytes[3];
         int read = 0;
         return r.Read_Raw_Bytes(bytes, 3, &read) && read == 3 && std::memcmp(bytes, "\x00\xff\x10", 3) == 0;
     }},
};

bool Takes_Part(const ValueRow &row, const ModeRow &mode, bool inMicroChunk)
{
    if (inMicroChunk && !row.inMicroChunk) return false;
    return row.fromXML || mode.mode != COMPRESSION_XML;
}

Bytes File_Of_All_Values(const ModeRow &mode)
{
    return Written(mode.mode, [&](Writer &writer) {
        writer.Open_Chunk("Values", 1);
        for (const bool inMicroChunk : {false, true}) {
            writer.Open_Chunk("Leaf", 2);
            for (const ValueRow &row : ValueRows) {
                if (!Takes_Part(row, mode, inMicroChunk)) continue;
                if (inMicroChunk) writer.Open_Micro_Chunk(row.what, 3);
                EXPECT_TRUE(row.write(writer)) << row.what << " in " << mode.what;
                if (inMicroChunk) writer.Close_Micro_Chunk();
            }
            writer.Close_Chunk();
        }
        writer.Close_Chunk();
    });
}

} // namespace

TEST(ChunkRoundTrip, GivesBackEveryTypeInEveryMode)
{
    for (const ModeRow &mode : All_Modes()) {
        MemoryReader reader(File_Of_All_Values(mode));
        ASSERT_TRUE(reader->Is_Initialized()) << mode.what;
        ASSERT_TRUE(reader->Open_Chunk());
        for (const bool inMicroChunk : {false, true}) {
            ASSERT_TRUE(reader->Open_Chunk()) << mode.what;
            for (const ValueRow &row : ValueRows) {
                if (!Takes_Part(row, mode, inMicroChunk)) continue;
                const std::string where = std::string(row.what) + " in " + mode.what;
                if (inMicroChunk) {
                    ASSERT_TRUE(reader->Open_Micro_Chunk()) << where;
                }
                ASSERT_TRUE(row.reads(*reader)) << where;
                if (inMicroChunk) {
                    EXPECT_TRUE(reader->Close_Micro_Chunk()) << where;
                }
            }
            EXPECT_EQ(reader->Cur_Chunk_Remaining(), 0u) << mode.what;
            EXPECT_TRUE(reader->Close_Chunk());
        }
        EXPECT_TRUE(reader->Close_Chunk());
        EXPECT_FALSE(reader->Open_Chunk());
        EXPECT_FALSE(reader->Is_Damaged()) << mode.what;
    }
}

TEST(ChunkRoundTrip, ReadsTheSameTreeFromEveryMode)
{
    const std::string expected = " (1 (10 m0=1000 m1=1001 m2=1002 m3=campfire) (11) (12 (13 m9=0.500000)))"
                                 " (2 (10 m0=2000 m1=2001 m2=2002 m3=campfire) (11) (12 (13 m9=0.500000)))";
    for (const ModeRow &mode : All_Modes()) {
        MemoryReader reader(Written(mode.mode, Write_Sample_Tree));
        EXPECT_EQ(Walk(*reader), expected) << mode.what;
        EXPECT_FALSE(reader->Is_Damaged()) << mode.what;
        EXPECT_EQ(reader->Is_Validated(), (mode.mode & MODE_VALIDATED) != 0 || mode.mode == COMPRESSION_XML);
    }
}

TEST(ChunkRoundTrip, StaysInStepWhenChunksAreLeftEarly)
{
    for (const ModeRow &mode : All_Modes()) {
        MemoryReader reader(Written(mode.mode, Write_Sample_Tree));
        ASSERT_TRUE(reader->Open_Chunk() && reader->Open_Chunk() && reader->Open_Micro_Chunk());
        EXPECT_TRUE(reader->Close_Micro_Chunk()); // its value unread
        EXPECT_TRUE(reader->Close_Chunk());       // three microchunks unread
        ASSERT_TRUE(reader->Open_Chunk()) << mode.what;
        EXPECT_EQ(reader->Cur_Chunk_ID(), 11u) << mode.what;
        EXPECT_TRUE(reader->Close_Chunk());
        EXPECT_TRUE(reader->Close_Chunk()); // chunk 12 unread
        ASSERT_TRUE(reader->Open_Chunk()) << mode.what;
        EXPECT_EQ(reader->Cur_Chunk_ID(), 2u) << mode.what;
        EXPECT_EQ(reader->Cur_Chunk_Length(), 3u) << mode.what;
        EXPECT_TRUE(reader->Close_Chunk());
        EXPECT_FALSE(reader->Open_Chunk() || reader->Is_Damaged()) << mode.what;
    }
}

// Values and chunk headers that lie across the 32 KiB windows, with content that doesn't compress to nothing.
TEST(ChunkRoundTrip, CarriesFilesOfManyWindows)
{
    constexpr uint32_t COUNT = 40000;
    const auto value = [](uint32_t i) { return i * 2654435761u; };
    for (const ModeRow &mode : All_Modes()) {
        const Bytes file = Written(mode.mode, [&](Writer &writer) {
            for (uint32_t top = 0; top < 2; ++top) {
                writer.Open_Chunk(top);
                for (uint32_t leaf = 0; leaf < COUNT / 8; ++leaf) {
                    writer.Open_Chunk(leaf);
                    for (uint32_t i = 0; i < 4; ++i) writer.Write_UInt32(value(leaf * 4 + i));
                    writer.Close_Chunk();
                }
                writer.Close_Chunk();
            }
        });
        MemoryReader reader(file);
        uint32_t wrong = 0;
        for (uint32_t top = 0; top < 2; ++top) {
            ASSERT_TRUE(reader->Open_Chunk()) << mode.what;
            for (uint32_t leaf = 0; reader->Open_Chunk(); ++leaf) {
                wrong += reader->Cur_Chunk_ID() != leaf;
                for (uint32_t i = 0; i < 3; ++i) {
                    uint32_t read = 0;
                    wrong += !reader->Read_UInt32(read) || read != value(leaf * 4 + i);
                }
                EXPECT_TRUE(reader->Close_Chunk());
            }
            EXPECT_TRUE(reader->Close_Chunk()) << mode.what;
        }
        EXPECT_EQ(wrong, 0u) << mode.what;
        EXPECT_FALSE(reader->Open_Chunk());
        EXPECT_FALSE(reader->Is_Damaged()) << mode.what;
    }
}

TEST(ChunkRoundTrip, KeepsADepthOf255)
{
    for (const ModeRow &mode : All_Modes()) {
        const Bytes file = Written(mode.mode, [](Writer &writer) {
            const Reports reports;
            for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(writer.Open_Chunk(id));
            EXPECT_FALSE(writer.Open_Chunk(255));
            EXPECT_TRUE(reports.Has_Assert("StackIndex < MAX_CHUNK_DEPTH - 1"));
            writer.Write_UInt8(1);
            for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(writer.Close_Chunk());
        });
        Reports reports;
        MemoryReader reader(file);
        for (uint32_t id = 0; id < 255; ++id) ASSERT_TRUE(reader->Open_Chunk()) << mode.what << " " << id;
        for (uint32_t id = 0; id < 255; ++id) EXPECT_TRUE(reader->Close_Chunk()) << mode.what;
        EXPECT_FALSE(reader->Is_Damaged()) << reports.Get_Text();
    }
}

TEST(ChunkRoundTrip, KeepsUserWordsWhereTheFormWritesThem)
{
    for (const uint32_t mode : {uint32_t{COMPRESSION_NONE}, uint32_t{COMPRESSION_XML}}) {
        MemoryReader reader(Written(mode, [](Writer &writer) {
            writer.Set_User_Int32(0, 7);
            writer.Set_User_Int32(1, 0xfffffffe);
        }));
        const bool isXML = mode == COMPRESSION_XML;
        EXPECT_EQ(reader->Get_User_Int32(0), isXML ? 7u : 0u); // a binary header goes out when the writer is made
        EXPECT_EQ(reader->Get_User_Int32(1), isXML ? 0xfffffffeu : 0u);
        Reports reports;
        EXPECT_EQ(reader->Get_User_Int32(2), 0u);
        EXPECT_TRUE(reports.Has_Assert("idx < ARRAY_SIZE(UserInt32)"));
    }
}
