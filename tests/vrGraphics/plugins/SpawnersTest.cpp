#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

#include "Fakes.h"
#include "SpawnRun.h"
#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <optional>

using namespace MKTest;

namespace
{

TEST(ShapeSpawners, SpeedsOutwardFromTheOrigin)
{
    SpawnRun run(50);
    run.Set("Position", Vector3{0.0f, -3.0f, 4.0f}).Set("Outward Speed", 10.0f);
    run.Set("Velocity", Vector3{1.0f, 0.0f, 0.0f}).Frame(0.01f);
    Expect_Near(run.Buffer->Velocity[0], {1.0f, -6.0f, 8.0f});
    run.Set("Position", Vector3(0.0f)).Buffer->Reset();
    run.Frame(0.01f);
    Expect_Near(run.Buffer->Velocity[0], {1.0f, 0.0f, 0.0f});
}

// The position is one step up the z axis ahead of the alignment, the velocity likewise; the target lies along y, the
// bone along x.
TEST(ShapeSpawners, AlignWithBonesAndTargets)
{
    const Vector3 x{1.0f, 0.0f, 0.0f};
    const Vector3 y{0.0f, 1.0f, 0.0f};
    const Vector3 z{0.0f, 0.0f, 1.0f};
    const struct
    {
        const char *what;
        int position, velocity;
        bool positionAway, velocityAway;
        const char *bone;
        Vector3 expectedPosition, expectedVelocity;
    } rows[] = {
        {"to the target", 2, 0, false, false, "hand", y, z},
        {"to the bone, velocity along the position", 1, 1, false, false, "hand", x, x},
        {"against the position", 1, 1, false, true, "hand", x, -x},
        {"no such bone", 1, 1, false, false, "foot", y, y},
        {"from the position to the bone", 0, 2, false, false, "hand", z, Vector3(4.0f, 0.0f, -1.0f) / std::sqrt(17.0f)},
        {"from the position to the target", 0, 3, false, false, "", z, Vector3(0.0f, 1.0f, -1.0f) / std::sqrt(2.0f)},
    };
    const FakeWorld model({4, 0, 0});
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run(43);
        run.Set("Position Alignment", row.position).Set("Velocity Alignment", row.velocity);
        run.Set("Pos. Alignment Direction", row.positionAway).Set("Vel. Alignment Direction", row.velocityAway);
        run.Set("Bone Name", row.bone);
        run.State.Carrier = &model;
        run.State.TargetPosition = y;
        run.Set("Position", z).Set("Velocity", z).Frame(0.01f);
        Expect_Near(run.Buffer->PreviousPosition[0], row.expectedPosition);
        Expect_Near(run.Buffer->Velocity[0], row.expectedVelocity);
    }
}

TEST(ShapeSpawners, TakeAnAreasRateForADensity)
{
    const struct
    {
        const char *what;
        int area;
        float radius, low, high, most, expected;
    } rows[] = {
        {"5 in each thousand of pi r^2 h", 0, 10, -10, 10, 1000, 31.415927f},
        {"a flat cylinder is one high", 0, 10, 0, 0.5f, 1000, 1.5707964f},
        {"3 pi r^3 / 4", 1, 10, 0, 0, 1000, 11.780972f},
        {"pi r^2", 2, 10, 0, 0, 1000, 1.5707964f},
        {"no radius", 2, 0, 0, 0, 1000, 0},
        {"capped", 0, 10, -10, 10, 25, 25},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run(115);
        run.Set("AOE Shape", row.area).Set("Particles / Second", 5.0f).Set("Max Spawn Per Second", row.most);
        run.Set("Cylinder Min Height", row.low).Set("Cylinder Max Height", row.high);
        run.State.Dynamic[7] = row.radius;
        EXPECT_FLOAT_EQ(run.Spawner().Get_Spawn_Rate(run.State, nullptr), row.expected);
        EXPECT_EQ(run.Spawner().Get_Peak_Rate(run.State, nullptr), row.most);
    }
}

TEST(ShapeSpawners, ReportABadFillingOnce)
{
    SpawnRun run;
    run.Set("Position", Vector3(NOT_A_NUMBER)).Set("Velocity", Vector3(INF));
    run.State.Move_To(Mat3DClass::From_Translation(Vector3(INF)));
    run.Set("Inherit Velocity", true);
    MKTest::Reports reports;
    EXPECT_GT(run.Frame(0.1f).size(), 1u);
    EXPECT_THAT(reports.Get_Asserts(),
                testing::UnorderedElementsAre("position.Is_Valid()", "velocity.Is_Valid()",
                                              "emitter_velocity.Is_Valid()", "scaled_emitter_velocity.Is_Valid()"));
}

TEST(ShapeSpawners, SurviveWhateverAFileHolds)
{
    for (const int id : {34, 43, 50, 115}) {
        for (const float bad : {NOT_A_NUMBER, INF, -INF, 3e38f, -1e9f, 0.0f, 1e-40f}) {
            for (const vrMKPTransformType space : {MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_WORLD}) {
                SCOPED_TRACE(Plugin_Label(id) + " " + std::to_string(bad));
                MKTest::Reports reports;
                SpawnRun run(id, 8, space);
                Set_All_Numbers(*run.Plugin, bad, bad > 0.0f ? INT_MAX : INT_MIN);
                for (const float rate : {bad, 30.0f, INF}) {
                    run.Set("Particles / Second", rate).Set("Start Delay", 0.0f).Set("Stop Time", 0.0f);
                    run.State.Dynamic[7] = bad;
                    for (const float step : {0.1f, 0.0f, -1.0f, bad}) run.Frame(step);
                    EXPECT_LE(run.Buffer->ActiveCount, 8);
                    run.Buffer->Reset();
                }
                const SmartPtr<vrMKPStomper> stomper(new FixedStomper(bad));
                EXPECT_GE(run.Spawner().Get_Max_Particles(run.State, nullptr, stomper.Get()), 1);
            }
        }
    }
}

/// What an old file may hold of the retired rate, and the rate of today.
struct OldRate
{
    std::optional<float> perInterval;
    std::optional<float> interval;
    std::optional<bool> bursting;
    std::optional<float> perSecond;
};

SmartPtr<vrMKPPlugin> Load_Old(int id, const OldRate &old)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
    const Bytes file = Write_Chunks([&](ChunkFile::ChunkFileWriterClass &writer) {
        writer.Open_Chunk(0u);
        if (old.perInterval) Write_Simple_Value(writer, 100, *old.perInterval);
        if (old.interval) Write_Simple_Value(writer, 101, *old.interval);
        if (old.bursting) Write_Simple_Value(writer, 102, *old.bursting);
        if (old.perSecond) Write_Simple_Value(writer, 116, *old.perSecond);
        writer.Close_Chunk();
    });
    Read_Chunks(file, [&](ChunkFile::ChunkFileReaderClass &reader) { EXPECT_TRUE(plugin->Load(&reader)); });
    return plugin;
}

void Expect_Rate(const vrMKPPlugin &plugin, float perSecond, int cluster, const std::string &what)
{
    EXPECT_EQ(Parameter_Of<RangedFloatParameter>(plugin, "Particles / Second").Get_Value(), perSecond) << what;
    EXPECT_EQ(Parameter_Of<RangedIntParameter>(plugin, "Cluster Size").Get_Value(), cluster) << what;
}

vrMKPSpawner &Spawner(const SmartPtr<vrMKPPlugin> &plugin)
{
    return dynamic_cast<vrMKPSpawner &>(*plugin);
}

TEST(Spawners, FoldTheRatesOfOldFiles)
{
    const struct
    {
        const char *what;
        OldRate old;
        float perSecond;
        int cluster;
        int logs = 0;
    } cases[] = {
        {"a file of today", {{}, {}, {}, 7.0f}, 7.0f, 1},
        {"the count alone, over the default of 1", {12.0f, {}, {}, {}}, 12.0f, 1},
        {"a burst truncates its cluster, not its rate", {12.75f, 4.0f, true, {}}, 3.1875f, 12},
        {"the burst alone", {{}, {}, true, {}}, 30.0f, 30},
        {"it goes over a rate of the same file", {10.0f, 2.0f, {}, 7.0f}, 5.0f, 1},
        {"no interval", {30.0f, 0.0f, {}, {}}, 30.0f, 1, 1},
        {"not a number", {NOT_A_NUMBER, 1.0f, true, {}}, 30.0f, 0, 1},
        {"endless", {INF, 1.0f, true, {}}, 30.0f, INT_MAX, 1},
    };
    for (const int id : {34, 35, 39, 43, 50, 115})
        for (const auto &row : cases) {
            const MKTest::Reports reports;
            const SmartPtr<vrMKPPlugin> plugin = Load_Old(id, row.old);
            EXPECT_TRUE(Spawner(plugin).Post_Load());
            Expect_Rate(*plugin, row.perSecond, row.cluster, Plugin_Label(id) + ": " + row.what);
            EXPECT_EQ(reports.Count_Logs("give no rate"), row.logs) << row.what;
        }
}

TEST(Spawners, FoldOnlyOnceAndNotInAClone)
{
    const SmartPtr<vrMKPPlugin> plugin = Load_Old(kvrMKPShapeSpawner, {45.0f, 0.5f, true, {}});
    Spawner(plugin).Post_Load();
    Set_Value(*plugin, "Particles / Second", 5.0f);
    const SmartPtr<vrMKPPlugin> clone = plugin->Clone();
    for (const auto &again : {plugin, clone}) {
        Spawner(again).Post_Load();
        Expect_Rate(*again, 5.0f, 45, "again");
    }
}

TEST(Spawners, EndByTheirStopTime)
{
    // The stop time of a spawner without the timing of the enhanced ones is a matter of its own.
    for (const int id : {kvrMKPAreaOfEffectSpawner, kvrMKPHardwareSpawner}) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id, {{"Stop Time", 2.5f}});
        const bool stops = id == kvrMKPAreaOfEffectSpawner;
        EXPECT_EQ(Spawner(plugin).Get_Stop_Time(), stops ? 2.5f : -1.0f);
        EXPECT_EQ(Spawner(plugin).Get_Duration_Flags(), stops ? 4 : 2);
        Set_Value(*plugin, "Stop Time", 0.0f);
        EXPECT_EQ(Spawner(plugin).Get_Stop_Time(), -1.0f);
    }
}

TEST(Spawners, RoundTheQualityUpToALevel)
{
    const struct
    {
        float quality;
        int level;
    } cases[] = {{0.0f, 0}, {0.01f, 1}, {0.25f, 1}, {0.26f, 2}, {1.0f, 4}, {1e30f, 4}, {-INF, 0}, {NOT_A_NUMBER, 0}};
    for (const auto &row : cases) {
        vrMKPSpawner::Set_Global_LOD(row.quality);
        EXPECT_EQ(vrMKPSpawner::Get_Global_LOD(), row.level) << row.quality;
    }
    vrMKPSpawner::Set_Global_LOD_Level(4);
}

} // namespace
