#include "Code/ParticleData.h"

#include "Code/ParticleProperties.h"
#include "Tools/Code/ToolFixture.h"

#include <gtest/gtest.h>
#include <limits>

using namespace ToolTest;

namespace
{

/// A tool with one scanned emitter: row 0 is heat, row 1 a heat billboard of the old kind, row 2 has no heat.
class ParticleDataTest : public testing::Test
{
protected:
    ParticleDataTest()
    {
        tool.Add_Emitter("fire.vro", {Heat_Layer(), Old_Heat_Layer(), Plain_Layer()});
        tool.Scan();
        tool.Select({0});
    }

    std::string Text(int row, const char *property) { return Find_Particle_Property(property)->Get(tool.Row(row)); }

    Tool tool;
};

TEST_F(ParticleDataTest, ASliderWritesAndReadsByTheTable)
{
    const struct
    {
        const char *slider;
        int input;
        const char *value;
        double stored;
        int output;
    } rows[] = {
        // 0.7 and 0.3 as f32 lie below and above their decimals, so that one of them loses a step.
        {"MinimumDynamicLODPerThousandth", 700, "MinimumDynamicLOD", 0.7f, 699},
        // 3000000000 wraps around to -1294967296, which is an f32.
        {"DynamicLODFarDistancePerThousandth", 300000000, "DynamicLODFarDistance", -1294967296.0, -129496729},
        {"HeatDistanceCutoffPerThousandth", 1000, "HeatDistanceCutoff", 10000.0, 999},
        // 500 * 0.002f = 1.0000000475 rounds to 1.
        {"HeatDistortionScalePerThousandth", 500, "HeatDistortionScale", 1.0, 500},
        {"SaturationScalePerThousandth", 500, "SaturationScale", 9.499490261077881e-08, 500},
    };
    for (const auto &row : rows) {
        ASSERT_TRUE(Find_Particle_Property(row.slider)->Set(tool.Row(0), std::to_string(row.input)));
        EXPECT_EQ(static_cast<double>(std::stof(Text(0, row.value))), row.stored) << row.slider << row.input;
        EXPECT_EQ(Text(0, row.slider), std::to_string(row.output)) << row.slider << row.input;
    }
}

TEST_F(ParticleDataTest, WholeNumbersAreTruncatedAndWhatNoneHoldsIsTheLeast)
{
    using Limits = std::numeric_limits<float>;
    constexpr int32_t LEAST = std::numeric_limits<int32_t>::min();
    const std::pair<float, int32_t> rows[] = {
        {-19.9f, -1}, {Limits::quiet_NaN(), LEAST}, {Limits::infinity(), LEAST}, {-3e38f, LEAST}};
    for (const auto &[value, shown] : rows) {
        tool.Row(0).Set_DynamicLODNearDistance(value);
        EXPECT_EQ(tool.Row(0).Get_DynamicLODNearDistancePerThousandth(), shown) << value;
    }
}

TEST_F(ParticleDataTest, HeatIsToldByVisualizerAndShader)
{
    tool.Add_Emitter("shaders.vro",
                     {{"case", kvrMKPShapeSpawner, kvrMKPBillboardVisualizer, "ParticleBillboardHeat.FX"},
                      {"mks", kvrMKPShapeSpawner, kvrMKPBillboardVisualizer, "particlebillboardheat.mks"},
                      {"aligned", kvrMKPShapeSpawner, kvrMKPXYZAlignedVisualizer, OLD_HEAT_SHADER},
                      {"none", kvrMKPShapeSpawner, NO_PLUGIN, ""}});
    tool.Scan();
    const struct
    {
        const char *layer;
        bool supports, uses;
    } rows[] = {{"haze", true, true},  {"shimmer", true, false},  {"flames", false, false}, {"case", true, false},
                {"mks", false, false}, {"aligned", false, false}, {"none", false, false}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        const ParticleData &row = tool.Row(static_cast<int>(i));
        EXPECT_EQ(row.Get_SupportsHeat(), rows[i].supports) << rows[i].layer;
        EXPECT_EQ(row.Get_UsesHeatVisualizer(), rows[i].uses) << rows[i].layer;
    }
}

TEST_F(ParticleDataTest, ALayerWithoutASpawnerShowsLevelThreeAndStillReplicates)
{
    tool.Add_Emitter("bare.vro", {{"bare", NO_PLUGIN, NO_PLUGIN, ""}, Plain_Layer()});
    tool.Scan();
    tool.Select({0, 1});
    EXPECT_EQ(tool.Row(0).Get_GlobalLOD(), GlobalLevelOfDetail::High);
    tool.Row(0).Set_GlobalLOD(GlobalLevelOfDetail::Medium);
    tool.Row(0).Set_MinimumDynamicLOD(0.25f);
    EXPECT_EQ(tool.Row(0).Get_GlobalLOD(), GlobalLevelOfDetail::High);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.0f);
    EXPECT_EQ(tool.Row(1).Get_GlobalLOD(), GlobalLevelOfDetail::Medium);
}

TEST_F(ParticleDataTest, LightingNeedsItsSwitch)
{
    tool.Add_Emitter("bare.vro", {{"bare", kvrMKPShapeSpawner, NO_PLUGIN, ""}, Plain_Layer()});
    tool.Scan();
    tool.Select({0, 1});
    tool.Row(1).Set_SceneLightingAdjustments(true);
    tool.Row(0).Set_SceneLightingAdjustments(false);
    EXPECT_TRUE(tool.Row(0).Get_SceneLightingAdjustments());
    EXPECT_TRUE(tool.Row(1).Get_SceneLightingAdjustments()) << "a row that did nothing replicates nothing";
    tool.Row(1).Set_SceneLightingAdjustments(false);
    EXPECT_FALSE(tool.Row(1).Get_SceneLightingAdjustments());
}

} // namespace
