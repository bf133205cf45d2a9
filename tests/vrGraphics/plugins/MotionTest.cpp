#include "vrGraphics/plugins/modifiers/Acceleration.h"
#include "vrGraphics/plugins/modifiers/Attractors.h"
#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"
#include "common/Reports.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/vrWorld.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <variant>
#include <vector>

using namespace MKTest;

namespace
{

// Everything plays in frames of half a second about a renderable at (10, 0, 0) that is a quarter turn about z around:
// the local point (a, b, c) is (10 - b, a, c) in the world, the local direction (a, b, c) is (-b, a, c).
constexpr float FRAME = 0.5f;
constexpr Mat3DClass PLACE = {{{0.0f, -1.0f, 0.0f, 10.0f}, {1.0f, 0.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f, 0.0f}}};
constexpr auto WORLD = MKP_TRANSFORM_WORLD;
constexpr auto LOCAL = MKP_TRANSFORM_LOCAL;

struct Choice
{
    int index;
};
using Keys = std::vector<std::pair<float, float>>;
using Value = std::variant<float, bool, Vector3, Choice, Keys, std::string>;
using Values = std::vector<std::pair<const char *, Value>>;

void Set(const vrMKPPlugin &plugin, const Values &values)
{
    for (const auto &[name, value] : values) {
        if (const auto *number = std::get_if<float>(&value))
            Parameter_Of<RangedFloatParameter>(plugin, name).Set_Value(*number);
        else if (const auto *flag = std::get_if<bool>(&value))
            Parameter_Of<BoolParameter>(plugin, name).Set_Value(*flag);
        else if (const auto *vector = std::get_if<Vector3>(&value))
            Parameter_Of<Vector3Parameter>(plugin, name).Set_Value(*vector);
        else if (const auto *choice = std::get_if<Choice>(&value))
            Parameter_Of<EnumParameterClass>(plugin, name).Set_Index(choice->index);
        else if (const auto *text = std::get_if<std::string>(&value))
            Parameter_Of<StringParameterClass>(plugin, name).Set_Value(*text);
        else {
            auto &curve = Parameter_Of<KeyedFloatParameterClass>(plugin, name);
            curve.Clear_Keys();
            for (const auto &[time, key] : std::get<Keys>(value)) curve.Add_Key(time, key);
        }
    }
}

/// Level ground, whose height can rise with x.
struct Ground final : vrTerrain
{
    float Slope = 0.0f;

    float Get_Height(float x, float) const override { return Slope * x; }
    bool Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const override
    {
        if (!(from.z > 0.0f) || !(to.z <= 0.0f)) return false;
        hit = from + (to - from) * (from.z / (from.z - to.z));
        normal = Vector3(0.0f, 0.0f, 1.0f);
        return true;
    }
};

/// A model with one bone, "Hand", at (1, 2, 3).
struct Carrier final : vrCarrierModel
{
    int Find_Bone(std::string_view name) const override { return name == "Hand" ? 5 : -1; }
    Mat3DClass Get_Bone_Transform(int bone) const override
    {
        return Mat3DClass::From_Translation(bone == 5 ? Vector3(1.0f, 2.0f, 3.0f) : Vector3(-99.0f));
    }
};

/// A modifier as the only one of a layer.
struct Stage : BufferBuilder
{
    SmartPtr<vrMKPPlugin> Plugin;
    const vrMKPModifier &Modifier;
    Ground Terrain;

    Stage(SmartPtr<vrMKPPlugin> plugin, vrMKPTransformType space, const Values &values = {})
        : BufferBuilder(64, space), Plugin(plugin), Modifier(dynamic_cast<const vrMKPModifier &>(*plugin))
    {
        State.FrameTime = FRAME;
        State.Place_At(PLACE);
        State.Wind = {2.0f, 4.0f, 0.0f};
        State.Terrain = &Terrain;
        Set(*plugin, values);
        Buffer->ModifierData.push_back(plugin->Create_Buffer_Data(State));
    }
    Stage(int id, vrMKPTransformType space, const Values &values = {}) : Stage(Make_Plugin(id), space, values) {}

    void Play() { Modifier.Modify(*Buffer, 0); }
};

void Expect_Near(const Vector3 &value, const Vector3 &expected, const char *what)
{
    const float tolerance = 1e-5f * (1.0f + glm::length(expected));
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(value[axis], expected[axis], tolerance) << what << ", axis " << axis;
}

const Vector3 ZERO(0.0f);

struct MotionRow
{
    const char *what;
    int id;
    vrMKPTransformType space;
    Values values;
    Vector3 position, velocity;
    Vector3 newPosition, newVelocity;
    uint32_t particleID;
    float time;
};

MotionRow Row(const char *what, int id, vrMKPTransformType space, const Values &values, const Vector3 &position,
              const Vector3 &velocity, const Vector3 &newPosition, const Vector3 &newVelocity, uint32_t particleID = 0,
              float time = 0.0f)
{
    return {what, id, space, values, position, velocity, newPosition, newVelocity, particleID, time};
}

std::vector<MotionRow> Motion_Rows()
{
    const Values ACCELERATION = {{"Acceleration", Vector3(2, 0, -4)}};
    const Values LOCAL_ACCELERATION = {{"Acceleration", Vector3(2, 0, -4)}, {"Local Space", true}};
    const Values RISING = {{"Direction", Vector3(0, 0, -2)}, {"Acceleration", Keys{{0, 0}, {1, 10}}}};
    const Values RISING_SMOOTH = {
        {"Direction", Vector3(0, 0, -2)}, {"Acceleration", Keys{{0, 0}, {1, 10}}}, {"Flat Tangent Smooth", true}};
    const Values VORTEX = {{"Speed", 4.0f}, {"Local Space", true}};
    const Values TORUS = {{"Thickness", 0.5f}, {"Inner Speed", 4.0f}, {"Outer Speed", 8.0f}, {"Speed Variation", 0.5f}};
    // -2 and 10 / 5 and -1 * 5 make -5 at a distance of 5.
    const Values ATTRACTION = {{"Constant Attraction", -2.0f},
                               {"Linear Attraction", -1.0f},
                               {"Inv. Linear Attraction", 10.0f},
                               {"Inner Cutoff Dist.", 1.0f},
                               {"Target Position", Choice{3}}};
    const Values SWIM = {{"Constant Attraction", -4.0f}, {"Inner Cutoff Dist.", 1.0f}, {"Swim", true}};
    // 4 and 6 / 3 and 2 * 3 make 12 at a distance of 3.
    const Values TORQUE = {{"Constant Acceleration", 4.0f},
                           {"Linear Acceleration", 2.0f},
                           {"Inv. Linear Acceleration", 6.0f},
                           {"Inner Cutoff Dist.", 1.0f}};
    const Values AXIS_PUSH = {{"Constant Attraction", 4.0f},
                              {"Linear Attraction", 2.0f},
                              {"Inv. Linear Attraction", 6.0f},
                              {"Inner Cutoff Dist.", 1.0f}};
    const Values LIMIT = {{"Min Speed", 10.0f}, {"Max Speed", 2.0f}};
    const Values AT_ONCE = {{"Start Time", 0.5f}, {"End Time", 0.5f}};
    const float DIAGONAL = std::sqrt(2.0f);

    return {
        Row("acceleration, world", kvrMKPAccelerationModifier, WORLD, ACCELERATION, {}, {}, {}, {1, 0, -2}),
        Row("acceleration of the group, world", kvrMKPAccelerationModifier, WORLD, LOCAL_ACCELERATION, {}, {}, {},
            {0, 1, -2}),
        Row("acceleration of the world, local", kvrMKPAccelerationModifier, LOCAL, ACCELERATION, {}, {}, {},
            {0, -1, -2}),
        Row("acceleration of the group, local", kvrMKPAccelerationModifier, LOCAL, LOCAL_ACCELERATION, {}, {}, {},
            {1, 0, -2}),
        Row("keyed acceleration", kvrMKPKeyedAccelerationModifier, WORLD, RISING, {}, {}, {}, {0, 0, -5}, 0, 0.5f),
        Row("keyed acceleration, smooth", kvrMKPKeyedAccelerationModifier, LOCAL, RISING_SMOOTH, {}, {}, {},
            {0, 0, -1.5625f}, 0, 0.25f),

        Row("wind, world", kvrMKPWindAccelerationModifier, WORLD, {}, {}, {}, {}, {0.5f, 1, 0}),
        Row("wind, local", kvrMKPWindAccelerationModifier, LOCAL, {}, {}, {}, {}, {1, -0.5f, 0}),
        Row("wind drift, world", kvrMKPWindVelocityModifier, WORLD, {}, {}, {7, 7, 7}, {0.25f, 0.5f, 0}, {7, 7, 7}),
        Row("wind drift, local", kvrMKPWindVelocityModifier, LOCAL, {}, {1, 1, 1}, {}, {1.5f, 0.75f, 1}, {}),

        Row("attract, world", kvrMKPAttractAccelerationModifier, WORLD, {{"Attract", -4.0f}}, {10, 3, 4}, {},
            {10, 3, 4}, {0, -1.2f, -1.6f}),
        Row("attract, local", kvrMKPAttractAccelerationModifier, LOCAL, {{"Attract", -4.0f}}, {3, 4, 0}, {}, {3, 4, 0},
            {-1.2f, -1.6f, 0}),

        Row("vortex, local", kvrMKPVortexModifier, LOCAL, VORTEX, {3, 0, 4}, {}, {3, 0, 4}, {0, 2, 0}),
        Row("vortex, world", kvrMKPVortexModifier, WORLD, VORTEX, {10, 3, 4}, {}, {10, 3, 4}, {-2, 0, 0}),
        Row("vortex within 0.1", kvrMKPVortexModifier, LOCAL, VORTEX, {0.05f, 0, 0}, {}, {0.05f, 0, 0}, {}),
        Row("vortex without an axis", kvrMKPVortexModifier, LOCAL, {{"Axis", ZERO}}, {3, 0, 0}, {1, 2, 3}, {3, 0, 0},
            {1, 2, 3}),

        Row("funnel, local", kvrMKPFunnelModifier, LOCAL, {}, {3, 4, 25}, {1, 1, 7}, {18, 24, 25}, {-44, 33, 7}),
        Row("funnel, world", kvrMKPFunnelModifier, WORLD, {}, {6, 3, 25}, {-1, 1, 7}, {-14, 18, 25}, {-33, -44, 7}),
        Row("funnel, outermost and fastest", kvrMKPFunnelModifier, LOCAL,
            {{"Thickness", 1.0f}, {"Speed vartion", 20.0f}}, {3, 4, 25}, {0, 0, 7}, {18, 24, 25}, {-60, 45, 7}, 0xffff),
        Row("funnel on the axis, x of 1", kvrMKPFunnelModifier, LOCAL, {}, {0, 0, 25}, {0, 0, 7}, {0, -30, 25},
            {55, 0, 7}, 0x0001),
        Row("funnel, past its end", kvrMKPFunnelModifier, WORLD, {}, {3, 4, 50.1f}, {1, 2, 3}, {3, 4, 50.1f},
            {1, 2, 3}),
        Row("funnel, before its start", kvrMKPFunnelModifier, LOCAL, {}, {3, 4, -0.1f}, {1, 2, 3}, {3, 4, -0.1f},
            {1, 2, 3}),

        Row("torus, local", kvrMKPTorusModifier, LOCAL, TORUS, {12, 0, 0}, {9, 9, 9}, {15, 0, 0}, {0, 0, -4}),
        Row("torus, world", kvrMKPTorusModifier, WORLD, TORUS, {10, 12, 0}, {}, {10, 15, 0}, {0, 0, -4}),
        Row("torus, deepest", kvrMKPTorusModifier, LOCAL, TORUS, {12, 0, 0}, {}, {12.5f, 0, 0}, {0, 0, -2}, 0x00ff),
        Row("torus, fastest", kvrMKPTorusModifier, LOCAL, TORUS, {10, 0, 3}, {}, {10, 0, 5}, {12, 0, 0}, 0xff00),

        Row("attractor, world", kvrMKPAttractorModifier, WORLD, ATTRACTION, {10, 3, 4}, {1, 0, 0}, {10, 3, 4},
            {1, -1.5f, -2}),
        Row("attractor, local", kvrMKPAttractorModifier, LOCAL, ATTRACTION, {3, 4, 0}, {}, {3, 4, 0}, {-1.5f, -2, 0}),
        Row("attractor, at its inner cutoff", kvrMKPAttractorModifier, LOCAL, {{"Constant Attraction", -2.0f}},
            {3, 4, 0}, {}, {3, 4, 0}, {}),
        Row("attractor, at its outer cutoff", kvrMKPAttractorModifier, LOCAL,
            {{"Constant Attraction", -2.0f}, {"Inner Cutoff Dist.", 1.0f}, {"Outer Cutoff Dist.", 5.0f}}, {3, 4, 0}, {},
            {3, 4, 0}, {}),
        Row("attractor, at the target", kvrMKPAttractorModifier, LOCAL,
            {{"Constant Attraction", -2.0f}, {"Inner Cutoff Dist.", -1.0f}}, {}, {1, 0, 0}, {}, {1, 0, 0}),
        Row("swim", kvrMKPAttractorModifier, LOCAL, SWIM, {0, 5, 0}, {2, 0, 0}, {0, 5, 0}, {DIAGONAL, -DIAGONAL, 0}),
        Row("swim, stopped short", kvrMKPAttractorModifier, LOCAL, SWIM, {0, 5, 0}, {0, 2, 0}, {0, 5, 0}, {0, 2, 0}),

        Row("torque, local", kvrMKPTorqueModifier, LOCAL, TORQUE, {3, 0, 7}, {}, {3, 0, 7}, {0, 6, 0}),
        Row("torque on the axis", kvrMKPTorqueModifier, LOCAL, TORQUE, {0, 0, 7}, {}, {0, 0, 7}, {}),
        Row("axis attractor", kvrMKPAxisAttractorModifier, WORLD, AXIS_PUSH, {13, 0, 7}, {}, {13, 0, 7}, {6, 0, 0}),

        Row("speed limit, too fast", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {30, 40, 0}, {}, {6, 8, 0}),
        Row("speed limit, too slow", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {0.6f, 0.8f, 0}, {}, {1.2f, 1.6f, 0}),
        Row("speed limit at rest", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {}, {}, {}),
        Row("linear speed", kvrMKPLinearSpeedModifier, WORLD, {}, {}, {0, 0, 3}, {}, {0, 0, 5}, 0, 0.25f),
        Row("linear speed, smooth", kvrMKPLinearSpeedModifier, WORLD, {{"Flat Tangent Smooth", true}}, {}, {0, 0, 3},
            {}, {0, 0, 3.125f}, 0, 0.25f),
        Row("linear speed, at equal times", kvrMKPLinearSpeedModifier, WORLD, AT_ONCE, {}, {0, 0, 3}, {}, {}, 0, 0.5f),
        Row("friction", kvrMKPKeyedFrictionModifier, WORLD, {{"Friction", Keys{{0, 0}, {1, 1}}}}, {}, {4, -8, 0}, {},
            {3, -6, 0}, 0, 0.5f),
        Row("friction on the slowest", kvrMKPKeyedFrictionModifier, WORLD, {{"Friction", Keys{{0, 0}}}}, {},
            {0.009f, 0, 0}, {}, {}),
    };
}

/// 37 equal particles in a ring that wraps, every fifth of them at rest if told.
void Play_Row(const MotionRow &row, bool withStopped)
{
    SCOPED_TRACE(std::string(row.what) + (withStopped ? ", some at rest" : ""));
    Stage stage(row.id, row.space, row.values);
    stage.Start_At(50);
    vrMKPBuffer &buffer = *stage.Buffer;
    std::vector<int> slots;
    for (int i = 0; i < 37; ++i) {
        slots.push_back(stage.Add(row.position, row.velocity, row.time));
        buffer.ID[slots.back()] = row.particleID;
        buffer.Flags[slots.back()] = withStopped && i % 5 == 0 ? uint32_t(PARTICLE_STOPPED) : 0;
    }
    buffer.MayHaveStopped = withStopped;
    stage.Play();
    for (const int slot : slots) {
        const bool moves = !(buffer.Flags[slot] & PARTICLE_STOPPED);
        Expect_Near(buffer.Position[slot], moves ? row.newPosition : row.position, "position");
        Expect_Near(buffer.Velocity[slot], moves ? row.newVelocity : row.velocity, "velocity");
        if (testing::Test::HasFailure()) return;
    }
}

} // namespace

TEST(Motion, MovesByTheFormulasAndLeavesParticlesAtRestAlone)
{
    for (const MotionRow &row : Motion_Rows())
        for (const bool withStopped : {false, true}) Play_Row(row, withStopped);
}

TEST(Motion, DistanceGivesTimeToParticlesAtRestToo)
{
    const Values thin = {{"Inner Radius", 10.0f}, {"Outer Radius", 10.0f}};
    const struct
    {
        const char *what;
        vrMKPTransformType space;
        Values values;
        Vector3 position;
        float expected;
    } cases[] = {
        {"near, local", LOCAL, {}, {5, 0, 0}, 0.75f},
        {"inverted", LOCAL, {{"Invert", true}}, {5, 0, 0}, 0.25f},
        {"smooth", LOCAL, {{"Flat Tangent Smooth", true}}, {5, 0, 0}, 0.84375f},
        {"far", LOCAL, {}, {21, 0, 0}, 0.0f},
        {"at equal radii", LOCAL, thin, {10, 0, 0}, 1.0f},
    };
    for (const auto &row : cases) {
        Stage stage(kvrMKPDistanceKeyTimeModifier, row.space, row.values);
        for (int i = 0; i < 19; ++i)
            stage.Buffer->Flags[stage.Add(row.position)] = i % 2 ? uint32_t(PARTICLE_STOPPED) : 0;
        stage.Buffer->MayHaveStopped = true;
        stage.Play();
        for (int slot = 0; slot < 19; ++slot) EXPECT_NEAR(stage.Buffer->Time[slot], row.expected, 1e-5f) << row.what;
    }
}

TEST(Motion, AccelerationFieldSpeedsUpAlongTheVelocity)
{
    // 4 and 2 * 5 and 5 / 5 make 15 at a distance of 4 and an offset of 1; half a second of it adds 7.5 to a speed
    // of 5.
    Stage stage(new vrMKPTargetAccelerationFieldModifier, LOCAL,
                {{"Constant Acceleration", 4.0f},
                 {"Linear Acceleration", 2.0f},
                 {"Inv. Linear Acceleration", 5.0f},
                 {"Inner Cutoff Dist.", 4.5f},
                 {"Distance Offset", 1.0f}});
    const int slot = stage.Add(Vector3(0, 0, 4), Vector3(3, 4, 0));
    stage.Play();
    Expect_Near(stage.Buffer->Velocity[slot], Vector3(7.5f, 10, 0), "velocity");
}

TEST(TargetModifier, FindsItsPoint)
{
    const Keys slope = {{0, 0}, {2, 20}};
    const Values keyed = {
        {"Target Position", Choice{4}}, {"Start Time", 1.0f}, {"End Time", 2.0f}, {"Translate X", slope}};
    const auto looping = [&](int index) {
        Values values = keyed;
        values.emplace_back("Looping", Choice{index});
        return values;
    };
    const auto bone = [](const char *name) {
        return Values{{"Target Position", Choice{1}}, {"Bone Name", std::string(name)}};
    };
    const Carrier model;
    const struct
    {
        const char *what;
        Values values;
        const vrCarrierModel *carrier;
        Vector3 expected;
    } cases[] = {
        {"emitter", {{"Target Position", Choice{0}}}, &model, {10, 0, 0}},
        {"bone", bone("Hand"), &model, {1, 2, 3}},
        {"no model", bone("Hand"), nullptr, {7, 8, 9}},
        {"target", {{"Target Position", Choice{2}}}, nullptr, {7, 8, 9}},
        {"position", {{"Target Position", Choice{3}}, {"Position", Vector3(1, 2, 3)}}, nullptr, {8, 1, 3}},
        // At 2.25 seconds the animation of one second that starts at 1 stands at 1.25.
        {"keys", looping(0), nullptr, {10, 12.5f, 0}},
        {"keys, looped", looping(1), nullptr, {10, 2.5f, 0}},
        {"keys, there and back", looping(2), nullptr, {10, 7.5f, 0}},
        {"projectile's target at the start", {{"Target Position", Choice{5}}}, nullptr, {4, 0, 0}},
        {"projectile's target now", {{"Target Position", Choice{6}}}, nullptr, {0, 5, 0}},
        {"unknown", {{"Target Position", Choice{99}}}, nullptr, {10, 0, 0}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPAttractorModifier, LOCAL, row.values);
        stage.State.Carrier = row.carrier;
        stage.State.RunningTime = 2.25f;
        stage.State.TargetPosition = {7, 8, 9};
        stage.State.ProjectileTargetStart = {4, 0, 0};
        stage.State.ProjectileTarget = {0, 5, 0};
        const auto &modifier = dynamic_cast<const vrMKPTargetModifier &>(*stage.Plugin);
        Expect_Near(modifier.Get_Target_Position(*stage.Buffer, 0), row.expected, "target");
    }
}

TEST(ClockModifier, WritesItsSignalFrameByFrame)
{
    const struct
    {
        const char *what;
        Values values;
        uint32_t id;
        float expected[4]; ///< at a quarter, two, three quarters and a whole of an interval of 2 seconds
    } cases[] = {
        {"linear", {{"Clock Type", Choice{0}}}, 0, {0.25f, 0.5f, 0.75f, 0.0f}},
        {"square", {{"Clock Type", Choice{1}}}, 0, {0.0f, 1.0f, 1.0f, 0.0f}},
        {"triangle", {{"Clock Type", Choice{2}}}, 0, {0.5f, 1.0f, 0.5f, 0.0f}},
        {"sine", {{"Clock Type", Choice{3}}}, 0, {1.0f, 0.5f, 0.0f, 0.5f}},
        {"linear, inverted", {{"Clock Type", Choice{0}}, {"Invert", true}}, 0, {0.75f, 0.5f, 0.25f, 1.0f}},
        // An ID of 16384 of 65535 is a quarter of an interval and 3.8e-6.
        {"linear, at random", {{"Random Start", true}}, 16384, {0.5f, 0.75f, 0.0f, 0.25f}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPClockModifier, LOCAL, row.values);
        Set(*stage.Plugin, {{"Interval", 2.0f}});
        const int slot = stage.Add();
        stage.Buffer->ID[slot] = row.id;
        stage.Buffer->Flags[slot] = PARTICLE_STOPPED;
        for (int run = 0; run < 2; ++run) {
            for (const float expected : row.expected) {
                stage.Play();
                EXPECT_NEAR(stage.Buffer->Time[slot], expected, 2e-5f);
            }
            stage.Buffer->ModifierData[0]->Reset();
        }
    }
}

TEST(ClockModifier, StandsStillWithoutAnInterval)
{
    for (const float interval : {0.0f, std::numeric_limits<float>::quiet_NaN(), 1e-45f})
        for (int type = 0; type < 4; ++type) {
            Stage stage(kvrMKPClockModifier, LOCAL, {{"Clock Type", Choice{type}}, {"Interval", interval}});
            const int slot = stage.Add();
            stage.Play();
            EXPECT_EQ(stage.Buffer->Time[slot], type == vrMKPClockModifier::CLOCK_SINE ? 0.5f : 0.0f);
        }
}

TEST(CircleTarget, ThrowsNewParticlesSoThatTheyLand)
{
    // 30 units at 10 a second are 3 seconds, in which -2 takes 9 from the height: (5 + 9) / 3 up.
    Stage stage(kvrMKPCircleTargetAccelerationModifier, WORLD,
                {{"Target Position", Choice{2}}, {"Acceleration", Vector3(0, 0, -2)}});
    stage.State.TargetPosition = {30, 0, 5};
    stage.State.ProjectileSpeed = 10.0f;
    const int old = stage.Add();
    stage.End_Frame();
    const int young = stage.Add();
    stage.Play();
    Expect_Near(stage.Buffer->Velocity[old], Vector3(0, 0, -1), "old");
    Expect_Near(stage.Buffer->Velocity[young], Vector3(10, 0, 14.0f / 3.0f), "young");

    stage.State.TargetCircleRadius = 4.0f;
    RandomClass same(stage.State.Random.Get_State());
    stage.Play();
    const float angle = same.Get_Float(0.0f, 6.2831855f);
    const float radius = same.Get_Float(0.0f, 4.0f);
    const Vector3 point(30 + radius * std::cos(angle), radius * std::sin(angle), 5);
    const Vector3 &velocity = stage.Buffer->Velocity[young];
    const float time = std::hypot(point.x, point.y) / 10.0f;
    Expect_Near(velocity * time + Vector3(0, 0, -time * time), point, "landing");
}

TEST(RandomWalk, DrawsForEachMovingParticleInRingOrder)
{
    for (const auto space : {LOCAL, WORLD}) {
        SCOPED_TRACE(space);
        Stage stage(kvrMKPRandomWalkModifier, space,
                    {{"Velocity Scale", Vector3(10, -20, 0)}, {"Position Scale", Vector3(1, 2, 3)}});
        vrMKPBuffer &buffer = *stage.Buffer;
        stage.Start_At(62);
        for (int i = 0; i < 4; ++i) stage.Add();
        buffer.Flags[63] = PARTICLE_STOPPED;
        buffer.MayHaveStopped = true;
        RandomClass same(stage.State.Random.Get_State());
        const auto draw = [&](const Vector3 &half) {
            Vector3 value;
            for (int axis = 0; axis < 3; ++axis) value[axis] = same.Get_Float(-half[axis], half[axis]);
            return space == WORLD ? PLACE.Rotate(value) : value;
        };
        stage.Play();
        for (const int slot : {62, 0, 1}) {
            // Half of 100 times the scale and the frame.
            const Vector3 turn = draw({250, 500, 0});
            Expect_Near(buffer.Velocity[slot], turn, "velocity");
            Expect_Near(buffer.Position[slot], draw({25, 50, 75}), "position");
        }
        EXPECT_EQ(buffer.Velocity[63], ZERO);
        EXPECT_EQ(buffer.Position[63], ZERO);
    }
}

TEST(TerrainBounce, FollowsItsSurface)
{
    const Values elastic = {{"Elasticity", 0.5f}};
    const Values frictional = {{"Elasticity", 0.5f}, {"Surface Friction", 0.5f}};
    const struct
    {
        const char *what;
        vrMKPTransformType space;
        Values values;
        Vector3 from, to, velocity;
        Vector3 position, newVelocity;
        bool stops;
    } cases[] = {
        {"bounce", WORLD, elastic, {1, 2, 1}, {1, 2, -1}, {3, 0, -4}, {1, 2, 0.1f}, {3, 0, 2}, false},
        {"bounce, local", LOCAL, elastic, {1, 2, 1}, {1, 2, -1}, {3, 0, -4}, {1, 2, 0.1f}, {3, 0, 2}, false},
        {"slide", WORLD, {}, {0, 0, 1}, {2, 0, -1}, {3, 0, -4}, {1, 0, 0.1f}, {3, 0, 0}, false},
        {"friction", WORLD, frictional, {0, 0, 1}, {0, 0, -1}, {30, 0, -4}, {0, 0, 0.1f}, {22.5f, 0, 2}, false},
        {"comes to rest", WORLD, frictional, {0, 0, 1}, {0, 0, -1}, {3, 0, -4}, {0, 0, 0.1f}, {0, 0, 0}, true},
        {"sticks", WORLD, {{"Sticky", true}}, {0, 0, 1}, {0, 0, -1}, {3, 0, -4}, {0, 0, 0.1f}, {3, 0, -4}, true},
        {"above", WORLD, {{"Z Offset", 1.0f}}, {0, 0, 2}, {0, 0, 0.5f}, {3, 0, -4}, {0, 0, 1.1f}, {3, 0, 0}, false},
        {"no hit", WORLD, elastic, {0, 0, 2}, {0, 0, 1}, {3, 0, -4}, {0, 0, 1}, {3, 0, -4}, false},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPTerrainBounceModifier, row.space, row.values);
        const int slot = stage.Add(row.to, row.velocity);
        stage.Buffer->PreviousPosition.Put(slot, row.from);
        stage.Play();
        Expect_Near(stage.Buffer->Position[slot], row.position, "position");
        Expect_Near(stage.Buffer->Velocity[slot], row.newVelocity, "velocity");
        EXPECT_EQ(stage.Buffer->Flags[slot], row.stops ? PARTICLE_STOPPED : 0u);
        EXPECT_EQ(stage.Buffer->MayHaveStopped, row.stops);
    }
}

TEST(TerrainBounce, TurnsOnARoughSurfaceAndNeedsOne)
{
    Stage stage(kvrMKPTerrainBounceModifier, WORLD, {{"Elasticity", 1.0f}, {"Surface Roughness", 1.0f}});
    EXPECT_EQ(stage.Modifier.Get_Walk(), vrMKPModifier::WALK_WHOLE);
    const int slot = stage.Add({0, 0, -1}, {3, 0, -4});
    stage.Buffer->PreviousPosition.Put(slot, {0, 0, 1});
    RandomClass same(stage.State.Random.Get_State());
    const float angle = same.Get_Float(0.0f, 6.2831855f);
    stage.State.Terrain = nullptr;
    stage.Play();
    EXPECT_EQ(stage.Buffer->Velocity[slot], Vector3(3, 0, -4));
    stage.State.Terrain = &stage.Terrain;
    stage.Play();
    Expect_Near(stage.Buffer->Velocity[slot], {3 * std::cos(angle), 3 * std::sin(angle), 4}, "velocity");
}

TEST(Bullet, FliesFromItsOriginToTheTarget)
{
    const Value ARC = Choice{1}, GROUND = Choice{2};
    const Values level = {{"Spread", 2.0f}, {"Use XY Spread", true}};
    const Values keyed = {{"Use Keyed Spread", true}, {"Keyed Spread", Keys{{0, 0}, {1, 4}}}};
    const struct
    {
        const char *what;
        vrMKPTransformType space;
        Values values;
        float time;
        uint32_t id;
        Vector3 expected;
    } cases[] = {
        {"linear", WORLD, {}, 0.25f, 0, {2.5f, 0, 0}},
        {"local", LOCAL, {}, 0.25f, 0, {2.5f, 0, 0}},
        {"blend", WORLD, {{"Blend", Keys{{0, 0.5f}}}}, 0.25f, 0, {1.25f, 4, 0}},
        // The target at (10, 10, 0) in the world is 10 along the group's x.
        {"homing", LOCAL, {{"Track Mode", Choice{1}}}, 0.5f, 0, {5, 0, 0}},
        // 10 a second for 1 second of 2, less 5 of the fall.
        {"arc", WORLD, {{"Trajectory Types", ARC}, {"Gravity", 10.0f}}, 0.5f, 0, {5, 0, 5}},
        // The ground rises by 1 in 1.
        {"ground", WORLD, {{"Trajectory Types", GROUND}, {"Hover Height", 2.0f}}, 0.5f, 0, {5, 0, 7}},
        // An ID of 63 strays to (1, -1, -1), of which the part along the way is taken out.
        {"spread", WORLD, {{"Spread", 2.0f}}, 0.5f, 63, {5, -1, -1}},
        {"spread of the target's radius", WORLD, {{"Spread From Target Radius", true}}, 0.5f, 63, {5, -3, -3}},
        {"keyed spread", WORLD, keyed, 0.5f, 63, {5, -2, -2}},
        // Along (1, 0, 1) / sqrt(2) the stray has no part.
        {"spread of an arc",
         WORLD,
         {{"Trajectory Types", ARC}, {"Gravity", 10.0f}, {"Spread", 2.0f}},
         0.5f,
         63,
         {6, -1, 4}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPBulletModifier, row.space, row.values);
        stage.Terrain.Slope = 1.0f;
        stage.State.HomingTarget = {10, 10, 0};
        stage.State.Dynamic[vrMKPRenderState::DYNAMIC_TARGET_RADIUS] = 6.0f;
        for (const bool stopped : {false, true}) {
            const int slot = stage.Add({0, 8, 0}, ZERO, row.time);
            vrMKPBuffer &buffer = *stage.Buffer;
            buffer.ProjectileStartingPosition.Put(slot, ZERO);
            buffer.ProjectileTargetPosition.Put(slot, {10, 0, 0});
            buffer.ProjectileFlightDuration[slot] = 2.0f;
            buffer.Age[slot] = 1.0f;
            buffer.ID[slot] = row.id;
            buffer.Flags[slot] = stopped ? uint32_t(PARTICLE_STOPPED) : 0;
            buffer.MayHaveStopped = stopped;
            stage.Play();
            Expect_Near(buffer.Position[slot], stopped ? Vector3(0, 8, 0) : row.expected, "position");
        }
    }
}

TEST(Motion, ReportsAnInvalidVelocityOnceAndGoesOn)
{
    const struct
    {
        int id;
        const char *text;
    } cases[] = {
        {kvrMKPAccelerationModifier, "buffer->Velocity[where].Is_Valid()"},
        {kvrMKPSpeedLimitModifier, "buffer->Velocity[where].Is_Valid()"},
        {kvrMKPAttractorModifier, "vel.Is_Valid()"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(Plugin_Label(row.id));
        Stage stage(row.id, LOCAL);
        stage.Start_At(40);
        const Vector3 position(0, 6, 0);
        for (int i = 0; i < 40; ++i) stage.Add(position, {1, 1, i % 4 == 3 ? INFINITY : 1.0f});
        Reports reports;
        stage.Modifier.Apply(*stage.Buffer, 0, {40, 24});
        EXPECT_EQ(reports.Get_Asserts(), std::vector<std::string>{row.text});
        // A particle at rest isn't written, and so not checked.
        for (int slot = 0; slot < 64; ++slot)
            stage.Buffer->Flags[slot] = std::isfinite(stage.Buffer->Velocity[slot].z) ? 0 : uint32_t(PARTICLE_STOPPED);
        stage.Buffer->MayHaveStopped = true;
        stage.Play();
        EXPECT_EQ(reports.Get_Asserts().size(), 1u);
    }
    Stage stage(kvrMKPAttractorModifier, LOCAL, {{"Constant Attraction", INFINITY}});
    stage.Add({0, 6, 0});
    Reports reports;
    stage.Play();
    EXPECT_EQ(reports.Get_Asserts(), (std::vector<std::string>{"acc.Is_Valid()", "vel.Is_Valid()"}));
}

TEST(Motion, SurvivesAnyValue)
{
    const float huge = std::numeric_limits<float>::max();
    const float values[] = {0.0f, -1.0f, huge, -huge, INFINITY, NAN, 1e-45f};
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::MODIFIER_PLUGIN)) {
        const auto category = Make_Plugin(id)->Get_Category();
        if (category != vrMKPPlugin::CATEGORY_PHYSICS && category != vrMKPPlugin::CATEGORY_TIME) continue;
        for (const float value : values)
            for (const auto space : {WORLD, LOCAL}) {
                SCOPED_TRACE(Plugin_Label(id) + " with " + std::to_string(value));
                Stage stage(id, space);
                ParameterListClass &parameters = stage.Plugin->Get_Parameters();
                for (int index = 0; index < parameters.Get_Parameter_Count(); ++index) {
                    ParameterClass *parameter = parameters.Get_Parameter(index);
                    if (auto *number = dynamic_cast<RangedFloatParameter *>(parameter)) number->Set_Value(value);
                    if (auto *vector = dynamic_cast<Vector3Parameter *>(parameter)) vector->Set_Value(Vector3(value));
                    if (auto *flag = dynamic_cast<BoolParameter *>(parameter)) flag->Set_Value(space == WORLD);
                    if (auto *choice = dynamic_cast<EnumParameterClass *>(parameter)) choice->Set_Index(99);
                    if (auto *curve = dynamic_cast<KeyedFloatParameterClass *>(parameter)) curve->Add_Key(value, value);
                }
                stage.State.ProjectileSpeed = value;
                stage.State.TargetCircleRadius = value;
                for (const float place : values) {
                    const int slot = stage.Add(Vector3(place, 1, -2), Vector3(3, place, 1), place);
                    stage.Buffer->PreviousPosition.Put(slot, {0, 0, 5});
                }
                stage.Buffer->ModifierData.clear(); // what a layer may lack
                Reports reports;
                stage.Play();
                EXPECT_LE(reports.Get_Asserts().size(), 3u);
                EXPECT_EQ(stage.Buffer->ActiveCount, 7);
            }
    }
}
