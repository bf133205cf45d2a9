#include "MKLib/Parameters/ParameterFiles.h"

#include "common/ArchiveBuilder.h"
#include "common/Reports.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <limits>
#include <sys/resource.h>

namespace
{

using namespace MKTest;

enum class Form
{
    Plain,
    Chunked
};

bool Load(ParameterClass &parameter, const Bytes &file, Form form)
{
    return Read_Chunk_File(file, [&](ChunkFileReaderClass &reader) {
        return form == Form::Plain ? parameter.Load_Plain(reader) : parameter.Load_Chunked(reader);
    });
}

TEST(ParameterForms, AFailedReadLeavesTheValueAndMarksTheParameter)
{
    Reports reports;
    const Bytes plain = Build(Bytes_Leaf(77, "ab"));
    const Bytes chunked = Build(Parent(77, {Bytes_Leaf(0, std::string("\0\2ab", 4))})); // in a micro-chunk
    for (const auto &[file, form] :
         {std::pair(plain, Form::Plain), std::pair(chunked, Form::Chunked), std::pair(plain, Form::Chunked)})
    {
        FloatParameter parameter("f", "", 9.0f);
        EXPECT_FALSE(Load(parameter, file, form));
        EXPECT_EQ(parameter.Get_Value(), 9.0f);
        EXPECT_TRUE(parameter.Was_Loaded());
    }
}

void Write_Keys(ChunkFileWriterClass &writer, std::initializer_list<std::pair<float, float>> keys)
{
    for (const auto &[time, value] : keys) {
        writer.Write_Float(time);
        writer.Write_Float(value);
    }
}

Bytes Curve_File(uint32_t count, std::initializer_list<std::pair<float, float>> keys)
{
    const Chunk header = Micros(0, {{0, count}});
    return Build(Parent(77, {header, {1, {}, [&](ChunkFileWriterClass &writer) { Write_Keys(writer, keys); }}}));
}

TEST(ParameterForms, ACurveLoadsInOrderOfTimeWhateverTheFiles)
{
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    KeyedFloatParameterClass curve("k", "");
    ASSERT_TRUE(Load(curve, Curve_File(5, {{2, 20}, {0, 1}, {2, 99}, {NOT_A_NUMBER, 5}, {1, 10}}), Form::Chunked));
    std::vector<std::pair<float, float>> keys;
    for (const auto &key : curve.Get_Keys()) keys.emplace_back(key.Time, key.Value);
    EXPECT_EQ(keys, (std::vector<std::pair<float, float>>{{0, 1}, {1, 10}, {2, 20}}));
    ASSERT_TRUE(Load(curve, Curve_File(2, {{NOT_A_NUMBER, 5}, {1, 10}}), Form::Chunked));
    ASSERT_EQ(curve.Get_Key_Count(), 1);
    EXPECT_EQ(curve.Get_Keys()[0].Value, 5.0f);
}

TEST(ParameterForms, ALongCurveThatRunsBackwardsLoadsInNoTime)
{
    // Each key used to be put in front of all the others, which took hours for a file of a few megabytes.
    constexpr uint32_t COUNT = 1000000;
    const Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) {
        writer.Write_UInt32(COUNT);
        for (uint32_t left = COUNT; left > 0; --left) Write_Keys(writer, {{static_cast<float>(left), 0.0f}});
    });
    KeyedFloatParameterClass curve("k", "");
    ASSERT_TRUE(Load(curve, file, Form::Plain));
    EXPECT_EQ(curve.Get_Key_Count(), static_cast<int>(COUNT));
    EXPECT_EQ(curve.Get_Keys().front().Time, 1.0f);
}

TEST(ParameterForms, ACountNeverReachesPastItsChunk)
{
    for (const uint32_t count : {2u, 3u, 0x20000001u}) { // the last one is small again in bytes of 32 bits
        SCOPED_TRACE(count);
        const bool fits = count == 2;
        Reports reports;
        KeyedFloatParameterClass curve("k", "");
        curve.Add_Key(5.0f, 5.0f);
        EXPECT_EQ(Load(curve, Curve_File(count, {{0.0f, 1.0f}, {1.0f, 2.0f}}), Form::Chunked), fits);
        EXPECT_EQ(curve.Get_Key_Count(), fits ? 2 : 1);
        EXPECT_EQ(reports.Has_Log("curve \"k\" has"), !fits);

        UVListParameterClass list("u", "");
        list.Set_Value({Vector4(7.0f)});
        const Bytes file = Chunk_File(0, [&](ChunkFileWriterClass &writer) {
            writer.Write_UInt32(count);
            for (int i = 0; i < 2; ++i) writer.Write_Vector4(Vector4(static_cast<float>(i)));
        });
        EXPECT_EQ(Load(list, file, Form::Plain), fits);
        EXPECT_EQ(list.Get_Value().size(), fits ? 2u : 1u);
        EXPECT_EQ(list.Get_Value()[0].x, fits ? 0.0f : 7.0f);
    }
}

TEST(ParameterForms, AChunkThatClaimsASizeGetsNoRoomForIt)
{
    const Reports reports;
    constexpr uint32_t COUNT = 0x04000000; // in entries of 8 and 16 bytes, half a gigabyte and a whole one
    constexpr size_t SIZE_OFFSET = 40;     // in the chunk's header, behind the file's of 36 bytes
    Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) { writer.Write_UInt32(COUNT); });
    Put_U32(file, SIZE_OFFSET, 0x7fffffff);
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    UVListParameterClass list("u", "");
    EXPECT_FALSE(Load(list, file, Form::Plain));
    KeyedFloatParameterClass curve("k", "");
    EXPECT_FALSE(Load(curve, file, Form::Plain));
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 << 10);
    EXPECT_EQ(reports.Count_Logs("ends before its data does"), 2) << "the claim wasn't believed\n"
                                                                  << reports.Get_Text();
}

TEST(ParameterForms, AShapeReadsItsFourForms)
{
    // Center, Direction, A to D and the box take the floats 1 to 16; the extra fields go on from 17.
    const struct
    {
        int chunk; ///< -1 for bare fields
        int extras;
        std::vector<float> expected;
    } rows[] = {
        {-1, 6, {0, 17, 18, 19, 20, 21, 22, 10, 5, 0, 10}},
        {0, 8, {0, 17, 18, 19, 20, 21, 22, 23, 24, 0, 10}},
        {1, 9, {17, 18, 19, 20, 21, 22, 23, 24, 25, 0, 10}},
        {2, 11, {17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.chunk);
        ShapeParameterClass shape("p", "", SHAPE_POINT);
        ShapeStruct start;
        start.E[0] = 0.25f;
        shape.Set_Value(start);
        const Bytes file = Chunk_File(0, [&](ChunkFileWriterClass &writer) {
            if (row.chunk >= 0) writer.Open_Chunk(static_cast<uint32_t>(row.chunk));
            writer.Write_UInt32(SHAPE_CYLINDER);
            for (int i = 1; i <= 16 + row.extras; ++i) writer.Write_Float(static_cast<float>(i));
            if (row.chunk >= 0) writer.Close_Chunk();
        });
        EXPECT_TRUE(Load(shape, file, Form::Plain));
        const ShapeStruct &value = shape.Get_Value();
        EXPECT_EQ(value.ShapeType, SHAPE_CYLINDER);
        const auto fields = std::bit_cast<std::array<float, 28>>(value);
        for (size_t i = 1; i <= 16; ++i) EXPECT_EQ(fields[i], static_cast<float>(i));
        EXPECT_THAT(value.E, testing::ElementsAreArray(row.expected));
        EXPECT_FLOAT_EQ(shape.Get_Normal_Direction().z, 6.0f / 8.774964f); // sqrt(16 + 25 + 36)
    }
}

TEST(ParameterForms, AShapeThatIsCutShortStopsAtTheCutAndAnUnknownOneIsLeft)
{
    Reports reports;
    const auto file = [](uint32_t form) {
        const auto write = [](ChunkFileWriterClass &writer) {
            writer.Write_UInt32(SHAPE_BOX);
            writer.Write_Vector3(Vector3(1, 2, 3));
            writer.Write_Float(50.0f); // a third of the direction
        };
        return Build(Parent(77, {{form, {}, write}}));
    };
    ShapeParameterClass shape("p", "", SHAPE_POINT);
    EXPECT_FALSE(Load(shape, file(2), Form::Plain));
    EXPECT_EQ(shape.Get_Value().Center, Vector3(1, 2, 3));
    EXPECT_EQ(shape.Get_Value().Direction, Vector3(0, 0, 10));
    EXPECT_EQ(shape.Get_Value().A, 0.0f) << "what is left of a field isn't read into the next";
    ShapeParameterClass unknown("p", "", SHAPE_TORUS);
    EXPECT_TRUE(Load(unknown, file(3), Form::Plain));
    EXPECT_EQ(unknown.Get_Value().ShapeType, SHAPE_TORUS);
    EXPECT_TRUE(reports.Has_Log("unknown form 3"));
}

} // namespace
