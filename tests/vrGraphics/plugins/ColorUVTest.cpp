#include "vrGraphics/plugins/modifiers/ColorModifiers.h"
#include "vrGraphics/plugins/modifiers/UVModifiers.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/UVListParameter.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <variant>

using namespace MKTest;
using testing::ElementsAre;

namespace
{

using Keys = std::vector<std::pair<float, RGBAClass>>;
using Value = std::variant<float, RGBAClass, Vector4, Keys>; ///< a number for each kind that has one; 1 is true
using Values = std::vector<std::pair<const char *, Value>>;

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr RGBAClass BLACK{0.0f, 0.0f, 0.0f, 1.0f};
constexpr RGBAClass GRAY = RGBA_From_Bytes(128, 128, 128, 128);
constexpr RGBAClass CLEAR{0.0f, 0.0f, 0.0f, 0.0f};
const Keys BLACK_TO_WHITE = {{0.0f, BLACK}, {1.0f, RGBAClass()}};

void Set(ParameterClass &parameter, const Value &value)
{
    if (auto *color = dynamic_cast<RGBAParameter *>(&parameter)) color->Set_Value(std::get<RGBAClass>(value));
    if (auto *rectangle = dynamic_cast<UVParameter *>(&parameter)) rectangle->Set_Value(std::get<Vector4>(value));
    if (auto *curve = dynamic_cast<KeyedRGBAParameter *>(&parameter))
        for (const auto &[time, key] : std::get<Keys>(value)) curve->Add_Key(time, key);
    if (!std::holds_alternative<float>(value)) return;
    const float number = std::get<float>(value);
    if (auto *flag = dynamic_cast<BoolParameter *>(&parameter)) flag->Set_Value(number != 0.0f);
    if (auto *real = dynamic_cast<RangedFloatParameter *>(&parameter)) real->Set_Value(number);
    if (auto *whole = dynamic_cast<RangedIntParameter *>(&parameter)) whole->Set_Value(static_cast<int32_t>(number));
    if (auto *choice = dynamic_cast<EnumParameterClass *>(&parameter)) choice->Set_Index(static_cast<int32_t>(number));
}

SmartPtr<vrMKPPlugin> Make_Modifier(int id, const Values &values)
{
    SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
    for (const auto &[name, value] : values) Set(*plugin->Get_Parameter_By_Name(name), value);
    return plugin;
}

void Modify(const vrMKPPlugin &plugin, const BufferBuilder &buffer)
{
    dynamic_cast<const vrMKPModifier &>(plugin).Modify(*buffer.Buffer, 0);
}

std::vector<int> Bytes_Of(vrColor color)
{
    return {int(color & 0xff), int(color >> 8 & 0xff), int(color >> 16 & 0xff), int(color >> 24)};
}

Vector4 Rectangle_Of(const BufferBuilder &buffer, int slot)
{
    const Vector2 &origin = buffer.Buffer->UV[slot];
    const Vector2 &size = buffer.Buffer->DUV[slot];
    return {origin.x, origin.y, size.x, size.y};
}

void Show(const BufferBuilder &buffer, int slot, const Vector4 &rectangle)
{
    buffer.Buffer->UV[slot] = {rectangle.x, rectangle.y};
    buffer.Buffer->DUV[slot] = {rectangle.z, rectangle.w};
}

testing::AssertionResult Is_Near(const Vector4 &actual, const Vector4 &expected)
{
    for (int i = 0; i < 4; ++i)
        if (!(std::fabs(actual[i] - expected[i]) < 1e-5f))
            return testing::AssertionFailure() << actual[0] << " " << actual[1] << " " << actual[2] << " " << actual[3];
    return testing::AssertionSuccess();
}

const int COLORS_AND_UVS[] = {8, 59, 17, 53, 77, 78, 110, 79, 80, 81, 117, 14, 18, 30, 33, 73, 76};

/// Gives every curve and list something to hold.
void Fill_Curves(vrMKPPlugin &plugin)
{
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index) {
        ParameterClass *parameter = plugin.Get_Parameters().Get_Parameter(index);
        for (int key = 0; key < 9; ++key) {
            const float time = static_cast<float>(key) / 8.0f;
            const float value = static_cast<float>(key * 5 % 7) / 7.0f;
            if (auto *colors = dynamic_cast<KeyedRGBAParameter *>(parameter))
                colors->Add_Key(time, {value, 1.0f - value, time, 0.5f});
            if (auto *rectangles = dynamic_cast<KeyedUVParameter *>(parameter))
                rectangles->Add_Key(time, {value, time, 0.5f, value});
        }
        if (auto *slots = dynamic_cast<UVListParameterClass *>(parameter))
            slots->Set_Value({{0, 1, 2, 3}, {4, 5, 6, 7}, {8, 9, 10, 11}});
    }
}

} // namespace

TEST(ColorModifiers, WriteWhatTheirFormulasSay)
{
    const std::pair<const char *, Value> smooth = {"Flat Tangent Smooth", 1.0f};
    const RGBAClass end = RGBA_From_Bytes(255, 128, 64, 10);
    const Keys curve = {{0.0f, BLACK}, {1.0f, {1.0f, 0.5f, 0.0f, 0.0f}}};
    const struct
    {
        const char *what;
        int plugin;
        Values values;
        std::vector<int> expected; ///< at a time of 0.25
    } rows[] = {
        {"a quarter of the way", 8, {{"Start Color", CLEAR}, {"End Color", end}}, {63, 32, 16, 2}},
        {"smooth: 2.5 / 16", 8, {{"Start Color", CLEAR}, {"End Color", end}, smooth}, {39, 20, 10, 1}},
        {"truncated", 59, {{"Color", RGBAClass{0.5f, 0.999f, 0.0f, 1.0f}}}, {127, 254, 0, 255}},
        {"257 and -127 wrap", 59, {{"Color", RGBAClass{1.01f, -0.5f, 0.0f, 1.0f}}}, {1, 129, 0, 255}},
        {"keyed", 17, {{"Color", curve}}, {63, 31, 0, 191}},
        {"keyed and smooth", 17, {{"Color", curve}, smooth}, {39, 19, 0, 215}},
        {"keyed by the dynamic parameter", 17, {{"Color", curve}, {"Time Axis", 1.0f}}, {127, 63, 0, 127}},
        {"without keys", 17, {}, {255, 255, 255, 255}},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        buffer.State.Dynamic[vrMKPRenderState::DYNAMIC_COLOR_TIME] = 0.5f;
        const int slot = buffer.Add({}, {}, 0.25f);
        buffer.Buffer->Color[slot] = 0x12345678;
        Modify(*Make_Modifier(row.plugin, row.values), buffer);
        EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot]), row.expected) << row.what;
    }
}

TEST(PositionalColors, MultiplyByWhatTheirFormulasSay)
{
    // The renderable stands at (5, 0, 100) and is turned by a quarter: its x axis is the world's y axis. The sun is
    // along x, the centre at (1, 2, 3), and one particle there.
    const Mat3DClass place = Mat3DClass::From_Translation({5.0f, 0.0f, 100.0f}) *
                             Mat3DClass::From_Angles({0.0f, 0.0f, std::numbers::pi_v<float> / 2.0f});
    const Values keyed = {{"Color", BLACK_TO_WHITE}};
    const Values smooth = {{"Color", BLACK_TO_WHITE}, {"Flat Tangent Smooth", 1.0f}};
    const Values radii = {{"Start Radius", 2.0f}, {"End Radius", 6.0f}};
    const Values ofFour = {{"Start Radius", 2.0f}, {"End Radius", 6.0f}, {"Particle Count", 4.0f}};
    const Values backward = {{"Start Radius", 2.0f}, {"End Radius", 1.0f}, {"End Color", BLACK}};
    const struct
    {
        const char *what;
        int plugin;
        Vector3 position; ///< in the world
        Values values;
        std::vector<int> expected;
        vrColor before = VR_WHITE;
    } rows[] = {
        {"keyed, 2.5 of 10 from the group", 77, {0, 0, 102.5f}, keyed, {63, 63, 63, 255}},
        {"200 * 63 / 255", 77, {0, 0, 102.5f}, keyed, {49, 24, 0, 7}, Pack_Color(200, 100, 1, 7)},
        {"keyed, ahead of the keys", 77, {0, 0, 50}, keyed, {0, 0, 0, 255}},
        {"without keys", 77, {0, 0, 105}, {}, {1, 2, 3, 4}, Pack_Color(1, 2, 3, 4)},
        {"near side: (5 - 10) / -20", 110, {5, 5, 0}, {}, {191, 191, 191, 191}},
        {"15 from the camera", 117, {5, 10, 84}, {{"Far Depth", 30.0f}}, {191, 191, 191, 191}},
        {"depths without a span", 117, {5, 10, 84}, {{"Far Depth", 10.0f}}, {0, 0, 0, 0}},
        {"radial, 4 on 2 to 6", 81, {1, 2, 7}, radii, {191, 191, 191, 255}},
        {"radial, a quarter of it", 81, {1, 2, 7}, ofFour, {239, 239, 239, 255}},
        {"radial, no negative count", 81, {1, 2, 3}, {{"Particle Count", -4.0f}}, {255, 255, 255, 255}},
        {"radial, radii that don't grow", 81, {3.1f, 2, 3}, backward, {0, 0, 0, 255}},
        {"toward the sun", 80, {4, 2, 3}, {}, {255, 255, 255, 255}},
        {"across: half of 96 to 255", 80, {1, 2, 6}, {}, {175, 175, 175, 255}},
        {"the far side", 80, {-2, 2, 3}, {}, {96, 96, 96, 255}},
        {"across, without a wrap", 80, {1, 5, 3}, {{"Light Wrap", 1.0f}}, {96, 96, 96, 255}},
        {"0.6 toward the sun", 80, {4, 2, 7}, {}, {223, 223, 223, 255}},
        {"a cylinder has no height", 79, {4, 2, 7}, {}, {255, 255, 255, 255}},
        {"a quarter of the shadow", 79, {-2, 2, 3}, {{"Particle Count", 4.0f}}, {215, 215, 215, 255}},
        {"no more than the shadow", 80, {-2, 2, 3}, {{"Particle Count", 1.0f}}, {96, 96, 96, 255}},
    };
    for (const auto space : {MKP_TRANSFORM_WORLD, MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_SCREEN})
        for (const auto &row : rows) {
            BufferBuilder buffer(16, space);
            buffer.State.Place_At(place);
            buffer.State.Camera.Set_Translation({5.0f, 10.0f, 99.0f}); // the level way there is along y
            buffer.State.HasSun = true;
            buffer.State.SunDirection = {1.0f, 0.0f, 0.0f};
            buffer.Buffer->SmoothedCentroid = {1.0f, 2.0f, 3.0f};
            const bool isWorld = space == MKP_TRANSFORM_WORLD;
            const int slot = buffer.Add(isWorld ? row.position : buffer.State.InverseTransform.Transform(row.position));
            buffer.Buffer->Color[slot] = row.before;
            Modify(*Make_Modifier(row.plugin, row.values), buffer);
            EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot]), row.expected) << row.what << " in space " << space;
        }
}

TEST(PositionalColors, OfAnAxisCountFromTheOriginOfTheSpaceOfTheBuffer)
{
    // Turned about x: the renderable's z axis is the world's -y axis. Its place doesn't count.
    const Mat3DClass place = Mat3DClass::From_Translation({0.0f, -1000.0f, 0.0f}) *
                             Mat3DClass::From_Angles({std::numbers::pi_v<float> / 2.0f, 0.0f, 0.0f});
    const struct
    {
        vrMKPTransformType space;
        Vector3 position;
        int expected;
    } rows[] = {
        {MKP_TRANSFORM_WORLD, {0, -2.5f, 7}, 63},     {MKP_TRANSFORM_LOCAL, {0, 7, 2.5f}, 63},
        {MKP_TRANSFORM_WORLD, {0, -1002.5f, 0}, 255}, {MKP_TRANSFORM_WORLD, {0, 1002.5f, 0}, 0},
        {MKP_TRANSFORM_LOCAL, {0, 0, 11}, 255},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer(16, row.space);
        buffer.State.Place_At(place);
        const int slot = buffer.Add(row.position);
        Modify(*Make_Modifier(78, {}), buffer);
        EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot])[0], row.expected) << row.position.y;
    }
    // Equal distances make a step that is 0.01 wide.
    for (const auto &[height, expected] : {std::pair{2.99f, 0}, {3.005f, 127}, {3.02f, 255}}) {
        BufferBuilder buffer;
        const int slot = buffer.Add({0, 0, height});
        Modify(*Make_Modifier(78, {{"Start Distance", 3.0f}, {"End Distance", 3.0f}}), buffer);
        EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot])[3], expected) << height;
    }
}

TEST(PositionalColors, OfTheSunDoNothingWithoutOne)
{
    for (const int id : {79, 80}) {
        BufferBuilder buffer;
        const int slot = buffer.Add();
        Modify(*Make_Modifier(id, {{"Light Color", CLEAR}}), buffer);
        EXPECT_EQ(buffer.Buffer->Color[slot], VR_WHITE) << id;
    }
}

TEST(ColorVariance, VariesByTheLowBitsOfTheID)
{
    BufferBuilder shares(256);
    for (int number = 0; number < 256; ++number) shares.Buffer->Color[shares.Add()] = 0;
    Modify(*Make_Modifier(53, {{"Max Red Variance", 1.0f}, {"Max Alpha Variance", 1.0f}}), shares);
    int different = 0;
    for (int number = 0; number < 256; ++number) {
        const std::vector<int> share = Bytes_Of(shares.Buffer->Color[number]);
        EXPECT_THAT(share, ElementsAre(share[0], 0, 0, share[3]));
        different += share[0] != share[3];

        // What takes the rest of the way off 200 with -0.5 at the least, and adds 0.25 at the most, to all three.
        BufferBuilder one;
        one.Buffer->ID[one.Add()] = 0xabcdef00u + static_cast<uint32_t>(number);
        one.Buffer->Color[0] = Pack_Color(200, 20, 250, 77);
        Modify(*Make_Modifier(53, {{"Min Red Variance", -0.5f}, {"Max Red Variance", 0.25f}, {"Lock RGB", 1.0f}}), one);
        const double amount = (share[0] + 0.5) * 0.75 - 127.5;
        const std::vector<int> varied = Bytes_Of(one.Buffer->Color[0]);
        EXPECT_NEAR(varied[0], std::clamp(200 + amount, 0.0, 255.0), 1.5) << number;
        EXPECT_NEAR(varied[1], std::clamp(20 + amount, 0.0, 255.0), 1.5) << number;
        EXPECT_NEAR(varied[2], std::clamp(250 + amount, 0.0, 255.0), 1.5) << number;
        EXPECT_EQ(varied[3], 77);
    }
    EXPECT_GT(different, 200) << "each channel has a share of its own";
}

TEST(ColorVariance, OfNothingKeepsEveryByteAndOthersAddUp)
{
    BufferBuilder buffer(256);
    for (uint32_t byte = 0; byte < 256; ++byte) buffer.Buffer->Color[buffer.Add()] = byte * 0x01010101u;
    Modify(*Make_Modifier(53, {}), buffer);
    for (uint32_t byte = 0; byte < 256; ++byte) EXPECT_EQ(buffer.Buffer->Color[byte], byte * 0x01010101u);

    const auto green = Make_Modifier(53, {{"Min Green Variance", 0.25f}, {"Max Green Variance", 0.25f}});
    const auto once =
        Make_Modifier(53, {{"Min Green Variance", 0.25f}, {"Max Green Variance", 0.25f}, {"Write Once", 1.0f}});
    Modify(*green, buffer);
    Modify(*green, buffer);
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[0]), ElementsAre(0, 126, 0, 0)); // 63.75 truncated, and once more
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[250]), ElementsAre(250, 255, 250, 250));
    Modify(*once, buffer);
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[0]), ElementsAre(0, 189, 0, 0));
    buffer.End_Frame();
    Modify(*once, buffer);
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[0]), ElementsAre(0, 189, 0, 0));
}

/// The table is of the process, and so another process has to fill it.
TEST(ColorVarianceDeathTest, DrawsItsTableFromTheFirstBuffer)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto fillAndCompare = [] {
        const auto plugin = Make_Modifier(53, {{"Max Red Variance", 1.0f},
                                               {"Max Green Variance", 1.0f},
                                               {"Max Blue Variance", 1.0f},
                                               {"Max Alpha Variance", 1.0f}});
        const auto &modifier = dynamic_cast<const vrMKPModifier &>(*plugin);
        const bool wasSerial = modifier.Needs_Serial_Frame();
        RandomClass draws(77);
        bool isEqual = true;
        for (const uint32_t seed : {77, 78}) { // the second one comes too late
            BufferBuilder buffer(256);
            buffer.Buffer->Random.Seed(seed);
            for (int number = 0; number < 256; ++number) buffer.Buffer->Color[buffer.Add()] = 0;
            modifier.Modify(*buffer.Buffer, 0);
            for (int number = 0; seed == 77 && number < 256; ++number)
                for (const int byte : Bytes_Of(buffer.Buffer->Color[number]))
                    isEqual &= byte == static_cast<int>(draws.Get_Float(0.0f, 1.0f) * 255.0f);
            isEqual &= buffer.Buffer->Random.Get_State() == (seed == 77 ? draws.Get_State() : 78);
        }
        std::exit(wasSerial && isEqual && !modifier.Needs_Serial_Frame() ? 0 : 1);
    };
    EXPECT_EXIT(fillAndCompare(), testing::ExitedWithCode(0), "");
}

TEST(UVModifiers, KeysHoldUntilTheNextOne)
{
    constexpr const char *GLOBAL = "Use Global Time";
    constexpr const char *LENGTH = "Global Anim. Length";
    const Vector4 first(1, 2, 3, 4);  // at 0.25
    const Vector4 second(5, 6, 7, 8); // at 0.75
    const struct
    {
        const char *what;
        Values values;
        float time;
        uint32_t id;
        Vector4 expected;
    } rows[] = {
        {"between", {}, 0.7f, 0, first},
        {"past all keys", {}, 2.0f, 0, second},
        {"no time", {}, NOT_A_NUMBER, 0, second},
        {"a loop ahead of all keys: 0.2", {{"Loop Count", 2.0f}}, 0.1f, 0, second},
        {"in the second loop: 1.5", {{"Loop Count", 2.0f}}, 0.75f, 0, first},
        {"a loop below zero: -0.5", {{"Loop Count", -1.0f}}, 0.5f, 0, first},
        {"random start at 0.5: 0.6", {{"Random Start Key", 1.0f}}, 0.1f, 0x58000, first},
        {"random start, all loops: 1.2", {{"Random Start Key", 1.0f}, {"Loop Count", 2.0f}}, 0.1f, 32768, second},
        {"3 seconds of 8", {{GLOBAL, 1.0f}, {LENGTH, 8.0f}}, 0.1f, 0, first},
        {"3 seconds of 4", {{GLOBAL, 1.0f}, {LENGTH, 4.0f}}, 0.1f, 0, second},
        {"and 0.5 more: 1.25", {{GLOBAL, 1.0f}, {LENGTH, 4.0f}, {"Random Start Key", 1.0f}}, 0, 32768, first},
    };
    for (const auto &row : rows) {
        const auto plugin = Make_Modifier(18, row.values);
        BufferBuilder buffer;
        buffer.State.RunningTime = 3.0f;
        const int slot = buffer.Add({}, {}, row.time);
        buffer.Buffer->ID[slot] = row.id;
        const Vector4 before(9, 9, 9, 9);
        Show(buffer, slot, before);
        Modify(*plugin, buffer);
        EXPECT_EQ(Rectangle_Of(buffer, slot), before) << row.what << ", without keys";
        Parameter_Of<KeyedUVParameter>(*plugin, "TexCoords").Add_Key(0.25f, first);
        Parameter_Of<KeyedUVParameter>(*plugin, "TexCoords").Add_Key(0.75f, second);
        Modify(*plugin, buffer);
        EXPECT_EQ(Rectangle_Of(buffer, slot), row.expected) << row.what;
    }
}

TEST(UVModifiers, SlotsGoToNewParticles)
{
    const std::vector<Vector4> list = {{0, 0, 1, 1}, {1, 1, 2, 2}, {2, 2, 3, 3}};
    for (const int id : {33, 73}) {
        const auto plugin = Make_Plugin(id);
        BufferBuilder buffer(6);
        buffer.Start_At(4);
        for (int number = 0; number < 5; ++number) Show(buffer, buffer.Add(), Vector4(9));
        Modify(*plugin, buffer); // without a list
        for (const int slot : {4, 5, 0, 1, 2}) EXPECT_EQ(buffer.Buffer->UV[slot].x, 9.0f);
        Parameter_Of<UVListParameterClass>(*plugin, "Slot UV Coordinates").Set_Value(list);
        const auto &modifier = dynamic_cast<const vrMKPModifier &>(*plugin);
        EXPECT_FALSE(modifier.Needs_Serial_Frame());
        const SmartPtr<vrMKPPlugin> other = plugin; // turns that are shared go one after the other
        EXPECT_EQ(modifier.Needs_Serial_Frame(), id == 73);
        Modify(*plugin, buffer);
        int number = 0;
        for (const int slot : {4, 5, 0, 1, 2}) EXPECT_EQ(Rectangle_Of(buffer, slot), list[number++ % 3]) << id;
        buffer.End_Frame();
        buffer.Buffer->ID[buffer.Add()] = 0xffffffffu; // the sixth; 2^32 - 1 is a multiple of 3
        Modify(*plugin, buffer);
        EXPECT_EQ(Rectangle_Of(buffer, 3), list[id == 73 ? 2 : 0]);
        EXPECT_EQ(Rectangle_Of(buffer, 4), list[0]);
    }
}

TEST(UVModifiers, RandomOffsetsAddUpAndConstantsStay)
{
    BufferBuilder buffer;
    const int slot = buffer.Add();
    buffer.Buffer->ID[slot] = 0x7f33ff;
    Modify(*Make_Modifier(14, {{"TexCoords", Vector4(1, 2, 3, 4)}}), buffer);
    buffer.End_Frame();
    Modify(*Make_Modifier(14, {{"TexCoords", Vector4(5, 6, 7, 8)}}), buffer); // written once, at the spawn
    const auto random = Make_Plugin(30);
    for (int frame = 0; frame < 2; ++frame) Modify(*random, buffer);
    EXPECT_TRUE(Is_Near(Rectangle_Of(buffer, slot), {3.0f, 2.4f, 3.0f, 4.0f})); // 0x33 is a fifth of 255
}

TEST(SequencedUV, ShowsWhatItsFormulaSays)
{
    const Vector4 sheet(0, 0, 1, 1);
    const Vector4 before(9, 9, 9, 9);
    const struct
    {
        const char *what;
        Vector4 start; ///< in eighths of the texture, as what is expected
        Values values; ///< frames are a second long
        float age;
        uint32_t id;
        Vector4 expected;
    } rows[] = {
        {"all over again", sheet, {}, 13.5f, 0, {3, 0, 1, 1}},
        {"6 on from cell 34", {2, 4, 1, 1}, {}, 6, 0, {0, 5, 1, 1}},
        {"past the last cell", {6, 7, 1, 1}, {}, 3, 0, {1, 0, 1, 1}},
        {"off the grid by 0.4 cells", {2.4f, 0, 1, 1}, {}, 6, 0, {0.4f, 1, 1, 1}},
        {"the last frame of two loops", sheet, {{"Num Loops", 2.0f}}, 19.5f, 0, {1, 1, 1, 1}},
        {"past two loops", sheet, {{"Num Loops", 2.0f}}, 20.5f, 0, before},
        {"in reverse", sheet, {{"Reverse", 1.0f}}, 1.5f, 0, {0, 1, 1, 1}},
        {"a mirrored cell names its far edge", {2, 2, -1, -1}, {}, 1, 0, {3, 2, -1, -1}},
        {"flipped by bit 0", sheet, {{"Random Flip", 1.0f}}, 1, 1, {2, 0, -1, 1}},
        {"flipped by bit 4", sheet, {{"Random Flip", 1.0f}}, 1, 0x10, {1, 1, 1, -1}},
        {"mirrored and flipped", {1, 0, -1, 1}, {{"Random Flip", 1.0f}}, 1, 1, {2, 0, 1, 1}},
        {"floor(0.5 * 9) on", sheet, {{"Random Start", 1.0f}}, 1, 32768, {5, 0, 1, 1}},
        {"0.31 of 20 frames", sheet, {{"Normalized Time", 1.0f}, {"Num Loops", 2.0f}}, 0.31f, 0, {6, 0, 1, 1}},
        {"normalized without loops", sheet, {{"Normalized Time", 1.0f}}, 0.9f, 0, {0, 0, 1, 1}},
        {"3 1/3 cells a row", {0, 0, 2.4f, 2.4f}, {}, 4, 0, {1.6f, 2.4f, 2.4f, 2.4f}},
        {"11 1/9 cells a sheet", {0, 0, 2.4f, 2.4f}, {{"Num Frames", 20.0f}}, 12, 0, {6.4f / 3, 0, 2.4f, 2.4f}},
        {"frame -2", sheet, {{"Frame Rate", -1.0f}}, 1.5f, 0, {6, -1, 1, 1}},
        {"cell -1", {-1, 0, 1, 1}, {}, 0, 0, {7, -1, 1, 1}},
        {"frame 7 * 2857143 + 3", sheet, {{"Num Frames", 7.0f}}, 20000004.0f, 0, {3, 0, 1, 1}},
        {"no frames", sheet, {{"Num Frames", 0.0f}}, 1, 0, before},
        {"no place", {NOT_A_NUMBER, 0, 1, 1}, {}, 1, 0, before},
        {"no age", sheet, {}, NOT_A_NUMBER, 0, before},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        const int slot = buffer.Add({}, {}, row.age);
        buffer.Buffer->ID[slot] = row.id;
        Show(buffer, slot, before / 8.0f);
        Values values = {{"Start Slot", row.start / 8.0f}, {"Frame Rate", 1.0f}};
        values.insert(values.end(), row.values.begin(), row.values.end());
        Modify(*Make_Modifier(76, values), buffer);
        EXPECT_TRUE(Is_Near(Rectangle_Of(buffer, slot) * 8.0f, row.expected)) << row.what;
    }
}

TEST(SequencedUV, PlaysPingPong)
{
    const auto plugin = Make_Modifier(76, {{"Num Frames", 4.0f}, {"Ping Pong", 1.0f}, {"Frame Rate", 1.0f}});
    BufferBuilder buffer;
    for (int frame = 0; frame < 9; ++frame) buffer.Add({}, {}, static_cast<float>(frame));
    Modify(*plugin, buffer);
    std::vector<float> cells;
    for (int frame = 0; frame < 9; ++frame) cells.push_back(buffer.Buffer->UV[frame].x * 8.0f);
    EXPECT_THAT(cells, ElementsAre(0, 1, 2, 3, 3, 2, 1, 0, 0));
}

TEST(SequencedUV, IsTheSameBesideParticlesThatNeedTheSlowArithmetic)
{
    for (const float frames : {1.0f, 3.0f, 10.0f, 49.0f, 64.0f, 1000.0f})
        for (const Vector4 start : {Vector4(0, 0, 0.125f, 0.125f), Vector4(0.3f, 0.4f, -0.1f, 0.05f),
                                    Vector4(0.5f, 0.25f, 0.25f, -0.5f), Vector4(0, 0, 1, 1)})
        {
            const auto plugin = Make_Modifier(76, {{"Start Slot", start},
                                                   {"Num Frames", frames},
                                                   {"Num Loops", 40.0f},
                                                   {"Ping Pong", 1.0f},
                                                   {"Random Start", 1.0f},
                                                   {"Random Flip", 1.0f}});
            BufferBuilder plain(256);
            BufferBuilder mixed(256);
            for (int number = 0; number < 250; ++number)
                for (BufferBuilder *buffer : {&plain, &mixed}) {
                    const int slot = buffer->Add({}, {}, static_cast<float>(number * number * number) * 0.01f);
                    buffer->Buffer->ID[slot] = static_cast<uint32_t>(number) * 2654435761u;
                    Show(*buffer, slot, Vector4(9));
                }
            mixed.Add({}, {}, -1.0f);
            Modify(*plugin, plain);
            Modify(*plugin, mixed);
            for (int slot = 0; slot < 250; ++slot)
                ASSERT_EQ(Rectangle_Of(plain, slot), Rectangle_Of(mixed, slot)) << frames << " frames, slot " << slot;
        }
}

TEST(ColorsAndUVs, OfARingThatWrapsAreThoseOfEachParticleByItself)
{
    constexpr int COUNT = 700;
    for (const int id : COLORS_AND_UVS) {
        if (id == 73) continue; // goes by turns
        SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        Change_All(*plugin);
        Fill_Curves(*plugin);
        const auto add = [](BufferBuilder &buffer, int number) {
            const auto n = static_cast<float>(number);
            const int slot = buffer.Add({n * 0.1f, 50.0f - n, n * 0.02f}, {}, n / COUNT);
            buffer.State.HasSun = true;
            buffer.Buffer->ID[slot] = static_cast<uint32_t>(number) * 2654435761u;
            buffer.Buffer->Color[slot] = static_cast<uint32_t>(number) * 2246822519u;
            Show(buffer, slot, {n, 1, 2, 3});
            return slot;
        };
        for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index)
            if (std::string_view(plugin->Get_Parameters().Get_Parameter(index)->Get_Name()) == "Particle Count")
                Set(*plugin->Get_Parameters().Get_Parameter(index), 1.0f); // else each by itself isn't like all
        BufferBuilder ring(COUNT);
        ring.Start_At(613);
        for (int number = 0; number < COUNT; ++number) add(ring, number);
        Modify(*plugin, ring);
        for (int number = 0; number < COUNT; ++number) {
            BufferBuilder one;
            const int alone = add(one, number);
            Modify(*plugin, one);
            const int slot = (613 + number) % COUNT;
            ASSERT_EQ(ring.Buffer->Color[slot], one.Buffer->Color[alone]) << id << " particle " << number;
            ASSERT_EQ(Rectangle_Of(ring, slot), Rectangle_Of(one, alone)) << id << " particle " << number;
        }
    }
}
