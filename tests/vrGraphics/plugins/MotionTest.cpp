#include "vrGraphics/plugins/modifiers/Acceleration.h"
#include "vrGraphics/plugins/modifiers/Attractors.h"
#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

#include "BufferBuilder.h"
#include "Fakes.h"
#include "PluginBuilders.h"
#include "VertexChecks.h"
#include "common/Reports.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
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

/// A modifier as the only one of a layer.
struct Stage : BufferBuilder
{
    SmartPtr<vrMKPPlugin> Plugin;
    const vrMKPModifier &Modifier;
    FakeWorld Terrain;

    Stage(int id, vrMKPTransformType space, const Values &values = {})
        : BufferBuilder(64, space), Plugin(Make_Plugin(id, values)),
          Modifier(dynamic_cast<const vrMKPModifier &>(*Plugin))
    {
        State.FrameTime = FRAME;
        State.Place_At(PLACE);
        State.Wind = {2.0f, 4.0f, 0.0f};
        State.Terrain = &Terrain;
        Buffer->ModifierData.push_back(Plugin->Create_Buffer_Data(State));
    }

    void Play() { Modifier.Modify(*Buffer, 0); }
};

const Vector3 ZERO(0.0f);

struct MotionRow
{
    const char *what;
    int id;
    vrMKPTransformType space;
    Values values;
    Vector3 position, velocity, newVelocity;
    uint32_t particleID = 0;
    float time = 0.0f;
    Vector3 way = Vector3(0.0f); ///< to the new position
};

std::vector<MotionRow> Motion_Rows()
{
    const Values ACCELERATION = {{"Acceleration", Vector3(2, 0, -4)}};
    const Values LOCAL_ACCELERATION = {{"Acceleration", Vector3(2, 0, -4)}, {"Local Space", true}};
    const Values RISING = {{"Direction", Vector3(0, 0, -2)}, {"Acceleration", FloatKeys{{0, 0}, {1, 10}}}};
    const Values RISING_SMOOTH = {
        {"Direction", Vector3(0, 0, -2)}, {"Acceleration", FloatKeys{{0, 0}, {1, 10}}}, {"Flat Tangent Smooth", true}};
    const Values ATTRACT = {{"Attract", -4.0f}};
    const Values VORTEX = {{"Speed", 4.0f}, {"Local Space", true}};
    const Values TORUS = {{"Thickness", 0.5f}, {"Inner Speed", 4.0f}, {"Outer Speed", 8.0f}, {"Speed Variation", 0.5f}};
    // -2 and 10 / 5 and -1 * 5 make -5 at a distance of 5.
    const Values ATTRACTION = {{"Constant Attraction", -2.0f},
                               {"Linear Attraction", -1.0f},
                               {"Inv. Linear Attraction", 10.0f},
                               {"Inner Cutoff Dist.", 1.0f},
                               {"Target Position", 3}};
    const Values SWIM = {{"Constant Attraction", -4.0f}, {"Inner Cutoff Dist.", 1.0f}, {"Swim", true}};
    // 4 and 6 / 3 make 6 at a distance of 3.
    const Values TORQUE = {
        {"Constant Acceleration", 4.0f}, {"Inv. Linear Acceleration", 6.0f}, {"Inner Cutoff Dist.", 1.0f}};
    const Values AXIS_PUSH = {
        {"Constant Attraction", 4.0f}, {"Inv. Linear Attraction", 6.0f}, {"Inner Cutoff Dist.", 1.0f}};
    const Values FASTEST = {{"Thickness", 1.0f}, {"Speed vartion", 20.0f}};
    const Values NO_AXIS = {{"Axis", ZERO}};
    const Values CONSTANT = {{"Constant Attraction", -2.0f}};
    const Values LIMIT = {{"Min Speed", 10.0f}, {"Max Speed", 2.0f}};
    const Values OUTER_CUTOFF = {
        {"Constant Attraction", -2.0f}, {"Inner Cutoff Dist.", 1.0f}, {"Outer Cutoff Dist.", 5.0f}};
    const Values NO_CUTOFF = {{"Constant Attraction", -2.0f}, {"Inner Cutoff Dist.", -1.0f}};
    const Values SMOOTH = {{"Flat Tangent Smooth", true}};
    const Values FRICTION = {{"Friction", FloatKeys{{0, 0}, {1, 1}}}};
    const Values AT_ONCE = {{"Start Time", 0.5f}, {"End Time", 0.5f}};
    const float DIAGONAL = std::sqrt(2.0f);

    return {
        {"acceleration of the group", kvrMKPAccelerationModifier, WORLD, LOCAL_ACCELERATION, {}, {}, {0, 1, -2}},
        {"acceleration of the world", kvrMKPAccelerationModifier, LOCAL, ACCELERATION, {}, {}, {0, -1, -2}},
        {"keyed acceleration", kvrMKPKeyedAccelerationModifier, WORLD, RISING, {}, {}, {0, 0, -5}, 0, 0.5f},
        {"keyed, smooth", kvrMKPKeyedAccelerationModifier, LOCAL, RISING_SMOOTH, {}, {}, {0, 0, -1.5625f}, 0, 0.25f},
        {"wind", kvrMKPWindAccelerationModifier, LOCAL, {}, {}, {}, {1, -0.5f, 0}},
        {"wind drift", kvrMKPWindVelocityModifier, WORLD, {}, {}, {7, 7, 7}, {7, 7, 7}, 0, 0, {0.25f, 0.5f, 0}},
        {"attract", kvrMKPAttractAccelerationModifier, WORLD, ATTRACT, {10, 3, 4}, {}, {0, -1.2f, -1.6f}},
        {"vortex", kvrMKPVortexModifier, WORLD, VORTEX, {10, 3, 4}, {}, {-2, 0, 0}},
        {"vortex within 0.1", kvrMKPVortexModifier, LOCAL, VORTEX, {0.05f, 0, 0}, {}, {}},
        {"vortex without an axis", kvrMKPVortexModifier, LOCAL, NO_AXIS, {3, 0, 0}, {1, 2, 3}, {1, 2, 3}},
        {"funnel", kvrMKPFunnelModifier, WORLD, {}, {6, 3, 25}, {-1, 1, 7}, {-33, -44, 7}, 0, 0, {-20, 15, 0}},
        {"fastest", kvrMKPFunnelModifier, LOCAL, FASTEST, {3, 4, 25}, {0, 0, 7}, {-60, 45, 7}, 0xffff, 0, {15, 20, 0}},
        {"on the axis", kvrMKPFunnelModifier, LOCAL, {}, {0, 0, 25}, {0, 0, 7}, {55, 0, 7}, 1, 0, {0, -30, 0}},
        {"past the funnel's end", kvrMKPFunnelModifier, WORLD, {}, {3, 4, 50.1f}, {1, 2, 3}, {1, 2, 3}},
        {"torus", kvrMKPTorusModifier, WORLD, TORUS, {10, 12, 0}, {}, {0, 0, -4}, 0, 0, {0, 3, 0}},
        {"torus, deepest", kvrMKPTorusModifier, LOCAL, TORUS, {12, 0, 0}, {}, {0, 0, -2}, 0x00ff, 0, {0.5f, 0, 0}},
        {"torus, fastest", kvrMKPTorusModifier, LOCAL, TORUS, {10, 0, 3}, {}, {12, 0, 0}, 0xff00, 0, {0, 0, 2}},
        {"attractor", kvrMKPAttractorModifier, WORLD, ATTRACTION, {10, 3, 4}, {1, 0, 0}, {1, -1.5f, -2}},
        {"at its inner cutoff", kvrMKPAttractorModifier, LOCAL, CONSTANT, {3, 4, 0}, {}, {}},
        {"at its outer cutoff", kvrMKPAttractorModifier, LOCAL, OUTER_CUTOFF, {3, 4, 0}, {}, {}},
        {"at the target", kvrMKPAttractorModifier, LOCAL, NO_CUTOFF, {}, {1, 0, 0}, {1, 0, 0}},
        {"swim", kvrMKPAttractorModifier, LOCAL, SWIM, {0, 5, 0}, {2, 0, 0}, {DIAGONAL, -DIAGONAL, 0}},
        {"swim, stopped short", kvrMKPAttractorModifier, LOCAL, SWIM, {0, 5, 0}, {0, 2, 0}, {0, 2, 0}},
        {"torque", kvrMKPTorqueModifier, LOCAL, TORQUE, {3, 0, 7}, {}, {0, 3, 0}},
        {"torque on the axis", kvrMKPTorqueModifier, LOCAL, TORQUE, {0, 0, 7}, {}, {}},
        {"axis attractor", kvrMKPAxisAttractorModifier, WORLD, AXIS_PUSH, {13, 0, 7}, {}, {3, 0, 0}},
        {"too fast", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {30, 40, 0}, {6, 8, 0}},
        {"too slow", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {0.6f, 0.8f, 0}, {1.2f, 1.6f, 0}},
        {"speed limit at rest", kvrMKPSpeedLimitModifier, WORLD, LIMIT, {}, {}, {}},
        {"linear speed", kvrMKPLinearSpeedModifier, WORLD, {}, {}, {0, 0, 3}, {0, 0, 5}, 0, 0.25f},
        {"linear speed, smooth", kvrMKPLinearSpeedModifier, WORLD, SMOOTH, {}, {0, 0, 3}, {0, 0, 3.125f}, 0, 0.25f},
        {"linear speed, at once", kvrMKPLinearSpeedModifier, WORLD, AT_ONCE, {}, {0, 0, 3}, {}, 0, 0.5f},
        {"friction", kvrMKPKeyedFrictionModifier, WORLD, FRICTION, {}, {4, -8, 0}, {3, -6, 0}, 0, 0.5f},
        {"friction on the slowest", kvrMKPKeyedFrictionModifier, WORLD, FRICTION, {}, {0.009f, 0, 0}, {}},
    };
}

} // namespace

// 37 equal particles in a ring that wraps, every fifth of them at rest if told.
TEST(Motion, MovesByTheFormulasAndLeavesParticlesAtRestAlone)
{
    for (const MotionRow &row : Motion_Rows())
        for (const bool withStopped : {false, true}) {
            SCOPED_TRACE(std::string(row.what) + (withStopped ? ", some at rest" : ""));
            Stage stage(row.id, row.space, row.values);
            stage.Start_At(50);
            vrMKPBuffer &buffer = *stage.Buffer;
            buffer.MayHaveStopped = withStopped;
            for (int i = 0; i < 37; ++i) {
                const int slot = stage.Add(row.position, row.velocity, row.time);
                buffer.ID[slot] = row.particleID;
                buffer.Flags[slot] = withStopped && i % 5 == 0 ? uint32_t(PARTICLE_STOPPED) : 0;
            }
            stage.Play();
            for (const vrMKPSpan span : buffer.Live_Spans())
                for (int slot = span.First; slot < span.First + span.Count; ++slot) {
                    const bool moves = !(buffer.Flags[slot] & PARTICLE_STOPPED);
                    Expect_Near(buffer.Position[slot], moves ? row.position + row.way : row.position, "position");
                    Expect_Near(buffer.Velocity[slot], moves ? row.newVelocity : row.velocity, "velocity");
                }
        }
}

TEST(Motion, DistanceGivesTimeToParticlesAtRestToo)
{
    const Values thin = {{"Inner Radius", 10.0f}, {"Outer Radius", 10.0f}};
    const struct
    {
        Values values;
        float distance, expected;
    } cases[] = {
        {{}, 5, 0.75f},
        {{{"Invert", true}}, 5, 0.25f},
        {{{"Flat Tangent Smooth", true}}, 5, 0.84375f},
        {{}, 21, 0.0f},
        {thin, 10, 1.0f},
    };
    for (const auto &row : cases) {
        Stage stage(kvrMKPDistanceKeyTimeModifier, LOCAL, row.values);
        for (int i = 0; i < 19; ++i)
            stage.Buffer->Flags[stage.Add({row.distance, 0, 0})] = i % 2 ? uint32_t(PARTICLE_STOPPED) : 0;
        stage.Buffer->MayHaveStopped = true;
        stage.Play();
        for (int slot = 0; slot < 19; ++slot)
            EXPECT_NEAR(stage.Buffer->Time[slot], row.expected, 1e-5f) << &row - cases;
    }
}

TEST(TargetModifier, FindsItsPoint)
{
    const FloatKeys slope = {{0, 0}, {2, 20}};
    const Values keyed = {{"Target Position", 4}, {"Start Time", 1.0f}, {"End Time", 2.0f}, {"Translate X", slope}};
    const auto looping = [&](int index) {
        Values values = keyed;
        values.emplace_back("Looping", index);
        return values;
    };
    const FakeWorld model({1, 2, 3});
    const struct
    {
        const char *what;
        Values values;
        Vector3 expected;
    } cases[] = {
        {"emitter", {{"Target Position", 0}}, {10, 0, 0}},
        {"bone", {{"Target Position", 1}, {"Bone Name", "hand"}}, {1, 2, 3}},
        {"no such bone", {{"Target Position", 1}, {"Bone Name", "foot"}}, {7, 8, 9}},
        {"target", {{"Target Position", 2}}, {7, 8, 9}},
        {"position", {{"Target Position", 3}, {"Position", Vector3(1, 2, 3)}}, {8, 1, 3}},
        // At 2.25 seconds the animation of one second that starts at 1 stands at 1.25.
        {"keys", looping(0), {10, 12.5f, 0}},
        {"keys, looped", looping(1), {10, 2.5f, 0}},
        {"keys, there and back", looping(2), {10, 7.5f, 0}},
        {"projectile's target at the start", {{"Target Position", 5}}, {4, 0, 0}},
        {"projectile's target now", {{"Target Position", 6}}, {0, 5, 0}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPAttractorModifier, LOCAL, row.values);
        stage.State.Carrier = &model;
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
        {"linear", {{"Clock Type", 0}}, 0, {0.25f, 0.5f, 0.75f, 0.0f}},
        {"square", {{"Clock Type", 1}}, 0, {0.0f, 1.0f, 1.0f, 0.0f}},
        {"triangle", {{"Clock Type", 2}}, 0, {0.5f, 1.0f, 0.5f, 0.0f}},
        {"sine", {{"Clock Type", 3}}, 0, {1.0f, 0.5f, 0.0f, 0.5f}},
        {"linear, inverted", {{"Clock Type", 0}, {"Invert", true}}, 0, {0.75f, 0.5f, 0.25f, 1.0f}},
        // An ID of 16384 of 65535 is a quarter of an interval and 3.8e-6.
        {"linear, at random", {{"Random Start", true}}, 16384, {0.5f, 0.75f, 0.0f, 0.25f}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        Stage stage(kvrMKPClockModifier, LOCAL, row.values);
        Set_Value(*stage.Plugin, "Interval", 2.0f);
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

TEST(CircleTarget, ThrowsNewParticlesSoThatTheyLand)
{
    // 30 units at 10 a second are 3 seconds, in which -2 takes 9 from the height: (5 + 9) / 3 up.
    Stage stage(kvrMKPCircleTargetAccelerationModifier, WORLD,
                {{"Target Position", 2}, {"Acceleration", Vector3(0, 0, -2)}});
    stage.State.TargetPosition = {30, 0, 5};
    stage.State.ProjectileSpeed = 10.0f;
    const int old = stage.Add();
    stage.End_Frame();
    const int young = stage.Add();
    stage.Play();
    Expect_Near(stage.Buffer->Velocity[old], Vector3(0, 0, -1), "old");
    Expect_Near(stage.Buffer->Velocity[young], Vector3(10, 0, 14.0f / 3.0f), "young");
}

TEST(RandomWalk, StaysWithinItsScalesInTheSpaceOfTheGroup)
{
    Stage stage(kvrMKPRandomWalkModifier, WORLD,
                {{"Velocity Scale", Vector3(0, -20, 0)}, {"Position Scale", Vector3(0, 0, 3)}});
    vrMKPBuffer &buffer = *stage.Buffer;
    for (int i = 0; i < 64; ++i) stage.Add();
    buffer.Flags[63] = PARTICLE_STOPPED;
    buffer.MayHaveStopped = true;
    stage.Play();
    Vector3 most(0.0f);
    for (int slot = 0; slot < 63; ++slot)
        most = glm::max(most,
                        glm::abs(Vector3(buffer.Velocity[slot].x, buffer.Velocity[slot].y, buffer.Position[slot].z)));
    // Half of 100 times the scale and the frame; the group's y is the world's -x.
    EXPECT_TRUE(most.x > 400.0f && most.x <= 500.0f) << most.x;
    EXPECT_EQ(most.y, 0.0f);
    EXPECT_TRUE(most.z > 60.0f && most.z <= 75.0f) << most.z;
    EXPECT_EQ(buffer.Velocity[63], ZERO);
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
        {"bounce", LOCAL, elastic, {1, 2, 1}, {1, 2, -1}, {3, 0, -4}, {1, 2, 0.1f}, {3, 0, 2}, false},
        {"slide", WORLD, {}, {0, 0, 1}, {2, 0, -1}, {3, 0, -4}, {1, 0, 0.1f}, {3, 0, 0}, false},
        {"friction", WORLD, frictional, {0, 0, 1}, {0, 0, -1}, {30, 0, -4}, {0, 0, 0.1f}, {22.5f, 0, 2}, false},
        {"comes to rest", WORLD, frictional, {0, 0, 1}, {0, 0, -1}, {3, 0, -4}, {0, 0, 0.1f}, {0, 0, 0}, true},
        {"sticks", WORLD, {{"Sticky", true}}, {0, 0, 1}, {0, 0, -1}, {3, 0, -4}, {0, 0, 0.1f}, {3, 0, -4}, true},
        {"above", WORLD, {{"Z Offset", 1.0f}}, {0, 0, 2}, {0, 0, 0.5f}, {3, 0, -4}, {0, 0, 1.1f}, {3, 0, 0}, false},
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
    const int ARC = 1, GROUND = 2;
    const Values spreadArc = {{"Trajectory Types", ARC}, {"Gravity", 10.0f}, {"Spread", 2.0f}};
    const Values keyed = {{"Use Keyed Spread", true}, {"Keyed Spread", FloatKeys{{0, 0}, {1, 4}}}};
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
        {"blend", WORLD, {{"Blend", FloatKeys{{0, 0.5f}}}}, 0.25f, 0, {1.25f, 4, 0}},
        // The target at (10, 10, 0) in the world is 10 along the group's x.
        {"homing", LOCAL, {{"Track Mode", 1}}, 0.5f, 0, {5, 0, 0}},
        // 10 a second for 1 second of 2, less 5 of the fall.
        {"arc", WORLD, {{"Trajectory Types", ARC}, {"Gravity", 10.0f}}, 0.5f, 0, {5, 0, 5}},
        // The ground rises by 1 in 1.
        {"ground", WORLD, {{"Trajectory Types", GROUND}, {"Hover Height", 2.0f}}, 0.5f, 0, {5, 0, 7}},
        // An ID of 63 strays to (1, -1, -1), of which the part along the way is taken out.
        {"spread", WORLD, {{"Spread", 2.0f}}, 0.5f, 63, {5, -1, -1}},
        {"spread of the target's radius", WORLD, {{"Spread From Target Radius", true}}, 0.5f, 63, {5, -3, -3}},
        {"keyed spread", WORLD, keyed, 0.5f, 63, {5, -2, -2}},
        // Along (1, 0, 1) / sqrt(2) the stray has no part.
        {"spread of an arc", WORLD, spreadArc, 0.5f, 63, {6, -1, 4}},
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
    Stage stage(kvrMKPAttractorModifier, LOCAL);
    stage.Start_At(40);
    for (int i = 0; i < 40; ++i) stage.Add({0, 6, 0}, {1, 1, i % 4 == 3 ? INFINITY : 1.0f});
    Reports reports;
    stage.Modifier.Apply(*stage.Buffer, 0, {40, 24});
    EXPECT_EQ(reports.Get_Asserts(), std::vector<std::string>{"vel.Is_Valid()"});
    // A particle at rest isn't written, and so not checked.
    for (int slot = 0; slot < 64; ++slot)
        stage.Buffer->Flags[slot] = std::isfinite(stage.Buffer->Velocity[slot].z) ? 0 : uint32_t(PARTICLE_STOPPED);
    stage.Buffer->MayHaveStopped = true;
    stage.Play();
    EXPECT_EQ(reports.Get_Asserts().size(), 1u);
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
                Set_All_Numbers(*stage.Plugin, value, space == WORLD ? 99 : 0);
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
