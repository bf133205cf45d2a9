#include "MKLib/Parameters/ParameterFiles.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

using testing::ElementsAre;

namespace
{

using MKTest::Bytes;
using MKTest::Chunk_File;
using MKTest::Load_List;
using MKTest::Save_List;
using MKTest::Write_Pair;

constexpr const char *LABELS[] = {"Off", "On", "Auto"};

/// A list with one parameter of every kind, at its defaults. The ids are neither dense nor in order.
struct EveryKind
{
    ParameterListClass List;
    BoolParameter *Bool = List.Add_Bool(0, "Bool", false, "A switch.");
    RGBAParameter *Colour = List.Add_RGBA(1, "Start Color", RGBAClass(), "A colour.");
    Vector3Parameter *Vector = List.Add_Vector3(2, "Vector", Vector3(0.0f), "A vector.");
    IntParameter *Int = List.Add_Int(10, "Int", 0, "A number.");
    RangedIntParameter *RangedInt = List.Add_Int(11, "Ranged Int", 5, 0, 10, "A number with a range.");
    FloatParameter *Float = List.Add_Float(12, "Float", 0.0f, "A float.");
    RangedFloatParameter *RangedFloat = List.Add_Float(13, "Ranged Float", 0.5f, 0.0f, 1.0f, "A float with a range.");
    StringParameterClass *String = List.Add_String(5, "String", "none", "A text.");
    TextureNameParameterClass *Texture = List.Add_Texture(6, "Texture", "", "A texture.");
    ShaderNameParameterClass *Shader = List.Add_Shader(7, "Shader", "", "A shader.");
    EnumParameterClass *Enum = List.Add_Enum(105, "Enum", LABELS, 0, "A choice.");
    KeyedRGBAParameter *Colours = List.Add_Keyed_RGBA(200, "Colours", "Colours over time.");
    KeyedFloatParameterClass *Curve = List.Add_Keyed_Float(201, "Curve", "A float over time.");
    KeyedUVParameter *Rectangles = List.Add_Keyed_UV(202, "Rectangles", "Rectangles over time.");
    UVParameter *UV = List.Add_UV(203, "UV", Vector4(0.0f), "A rectangle.");
    ShapeParameterClass *Shape = List.Add_Shape(300, "Shape", SHAPE_POINT, "A volume.");
    UVListParameterClass *UVList = List.Add_UV_List(301, "UV List", "Rectangles.");
    MaskParameter *Mask = List.Add_Mask(302, "Mask", 0, "Bits.");

    /// Values that the six digits of the XML form hold exactly.
    void Change_All()
    {
        Bool->Set_Value(true);
        Colour->Set_Value({0.25f, 0.5f, 0.75f, 0.0f});
        Vector->Set_Value(Vector3(1.5f, -2.5f, 1000.0f));
        Int->Set_Value(-123456);
        RangedInt->Set_Value(99);
        Float->Set_Value(-0.015625f);
        RangedFloat->Set_Value(8.0f);
        String->Set_Value("two words, <&> and \xc3\xa4");
        Texture->Set_Value("fire.dds");
        Shader->Set_Value("Additive.mks");
        Enum->Set_Index(2);
        Colours->Add_Key(0.0f, {1.0f, 0.5f, 0.0f, 1.0f});
        Colours->Add_Key(1.0f, {0.0f, 0.0f, 0.0f, 0.0f});
        Colours->Set_Spline(true);
        for (int i = 0; i < 4; ++i) Curve->Add_Key(static_cast<float>(i) * 0.25f, static_cast<float>(i * i));
        Curve->Set_Spline(true);
        Rectangles->Add_Key(0.5f, Vector4(0.0f, 0.25f, 0.5f, 0.5f));
        UV->Set_Value(Vector4(0.5f, 0.5f, 0.25f, 0.25f));
        ShapeStruct shape;
        shape.ShapeType = SHAPE_SPHERE_CAP;
        shape.Center = Vector3(1, 2, 3);
        shape.Direction = Vector3(0, 2, 0);
        shape.D = 4.0f;
        shape.BoxMaximum = Vector3(7, 8, 9);
        for (int i = 0; i < 11; ++i) shape.E[i] = static_cast<float>(i) + 0.5f;
        Shape->Set_Value(shape);
        UVList->Set_Value({Vector4(1.0f), Vector4(0.0f, 0.5f, 1.0f, 2.0f)});
        Mask->Set_Value(0x80000001u);
    }

    void Expect_Changed() const
    {
        EveryKind expected;
        expected.Change_All();
        const auto compare = [&](auto... kinds) {
            const auto compareOne = [&](auto kind) {
                EXPECT_EQ((this->*kind)->Get_Value(), (expected.*kind)->Get_Value()) << (this->*kind)->Get_Name();
            };
            (compareOne(kinds), ...);
        };
        using K = EveryKind;
        compare(&K::Bool, &K::Colour, &K::Vector, &K::Int, &K::RangedInt, &K::Float, &K::RangedFloat, &K::String,
                &K::Texture, &K::Shader, &K::Enum, &K::UV, &K::UVList, &K::Mask);
        Expect_Same_Curve(*Colours, *expected.Colours);
        Expect_Same_Curve(*Curve, *expected.Curve);
        Expect_Same_Curve(*Rectangles, *expected.Rectangles);
        const ShapeStruct &shape = Shape->Get_Value();
        const ShapeStruct &wanted = expected.Shape->Get_Value();
        EXPECT_EQ(std::memcmp(&shape, &wanted, sizeof(shape)), 0);
        EXPECT_EQ(Shape->Get_Normal_Direction(), Vector3(0, 1, 0));
    }

    template <typename Curve>
    static void Expect_Same_Curve(const Curve &curve, const Curve &expected)
    {
        EXPECT_EQ(curve.Is_Spline(), expected.Is_Spline()) << curve.Get_Name();
        ASSERT_EQ(curve.Get_Key_Count(), expected.Get_Key_Count()) << curve.Get_Name();
        for (size_t i = 0; i < curve.Get_Keys().size(); ++i) {
            EXPECT_EQ(curve.Get_Keys()[i].Time, expected.Get_Keys()[i].Time) << curve.Get_Name();
            EXPECT_EQ(curve.Get_Keys()[i].Value, expected.Get_Keys()[i].Value) << curve.Get_Name();
        }
    }
};

TEST(ParameterList, SavesAndLoadsEveryKindInEveryMode)
{
    EveryKind source;
    source.Change_All();
    for (const auto &row : MKTest::EveryMode) {
        SCOPED_TRACE(row.what);
        MKTest::Reports reports;
        bool saved = false;
        const Bytes file = Save_List(source.List, row.mode, &saved);
        EXPECT_TRUE(saved);
        EveryKind target;
        EXPECT_TRUE(Load_List(target.List, file));
        target.Expect_Changed();
        for (int i = 0; i < target.List.Get_Parameter_Count(); ++i)
            EXPECT_TRUE(target.List.Get_Parameter(i)->Was_Loaded()) << i;
        EXPECT_EQ(Save_List(target.List, row.mode), file);
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
    EveryKind kinds;
    kinds.Change_All();
    kinds.Float->Set_Save_Excluded(true);
    EveryKind loaded;
    EXPECT_TRUE(Load_List(loaded.List, Save_List(kinds.List, 0)));
    EXPECT_FALSE(loaded.Float->Was_Loaded());
    EXPECT_EQ(loaded.Float->Get_Value(), 0.0f);
    EXPECT_TRUE(loaded.RangedFloat->Was_Loaded());

    MKTest::Reports reports;
    kinds.RangedInt->Set_ID(-1);
    bool saved = true;
    const Bytes file = Save_List(kinds.List, 0, &saved);
    EXPECT_FALSE(saved);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("cid == -1"));
    EveryKind partly;
    EXPECT_TRUE(Load_List(partly.List, file));
    EXPECT_EQ(partly.Int->Get_Value(), -123456) << "saved ahead of the fault";
    EXPECT_FALSE(partly.RangedFloat->Was_Loaded());
}

TEST(ParameterList, LoadsWhatItKnowsOfAFile)
{
    const struct
    {
        const char *what;
        void (*write)(ChunkFileWriterClass &);
        bool loads;
        int index; ///< of the enumeration
        int number;
    } rows[] = {
        {"pairs of ids that it lacks",
         [](auto &writer) {
             Write_Pair(writer, 999, 1, [](auto &w) { w.Write_Float(1.0f); });
             Write_Pair(writer, 12, 1, [](auto &w) { w.Write_Float(3.5f); });
             Write_Pair(writer, 998, 2, [](auto &w) { w.Open_Chunk(5), w.Close_Chunk(); });
             Write_Pair(writer, 10, 1, [](auto &w) { w.Write_Int32(8); });
             Write_Pair(writer, 105, 1, [](auto &w) { w.Write_Int32(1234); }); // kept as it stands
         },
         true, 1234, 8},
        {"an enumeration that isn't plain",
         [](auto &writer) {
             Write_Pair(writer, 105, 2, [](auto &w) { w.Open_Chunk(0), w.Close_Chunk(); });
             Write_Pair(writer, 12, 1, [](auto &w) { w.Write_Float(3.5f); });
         },
         false, 0, 0},
        {"a chunk that is none of its own ends the load",
         [](auto &writer) {
             Write_Pair(writer, 12, 1, [](auto &w) { w.Write_Float(3.5f); });
             writer.Open_Chunk(3);
             writer.Write_Int32(1);
             writer.Close_Chunk();
             Write_Pair(writer, 10, 1, [](auto &w) { w.Write_Int32(8); });
         },
         false, 0, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        EveryKind kinds;
        EXPECT_EQ(Load_List(kinds.List, Chunk_File(0, row.write)), row.loads);
        EXPECT_EQ(kinds.Float->Get_Value(), 3.5f);
        EXPECT_EQ(kinds.Int->Get_Value(), row.number);
        EXPECT_EQ(kinds.Enum->Get_Index(), row.index);
        EXPECT_EQ(kinds.RangedFloat->Get_Value(), 0.5f);
        EXPECT_FALSE(kinds.RangedFloat->Was_Loaded());
    }
}

TEST(ParameterList, AnswersForWhatIsNotThere)
{
    MKTest::Reports reports;
    EveryKind kinds;
    EXPECT_FALSE(kinds.List.Load(nullptr) || kinds.List.Save(nullptr));
    kinds.List.Add_Parameter(nullptr);
    EXPECT_EQ(reports.Get_Asserts().size(), 3u);
    EXPECT_EQ(kinds.List.Get_Parameter(-1), nullptr);
    EXPECT_EQ(kinds.List.Get_Parameter(18), nullptr);
    EXPECT_EQ(kinds.List.Find_Parameter("START COLOR"), 1);
    for (const char *name : {"Start Colo", "Start Colors", ""}) EXPECT_EQ(kinds.List.Find_Parameter(name), -1) << name;
}

TEST(ParameterList, GivesAValueToTheFirstOfAnEqualId)
{
    ParameterListClass list;
    auto *before = list.Add_Int(3, "Before", 0, "");
    auto *first = list.Add_Int(4, "First", 0, "");
    auto *second = list.Add_Int(4, "Second", 0, "");
    const Bytes file = Chunk_File(0, [](ChunkFileWriterClass &writer) {
        Write_Pair(writer, 4, 1, [](auto &w) { w.Write_Int32(1); }); // the place behind the match is the second one's
        Write_Pair(writer, 4, 1, [](auto &w) { w.Write_Int32(2); });
        Write_Pair(writer, 3, 1, [](auto &w) { w.Write_Int32(9); });
    });
    EXPECT_TRUE(Load_List(list, file));
    EXPECT_EQ(first->Get_Value(), 2);
    EXPECT_FALSE(second->Was_Loaded());
    EXPECT_EQ(before->Get_Value(), 9);
    EXPECT_EQ(list.Find_Parameter_By_ID(4), first);
    EXPECT_EQ(list.Find_Parameter_By_ID(5), nullptr);
}

TEST(ParameterList, LoadsInAnyOrderOfIds)
{
    EveryKind source;
    source.Change_All();
    Bytes reversed = Chunk_File(0, [&](ChunkFileWriterClass &writer) {
        for (int i = source.List.Get_Parameter_Count(); i-- > 0;) {
            const ParameterClass *parameter = source.List.Get_Parameter(i);
            Write_Pair(writer, parameter->Get_ID(), parameter->Is_Plain_Value() ? 1 : 2,
                       [&](auto &w) { parameter->Save(w); });
        }
    });
    EveryKind target;
    EXPECT_TRUE(Load_List(target.List, reversed));
    target.Expect_Changed();
}

TEST(ParameterList, EveryPrefixOfAFileEndsWithoutHarm)
{
    EveryKind source;
    source.Change_All();
    for (const uint32_t mode : {0u, 1u, 2u}) {
        const Bytes whole = Save_List(source.List, mode);
        MKTest::Reports reports;
        for (size_t size = 0; size < whole.size() - (mode == 2 ? 2 : 0); ++size) {
            EveryKind target;
            const bool loaded = Load_List(target.List, Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
            // A zlib stream has a checksum behind its last byte of data, which nothing asks for.
            if (size + 8 < whole.size()) {
                ASSERT_FALSE(loaded) << "mode " << mode << ", size " << size;
            }
        }
    }
}

TEST(ParameterList, CopiesByPosition)
{
    EveryKind source;
    source.Change_All();
    EveryKind target;
    target.List.Copy_From(source.List);
    target.Expect_Changed();

    MKTest::Reports reports;
    EveryKind untouched;
    source.List.Add_Bool(400, "One More", true, "");
    untouched.List.Copy_From(source.List);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("Parameters.size() != count"));
    EXPECT_EQ(untouched.Int->Get_Value(), 0);
}

TEST(ParameterList, CopiesByNameToEveryOneOfThatName)
{
    ParameterListClass source;
    source.Add_Float(1, "size", 1.0f, "");
    source.Add_Float(2, "Life", 2.0f, "");
    source.Add_Float(3, "SIZE", 3.0f, "");
    ParameterListClass target;
    const auto *size = target.Add_Float(8, "Size", 0.0f, "");
    const auto *again = target.Add_Float(9, "Size", 0.0f, "");
    const auto *other = target.Add_Float(1, "Speed", 0.5f, "");
    const auto *integer = target.Add_Int(2, "Life", 7, "");
    MKTest::Reports reports;
    target.Copy_From_By_Name(source);
    EXPECT_EQ(size->Get_Value(), 3.0f) << "the last of that name wins";
    EXPECT_EQ(again->Get_Value(), 3.0f);
    EXPECT_EQ(other->Get_Value(), 0.5f) << "ids don't matter";
    EXPECT_EQ(integer->Get_Value(), 7);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("Get_Type() != other->Get_Type()"));
}

// Parameters share blocks of memory, which must last for the last one that somebody still holds.
TEST(ParameterList, AParameterOutlivesItsListAndItsNeighbours)
{
    std::vector<SmartPtr<StringParameterClass>> kept;
    for (const int count : {1, 10, 500}) {
        ParameterListClass list;
        for (int id = 0; id < count; ++id) {
            auto *parameter = list.Add_String(id, "name", std::string(100, static_cast<char>('a' + id % 26)), "");
            if (id % 7 == 0) kept.emplace_back(parameter);
        }
    }
    for (const auto &parameter : kept)
        EXPECT_EQ(parameter->Get_Value(),
                  std::string_view(std::string(100, static_cast<char>('a' + parameter->Get_ID() % 26))));
}

TEST(ParameterList, TellsItsMemory)
{
    const ExpectedParameters expected(10, 1000);
    ParameterListClass list;
    list.Add_Bool(1, "b", false, "");
    auto *curve = list.Add_Keyed_RGBA(2, "c", "");
    curve->Add_Key(0.0f, RGBAClass());
    EXPECT_EQ(list.Get_Memory_Usage(), 10u * 4 + sizeof(BoolParameter) + sizeof(KeyedRGBAParameter) + 20);
}

TEST(ParameterList, DumpsItsTable)
{
    ParameterListClass list;
    list.Add_RGBA(1, "Start Color", RGBAClass(), "First colour.");
    list.Add_Mask(2, "Bits", 0, "");
    list.Add_UV_List(3, "Frames", "Rectangles.");
    RAMFileClass file;
    file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE);
    list.Dump_Table(file);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(file.Get_Buffer()), static_cast<size_t>(file.Get_Size())),
              "|Parameter Name|Parameter Type|Parameter Description|\n"
              "|Start Color|RGBA|First colour.|\n"
              "|Bits|Mask||\n"
              "|Frames|UV List|Rectangles.|\n");
}

} // namespace
