#include "SpawnRun.h"

#include "Fakes.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <vector>

using namespace MKTest;
using testing::ElementsAre;
using testing::FloatEq;
using testing::FloatNear;
using testing::Pointwise;

namespace
{

constexpr float QUARTER_TURN = 1.5707964f;

// Ages are the time from a birth to the end of its frame; births are 1 / rate apart for each cluster.
const struct
{
    const char *what;
    float rate, delay, stop;
    int cluster;
    std::vector<float> steps;
    std::vector<std::vector<float>> ages;
    bool stops = false;
} Runs[] = {
    {"one more for each interval", 30, 0, 0, 1, {0.1f}, {{0.1f, 0.066667f, 0.033333f, 0.0f}}},
    {"over frames", 10, 0, 0, 1, {0.27f, 0.27f}, {{0.27f, 0.17f, 0.07f}, {0.24f, 0.14f, 0.04f}}},
    {"short frames", 10, 0, 0, 1, {0.06f, 0.03f, 0.03f}, {{0.06f}, {}, {0.02f}}},
    {"clusters a whole interval apart", 30, 0, 0, 2, {0.1f}, {{0.1f, 0.1f, 0.033333f, 0.033333f}}},
    {"a stop that counts from the end of the delay, in whose frame it may spawn past it",
     10,
     1,
     0.35f,
     1,
     {1.22f, 0.22f, 0.22f},
     {{0.22f, 0.12f, 0.02f}, {0.14f, 0.04f}, {}},
     true},
    {"a rate that is no number", NOT_A_NUMBER, 0, 0, 1, {0.1f}, {{}}},
};

TEST(SpawnRun, SpawnsAtTheTimesOfItsRate)
{
    for (const auto &row : Runs) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Set("Particles / Second", row.rate).Set("Start Delay", row.delay).Set("Stop Time", row.stop);
        run.Set("Cluster Size", row.cluster);
        for (size_t frame = 0; frame < row.steps.size(); ++frame)
            EXPECT_THAT(run.Ages(row.steps[frame]), Pointwise(FloatNear(1e-6f), row.ages[frame])) << "frame " << frame;
        EXPECT_EQ(run.Buffer->SpawnerState, row.stops ? SPAWNER_STOPPED : SPAWNER_SPAWNING);
    }
}

TEST(SpawnRun, ARateThatRisesFromZeroWaitsForAnIntervalAndMakesUpForNothing)
{
    SpawnRun slow;
    slow.Set("Particles / Second", 0.0f).Frame(0.1f);
    slow.Set("Particles / Second", 4.0f);
    EXPECT_THAT(slow.Ages(0.1f), ElementsAre());
    EXPECT_THAT(slow.Ages(0.1f), ElementsAre(FloatNear(0.05f, 1e-6f)));

    SpawnRun fast;
    fast.Set("Particles / Second", 0.0f).Frame(0.1f);
    fast.Set("Particles / Second", 15.0f);
    EXPECT_THAT(fast.Ages(0.1f), ElementsAre(FloatNear(0.1f, 1e-6f), FloatNear(0.033333f, 1e-6f)));
}

TEST(SpawnRun, TakesWhatRoomThereIs)
{
    SpawnRun run(34, 7);
    run.Set("Particles / Second", 100.0f).Set("Cluster Size", 5);
    // Of three clusters the second is cut short; its time is the last one.
    EXPECT_THAT(run.Ages(0.1f), ElementsAre(FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f),
                                            FloatNear(0.05f, 1e-6f), FloatNear(0.05f, 1e-6f)));
    EXPECT_NEAR(run.Buffer->LastSpawnTime, 0.05f, 1e-6f);
    EXPECT_THAT(run.Ages(0.1f), ElementsAre());
    EXPECT_NEAR(run.Buffer->LastSpawnTime, 0.05f, 1e-6f);
}

// A ramp from 0 to 1 over 2 seconds, at the age of one frame, which is also the factor of the velocity.
TEST(SpawnRun, ScalesByTheEnvelope)
{
    for (const float age : {0.5f, 2.5f}) { // the second one is looped
        SpawnRun run;
        run.Set("Use PPS Envelope", true).Set("Envelope Duration", 2.0f).Set("PPS Looping", 0);
        run.Set("PPS Envelope", FloatKeys{{0.0f, 0.0f}, {1.0f, 1.0f}});
        run.Set("Velocity", Vector3{0.0f, 0.0f, 1.0f}).Set("Particles / Second", 100.0f / age);
        run.Frame(age);
        EXPECT_FLOAT_EQ(run.Buffer->Velocity[0].z, 0.25f);
        // A quarter of 100 particles in a frame.
        EXPECT_NEAR(run.Buffer->Age[0] - run.Buffer->Age[1], age / 25.0f, 1e-4f);
        run.Set("Energy Effects Velocity", false).Buffer->Reset();
        run.Frame(age);
        EXPECT_FLOAT_EQ(run.Buffer->Velocity[0].z, 1.0f);
    }
}

TEST(SpawnRun, TakesDistanceForTimeUpToASpeed)
{
    SpawnRun run;
    run.Set("Distance As Time", true).Set("Particles / Second", 10.0f).Set("Max Dist. As Time", 10.0f);
    run.State.Move_To(Mat3DClass::From_Translation({0.27f, 0.0f, 0.0f}));
    // Births at 0, 0.1 and 0.2 units of 0.27, so at 0, 10 / 27 and 20 / 27 of the frame.
    EXPECT_THAT(run.Ages(0.1f),
                ElementsAre(FloatEq(0.1f), FloatNear(0.1f * 17 / 27, 1e-6f), FloatNear(0.1f * 7 / 27, 1e-6f)));
    Expect_Near(run.Buffer->Position[2], {0.2f, 0.0f, 0.0f});

    run.Buffer->Reset();
    run.Set("Max Dist. As Time", 1.5f);
    EXPECT_EQ(run.Ages(0.1f).size(), 2u); // 2.7 a second are too fast: 0.15
    run.Buffer->Reset();
    EXPECT_EQ(run.Ages(0.0f).size(), 0u);
}

TEST(SpawnRun, LaysWorldParticlesAlongTheWay)
{
    SpawnRun run;
    run.Set("Particles / Second", 10.0f).Set("Position", Vector3{0.0f, 1.0f, 0.0f});
    run.State.Move_To(Mat3DClass::From_Translation({2.7f, 0.0f, 0.0f}));
    run.Frame(0.27f);
    for (int i = 0; i < 3; ++i) {
        Expect_Near(run.Buffer->Position[i], {static_cast<float>(i), 1.0f, 0.0f});
        Expect_Near(run.Buffer->PreviousPosition[i], {0.0f, 1.0f, 0.0f});
    }
    // At 10 units a second, halved, and then at most 2: they have moved on by their share of the frame.
    run.Set("Inherit Velocity", true).Set("Inherited Vel. Scale", 0.5f).Buffer->Reset();
    run.Frame(0.27f);
    Expect_Near(run.Buffer->Velocity[1], {5.0f, 0.0f, 0.0f});
    Expect_Near(run.Buffer->Position[1], {1.0f + 5.0f * 0.17f, 1.0f, 0.0f});
    run.Set("Max Inherit Speed", 2.0f).Buffer->Reset();
    run.Frame(0.27f);
    Expect_Near(run.Buffer->Velocity[1], {2.0f, 0.0f, 0.0f});
    // Scale at spawn comes last.
    run.Buffer->Reset();
    run.Buffer->ScaleType = PARTICLE_SCALE_AT_SPAWN;
    run.State.PositionScale = 2.0f;
    run.State.PositionOffset = {0.0f, 0.0f, 7.0f};
    run.State.VelocityScale = 3.0f;
    run.Frame(0.27f);
    Expect_Near(run.Buffer->Velocity[1], {6.0f, 0.0f, 0.0f});
    Expect_Near(run.Buffer->Position[1], {2.0f * (1.0f + 2.0f * 0.17f), 2.0f, 7.0f});
    Expect_Near(run.Buffer->PreviousPosition[1], {0.0f, 1.0f, 0.0f});
}

TEST(SpawnRun, TurnsVelocitiesWithTheRenderable)
{
    const Mat3DClass quarter = Mat3DClass::From_Angles({0.0f, 0.0f, QUARTER_TURN});
    SpawnRun local(34, 64, MKP_TRANSFORM_LOCAL);
    local.Set("Velocity", Vector3{1.0f, 0.0f, 0.0f}).State.Place_At(quarter);
    local.Frame(0.1f);
    Expect_Near(local.Buffer->Velocity[0], {1.0f, 0.0f, 0.0f});
    Expect_Near(local.Buffer->Position[0], {0.1f, 0.0f, 0.0f});
    local.Set("Velocity in Local Space", false).Buffer->Reset();
    local.Frame(0.1f);
    Expect_Near(local.Buffer->Velocity[0], {0.0f, 1.0f, 0.0f});
    Expect_Near(local.Buffer->Position[0], {0.0f, 0.1f, 0.0f});

    SpawnRun world;
    world.Set("Velocity", Vector3{1.0f, 0.0f, 0.0f}).Set("Particles / Second", 10.0f);
    world.Set("Position", Vector3{1.0f, 0.0f, 0.0f}).State.Move_To(quarter);
    world.Frame(0.27f);
    Expect_Near(world.Buffer->Velocity[1], {1.0f, 0.0f, 0.0f}); // as it lay before
    world.Set("Hi-Res Rotate", true).Buffer->Reset();
    world.Frame(0.27f);
    const float angle = QUARTER_TURN * 10 / 27;
    const Vector3 turned{std::cos(angle), std::sin(angle), 0.0f};
    Expect_Near(world.Buffer->Velocity[1], turned);
    Expect_Near(world.Buffer->Position[1], turned * 1.17f);
}

TEST(SpawnRun, SnapsToTheTerrain)
{
    FakeWorld terrain;
    terrain.Height = 5.0f;
    terrain.Slope = 1.0f;
    for (const vrMKPTransformType space : {MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_WORLD}) {
        const float above = space == MKP_TRANSFORM_WORLD ? 0.0f : 3.0f;
        SpawnRun run(34, 64, space);
        run.Set("Terrain Snap", true).Set("Terrain Offset", 2.0f);
        run.State.Place_At(Mat3DClass::From_Translation({1.0f, 0.0f, 3.0f}));
        run.Frame(0.01f);
        EXPECT_EQ(run.Buffer->Position[0].z, 3.0f - above) << "no terrain";
        run.State.Terrain = &terrain;
        run.Buffer->Reset();
        run.Frame(0.01f);
        EXPECT_NEAR(run.Buffer->Position[0].z, 8.0f - above, 1e-5f);
    }
}

TEST(SpawnRun, DrawsPositionThenVelocityThenTheRandomValueInARingThatWraps)
{
    SpawnRun run;
    for (const auto &[name, type] : {std::pair{"Position", SHAPE_BOX}, {"Velocity", SHAPE_RADIAL}}) {
        ShapeStruct shape;
        shape.ShapeType = type;
        Parameter_Of<ShapeParameterClass>(*run.Plugin, name).Set_Value(shape);
    }
    run.Start_At(50);
    run.Set("Hollow Velocity", true).Set("Particles / Second", 400.0f).Buffer->Random.Seed(77);
    RandomClass drawn(77);
    const std::vector<int> slots = run.Frame(0.05f);
    ASSERT_EQ(slots.size(), 21u);
    for (const int slot : slots) {
        Vector3 position(0.0f);
        for (int axis = 0; axis < 3; ++axis) position[axis] = drawn.Get_Float(-10.0f, 10.0f);
        const float speed = drawn.Get_Float(0.0f, 10.0f);
        EXPECT_EQ(run.Buffer->PreviousPosition[slot], position);
        Expect_Near(run.Buffer->Velocity[slot], position * (speed / 10.0f));
        const auto high = static_cast<uint32_t>(drawn.Get_Int(0, 255));
        EXPECT_EQ(run.Buffer->ID[slot], high << 8 | static_cast<uint32_t>(drawn.Get_Int(0, 255)));
    }
    EXPECT_EQ(run.Buffer->Random.Get_State(), drawn.Get_State());
}

TEST(SpawnRun, StartsOverWhenItIsShownUnlessToldNotTo)
{
    SpawnRun run;
    run.Set("Stop Time", 0.1f).Frame(0.5f);
    ASSERT_EQ(run.Buffer->SpawnerState, SPAWNER_STOPPED);
    run.Set("Burst On Shown", false).Spawner().On_Shown(run.Buffer.Get());
    EXPECT_EQ(run.Buffer->SpawnerState, SPAWNER_STOPPED);
    run.Set("Burst On Shown", true).Spawner().On_Shown(run.Buffer.Get());
    EXPECT_EQ(run.Buffer->SpawnerState, SPAWNER_WAITING);
    EXPECT_GT(run.Frame(0.05f).size(), 0u);
}

TEST(SpawnRun, SizesTheBuffer)
{
    const struct
    {
        const char *what;
        float rate, stop, life;
        bool distance;
        int expected;
    } rows[] = {
        {"endless, with a tenth of a second to spare", 30, 0, 1, false, 33},
        {"a stop after all have died", 30, 3, 2, false, 63},
        {"a stop at the first death", 30, 2, 2, false, 63},
        {"ten times the rate where distance is time", 30, 0, 1, true, 330},
        {"a life that is no number", 30, 0, NOT_A_NUMBER, false, 1},
        {"beyond all ints", 3e9f, 0, 1, false, INT_MAX},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Set("Particles / Second", row.rate).Set("Stop Time", row.stop).Set("Distance As Time", row.distance);
        const SmartPtr<vrMKPStomper> stomper(new FixedStomper(row.life));
        EXPECT_EQ(run.Spawner().Get_Max_Particles(run.State, nullptr, stomper.Get()), row.expected);
    }
}

TEST(SpawnRun, GoesOnSpawningWhenHiddenWhereItHasAnEnd)
{
    const struct
    {
        const char *what;
        bool inScene, hidden;
        float stop;
        bool hideTrumps, killOnRemoval;
        bool expected;
    } rows[] = {
        {"hidden, endless", true, true, 0, false, false, false},
        {"hidden, with an end", true, true, 1, false, false, true},
        {"removed, with an end", false, false, 1, false, false, true},
        {"hiding trumps", true, true, 1, true, false, false},
        {"the stomper ends all", false, false, 1, false, true, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Set("Stop Time", row.stop).Set("Hide Trumps Stop Time", row.hideTrumps);
        run.State.InScene = row.inScene;
        run.State.Hidden = row.hidden;
        run.Buffer->SpawnerState = SPAWNER_SPAWNING;
        const SmartPtr<vrMKPPlugin> stomper = Make_Plugin(19, {{"Kill On Removal", row.killOnRemoval}});
        EXPECT_EQ(run.Spawner().Can_Spawn(run.Buffer.Get(), run.State, dynamic_cast<vrMKPStomper *>(stomper.Get())),
                  row.expected);
    }
}

const struct
{
    const char *what;
    int id;
    Vector3 (*turn)(const Vector3 &position, const Vector3 &velocity);
} Sources[] = {
    {"as drawn", 34, [](const Vector3 &, const Vector3 &velocity) { return velocity; }},
    {"outward", 50,
     [](const Vector3 &position, const Vector3 &velocity) { return velocity + Particle::Unit(position) * 5.0f; }},
    {"along the position", 43,
     [](const Vector3 &position, const Vector3 &velocity) {
         return Mat3DClass::Look_Along(position).Rotate(velocity);
     }},
};

// 300 newborns are several blocks, some of which have a number that is drawn again.
TEST(SpawnRun, DrawsBlocksAsOneByOne)
{
    for (const auto &row : Sources) {
        SCOPED_TRACE(row.what);
        SpawnRun run(row.id, 310);
        run.Set("Particles / Second", 2990.0f);
        if (row.id == 50) run.Set("Outward Speed", 5.0f);
        if (row.id == 43) run.Set("Velocity Alignment", 1);
        auto &ball = Parameter_Of<ShapeParameterClass>(*run.Plugin, "Position");
        auto &box = Parameter_Of<ShapeParameterClass>(*run.Plugin, "Velocity");
        ball.Set_Value({.ShapeType = SHAPE_SPHERE, .C = 2.0f, .D = 6.0f});
        box.Set_Value({.ShapeType = SHAPE_BOX, .BoxMinimum = Vector3(-1.0f), .BoxMaximum = Vector3(3.0f)});
        for (uint32_t seed = 0; seed < 30; ++seed) {
            run.Buffer->Clear_Particles();
            run.Buffer->FirstSpawn = true;
            run.Buffer->SpawnClock = 0.0f;
            RandomClass random(seed * 0x9e3779b9u);
            run.Buffer->Random.Seed(random.Get_State());
            const std::vector<int> slots = run.Frame(0.1f);
            ASSERT_EQ(slots.size(), 300u);
            for (const int slot : slots) {
                const Vector3 position = ball.Sample(random, false, false, nullptr, Vector3(0.0f));
                const Vector3 velocity = box.Sample(random, false, false, nullptr, position);
                ASSERT_EQ(run.Buffer->ProjectileStartingPosition[slot], position) << seed << " " << slot;
                ASSERT_EQ(run.Buffer->Velocity[slot], row.turn(position, velocity)) << seed << " " << slot;
                ASSERT_EQ(run.Buffer->ID[slot], random.Get_Word());
            }
            ASSERT_EQ(run.Buffer->Random.Get_State(), random.Get_State());
        }
    }
}

TEST(SpawnRun, SeedsItsRuns)
{
    SpawnRun run;
    run.State.Seed = 55;
    EXPECT_EQ(run.Set("Random Seed", -3).Spawner().Get_Run_Seed(run.State), 0xfffffffdu);
    EXPECT_EQ(run.Set("Random Seed Source", 1).Spawner().Get_Run_Seed(run.State), 55u);
    run.Set("Random Seed", 0).Set("Random Seed Source", 0);
    const uint32_t seed = run.Spawner().Get_Run_Seed(run.State);
    EXPECT_EQ(run.Spawner().Get_Run_Seed(run.State), seed + 1);
}

TEST(SpawnRun, PassesAlternateIndicesOfItsMask)
{
    SpawnRun run;
    Parameter_Of<MaskParameter>(*run.Plugin, "Alt Indices").Set_Value(0x80000002);
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(-1));
    EXPECT_FALSE(run.Spawner().Passes_Alt_Index(0));
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(31));
    EXPECT_FALSE(run.Spawner().Passes_Alt_Index(32));
}

} // namespace
