#include "SpawnRun.h"

#include "vrGraphics/particle/vrWorld.h"
#include "MKLib/Parameters/KeyedParameters.h"

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

using Frames = std::vector<std::vector<float>>;

// Ages are the time from a birth to the end of its frame; births are 1 / rate apart for each cluster.
const struct
{
    const char *what;
    float rate, delay, stop;
    int cluster;
    std::vector<float> steps;
    Frames ages;
    vrMKPSpawnerState state;
    bool first;
} Runs[] = {
    {"one at once and one more for each interval",
     30,
     0,
     0,
     1,
     {0.1f},
     {{0.1f, 0.066667f, 0.033333f, 0.0f}},
     SPAWNER_SPAWNING,
     false},
    {"an interval goes on in the next frame",
     10,
     0,
     0,
     1,
     {0.27f, 0.27f},
     {{0.27f, 0.17f, 0.07f}, {0.24f, 0.14f, 0.04f}},
     SPAWNER_SPAWNING,
     false},
    {"a frame shorter than an interval",
     10,
     0,
     0,
     1,
     {0.06f, 0.03f, 0.03f},
     {{0.06f}, {}, {0.02f}},
     SPAWNER_SPAWNING,
     false},
    {"only whole clusters", 30, 0, 0, 10, {0.1f}, {std::vector<float>(10, 0.1f)}, SPAWNER_SPAWNING, false},
    {"clusters a whole interval apart",
     30,
     0,
     0,
     2,
     {0.1f},
     {{0.1f, 0.1f, 0.033333f, 0.033333f}},
     SPAWNER_SPAWNING,
     false},
    {"a start delay", 10, 0.25f, 0, 1, {0.2f, 0.2f}, {{}, {0.15f, 0.05f}}, SPAWNER_SPAWNING, false},
    {"the frame of the stop may spawn past it",
     10,
     0,
     0.35f,
     1,
     {0.22f, 0.22f, 0.22f},
     {{0.22f, 0.12f, 0.02f}, {0.14f, 0.04f}, {}},
     SPAWNER_STOPPED,
     false},
    {"the stop counts from the end of the delay",
     8,
     2,
     1,
     1,
     {2.95f, 0.1f, 0.1f},
     {{0.95f, 0.825f, 0.7f, 0.575f, 0.45f, 0.325f, 0.2f, 0.075f}, {0.05f}, {}},
     SPAWNER_STOPPED,
     false},
    {"a rate that is no number", NOT_A_NUMBER, 0, 0, 1, {0.1f}, {{}}, SPAWNER_SPAWNING, false},
};

TEST(SpawnRun, SpawnsAtTheTimesOfItsRate)
{
    for (const auto &row : Runs) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Float("Particles / Second", row.rate).Float("Start Delay", row.delay).Float("Stop Time", row.stop);
        run.Int("Cluster Size", row.cluster);
        for (size_t frame = 0; frame < row.steps.size(); ++frame)
            EXPECT_THAT(run.Ages(row.steps[frame]), Pointwise(FloatNear(1e-6f), row.ages[frame])) << "frame " << frame;
        EXPECT_EQ(run.Buffer->SpawnerState, row.state);
        EXPECT_EQ(run.Buffer->FirstSpawn, row.first);
    }
}

TEST(SpawnRun, ARateThatRisesFromZeroWaitsForAnIntervalAndMakesUpForNothing)
{
    SpawnRun slow;
    slow.Float("Particles / Second", 0.0f).Frame(0.1f);
    slow.Float("Particles / Second", 4.0f);
    EXPECT_THAT(slow.Ages(0.1f), ElementsAre());
    EXPECT_THAT(slow.Ages(0.1f), ElementsAre(FloatNear(0.05f, 1e-6f)));

    SpawnRun fast;
    fast.Float("Particles / Second", 0.0f).Frame(0.1f);
    fast.Float("Particles / Second", 15.0f);
    EXPECT_THAT(fast.Ages(0.1f), ElementsAre(FloatNear(0.1f, 1e-6f), FloatNear(0.033333f, 1e-6f)));
}

TEST(SpawnRun, TakesWhatRoomThereIs)
{
    SpawnRun run(34, 7);
    run.Float("Particles / Second", 100.0f).Int("Cluster Size", 5);
    // Of three clusters the second is cut short; its time is the last one.
    EXPECT_THAT(run.Ages(0.1f), ElementsAre(FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f), FloatEq(0.1f),
                                            FloatNear(0.05f, 1e-6f), FloatNear(0.05f, 1e-6f)));
    EXPECT_NEAR(run.Buffer->LastSpawnTime, 0.05f, 1e-6f);
    EXPECT_NEAR(run.Buffer->SpawnInterval, 0.05f, 1e-6f);
    EXPECT_EQ(run.Buffer->ClusterSize, 5);
    EXPECT_THAT(run.Ages(0.1f), ElementsAre());
    EXPECT_NEAR(run.Buffer->LastSpawnTime, 0.05f, 1e-6f);
}

TEST(SpawnRun, ARingThatWrapsIsFilledLikeOneThatDoesNot)
{
    SpawnRun runs[] = {SpawnRun(34, 40), SpawnRun(34, 40)};
    runs[0].Start_At(0);
    runs[1].Start_At(33);
    std::vector<int> slots[2];
    for (int i = 0; i < 2; ++i) {
        runs[i].Shape("Position", SHAPE_SPHERE).Shape("Velocity", SHAPE_SPHERE).Float("Particles / Second", 300.0f);
        runs[i].State.Move_To(Mat3DClass::From_Translation({1.0f, 2.0f, 3.0f}));
        slots[i] = runs[i].Frame(0.1f);
    }
    ASSERT_EQ(slots[0].size(), 31u);
    ASSERT_EQ(slots[1].size(), 31u);
    EXPECT_EQ(slots[1][7], 0);
    const vrMKPBuffer &a = *runs[0].Buffer;
    const vrMKPBuffer &b = *runs[1].Buffer;
    for (size_t i = 0; i < 31; ++i) {
        const int x = slots[0][i];
        const int y = slots[1][i];
        EXPECT_EQ(a.Position[x], b.Position[y]);
        EXPECT_EQ(a.Velocity[x], b.Velocity[y]);
        EXPECT_EQ(a.Age[x], b.Age[y]);
        EXPECT_EQ(a.ID[x], b.ID[y]);
        EXPECT_EQ(a.Number[x], b.Number[y]);
        EXPECT_EQ(a.SortingRelativeToGroup[x], b.SortingRelativeToGroup[y]);
    }
}

// A ramp from 0 to 1 over 2 seconds, at the age of one frame, which is also the factor of the velocity.
const struct
{
    const char *what;
    int looping;
    float energy, age, expected;
} Envelopes[] = {
    {"on the ramp", 0, 1, 0.5f, 0.25f},
    {"looped", 0, 1, 2.5f, 0.25f},
};

TEST(SpawnRun, ScalesByTheEnvelope)
{
    for (const auto &row : Envelopes) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Bool("Use PPS Envelope", true).Float("Envelope Duration", 2.0f).Enum("PPS Looping", row.looping);
        run.Shape("Velocity", SHAPE_POINT, {0.0f, 0.0f, 1.0f}).Float("Particles / Second", 100.0f / row.age);
        auto &curve = Parameter_Of<KeyedFloatParameterClass>(*run.Plugin, "PPS Envelope");
        curve.Clear_Keys();
        curve.Add_Key(0.0f, 0.0f);
        curve.Add_Key(1.0f, 1.0f);
        run.State.Energy = row.energy;
        run.Frame(row.age);
        EXPECT_FLOAT_EQ(run.Buffer->Velocity[0].z, row.expected);
        // Of 100 particles in a frame at full strength.
        EXPECT_NEAR(run.Buffer->Age[0] - run.Buffer->Age[1], row.age / (100.0f * row.expected), 1e-4f);
        run.Bool("Energy Effects Velocity", false).Buffer->Reset();
        run.Frame(row.age);
        EXPECT_FLOAT_EQ(run.Buffer->Velocity[0].z, 1.0f);
    }
}

TEST(SpawnRun, TakesDistanceForTimeUpToASpeed)
{
    SpawnRun run;
    run.Bool("Distance As Time", true).Float("Particles / Second", 10.0f).Float("Max Dist. As Time", 10.0f);
    run.State.Move_To(Mat3DClass::From_Translation({0.27f, 0.0f, 0.0f}));
    // Births at 0, 0.1 and 0.2 units of 0.27, so at 0, 10 / 27 and 20 / 27 of the frame.
    EXPECT_THAT(run.Ages(0.1f),
                ElementsAre(FloatEq(0.1f), FloatNear(0.1f * 17 / 27, 1e-6f), FloatNear(0.1f * 7 / 27, 1e-6f)));
    Expect_Near(run.Buffer->Position[2], {0.2f, 0.0f, 0.0f});

    run.Buffer->Reset();
    run.Float("Max Dist. As Time", 1.5f);
    EXPECT_EQ(run.Ages(0.1f).size(), 2u); // 2.7 a second are too fast: 0.15
    run.Buffer->Reset();
    EXPECT_EQ(run.Ages(0.0f).size(), 0u);
}

TEST(SpawnRun, LaysWorldParticlesAlongTheWay)
{
    SpawnRun run;
    run.Float("Particles / Second", 10.0f).Shape("Position", SHAPE_POINT, {0.0f, 1.0f, 0.0f});
    run.State.Move_To(Mat3DClass::From_Translation({2.7f, 0.0f, 0.0f}));
    run.Frame(0.27f);
    for (int i = 0; i < 3; ++i) {
        Expect_Near(run.Buffer->Position[i], {static_cast<float>(i), 1.0f, 0.0f});
        Expect_Near(run.Buffer->PreviousPosition[i], {0.0f, 1.0f, 0.0f});
        Expect_Near(run.Buffer->ProjectileStartingPosition[i], {0.0f, 1.0f, 0.0f});
    }
    // At 10 units a second, halved, and then at most 2: they have moved on by their share of the frame.
    run.Bool("Inherit Velocity", true).Float("Inherited Vel. Scale", 0.5f).Buffer->Reset();
    run.Frame(0.27f);
    Expect_Near(run.Buffer->Velocity[1], {5.0f, 0.0f, 0.0f});
    Expect_Near(run.Buffer->Position[1], {1.0f + 5.0f * 0.17f, 1.0f, 0.0f});
    run.Float("Max Inherit Speed", 2.0f).Buffer->Reset();
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
    local.Shape("Velocity", SHAPE_POINT, {1.0f, 0.0f, 0.0f}).State.Place_At(quarter);
    local.Frame(0.1f);
    Expect_Near(local.Buffer->Velocity[0], {1.0f, 0.0f, 0.0f});
    Expect_Near(local.Buffer->Position[0], {0.1f, 0.0f, 0.0f});
    local.Bool("Velocity in Local Space", false).Buffer->Reset();
    local.Frame(0.1f);
    Expect_Near(local.Buffer->Velocity[0], {0.0f, 1.0f, 0.0f});
    Expect_Near(local.Buffer->Position[0], {0.0f, 0.1f, 0.0f});

    SpawnRun world;
    world.Shape("Velocity", SHAPE_POINT, {1.0f, 0.0f, 0.0f}).Float("Particles / Second", 10.0f);
    world.Shape("Position", SHAPE_POINT, {1.0f, 0.0f, 0.0f}).State.Move_To(quarter);
    world.Frame(0.27f);
    Expect_Near(world.Buffer->Velocity[1], {1.0f, 0.0f, 0.0f}); // as it lay before
    world.Bool("Hi-Res Rotate", true).Buffer->Reset();
    world.Frame(0.27f);
    const float angle = QUARTER_TURN * 10 / 27;
    const Vector3 turned{std::cos(angle), std::sin(angle), 0.0f};
    Expect_Near(world.Buffer->Velocity[1], turned);
    Expect_Near(world.Buffer->Position[1], turned * 1.17f);
}

struct FlatTerrain final : vrTerrain
{
    float Get_Height(float x, float) const override { return 5.0f + x; }
    bool Intersect_Segment(const Vector3 &, const Vector3 &, Vector3 &, Vector3 &) const override { return false; }
};

TEST(SpawnRun, SnapsToTheTerrainWithDrawsThatNoSeedRepeats)
{
    const FlatTerrain terrain;
    for (const vrMKPTransformType space : {MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_WORLD}) {
        SpawnRun run(34, 64, space);
        run.Bool("Terrain Snap", true).Float("Terrain Offset", 2.0f).Float("Terrain Offset Variation", -1.0f);
        run.State.Place_At(Mat3DClass::From_Translation({1.0f, 0.0f, 3.0f}));
        run.State.Random.Seed(9);
        run.Frame(0.01f);
        EXPECT_EQ(run.Buffer->Position[0].z, 0.0f + (space == MKP_TRANSFORM_WORLD ? 3.0f : 0.0f)); // no terrain
        run.State.Terrain = &terrain;
        run.Buffer->Reset();
        run.Frame(0.01f);
        RandomClass drawn(9);
        const float inWorld = 5.0f + 1.0f + 2.0f + drawn.Get_Float(-1.0f, 1.0f);
        EXPECT_NEAR(run.Buffer->Position[0].z, space == MKP_TRANSFORM_WORLD ? inWorld : inWorld - 3.0f, 1e-5f);
        EXPECT_EQ(run.State.Random.Get_State(), drawn.Get_State());
    }
}

TEST(SpawnRun, WritesEachChannelOfANewborn)
{
    for (const vrMKPTransformType space : {MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_WORLD}) {
        SpawnRun run(34, 64, space);
        run.Shape("Position", SHAPE_POINT, {0.0f, 0.0f, 1.0f});
        run.State.Place_At(Mat3DClass::From_Translation({0.0f, 0.0f, 2.0f}));
        run.State.Camera = Mat3DClass::From_Translation({0.0f, 0.0f, 10.0f});
        run.State.TargetPosition = {1.0f, 2.0f, 3.0f};
        run.State.Dynamic[7] = 12.0f;
        vrMKPBuffer &buffer = *run.Buffer;
        buffer.NextSerial = 0xffffffff;
        buffer.Flags[1] = PARTICLE_STOPPED;
        buffer.Rotation[1] = 7;
        buffer.Time[1] = 0.5f;
        ASSERT_EQ(run.Frame(0.05f).size(), 2u);
        EXPECT_EQ(buffer.Number[0], 0xffffffffu);
        EXPECT_EQ(buffer.Number[1], 0u);
        EXPECT_EQ(buffer.NextSerial, 1u);
        EXPECT_EQ(buffer.ProjectileTargetPosition[1], Vector3(1.0f, 2.0f, 3.0f));
        EXPECT_EQ(buffer.ProjectileFlightDuration[1], 12.0f);
        EXPECT_EQ(buffer.MaxAge[1], -1.0f);
        EXPECT_EQ(buffer.Time[1], 0.0f);
        EXPECT_EQ(buffer.Flags[1], 0u);
        EXPECT_EQ(buffer.Size[1], Vector2(1.0f, 1.0f));
        EXPECT_EQ(buffer.Rotation[1], 0u);
        EXPECT_FLOAT_EQ(buffer.SortingRelativeToGroup[1], 8.0f * 8.0f - 7.0f * 7.0f);
    }
}

TEST(SpawnRun, DrawsPositionThenVelocityThenTheRandomValue)
{
    SpawnRun run;
    run.Shape("Position", SHAPE_BOX).Shape("Velocity", SHAPE_RADIAL).Bool("Hollow Velocity", true);
    run.Float("Particles / Second", 400.0f).Buffer->Random.Seed(77);
    ASSERT_EQ(run.Frame(0.05f).size(), 21u);
    RandomClass drawn(77);
    for (int i = 0; i < 21; ++i) {
        Vector3 position(0.0f);
        for (int axis = 0; axis < 3; ++axis) position[axis] = drawn.Get_Float(-10.0f, 10.0f);
        const float speed = drawn.Get_Float(0.0f, 10.0f);
        EXPECT_EQ(run.Buffer->PreviousPosition[i], position);
        Expect_Near(run.Buffer->Velocity[i], position * (speed / 10.0f));
        const auto high = static_cast<uint32_t>(drawn.Get_Int(0, 255));
        EXPECT_EQ(run.Buffer->ID[i], high << 8 | static_cast<uint32_t>(drawn.Get_Int(0, 255)));
    }
    EXPECT_EQ(run.Buffer->Random.Get_State(), drawn.Get_State());
}

TEST(SpawnRun, StartsOverWhenItIsShownUnlessToldNotTo)
{
    SpawnRun run;
    run.Float("Stop Time", 0.1f).Frame(0.5f);
    ASSERT_EQ(run.Buffer->SpawnerState, SPAWNER_STOPPED);
    run.Bool("Burst On Shown", false).Spawner().On_Shown(run.Buffer.Get());
    EXPECT_EQ(run.Buffer->SpawnerState, SPAWNER_STOPPED);
    run.Bool("Burst On Shown", true).Spawner().On_Shown(run.Buffer.Get());
    EXPECT_EQ(run.Buffer->SpawnerState, SPAWNER_WAITING);
    EXPECT_GT(run.Frame(0.05f).size(), 0u);
    run.Spawner().On_Shown(nullptr);
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
        {"a negative rate", -30, 0, 1, false, 1},
        {"no number", NOT_A_NUMBER, 0, 1, false, 1},
        {"a life that is no number", 30, 0, NOT_A_NUMBER, false, 1},
        {"beyond all ints", 3e9f, 0, 1, false, INT_MAX},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Float("Particles / Second", row.rate).Float("Stop Time", row.stop).Bool("Distance As Time", row.distance);
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
        vrMKPSpawnerState state;
        bool expected;
    } rows[] = {
        {"hidden, endless", true, true, 0, false, false, SPAWNER_SPAWNING, false},
        {"hidden, with an end", true, true, 1, false, false, SPAWNER_SPAWNING, true},
        {"removed, with an end", false, false, 1, false, false, SPAWNER_SPAWNING, true},
        {"hiding trumps", true, true, 1, true, false, SPAWNER_SPAWNING, false},
        {"the stomper ends all", false, false, 1, false, true, SPAWNER_SPAWNING, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run;
        run.Float("Stop Time", row.stop).Bool("Hide Trumps Stop Time", row.hideTrumps);
        run.State.InScene = row.inScene;
        run.State.Hidden = row.hidden;
        run.Buffer->SpawnerState = row.state;
        const SmartPtr<vrMKPPlugin> stomper = Make_Plugin(19);
        Parameter_Of<BoolParameter>(*stomper, "Kill On Removal").Set_Value(row.killOnRemoval);
        EXPECT_EQ(run.Spawner().Can_Spawn(run.Buffer.Get(), run.State, dynamic_cast<vrMKPStomper *>(stomper.Get())),
                  row.expected);
    }
}

TEST(SpawnRun, SeedsItsRuns)
{
    SpawnRun run;
    run.State.Seed = 55;
    EXPECT_EQ(run.Int("Random Seed", -3).Spawner().Get_Run_Seed(run.State), 0xfffffffdu);
    EXPECT_EQ(run.Enum("Random Seed Source", 1).Spawner().Get_Run_Seed(run.State), 55u);
    run.Int("Random Seed", 0).Enum("Random Seed Source", 0);
    const uint32_t seed = run.Spawner().Get_Run_Seed(run.State);
    EXPECT_EQ(run.Spawner().Get_Run_Seed(run.State), seed + 1);
}

TEST(SpawnRun, PassesAlternateIndicesOfItsMask)
{
    SpawnRun run;
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(3));
    Parameter_Of<MaskParameter>(*run.Plugin, "Alt Indices").Set_Value(0x80000002);
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(-1));
    EXPECT_FALSE(run.Spawner().Passes_Alt_Index(0));
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(1));
    EXPECT_TRUE(run.Spawner().Passes_Alt_Index(31));
    EXPECT_FALSE(run.Spawner().Passes_Alt_Index(32));
}

} // namespace
