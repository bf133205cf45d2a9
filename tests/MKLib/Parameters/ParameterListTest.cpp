#include "MKLib/Parameters/ParameterFiles.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;

namespace
{

using namespace MKTest;

constexpr const char *LABELS[] = {"Off", "On", "Auto"};

/// A list with one parameter of every kind, at a default or, changed, at a value that the six digits of the XML form
/// hold exactly. The ids are neither dense nor in order.
struct EveryKind
{
    explicit EveryKind(bool isChanged = false) : IsChanged(isChanged)
    {
        if (!isChanged) return;
        RangedInt->Set_Value(99);
        RangedFloat->Set_Value(8.0f);
        Colours->Add_Key(0.0f, {1.0f, 0.5f, 0.0f, 1.0f});
        Colours->Add_Key(1.0f, {0.0f, 0.0f, 0.0f, 0.0f});
        Colours->Set_Spline(true);
        for (int i = 0; i < 4; ++i) Curve->Add_Key(static_cast<float>(i) * 0.25f, static_cast<float>(i * i));
        Curve->Set_Spline(true);
        Rectangles->Add_Key(0.5f, Vector4(0.0f, 0.25f, 0.5f, 0.5f));
        ShapeStruct shape;
        shape.ShapeType = SHAPE_SPHERE_CAP;
        shape.Center = Vector3(1, 2, 3);
        shape.Direction = Vector3(0, 2, 0);
        shape.D = 4.0f;
        shape.BoxMaximum = Vector3(7, 8, 9);
        for (int i = 0; i < 11; ++i) shape.E[i] = static_cast<float>(i) + 0.5f;
        Shape->Set_Value(shape);
        UVList->Set_Value({Vector4(1.0f), Vector4(0.0f, 0.5f, 1.0f, 2.0f)});
    }

    template <typename T>
    T Or(T changed, T given) const
    {
        return IsChanged ? changed : given;
    }

    const bool IsChanged;
    ParameterListClass List;
    BoolParameter *Bool = List.Add_Bool(0, "Bool", IsChanged, "");
    RGBAParameter *Colour = List.Add_RGBA(1, "Colour", Or(RGBAClass{0.25f, 0.5f, 0.75f, 0.0f}, RGBAClass()), "");
    Vector3Parameter *Vector = List.Add_Vector3(2, "Vector", Or(Vector3(1.5f, -2.5f, 1000.0f), Vector3(0.0f)), "");
    IntParameter *Int = List.Add_Int(10, "Int", Or(-123456, 0), "");
    RangedIntParameter *RangedInt = List.Add_Int(11, "Ranged Int", 5, 0, 10, "");
    FloatParameter *Float = List.Add_Float(12, "Float", Or(-0.015625f, 0.0f), "");
    RangedFloatParameter *RangedFloat = List.Add_Float(13, "Ranged Float", 0.5f, 0.0f, 1.0f, "");
    StringParameterClass *String = List.Add_String(5, "String", Or("two words, <&> and \xc3\xa4", "none"), "");
    TextureNameParameterClass *Texture = List.Add_Texture(6, "Texture", Or("fire.dds", ""), "");
    ShaderNameParameterClass *Shader = List.Add_Shader(7, "Shader", Or("Additive.mks", ""), "");
    EnumParameterClass *Enum = List.Add_Enum(105, "Enum", LABELS, Or(2, 0), "");
    KeyedRGBAParameter *Colours = List.Add_Keyed_RGBA(200, "Colours", "");
    KeyedFloatParameterClass *Curve = List.Add_Keyed_Float(201, "Curve", "");
    KeyedUVParameter *Rectangles = List.Add_Keyed_UV(202, "Rectangles", "");
    UVParameter *UV = List.Add_UV(203, "UV", Or(Vector4(0.5f, 0.5f, 0.25f, 0.25f), Vector4(0.0f)), "");
    ShapeParameterClass *Shape = List.Add_Shape(300, "Shape", SHAPE_POINT, "");
    UVListParameterClass *UVList = List.Add_UV_List(301, "UV List", "");
    MaskParameter *Mask = List.Add_Mask(302, "Mask", Or(0x80000001u, 0u), "");

    /// What a file holds of the parameter at an index.
    Bytes Saved(int index) const
    {
        return Chunk_File(0, [&](ChunkFileWriterClass &writer) { List.Get_Parameter(index)->Save(writer); });
    }
};

TEST(ParameterList, SavesAndLoadsEveryKindInEveryMode)
{
    EveryKind source(true);
    for (const uint32_t mode : EVERY_MODE) {
        SCOPED_TRACE(mode);
        Reports reports;
        bool saved = false;
        const Bytes file = Save_List(source.List, mode, &saved);
        EXPECT_TRUE(saved);
        EveryKind target;
        for (int i = 0; i < target.List.Get_Parameter_Count(); ++i) EXPECT_NE(target.Saved(i), source.Saved(i)) << i;
        EXPECT_TRUE(Load_List(target.List, file));
        for (int i = 0; i < target.List.Get_Parameter_Count(); ++i) {
            EXPECT_EQ(target.Saved(i), source.Saved(i)) << target.List.Get_Parameter(i)->Get_Name();
            EXPECT_TRUE(target.List.Get_Parameter(i)->Was_Loaded()) << i;
        }
        EXPECT_THAT(reports.Get_Asserts(), testing::IsEmpty());
    }
}

TEST(ParameterList, SavesAsTheFormatSays)
{
    ParameterListClass list;
    list.Add_Float(7, "Float", 1.5f, "");
    list.Add_Enum(0x102, "Enum", LABELS, 2, "");
    const Bytes file = Save_List(list, 0);
    const Bytes expected = {
        77, 0, 0, 0, 4,    0,    0, 0x80, // the owner's chunk, with four sub-chunks
        0,  0, 0, 0, 4,    0,    0, 0,    // the id
        7,  0, 0, 0,                      //
        2,  0, 0, 0, 1,    0,    0, 0x80, // a value as sub-chunks
        0,  0, 0, 0, 6,    0,    0, 0,    // its variables
        0,  4, 0, 0, 0xc0, 0x3f,          // micro-chunk 0 of 4 bytes, 1.5
        0,  0, 0, 0, 4,    0,    0, 0,    // the next id
        2,  1, 0, 0,                      //
        1,  0, 0, 0, 4,    0,    0, 0,    // a plain value
        2,  0, 0, 0,                      // the index
    };
    ASSERT_GE(file.size(), 36u);
    EXPECT_EQ(Bytes(file.begin() + 36, file.end()), expected);
}

TEST(ParameterList, LeavesExcludedOnesOutAndStopsAtOneWithoutAnId)
{
    EveryKind kinds(true);
    kinds.Float->Set_Save_Excluded(true);
    Reports reports;
    kinds.String->Set_ID(-1);
    bool saved = true;
    const Bytes file = Save_List(kinds.List, 0, &saved);
    EXPECT_FALSE(saved);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("cid == -1"));
    EveryKind partly;
    EXPECT_TRUE(Load_List(partly.List, file));
    EXPECT_FALSE(partly.Float->Was_Loaded());
    EXPECT_EQ(partly.RangedFloat->Get_Value(), 8.0f) << "saved ahead of the fault";
    EXPECT_FALSE(partly.Mask->Was_Loaded());
}

TEST(ParameterList, LoadsWhatItKnowsUpToAChunkThatIsNoneOfItsOwn)
{
    for (const bool hasForeign : {false, true}) {
        EveryKind kinds;
        std::vector<Chunk> pairs = {Leaf(0, 999), Leaf(1, 1.0f), Leaf(0, 998), Parent(2, {Parent(5, {})}),
                                    Leaf(0, 12),  Leaf(1, 3.5f), Leaf(0, 10),  Leaf(1, 8)};
        if (hasForeign) pairs.insert(pairs.begin() + 6, Leaf(3, 1));
        EXPECT_EQ(Load_List(kinds.List, Build(Parent(77, pairs))), !hasForeign);
        EXPECT_EQ(kinds.Float->Get_Value(), 3.5f) << "ids that the list lacks are skipped";
        EXPECT_EQ(kinds.Int->Get_Value(), hasForeign ? 0 : 8);
        EXPECT_FALSE(kinds.RangedFloat->Was_Loaded());
    }
}

TEST(ParameterList, GivesAValueToTheFirstOfAnEqualId)
{
    ParameterListClass list;
    auto *before = list.Add_Int(3, "Before", 0, "");
    auto *first = list.Add_Int(4, "First", 0, "");
    auto *second = list.Add_Int(4, "Second", 0, "");
    // The place behind the first match is the second parameter's.
    const Bytes file = Build(Parent(77, {Leaf(0, 4), Leaf(1, 1), Leaf(0, 4), Leaf(1, 2), Leaf(0, 3), Leaf(1, 9)}));
    EXPECT_TRUE(Load_List(list, file));
    EXPECT_EQ(first->Get_Value(), 2);
    EXPECT_FALSE(second->Was_Loaded());
    EXPECT_EQ(before->Get_Value(), 9);
}

TEST(ParameterList, EveryPrefixOfAFileEndsWithoutHarm)
{
    EveryKind source(true);
    for (const uint32_t mode : {0u, 1u, 2u}) {
        const Bytes whole = Save_List(source.List, mode);
        Reports reports;
        for (size_t size = 0; size < whole.size() - (mode == 2 ? 2 : 0); ++size) {
            EveryKind target;
            const bool loaded = Load_List(target.List, Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
            // A zlib stream has a checksum behind its last byte of data, which nothing asks for.
            ASSERT_TRUE(!loaded || size + 8 >= whole.size()) << "mode " << mode << ", size " << size;
        }
    }
}

TEST(ParameterList, CopiesByPosition)
{
    EveryKind source(true);
    EveryKind target;
    target.List.Copy_From(source.List);
    EXPECT_EQ(Save_List(target.List, 0), Save_List(source.List, 0));
    EXPECT_EQ(target.Shape->Get_Normal_Direction(), Vector3(0, 1, 0));

    Reports reports;
    source.List.Add_Bool(400, "One More", true, "");
    source.Int->Set_Value(5);
    target.List.Copy_From(source.List);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("Parameters.size() != count"));
    EXPECT_EQ(target.Int->Get_Value(), -123456);
}

// Parameters share blocks of memory, which must last for the last one that somebody still holds.
TEST(ParameterList, AParameterOutlivesItsListAndItsNeighbours)
{
    const auto text = [](int id) { return std::string(100, static_cast<char>('a' + id % 26)); };
    std::vector<SmartPtr<StringParameterClass>> kept;
    for (const int count : {1, 10, 500}) {
        ParameterListClass list;
        for (int id = 0; id < count; ++id) {
            auto *parameter = list.Add_String(id, "name", text(id), "");
            if (id % 7 == 0) kept.emplace_back(parameter);
        }
    }
    for (const auto &parameter : kept) EXPECT_EQ(std::string(parameter->Get_Value()), text(parameter->Get_ID()));
}

TEST(EnumParameter, SelectsByValueAndHoldsTheIndex)
{
    static constexpr int32_t VALUES[] = {-1, 10, 10};
    EnumParameterClass parameter("Detail", "", LABELS, 0, VALUES);
    parameter.Set_Value(10);
    parameter.Set_Value(11); // no entry has it
    EXPECT_EQ(parameter.Get_Index(), 1) << "the first of that value";
    for (const int index : {3, -1}) {
        parameter.Set_Index(index);
        EXPECT_FALSE(parameter.Is_Index_Valid());
        EXPECT_EQ(parameter.Get_Value(), -1) << "entry 0 stands in";
    }
    EXPECT_EQ(EnumParameterClass("Plain", "", LABELS, 2).Get_Value(), 2) << "without values the index is the value";
}

} // namespace
