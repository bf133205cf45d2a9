#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include "PluginBuilders.h"
#include "common/Reports.h"

#include "MKLib/Parameters/SimpleParameters.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <vector>

using namespace MKTest;

namespace
{

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

vrMKPSpawner &Spawner(const SmartPtr<vrMKPPlugin> &plugin)
{
    return dynamic_cast<vrMKPSpawner &>(*plugin);
}

float Float_Of(const vrMKPPlugin &plugin, const char *name)
{
    return Parameter_Of<RangedFloatParameter>(plugin, name).Get_Value();
}

int Int_Of(const vrMKPPlugin &plugin, const char *name)
{
    return Parameter_Of<RangedIntParameter>(plugin, name).Get_Value();
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
    return Load_Values(id, [&](ChunkFile::ChunkFileWriterClass &writer) {
        if (old.perInterval) Write_Simple_Value(writer, 100, *old.perInterval);
        if (old.interval) Write_Simple_Value(writer, 101, *old.interval);
        if (old.bursting) Write_Simple_Value(writer, 102, *old.bursting);
        if (old.perSecond) Write_Simple_Value(writer, 116, *old.perSecond);
    });
}

class GlobalLODTest : public testing::Test
{
protected:
    void TearDown() override { vrMKPSpawner::Set_Global_LOD_Level(4); }
};

} // namespace

TEST_F(GlobalLODTest, RoundsQualityUpToALevel)
{
    EXPECT_EQ(vrMKPSpawner::Get_Global_LOD(), 4);
    const struct
    {
        float quality;
        int level;
    } cases[] = {{0.0f, 0}, {0.01f, 1}, {0.25f, 1}, {0.26f, 2}, {0.5f, 2},         {0.75f, 3}, {1.0f, 4},
                 {2.0f, 4}, {1e30f, 4}, {-0.1f, 0}, {-INF, 0},  {NOT_A_NUMBER, 0}, {INF, 4}};
    for (const auto &row : cases) {
        vrMKPSpawner::Set_Global_LOD(row.quality);
        EXPECT_EQ(vrMKPSpawner::Get_Global_LOD(), row.level) << row.quality;
    }
}

TEST(Spawners, FoldTheRatesOfOldFiles)
{
    const struct
    {
        const char *what;
        OldRate old;
        float perSecond;
        int cluster;
    } cases[] = {
        {"a file of today", {{}, {}, {}, 7.0f}, 7.0f, 1},
        {"both", {45.0f, 0.5f, {}, {}}, 90.0f, 1},
        {"the count alone, over the default of 1", {12.0f, {}, {}, {}}, 12.0f, 1},
        {"a burst truncates its cluster, not its rate", {12.75f, 4.0f, true, {}}, 3.1875f, 12},
        {"the burst alone", {{}, {}, true, {}}, 30.0f, 30},
        {"it goes over a rate of the same file", {10.0f, 2.0f, {}, 7.0f}, 5.0f, 1},
    };
    for (const int id : {kvrMKPShapeSpawner, kvrMKPOutwardVelocityShapeSpawner, kvrMKPAlignedShapeSpawner,
                         kvrMKPAreaOfEffectSpawner, kvrMKPEnhancedMeshSpawner, kvrMKPEnhancedTrailSpawner})
    {
        for (const auto &row : cases) {
            const SmartPtr<vrMKPPlugin> plugin = Load_Old(id, row.old);
            EXPECT_TRUE(Spawner(plugin).Post_Load());
            EXPECT_EQ(Float_Of(*plugin, "Particles / Second"), row.perSecond) << Plugin_Label(id) << ": " << row.what;
            EXPECT_EQ(Int_Of(*plugin, "Cluster Size"), row.cluster) << Plugin_Label(id) << ": " << row.what;
        }
    }
}

TEST(Spawners, FoldOnlyOnceAndNotInAClone)
{
    const SmartPtr<vrMKPPlugin> plugin = Load_Old(kvrMKPShapeSpawner, {45.0f, 0.5f, true, {}});
    Spawner(plugin).Post_Load();
    Parameter_Of<RangedFloatParameter>(*plugin, "Particles / Second").Set_Value(5.0f);
    const SmartPtr<vrMKPPlugin> clone = plugin->Clone();
    for (const auto &again : {plugin, clone}) {
        Spawner(again).Post_Load();
        EXPECT_EQ(Float_Of(*again, "Particles / Second"), 5.0f);
        EXPECT_EQ(Int_Of(*again, "Cluster Size"), 45);
    }
}

TEST(Spawners, KeepTheRateWhereAnOldFileGivesNone)
{
    const struct
    {
        const char *what;
        OldRate old;
        int cluster;
    } cases[] = {
        {"no interval", {30.0f, 0.0f, {}, {}}, 1},
        {"not a number", {NOT_A_NUMBER, 1.0f, true, {}}, 0},
        {"endless", {INF, 1.0f, true, {}}, std::numeric_limits<int>::max()},
    };
    for (const auto &row : cases) {
        const Reports reports;
        const SmartPtr<vrMKPPlugin> plugin = Load_Old(kvrMKPShapeSpawner, row.old);
        EXPECT_TRUE(Spawner(plugin).Post_Load()) << row.what;
        EXPECT_EQ(Float_Of(*plugin, "Particles / Second"), 30.0f) << row.what;
        EXPECT_EQ(Int_Of(*plugin, "Cluster Size"), row.cluster) << row.what;
        EXPECT_EQ(reports.Count_Logs("give no rate"), 1) << row.what;
    }
}

TEST(Spawners, EndByTheirStopTime)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPAreaOfEffectSpawner);
    for (const auto &[value, stop, flags] :
         std::vector<std::tuple<float, float, int>>{{0.0f, -1.0f, 2}, {2.5f, 2.5f, 4}, {-3.0f, -3.0f, 2}})
    {
        Parameter_Of<RangedFloatParameter>(*plugin, "Stop Time").Set_Value(value);
        EXPECT_EQ(Spawner(plugin).Get_Stop_Time(), stop);
        EXPECT_EQ(Spawner(plugin).Get_Duration_Flags(), flags);
    }
    Parameter_Of<BoolParameter>(*plugin, "Hide Trumps Stop Time").Set_Value(true);
    EXPECT_TRUE(Spawner(plugin).Get_Hide_Trumps_Stop_Time());

    // The stop time of a spawner without the timing of the enhanced ones is a matter of its own.
    const SmartPtr<vrMKPPlugin> hardware = Make_Plugin(kvrMKPHardwareSpawner);
    Parameter_Of<RangedFloatParameter>(*hardware, "Stop Time").Set_Value(2.5f);
    EXPECT_EQ(Spawner(hardware).Get_Stop_Time(), -1.0f);
    EXPECT_EQ(Spawner(hardware).Get_Duration_Flags(), 2);
}
