#include "MKLib/Parameters/ParameterFiles.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <sys/resource.h>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

using MKTest::Bytes;
using MKTest::Chunk_File;

enum class Form
{
    Plain,
    Chunked
};

bool Load(ParameterClass &parameter, const Bytes &file, Form form)
{
    return MKTest::Read_Chunk_File(file, [&](ChunkFileReaderClass &reader) {
        return form == Form::Plain ? parameter.Load_Plain(reader) : parameter.Load_Chunked(reader);
    });
}

/// The one micro-chunk of a simple value, in its chunk.
template <typename Write>
Bytes Simple_Value(Write &&write)
{
    return Chunk_File(0, [&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(0);
        writer.Open_Micro_Chunk(0);
        write(writer);
        writer.Close_Micro_Chunk();
        writer.Close_Chunk();
    });
}

TEST(ParameterForms, AFailedReadLeavesTheValueAndMarksTheParameter)
{
    const auto tooShort = [](ChunkFileWriterClass &writer) { writer.Write_UInt16(3); };
    const struct
    {
        const char *what;
        Bytes file;
        Form form;
    } rows[] = {
        {"two bytes of a float, plain", Chunk_File(0, tooShort), Form::Plain},
        {"two bytes of a float, in a micro-chunk", Simple_Value(tooShort), Form::Chunked},
        {"a payload where sub-chunks belong", Chunk_File(0, [](auto &w) { w.Write_Float(2.0f); }), Form::Chunked},
    };
    for (const auto &row : rows) {
        MKTest::Reports reports;
        FloatParameter parameter("f", "", 9.0f);
        EXPECT_FALSE(Load(parameter, row.file, row.form)) << row.what;
        EXPECT_EQ(parameter.Get_Value(), 9.0f) << row.what;
        EXPECT_TRUE(parameter.Was_Loaded()) << row.what;
    }
}

void Write_Keys(ChunkFileWriterClass &writer, std::initializer_list<std::pair<float, float>> keys)
{
    for (const auto &[time, value] : keys) {
        writer.Write_Float(time);
        writer.Write_Float(value);
    }
}

Bytes Curve_File(uint32_t count, bool isSpline, std::initializer_list<std::pair<float, float>> keys)
{
    return Chunk_File(0, [&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(0);
        writer.Open_Micro_Chunk(0);
        writer.Write_UInt32(count);
        writer.Close_Micro_Chunk();
        writer.Open_Micro_Chunk(1);
        writer.Write_Bool(isSpline);
        writer.Close_Micro_Chunk();
        writer.Close_Chunk();
        writer.Open_Chunk(1);
        Write_Keys(writer, keys);
        writer.Close_Chunk();
    });
}

TEST(ParameterForms, ACurveReadsBothForms)
{
    for (const Form form : {Form::Plain, Form::Chunked}) {
        KeyedFloatParameterClass curve("k", "");
        curve.Set_Spline(true);
        curve.Add_Key(0.5f, 99.0f); // goes with the load
        const Bytes file = form == Form::Chunked ? Curve_File(3, true, {{0.0f, 0.0f}, {1.0f, 1.0f}, {2.0f, 0.0f}})
                                                 : Chunk_File(0, [](ChunkFileWriterClass &writer) {
                                                       writer.Write_UInt32(3);
                                                       Write_Keys(writer, {{0.0f, 0.0f}, {1.0f, 1.0f}, {2.0f, 0.0f}});
                                                   });
        EXPECT_TRUE(Load(curve, file, form));
        EXPECT_EQ(curve.Get_Key_Count(), 3);
        EXPECT_TRUE(curve.Is_Spline()) << "the plain form holds no flag, and leaves it";
        float value = 0.0f;
        curve.Evaluate(0.5f, false, value);
        EXPECT_NEAR(value, 0.6875f, 1e-6f);
    }
}

TEST(ParameterForms, ACurveLoadsInOrderOfTimeWhateverTheFiles)
{
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    KeyedFloatParameterClass curve("k", "");
    ASSERT_TRUE(
        Load(curve, Curve_File(5, false, {{2, 20}, {0, 1}, {2, 99}, {NOT_A_NUMBER, 5}, {1, 10}}), Form::Chunked));
    std::vector<std::pair<float, float>> keys;
    for (const auto &key : curve.Get_Keys()) keys.emplace_back(key.Time, key.Value);
    EXPECT_EQ(keys, (std::vector<std::pair<float, float>>{{0, 1}, {1, 10}, {2, 20}}));
    ASSERT_TRUE(Load(curve, Curve_File(2, false, {{NOT_A_NUMBER, 5}, {1, 10}}), Form::Chunked));
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
    const struct
    {
        const char *what;
        uint32_t count;
        bool loads;
        int keysAfter;
    } rows[] = {
        {"as many as there are", 2, true, 2},
        {"one too many", 3, false, 1},
        {"absurd in bytes of 32 bits", 0x20000001, false, 1},
    };
    for (const auto &row : rows) {
        MKTest::Reports reports;
        KeyedFloatParameterClass curve("k", "");
        curve.Add_Key(5.0f, 5.0f);
        EXPECT_EQ(Load(curve, Curve_File(row.count, false, {{0.0f, 1.0f}, {1.0f, 2.0f}}), Form::Chunked), row.loads)
            << row.what;
        EXPECT_EQ(curve.Get_Key_Count(), row.keysAfter) << row.what;
        EXPECT_EQ(reports.Has_Log("curve \"k\" has"), !row.loads) << row.what;

        UVListParameterClass list("u", "");
        list.Set_Value({Vector4(7.0f)});
        const Bytes file = Chunk_File(0, [&](ChunkFileWriterClass &writer) {
            writer.Write_UInt32(row.count);
            for (int i = 0; i < 2; ++i) writer.Write_Vector4(Vector4(static_cast<float>(i)));
        });
        EXPECT_EQ(Load(list, file, Form::Plain), row.loads) << row.what;
        EXPECT_EQ(static_cast<int>(list.Get_Value().size()), row.keysAfter) << row.what;
        EXPECT_EQ(list.Get_Value()[0].x, row.loads ? 0.0f : 7.0f) << row.what;
    }
}

long Greatest_Kilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(ParameterForms, AChunkThatClaimsASizeGetsNoRoomForIt)
{
    const MKTest::Reports reports;
    constexpr uint32_t COUNT = 0x04000000; // in entries of 8 and 16 bytes, half a gigabyte and a whole one
    constexpr uint32_t CLAIM = 0x7fffffff;
    constexpr size_t SIZE_OFFSET = 40; // in the chunk's header, behind the file's of 36 bytes
    Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) { writer.Write_UInt32(COUNT); });
    std::memcpy(file.data() + SIZE_OFFSET, &CLAIM, sizeof(CLAIM));
    const long before = Greatest_Kilobytes();

    UVListParameterClass list("u", "");
    EXPECT_FALSE(Load(list, file, Form::Plain));
    EXPECT_LT(list.Get_Dynamic_Size(), 64u << 10);

    KeyedFloatParameterClass curve("k", "");
    EXPECT_FALSE(Load(curve, file, Form::Plain));
    EXPECT_EQ(curve.Get_Key_Count(), 0);
    EXPECT_LT(Greatest_Kilobytes() - before, 64 << 10);
    EXPECT_EQ(reports.Count_Logs("ends before its data does"), 2) << "the claim wasn't believed\n"
                                                                  << reports.Get_Text();
}

/// The fields 1, 2, 3, ... as floats in file order behind the type: 19 of them up to the box, then `extras` more.
void Write_Shape_Fields(ChunkFileWriterClass &writer, int extras)
{
    writer.Write_UInt32(SHAPE_CYLINDER);
    for (int i = 1; i <= 16 + extras; ++i) writer.Write_Float(static_cast<float>(i));
}

TEST(ParameterForms, AShapeReadsItsFourForms)
{
    // Center, Direction, A to D and the box take the floats 1 to 16; the extra fields go on from 17.
    const struct
    {
        const char *what;
        int chunk; ///< -1 for bare fields
        int extras;
        std::vector<float> expected;
    } rows[] = {
        {"bare: 1 to 6", -1, 6, {0, 17, 18, 19, 20, 21, 22, 10, 5, 0, 10}},
        {"chunk 0: 1 to 8", 0, 8, {0, 17, 18, 19, 20, 21, 22, 23, 24, 0, 10}},
        {"chunk 1: 0 to 8", 1, 9, {17, 18, 19, 20, 21, 22, 23, 24, 25, 0, 10}},
        {"chunk 2: all", 2, 11, {17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        ShapeParameterClass shape("p", "", SHAPE_POINT);
        ShapeStruct start;
        start.E[0] = 0.25f;
        shape.Set_Value(start);
        const Bytes file = Chunk_File(0, [&](ChunkFileWriterClass &writer) {
            if (row.chunk >= 0) writer.Open_Chunk(static_cast<uint32_t>(row.chunk));
            Write_Shape_Fields(writer, row.extras);
            if (row.chunk >= 0) writer.Close_Chunk();
        });
        EXPECT_TRUE(Load(shape, file, Form::Plain));
        const ShapeStruct &value = shape.Get_Value();
        EXPECT_EQ(value.ShapeType, SHAPE_CYLINDER);
        EXPECT_EQ(value.Center, Vector3(1, 2, 3));
        EXPECT_EQ(value.Direction, Vector3(4, 5, 6));
        EXPECT_THAT((std::vector<float>{value.A, value.B, value.C, value.D}), ElementsAre(7, 8, 9, 10));
        EXPECT_EQ(value.BoxMinimum, Vector3(11, 12, 13));
        EXPECT_EQ(value.BoxMaximum, Vector3(14, 15, 16));
        EXPECT_THAT(value.E, ElementsAreArray(row.expected));
        EXPECT_FLOAT_EQ(shape.Get_Normal_Direction().z, 6.0f / 8.774964f); // sqrt(16 + 25 + 36)
    }
}

TEST(ParameterForms, AShapeOfAnUnknownFormKeepsItsDefaults)
{
    MKTest::Reports reports;
    ShapeParameterClass shape("p", "", SHAPE_TORUS);
    const Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(3);
        Write_Shape_Fields(writer, 20);
        writer.Close_Chunk();
    });
    EXPECT_TRUE(Load(shape, file, Form::Plain));
    EXPECT_EQ(shape.Get_Value().ShapeType, SHAPE_TORUS);
    EXPECT_EQ(shape.Get_Value().E[0], 0.0f);
    EXPECT_TRUE(reports.Has_Log("unknown form 3"));
}

TEST(ParameterForms, AShapeThatIsCutShortStopsAtTheCut)
{
    MKTest::Reports reports;
    ShapeParameterClass shape("p", "", SHAPE_POINT);
    const Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(2);
        writer.Write_UInt32(SHAPE_BOX);
        writer.Write_Vector3(Vector3(1, 2, 3));
        writer.Write_Float(50.0f); // a third of the direction
        writer.Close_Chunk();
    });
    EXPECT_FALSE(Load(shape, file, Form::Plain));
    EXPECT_EQ(shape.Get_Value().Center, Vector3(1, 2, 3));
    EXPECT_EQ(shape.Get_Value().Direction, Vector3(0, 0, 10));
    EXPECT_EQ(shape.Get_Value().A, 0.0f) << "what is left of a field isn't read into the next";
}

} // namespace
