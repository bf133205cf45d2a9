#include "vrGraphics/plugins/modifiers/ColorModifiers.h"
#include "vrGraphics/plugins/modifiers/UVModifiers.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

using namespace MKTest;
using testing::ElementsAre;

namespace
{

constexpr RGBAClass BLACK{0.0f, 0.0f, 0.0f, 1.0f};
constexpr RGBAClass CLEAR{0.0f, 0.0f, 0.0f, 0.0f};
const ColorKeys BLACK_TO_WHITE = {{0.0f, BLACK}, {1.0f, RGBAClass()}};

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

} // namespace

TEST(ColorModifiers, WriteWhatTheirFormulasSay)
{
    const std::pair<const char *, Value> smooth = {"Flat Tangent Smooth", 1.0f};
    const RGBAClass end = RGBA_From_Bytes(255, 128, 64, 10);
    const ColorKeys curve = {{0.0f, BLACK}, {1.0f, {1.0f, 0.5f, 0.0f, 0.0f}}};
    const struct
    {
        const char *what;
        int plugin;
        Values values;
        std::vector<int> expected; ///< at a time of 0.25
    } rows[] = {
        {"smooth: 2.5 / 16", 8, {{"Start Color", CLEAR}, {"End Color", end}, smooth}, {39, 20, 10, 1}},
        {"truncated", 59, {{"Color", RGBAClass{0.5f, 0.999f, 0.0f, 1.0f}}}, {127, 254, 0, 255}},
        {"257 and -127 wrap", 59, {{"Color", RGBAClass{1.01f, -0.5f, 0.0f, 1.0f}}}, {1, 129, 0, 255}},
        {"keyed and smooth", 17, {{"Color", curve}, smooth}, {39, 19, 0, 215}},
        {"keyed by the dynamic parameter", 17, {{"Color", curve}, {"Time Axis", 1.0f}}, {127, 63, 0, 127}},
        {"without keys", 17, {}, {255, 255, 255, 255}},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        buffer.State.Dynamic[vrMKPRenderState::DYNAMIC_COLOR_TIME] = 0.5f;
        const int slot = buffer.Add({}, {}, 0.25f);
        buffer.Buffer->Color[slot] = 0x12345678;
        Modify(*Make_Plugin(row.plugin, row.values), buffer);
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
        {"200 * 63 / 255", 77, {0, 0, 102.5f}, keyed, {49, 24, 0, 7}, Pack_Color(200, 100, 1, 7)},
        {"without keys", 77, {0, 0, 105}, {}, {1, 2, 3, 4}, Pack_Color(1, 2, 3, 4)},
        {"near side: (5 - 10) / -20", 110, {5, 5, 0}, {}, {191, 191, 191, 191}},
        {"15 from the camera", 117, {5, 10, 84}, {{"Far Depth", 30.0f}}, {191, 191, 191, 191}},
        {"depths without a span", 117, {5, 10, 84}, {{"Far Depth", 10.0f}}, {0, 0, 0, 0}},
        {"radial, a quarter of it", 81, {1, 2, 7}, ofFour, {239, 239, 239, 255}},
        {"radial, no negative count", 81, {1, 2, 3}, {{"Particle Count", -4.0f}}, {255, 255, 255, 255}},
        {"radial, radii that don't grow", 81, {3.1f, 2, 3}, backward, {0, 0, 0, 255}},
        {"across: half of 96 to 255", 80, {1, 2, 6}, {}, {175, 175, 175, 255}},
        {"across, without a wrap", 80, {1, 5, 3}, {{"Light Wrap", 1.0f}}, {96, 96, 96, 255}},
        {"0.6 toward the sun", 80, {4, 2, 7}, {}, {223, 223, 223, 255}},
        {"a cylinder has no height", 79, {4, 2, 7}, {}, {255, 255, 255, 255}},
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
            Modify(*Make_Plugin(row.plugin, row.values), buffer);
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
        {MKP_TRANSFORM_WORLD, {0, -2.5f, 7}, 63},
        {MKP_TRANSFORM_LOCAL, {0, 7, 2.5f}, 63},
        {MKP_TRANSFORM_WORLD, {0, -1002.5f, 0}, 255},
        {MKP_TRANSFORM_WORLD, {0, 1002.5f, 0}, 0},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer(16, row.space);
        buffer.State.Place_At(place);
        const int slot = buffer.Add(row.position);
        Modify(*Make_Plugin(78, {}), buffer);
        EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot])[0], row.expected) << row.position.y;
    }
    // Equal distances make a step that is 0.01 wide.
    for (const auto &[height, expected] : {std::pair{2.99f, 0}, {3.005f, 127}, {3.02f, 255}}) {
        BufferBuilder buffer;
        const int slot = buffer.Add({0, 0, height});
        Modify(*Make_Plugin(78, {{"Start Distance", 3.0f}, {"End Distance", 3.0f}}), buffer);
        EXPECT_EQ(Bytes_Of(buffer.Buffer->Color[slot])[3], expected) << height;
    }
}

TEST(ColorVariance, OfNothingKeepsEveryByteAndOthersAddUp)
{
    BufferBuilder buffer(256);
    for (uint32_t byte = 0; byte < 256; ++byte) buffer.Buffer->Color[buffer.Add()] = byte * 0x01010101u;
    Modify(*Make_Plugin(53, {}), buffer);
    for (uint32_t byte = 0; byte < 256; ++byte) EXPECT_EQ(buffer.Buffer->Color[byte], byte * 0x01010101u);

    const Values quarter = {{"Min Green Variance", 0.25f}, {"Max Green Variance", 0.25f}};
    const auto green = Make_Plugin(53, quarter);
    Modify(*green, buffer);
    Modify(*green, buffer);
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[0]), ElementsAre(0, 126, 0, 0)); // 63.75 truncated, and once more
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[250]), ElementsAre(250, 255, 250, 250));

    buffer.Buffer->Color[0] = Pack_Color(200, 20, 250, 77);
    Modify(*Make_Plugin(53, {{"Min Red Variance", -0.5f}, {"Max Red Variance", -0.5f}, {"Lock RGB", true}}), buffer);
    EXPECT_THAT(Bytes_Of(buffer.Buffer->Color[0]), ElementsAre(72, 0, 122, 77)); // 127.5 less, truncated
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
        {"no time", {}, NOT_A_NUMBER, 0, second},
        {"a loop ahead of all keys: 0.2", {{"Loop Count", 2.0f}}, 0.1f, 0, second},
        {"a loop below zero: -0.5", {{"Loop Count", -1.0f}}, 0.5f, 0, first},
        {"random start at 0.5: 0.6", {{"Random Start Key", 1.0f}}, 0.1f, 0x58000, first},
        {"random start, all loops: 1.2", {{"Random Start Key", 1.0f}, {"Loop Count", 2.0f}}, 0.1f, 32768, second},
        {"and 0.5 more: 1.25", {{GLOBAL, 1.0f}, {LENGTH, 4.0f}, {"Random Start Key", 1.0f}}, 0, 32768, first},
    };
    for (const auto &row : rows) {
        const auto plugin = Make_Plugin(18, row.values);
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
    Modify(*Make_Plugin(14, {{"TexCoords", Vector4(1, 2, 3, 4)}}), buffer);
    buffer.End_Frame();
    Modify(*Make_Plugin(14, {{"TexCoords", Vector4(5, 6, 7, 8)}}), buffer); // written once, at the spawn
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
        {"6 on from cell 34", {2, 4, 1, 1}, {}, 6, 0, {0, 5, 1, 1}},
        {"past the last cell", {6, 7, 1, 1}, {}, 3, 0, {1, 0, 1, 1}},
        {"off the grid by 0.4 cells", {2.4f, 0, 1, 1}, {}, 6, 0, {0.4f, 1, 1, 1}},
        {"the last frame of two loops", sheet, {{"Num Loops", 2.0f}}, 19.5f, 0, {1, 1, 1, 1}},
        {"in reverse", sheet, {{"Reverse", 1.0f}}, 1.5f, 0, {0, 1, 1, 1}},
        {"a mirrored cell names its far edge", {2, 2, -1, -1}, {}, 1, 0, {3, 2, -1, -1}},
        {"flipped by bit 4", sheet, {{"Random Flip", 1.0f}}, 1, 0x10, {1, 1, 1, -1}},
        {"floor(0.5 * 9) on", sheet, {{"Random Start", 1.0f}}, 1, 32768, {5, 0, 1, 1}},
        {"0.31 of 20 frames", sheet, {{"Normalized Time", 1.0f}, {"Num Loops", 2.0f}}, 0.31f, 0, {6, 0, 1, 1}},
        {"3 1/3 cells a row", {0, 0, 2.4f, 2.4f}, {}, 4, 0, {1.6f, 2.4f, 2.4f, 2.4f}},
        {"11 1/9 cells a sheet", {0, 0, 2.4f, 2.4f}, {{"Num Frames", 20.0f}}, 12, 0, {6.4f / 3, 0, 2.4f, 2.4f}},
        {"frame -2", sheet, {{"Frame Rate", -1.0f}}, 1.5f, 0, {6, -1, 1, 1}},
        {"cell -1", {-1, 0, 1, 1}, {}, 0, 0, {7, -1, 1, 1}},
        {"no frames", sheet, {{"Num Frames", 0.0f}}, 1, 0, before},
        {"no place", {NOT_A_NUMBER, 0, 1, 1}, {}, 1, 0, before},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        const int slot = buffer.Add({}, {}, row.age);
        buffer.Buffer->ID[slot] = row.id;
        Show(buffer, slot, before / 8.0f);
        Values values = {{"Start Slot", row.start / 8.0f}, {"Frame Rate", 1.0f}};
        values.insert(values.end(), row.values.begin(), row.values.end());
        Modify(*Make_Plugin(76, values), buffer);
        EXPECT_TRUE(Is_Near(Rectangle_Of(buffer, slot) * 8.0f, row.expected)) << row.what;
    }
}

/// One that is born after its loops shows what its slot held, on which nobody has played on since.
TEST(SequencedUV, LeavesSlotsThatDoNotLive)
{
    const auto plugin = Make_Plugin(76, {{"Num Loops", 1.0f}, {"Frame Rate", 1.0f}});
    BufferBuilder buffer;
    const int slot = buffer.Add();
    const int next = buffer.Buffer->Next_Slot(slot);
    const Vector4 held(0.25f, 0.5f, 0.75f, 1.0f);
    Show(buffer, next, held);
    Modify(*plugin, buffer);
    EXPECT_NE(Rectangle_Of(buffer, slot), held);
    EXPECT_EQ(Rectangle_Of(buffer, next), held);
    buffer.Add({}, {}, 1000.0f);
    Modify(*plugin, buffer);
    EXPECT_EQ(Rectangle_Of(buffer, next), held);
}

TEST(SequencedUV, PlaysPingPong)
{
    const auto plugin = Make_Plugin(76, {{"Num Frames", 4.0f}, {"Ping Pong", 1.0f}, {"Frame Rate", 1.0f}});
    BufferBuilder buffer;
    for (int frame = 0; frame < 9; ++frame) buffer.Add({}, {}, static_cast<float>(frame));
    Modify(*plugin, buffer);
    std::vector<float> cells;
    for (int frame = 0; frame < 9; ++frame) cells.push_back(buffer.Buffer->UV[frame].x * 8.0f);
    EXPECT_THAT(cells, ElementsAre(0, 1, 2, 3, 3, 2, 1, 0, 0));
}
