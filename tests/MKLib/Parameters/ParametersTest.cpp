#include "MKLib/Parameters/ParameterFiles.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

using testing::ElementsAre;

namespace
{

TEST(Parameters, HaveTheNamesOfTheirKinds)
{
    const char *const names[] = {"Boolean",     "RGBA",          "Vector3",     "Integer",       "Float",
                                 "String",      "Keyed Boolean", "Keyed RGBA",  "Keyed Vector3", "Keyed Integer",
                                 "Keyed Float", "Texture Name",  "Shader Name", "UV and dUV",    "Keyed UV and dUV",
                                 "Shape",       "Enumeration",   "UV List"};
    for (int kind = 0; kind < 18; ++kind)
        EXPECT_STREQ(Get_Parameter_Type_Name(static_cast<ParameterType>(kind)), names[kind]) << kind;
    EXPECT_STREQ(Get_Parameter_Type_Name(static_cast<ParameterType>(19)), "Mask");
    for (const int kind : {-1, 18, 20}) EXPECT_EQ(Get_Parameter_Type_Name(static_cast<ParameterType>(kind)), nullptr);
}

TEST(Parameters, ARangeNeverClamps)
{
    RangedFloatParameter parameter("Speed", "", 1.0f, 0.0f, 2.0f);
    parameter.Set_Value(50.0f);
    EXPECT_EQ(parameter.Get_Value(), 50.0f);

    RangedFloatParameter narrow("Speed", "", 1.0f, 0.0f, 0.5f);
    narrow.Copy_From(parameter);
    EXPECT_EQ(narrow.Get_Value(), 50.0f);
    EXPECT_EQ(narrow.Get_Maximum(), 0.5f) << "the value alone is copied";

    const auto file = MKTest::Chunk_File(0, [](ChunkFileWriterClass &writer) { writer.Write_Float(-99.0f); });
    EXPECT_TRUE(MKTest::Read_Chunk_File(file, [&](auto &reader) { return narrow.Load_Plain(reader); }));
    EXPECT_EQ(narrow.Get_Value(), -99.0f);
}

TEST(Parameters, CopyBetweenRangedAndPlainOfOneKind)
{
    const IntParameter plain("n", "", 1000);
    RangedIntParameter ranged("n", "", 1, 0, 10);
    ranged.Copy_From(plain);
    EXPECT_EQ(ranged.Get_Value(), 1000);
    IntParameter back("n", "", 0);
    back.Copy_From(ranged);
    EXPECT_EQ(back.Get_Value(), 1000);
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
    const struct
    {
        ParameterClass &target;
        const ParameterClass &source;
        const char *text;
    } rows[] = {
        {integer, aFloat, "Get_Type() != other->Get_Type()"},
        {ranged, aFloat, "(SimpleParameterClass<T, Ttype>::Get_Type() != other->Get_Type())"},
        {text, texture, "(other->Get_Type() != Get_Type())"},
        {choice, integer, "Get_Type() != other->Get_Type()"},
        {rectangles, aFloat, "Get_Type() != other->Get_Type()"},
        {curve, aFloat, "Get_Type() != other->Get_Type()"},
        {shape, aFloat, "Get_Type() != other->Get_Type()"},
    };
    for (const auto &row : rows) {
        MKTest::Reports reports;
        row.target.Copy_From(row.source);
        EXPECT_THAT(reports.Get_Asserts(), ElementsAre(row.text)) << row.target.Get_Name();
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

TEST(ShapeParameter, StartsWithTheDefaultsOfEveryShape)
{
    const ShapeParameterClass shape("Position", "", SHAPE_BOX);
    const ShapeStruct &value = shape.Get_Value();
    EXPECT_EQ(value.ShapeType, SHAPE_BOX);
    EXPECT_EQ(value.Direction, Vector3(0.0f, 0.0f, 10.0f));
    EXPECT_EQ(shape.Get_Normal_Direction(), Vector3(0.0f, 0.0f, 1.0f));
    EXPECT_THAT((std::vector<float>{value.A, value.B, value.C, value.D}), ElementsAre(0, 10, 0, 10));
    EXPECT_EQ(value.BoxMinimum, Vector3(-10.0f));
    EXPECT_EQ(value.BoxMaximum, Vector3(10.0f));
    EXPECT_THAT(value.E, ElementsAre(0, 0.5f, 0, 10, 10, -10, 10, 10, 5, 0, 10));
}

TEST(ShapeParameter, KeepsTheNormalDirectionInStep)
{
    ShapeParameterClass shape("Position", "", SHAPE_RAY);
    ShapeStruct value;
    value.Direction = Vector3(3.0f, 0.0f, -4.0f);
    shape.Set_Value(value);
    EXPECT_FLOAT_EQ(shape.Get_Normal_Direction().x, 0.6f);
    EXPECT_FLOAT_EQ(shape.Get_Normal_Direction().z, -0.8f);
    ShapeParameterClass copy("Position", "", SHAPE_POINT);
    copy.Copy_From(shape);
    EXPECT_EQ(copy.Get_Normal_Direction(), shape.Get_Normal_Direction());
    value.Direction = Vector3(0.0f);
    shape.Set_Value(value);
    EXPECT_EQ(shape.Get_Normal_Direction(), Vector3(0.0f));
}

TEST(Parameters, TellTheMemoryThatTheyHoldOutside)
{
    KeyedFloatParameterClass curve("k", "");
    KeyedUVParameter rectangles("u", "");
    for (int i = 0; i < 3; ++i) {
        curve.Add_Key(static_cast<float>(i), 0.0f);
        rectangles.Add_Key(static_cast<float>(i), Vector4(0.0f));
    }
    EXPECT_EQ(curve.Get_Dynamic_Size(), 3u * 8);
    EXPECT_EQ(rectangles.Get_Dynamic_Size(), 3u * 20);
    StringParameterClass text("s", "", std::string(100, 'x'));
    EXPECT_EQ(text.Get_Dynamic_Size(), text.Get_Value().capacity());
    UVListParameterClass list("l", "");
    list.Set_Value(std::vector<Vector4>(5));
    EXPECT_EQ(list.Get_Dynamic_Size(), 5u * 16);
    EXPECT_EQ(BoolParameter("b", "", false).Get_Dynamic_Size(), 0u);
}

} // namespace
