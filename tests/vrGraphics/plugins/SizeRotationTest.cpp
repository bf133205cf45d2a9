#include "vrGraphics/plugins/modifiers/RotationModifiers.h"
#include "vrGraphics/plugins/modifiers/SizeModifiers.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace MKTest;

namespace
{

constexpr uint32_t MOST = 65535; ///< the ID that varies by the whole variation; 0 takes it away

void Modify(const vrMKPPlugin &plugin, const BufferBuilder &buffer)
{
    dynamic_cast<const vrMKPModifier &>(plugin).Modify(*buffer.Buffer, 0);
}

uint32_t Rotation_After(const vrMKPPlugin &plugin, BufferBuilder &buffer, int slot, uint32_t before = 0)
{
    buffer.Buffer->Rotation[slot] = before;
    Modify(plugin, buffer);
    return buffer.Buffer->Rotation[slot];
}

} // namespace

TEST(SizeModifiers, WriteWhatTheirFormulasSay)
{
    const Values atOnce = {{"End Size", 9}, {"Start Time", 0.5f}, {"End Time", 0.5f}};
    const Values smoothAtOnce = {{"End Size", 9}, {"Start Time", 0.5f}, {"End Time", 0.5f}, {"Flat Tangent Smooth", 1}};
    const FloatKeys tent = {{0, 0}, {0.5f, 4}, {1, 0}};
    const Values byAxis = {{"Width Variation", 0.5f},
                           {"Scale by Target Radius", 1},
                           {"Width", FloatKeys{{0, 0}, {1, 2}}},
                           {"Height", FloatKeys{{0, 1}, {1, 3}}}};
    const struct
    {
        const char *what;
        int plugin;
        Values values;
        float time;
        uint32_t id;
        Vector2 expected;
    } rows[] = {
        {"a quarter of the way", 7, {{"Start Size", 2}, {"End Size", 10}}, 0.25f, 0, {4, 4}},
        {"smooth: (3 - 0.5) / 16", 7, {{"End Size", 17}, {"Flat Tangent Smooth", 1}}, 0.25f, 0, {3.5f, 3.5f}},
        {"equal times take the unit after them", 7, atOnce, 0.75f, 0, {3, 3}},
        {"equal times step when smooth", 7, smoothAtOnce, 0.51f, 0, {9, 9}},
        {"backward times", 7, {{"End Size", 9}, {"Start Time", 1}, {"End Time", 0}}, 0.25f, 0, {7, 7}},
        {"the most varied", 7, {{"End Size", 3}, {"Size Variation", 0.25f}}, 0.5f, MOST, {2.5f, 2.5f}},
        {"only 16 bits of an ID vary", 7, {{"Size Variation", 0.5f}}, 0.5f, 0x70000, {0.5f, 0.5f}},
        {"ends that count as one", 7, {{"Start Size", 5}, {"End Size", 5.00005f}}, 1, 0, {5, 5}},
        {"the radius is 3", 7, {{"End Size", 3}, {"Scale by Target Radius", 1}}, 0.5f, 0, {6, 6}},
        {"one axis each", 124, {{"Start Width", 2}, {"End Width", 4}, {"End Height", 7}}, 0.5f, 0, {3, 4}},
        {"0xff00 / 65535 of the way from -1 to 1", 124, {{"Width Variation", 1}}, 0, 0xff00, {1.992218f, 1}},
        {"low bits vary the height", 124, {{"Height Variation", 0.5f}}, 0, 0x80, {1, 0.5f + 32768.0f / 65535.0f}},
        {"constant", 57, {{"Size", 8}}, 0.5f, 1, {8, 8}},
        {"constant by axis, varied", 123, {{"Width", 8}, {"Height", 2}, {"Height Variation", 0.5f}}, 0, 0, {8, 1}},
        {"keyed", 15, {{"Size Variation", 0.5f}, {"Scale by Target Radius", 1}, {"Size", tent}}, 0.25f, MOST, {9, 9}},
        {"keyed, smooth", 15, {{"Flat Tangent Smooth", 1}, {"Size", tent}}, 0.125f, 0, {0.625f, 0.625f}},
        {"without keys", 15, {}, 0.5f, 0, {0, 0}},
        {"keyed by axis", 125, byAxis, 0.5f, 0, {1.5f, 6}},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        buffer.State.Dynamic[vrMKPRenderState::DYNAMIC_TARGET_RADIUS] = 3.0f;
        buffer.Buffer->ID[buffer.Add({}, {}, row.time)] = row.id;
        Modify(*Make_Plugin(row.plugin, row.values), buffer);
        EXPECT_NEAR(buffer.Buffer->Size[0].x, row.expected.x, 1e-5f) << row.what;
        EXPECT_NEAR(buffer.Buffer->Size[0].y, row.expected.y, 1e-5f) << row.what;
    }
}

TEST(SizeModifiers, MeasureDistancesInTheSpaceOfTheirBuffer)
{
    // The renderable stands at (5, 0, 0), turned by a quarter: its x axis is the world's y axis.
    const Mat3DClass place = Mat3DClass::From_Translation({5.0f, 0.0f, 0.0f}) *
                             Mat3DClass::From_Angles({0.0f, 0.0f, std::numbers::pi_v<float> / 2.0f});
    const auto spherical = Make_Plugin(128, {{"Start Radius", 2.0f},
                                             {"End Radius", 6.0f},
                                             {"Width", FloatKeys{{0, 0}, {1, 8}}},
                                             {"Height", FloatKeys{{0, 1}, {1, 3}}}});
    const auto noSpan =
        Make_Plugin(128, {{"Start Radius", 2.0f}, {"End Radius", 1.0f}, {"Width", FloatKeys{{0, 0}, {1, 8}}}});
    const auto ramp = Make_Plugin(121, {{"Near Size", 1.0f}, {"Far Size", 5.0f}});
    for (const auto space : {MKP_TRANSFORM_WORLD, MKP_TRANSFORM_LOCAL}) {
        BufferBuilder buffer(16, space);
        buffer.State.Place_At(place);
        buffer.State.Camera.Set_Translation({5.0f, 10.0f, 99.0f}); // along y, once level
        buffer.Buffer->SmoothedCentroid = {5.0f, 1.0f, 0.0f};
        // The world's (5, 5, 0): 4 from the centre, and 5 along the axis of the ramp, a quarter from 10 to -10.
        const int slot = buffer.Add(space == MKP_TRANSFORM_WORLD ? Vector3(5, 5, 0) : Vector3(5, 0, 0));
        const Vector2 &size = buffer.Buffer->Size[slot];
        Modify(*spherical, buffer);
        EXPECT_NEAR(size.x, 4.0f, 1e-5f) << space;
        EXPECT_NEAR(size.y, 2.0f, 1e-5f) << space;
        Modify(*noSpan, buffer);
        EXPECT_EQ(size.x, 8.0f) << space;
        Modify(*ramp, buffer);
        EXPECT_NEAR(size.x, 2.0f, 1e-5f) << space;
        EXPECT_EQ(size.x, size.y);
    }
}

TEST(RotationModifiers, WriteWhatTheirFormulasSay)
{
    const FloatKeys curve = {{0, 0}, {1, 1}};
    const Values offset = {{"Reverse", 1}, {"Randomize Rotations", 1}, {"Rotation Variation", 0.5f}};
    const Values keyedOffset = {
        {"Reverse", 1}, {"Randomize Rotations", 1}, {"Rotation Variation", 0.5f}, {"Rotation", curve}};
    const Values varied = {{"Rotation", 0.75f}, {"Reverse", 1}, {"Rotation Variation", 0.125f}};
    const struct
    {
        const char *what;
        int plugin;
        Values values;
        float time;
        uint32_t id;
        uint32_t expected;
    } rows[] = {
        {"a quarter turn", 9, {}, 0.25f, 0, 1024},
        {"smooth: 10 / 64", 9, {{"Flat Tangent Smooth", 1}}, 0.25f, 0, 640},
        {"truncated", 9, {}, 0.99999f, 0, 4095},
        {"and so do negative ones", 9, {{"Start Rotation", -0.25f}, {"End Rotation", -0.25f}}, 0.5f, 0, 3072},
        {"odd ones the other way", 9, {{"Reverse", 1}}, 0.25f, 3, 3072},
        {"offset by -0.5", 9, {{"Randomize Rotations", 1}, {"Rotation Variation", 0.5f}}, 0.75f, 0, 1024},
        {"reversed, then offset by 0.5", 9, offset, 0.25f, MOST, 1024},
        {"constant", 58, {{"Rotation", 0.75f}}, 0.1f, 1, 3072},
        {"constant, reversed, then varied", 58, varied, 0.1f, MOST, 1536},
        {"keyed and smooth", 16, {{"Flat Tangent Smooth", 1}, {"Rotation", curve}}, 0.25f, 0, 640},
        {"keyed, reversed, offset", 16, keyedOffset, 0.25f, MOST, 1024},
        {"obsolete", 48, {}, 0.5f, 0, 7},
    };
    for (const auto &row : rows) {
        BufferBuilder buffer;
        const int slot = buffer.Add({}, {}, row.time);
        buffer.Buffer->ID[slot] = row.id;
        EXPECT_EQ(Rotation_After(*Make_Plugin(row.plugin, row.values), buffer, slot, 7), row.expected) << row.what;
    }
}

TEST(RotationModifiers, SpinOnTheSidesOfAMushroom)
{
    // A step of 0.1 s with an envelope of 0.5 and a rate of 2 is 100 steps on the rim. The camera stands along x.
    const struct
    {
        Vector3 position;
        float variation;
        uint32_t id, before, expected;
    } rows[] = {
        {{0, -3, 7}, 0, 0, 50, 150},        // on the rim
        {{0, 3, 7}, 0, 0, 50, 4046},        // on the other side, past zero
        {{5, 0, 0}, 0, 0, 50, 50},          // ahead
        {{0, 0, 4}, 0, 0, 50, 150},         // on the axis itself there is no radial direction, and the rim stands in
        {{1, -1.7320508f, 0}, 0, 0, 0, 50}, // at 60 degrees: 1 - 0.5
        {{0, -3, 0}, 1, MOST, 0, 200},      // the rate and as much again
        {{0, -3, 0}, 1, 0, 9, 9},           // the rate less as much
    };
    for (const auto space : {MKP_TRANSFORM_WORLD, MKP_TRANSFORM_LOCAL})
        for (const auto &row : rows) {
            const auto mushroom = Make_Plugin(89, {{"Rotation Rate", 2.0f},
                                                   {"Rotation Variation", row.variation},
                                                   {"Envelope", FloatKeys{{0, 0}, {1, 1}}}});
            const Vector3 place(100.0f, 0.0f, 0.0f);
            BufferBuilder buffer(16, space);
            buffer.State.Place_At(Mat3DClass::From_Translation(place));
            buffer.State.Camera.Set_Translation({110.0f, 0.0f, 5.0f});
            const int slot = buffer.Add(space == MKP_TRANSFORM_WORLD ? row.position + place : row.position, {}, 0.5f);
            buffer.Buffer->ID[slot] = row.id;
            EXPECT_EQ(Rotation_After(*mushroom, buffer, slot, row.before), row.expected)
                << row.position.x << " " << row.position.y << " id " << row.id;
        }
}

TEST(RotationModifiers, AlignWithTheMotionOnTheScreen)
{
    const auto aligned = Make_Plugin(90, {});
    const auto turned = Make_Plugin(90, {{"Base", 0.25f}});
    BufferBuilder buffer;
    const int slot = buffer.Add();
    for (int step = 0; step < 5000; ++step) {
        const double angle = step * 0.0123456789;
        const double speed = std::exp2(step % 40 - 20);
        const Vector3 velocity(speed * std::cos(angle), speed * std::sin(angle), speed * (step % 7));
        buffer.Buffer->Velocity.Put(slot, velocity);
        const double steps = std::atan2(double(velocity.y), double(velocity.x)) * 2048.0 / std::numbers::pi;
        if (std::fabs(steps - std::floor(steps) - 0.5) < 2e-3) continue; // what a float can't tell from a tie
        const auto expected = static_cast<uint32_t>(std::lround(steps)) & 0xfff;
        EXPECT_EQ(Rotation_After(*aligned, buffer, slot), expected) << angle;
        EXPECT_EQ(Rotation_After(*turned, buffer, slot), (expected + 1024) & 0xfff) << angle;
    }
    buffer.Buffer->Velocity.Put(slot, {0.0f, 0.0f, 5.0f});
    EXPECT_EQ(Rotation_After(*aligned, buffer, slot, 9), 0u) << "straight away from the camera";

    // A camera that rolls by a quarter sees y as its right, and a turned renderable hands x to it as y.
    buffer.State.Camera = Mat3DClass::From_Angles({0.0f, 0.0f, std::numbers::pi_v<float> / 2.0f});
    buffer.Buffer->Velocity.Put(slot, {-1.0f, 0.0f, 0.0f});
    EXPECT_EQ(Rotation_After(*aligned, buffer, slot), 1024u);
    buffer.State.Place_At(buffer.State.Camera);
    buffer.Buffer->TransformType = MKP_TRANSFORM_LOCAL;
    EXPECT_EQ(Rotation_After(*aligned, buffer, slot), 2048u);
}

TEST(RotationModifiers, LeaveParticlesAtRestAloneWhereToldTo)
{
    const struct
    {
        int plugin;
        const char *flag;
    } rows[] = {{9, "Only When Moving"}, {16, "Only When Moving"}, {90, "Only WHen Moving"}};
    for (const auto &row : rows)
        for (const bool onlyMoving : {false, true}) {
            BufferBuilder buffer;
            const int moving = buffer.Add({}, {0.0f, 1.0f, 0.0f}, 0.25f);
            const int stopped = buffer.Add({}, {0.0f, 1.0f, 0.0f}, 0.25f);
            buffer.Buffer->Flags[stopped] = PARTICLE_STOPPED;
            buffer.Buffer->MayHaveStopped = true;
            const auto plugin = Make_Plugin(row.plugin, {{row.flag, onlyMoving}});
            if (row.plugin == 16) Set_Value(*plugin, "Rotation", FloatKeys{{0.0f, 0.25f}});
            EXPECT_EQ(Rotation_After(*plugin, buffer, stopped, 77), onlyMoving ? 77u : 1024u) << row.plugin;
            EXPECT_EQ(buffer.Buffer->Rotation[moving], 1024u) << row.plugin;
        }
}

TEST(ConstantModifiers, WriteOnceWritesTheNewOnesAlone)
{
    for (const bool once : {true, false}) {
        BufferBuilder buffer;
        const int old = buffer.Add();
        buffer.End_Frame();
        const int fresh = buffer.Add();
        Modify(*Make_Plugin(57, {{"Size", 8.0f}, {"Write Once", once}}), buffer);
        EXPECT_EQ(buffer.Buffer->Size[old].x, once ? 1.0f : 8.0f);
        EXPECT_EQ(buffer.Buffer->Size[fresh].x, 8.0f);
    }
}
