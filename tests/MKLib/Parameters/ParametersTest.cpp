#include "MKLib/Parameters/ParameterFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

namespace
{

TEST(Parameters, ARangeNeverClamps)
{
    const FloatParameter parameter("Speed", "", 50.0f);
    RangedFloatParameter narrow("Speed", "", 1.0f, 0.0f, 0.5f);
    narrow.Copy_From(parameter);
    EXPECT_EQ(narrow.Get_Value(), 50.0f);
    EXPECT_EQ(narrow.Get_Maximum(), 0.5f) << "the value alone is copied";

    const auto file = MKTest::Chunk_File(0, [](ChunkFileWriterClass &writer) { writer.Write_Float(-99.0f); });
    EXPECT_TRUE(MKTest::Read_Chunk_File(file, [&](auto &reader) { return narrow.Load_Plain(reader); }));
    EXPECT_EQ(narrow.Get_Value(), -99.0f);
}

TEST(Parameters, ACopyFromAnotherKindAssertsAndChangesNothing)
{
    static const char *const LABELS[] = {"A", "B"};
    const FloatParameter aFloat("f", "", 5.0f);
    const TextureNameParameterClass texture("t", "", "fire.dds");

    IntParameter integer("i", "", 7);
    RangedIntParameter ranged("r", "", 7, 0, 9);
    StringParameterClass text("s", "", "kept");
    EnumParameterClass choice("e", "", LABELS, 1);
    UVListParameterClass rectangles("u", "");
    KeyedFloatParameterClass curve("k", "");
    ShapeParameterClass shape("p", "", SHAPE_TORUS);
    ParameterClass *const targets[] = {&integer, &ranged, &text, &choice, &rectangles, &curve, &shape};
    for (ParameterClass *target : targets) {
        MKTest::Reports reports;
        target->Copy_From(target == &text ? static_cast<const ParameterClass &>(texture) : aFloat);
        EXPECT_EQ(reports.Get_Asserts().size(), 1u) << target->Get_Name();
    }
    EXPECT_EQ(integer.Get_Value(), 7);
    EXPECT_EQ(ranged.Get_Value(), 7);
    EXPECT_EQ(text.Get_Value(), "kept");
    EXPECT_EQ(choice.Get_Index(), 1);
    EXPECT_EQ(shape.Get_Value().ShapeType, SHAPE_TORUS);
}

TEST(EnumParameter, SelectsByValueAndHoldsTheIndex)
{
    static const char *const LABELS[] = {"Off", "Low", "Also Low", "High"};
    static constexpr int32_t VALUES[] = {-1, 10, 10, 99};
    EnumParameterClass parameter("Detail", "", LABELS, 3, VALUES);
    EXPECT_EQ(parameter.Get_Value(), 99);
    parameter.Set_Value(10);
    EXPECT_EQ(parameter.Get_Index(), 1) << "the first of that value";
    parameter.Set_Value(11);
    EXPECT_EQ(parameter.Get_Index(), 1) << "no entry has it";
    parameter.Set_Index(4);
    EXPECT_FALSE(parameter.Is_Index_Valid());
    EXPECT_EQ(parameter.Get_Value(), -1) << "entry 0 stands in";
    parameter.Set_Index(-1);
    EXPECT_EQ(parameter.Get_Value(), -1);

    EnumParameterClass plain("Plain", "", LABELS, 2);
    EXPECT_EQ(plain.Get_Value(), 2) << "without values the index is the value";
    plain.Copy_From(parameter);
    EXPECT_EQ(plain.Get_Index(), -1) << "an index is copied as it stands";
}

} // namespace
