#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include "PluginBuilders.h"
#include "common/Reports.h"

#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
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

std::string Label_Of(const vrMKPPlugin &plugin, const char *name)
{
    const auto &choice = Parameter_Of<EnumParameterClass>(plugin, name);
    return choice.Get_Labels()[static_cast<size_t>(choice.Get_Index())];
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

TEST_F(GlobalLODTest, ClampsALevel)
{
    for (const auto &[given, level] : std::vector<std::pair<int, int>>{{-3, 0}, {0, 0}, {3, 3}, {4, 4}, {9, 4}}) {
        vrMKPSpawner::Set_Global_LOD_Level(given);
        EXPECT_EQ(vrMKPSpawner::Get_Global_LOD(), level) << given;
    }
}

TEST(Spawners, GiveAccessToTheirLevelOfDetailWithNoRangeCheck)
{
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::SPAWNER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        vrMKPSpawner &spawner = Spawner(plugin);
        EXPECT_EQ(spawner.Get_LOD(), 0) << Plugin_Label(id);
        EXPECT_EQ(spawner.Get_Min_Dynamic_LOD(), 1.0f);
        EXPECT_EQ(spawner.Get_Dynamic_LOD_Near(), 450.0f);
        EXPECT_EQ(spawner.Get_Dynamic_LOD_Far(), 2000.0f);
        EXPECT_TRUE(spawner.Get_Auto_Update_Positions());

        spawner.Set_LOD(99);
        spawner.Set_Min_Dynamic_LOD(-2.5f);
        spawner.Set_Dynamic_LOD_Near(-1.0f);
        spawner.Set_Dynamic_LOD_Far(123456.0f);
        EXPECT_EQ(Int_Of(spawner, "Global LOD"), 99) << Plugin_Label(id);
        EXPECT_EQ(Float_Of(spawner, "Min D-LOD"), -2.5f);
        EXPECT_EQ(Float_Of(spawner, "D-LOD Near Distance"), -1.0f);
        EXPECT_EQ(Float_Of(spawner, "D-LOD Far Distance"), 123456.0f);
        EXPECT_EQ(spawner.Get_Dynamic_LOD_Far(), 123456.0f);
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
        {"the interval alone, over the default of 30", {{}, 2.0f, {}, {}}, 15.0f, 1},
        {"the count alone, over the default of 1", {12.0f, {}, {}, {}}, 12.0f, 1},
        {"a burst truncates its cluster, not its rate", {12.75f, 4.0f, true, {}}, 3.1875f, 12},
        {"the burst alone", {{}, {}, true, {}}, 30.0f, 30},
        {"a burst that is off", {12.0f, 4.0f, false, {}}, 3.0f, 1},
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
        {"nothing in no interval", {0.0f, 0.0f, true, {}}, 0},
        {"not a number", {NOT_A_NUMBER, 1.0f, true, {}}, 0},
        {"endless", {INF, 1.0f, true, {}}, std::numeric_limits<int>::max()},
        {"endless below", {-INF, 1.0f, true, {}}, std::numeric_limits<int>::min()},
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

TEST(SpawnersAndEnsembles, ListTheirParametersInTheOrderOfTheFileNotOfTheIds)
{
    const std::vector<int> base = {4, 6, 7, 8, 9, 10, 15, 12, 13, 14, 16, 17, 18, 19, 20, 21};
    const std::vector<int> enhanced = {100, 101, 102, 103, 104, 109, 110, 111, 112, 113,
                                       114, 115, 116, 117, 118, 119, 120, 121, 122};
    const std::vector<int> shape = {105, 106, 107, 108, 200};
    const std::vector<int> stomper = {0, 1, 2, 3, 4, 5, 6};
    const std::vector<int> visualizer = {10000, 0, 1, 2, 3, 4, 7};
    const struct
    {
        int id;
        std::vector<std::vector<int>> parts;
    } cases[] = {
        {kvrMKPPointSpawner, {base}},
        {kvrMKPGlobalTrajectorySpawner, {base}},
        {kvrMKPShapeSpawner, {base, enhanced, shape}},
        {kvrMKPAlignedShapeSpawner, {base, enhanced, shape, {300, 301, 302, 303, 304}}},
        {kvrMKPAreaOfEffectSpawner, {base, enhanced, {200, 201, 202, 203, 204, 205}}},
        {kvrMKPEnhancedTrailSpawner, {base, enhanced, shape, {300, 301, 302, 303}}},
        {kvrMKPEnhancedMeshSpawner, {base, enhanced, {105, 106, 107, 108, 200, 201}}},
        {kvrMKPDeathSpawner, {base, {100, 101, 102, 103, 104, 114, 105, 106, 107, 108, 109, 110, 111, 112, 113}}},
        {kvrMKPCodeSpawner, {base, {109, 100, 101, 102, 103, 104, 105, 106, 107, 108}}},
        {kvrMKPHardwareSpawner,
         {base, {6000, 6001, 6002, 6012, 6013, 6003, 6004, 6005, 6006, 6014, 6007, 6008, 6009, 6010, 6011}}},
        {kvrMKPHardwareBillboardVisualizer,
         {visualizer,
          {6400, 6401, 6415, 6416, 6402, 6404, 6405, 6406, 6407, 6408, 6409, 6410, 6411, 6412, 6413, 6414}}},
        {kvrMKPBulletModifier, {{2, 5, 0, 7, 1, 3, 4, 8, 6, 9}}},
        {kvrMKPBulletStomper, {stomper, {200}}},
        {kvrMKPNULLStomper, {stomper}},
        {kvrMKPNULLTransformer, {}},
    };
    for (const auto &row : cases) {
        std::vector<int> expected;
        for (const auto &part : row.parts) expected.insert(expected.end(), part.begin(), part.end());
        EXPECT_EQ(Parameter_IDs(*Make_Plugin(row.id)), expected) << Plugin_Label(row.id);
    }
}

TEST(SpawnersAndEnsembles, NameTheParentUnderOneId)
{
    for (const int id : {kvrMKPSlaveSpawner, kvrMKPSlaveRotationModifier, kvrMKPSlaveSizeModifier,
                         kvrMKPSlaveColorModifier, kvrMKPSlaveUVModifier, kvrMKPEnhancedTrailSpawner})
        EXPECT_EQ(Parameter_Of<StringParameterClass>(*Make_Plugin(id), "Parent Name").Get_ID(), 300)
            << Plugin_Label(id);
    EXPECT_EQ(Parameter_IDs(*Make_Plugin(kvrMKPSlaveUVModifier)), std::vector<int>{300});
}

TEST(SpawnersAndEnsembles, DefaultToTheUsualChoices)
{
    const struct
    {
        int id;
        const char *name;
        const char *label;
        int choices;
    } cases[] = {
        {kvrMKPShapeSpawner, "Random Seed Source", "This Particle", 2},
        {kvrMKPShapeSpawner, "PPS Looping", "Looped", 2},
        {kvrMKPAreaOfEffectSpawner, "AOE Shape", "Flat Circle", 3},
        {kvrMKPAlignedShapeSpawner, "Position Alignment", "Default", 3},
        {kvrMKPAlignedShapeSpawner, "Velocity Alignment", "Default", 4},
        {kvrMKPEnhancedTrailSpawner, "Position Alignment", "None", 3},
        {kvrMKPEnhancedMeshSpawner, "Mesh Spawn Location", "Random Vertices", 4},
        {kvrMKPAxisStomper, "Stomp Axis", "Z", 3},
        {kvrMKPAxisStomper, "Kill if Value is", "Less Than", 2},
        {kvrMKPTargetStomper, "Target Position", "Emitter", 5}, // two fewer than a target modifier has
        {kvrMKPWeatherCubeTransformer, "Time Emulation", "Time increases with -Z", 6},
        {kvrMKPHardwareBillboardVisualizer, "Render Mode", "Alpha Blend", 3},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        EXPECT_EQ(Label_Of(*plugin, row.name), row.label) << Plugin_Label(row.id);
        EXPECT_EQ(Parameter_Of<EnumParameterClass>(*plugin, row.name).Get_Count(), row.choices) << row.name;
    }
}

TEST(SpawnersAndEnsembles, StartFromAPointWithVelocitiesInABall)
{
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::SPAWNER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        const auto *position = dynamic_cast<ShapeParameterClass *>(plugin->Get_Parameter_By_Name("Position"));
        const auto *velocity = dynamic_cast<ShapeParameterClass *>(plugin->Get_Parameter_By_Name("Velocity"));
        EXPECT_TRUE(!position || position->Get_Value().ShapeType == SHAPE_POINT) << Plugin_Label(id);
        EXPECT_TRUE(!velocity || velocity->Get_Value().ShapeType == SHAPE_SPHERE) << Plugin_Label(id);
        EXPECT_FALSE(position && !velocity) << Plugin_Label(id);
    }
    // Two spawners inherit up to different speeds.
    EXPECT_EQ(Float_Of(*Make_Plugin(kvrMKPCodeSpawner), "Max Inherit Speed"), 1000.0f);
    EXPECT_EQ(Float_Of(*Make_Plugin(kvrMKPDeathSpawner), "Max Inherit Speed"), 10000.0f);
}

TEST(Transformers, TellTheirSpace)
{
    const struct
    {
        int id;
        vrMKPTransformType type;
        vrParticleScaleType scale;
        bool needsCamera;
    } cases[] = {
        {kvrMKPLocalTransformer, MKP_TRANSFORM_LOCAL, PARTICLE_SCALE_AT_DRAW, false},
        {kvrMKPWorldTransformer, MKP_TRANSFORM_WORLD, PARTICLE_SCALE_AT_SPAWN, false},
        {kvrMKPWeatherCubeTransformer, MKP_TRANSFORM_LOCAL, PARTICLE_SCALE_NONE, true},
        {kvrMKPScreenTransformer, MKP_TRANSFORM_SCREEN, PARTICLE_SCALE_NONE, true},
        {kvrMKPNULLTransformer, MKP_TRANSFORM_LOCAL, PARTICLE_SCALE_NONE, false},
    };
    EXPECT_EQ(std::size(cases), Plugin_IDs_Of(vrMKPPlugin::TRANSFORMER_PLUGIN).size());
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        const auto &transformer = dynamic_cast<const vrMKPTransformer &>(*plugin);
        EXPECT_EQ(transformer.Get_Transform_Type(), row.type) << Plugin_Label(row.id);
        EXPECT_EQ(transformer.Get_Scale_Type(), row.scale) << Plugin_Label(row.id);
        EXPECT_EQ(transformer.Needs_Camera(), row.needsCamera) << Plugin_Label(row.id);
    }
}
