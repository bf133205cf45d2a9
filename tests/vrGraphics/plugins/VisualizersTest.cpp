#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include "PluginBuilders.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/plugins/visualizers/HeatAndSaturation.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

using namespace MKTest;

namespace
{

const vrMKPVisualizer &Visualizer(const SmartPtr<vrMKPPlugin> &plugin)
{
    return dynamic_cast<const vrMKPVisualizer &>(*plugin);
}

vrMKPHeatAndSaturationVisualizer &Heat(const SmartPtr<vrMKPPlugin> &plugin)
{
    return dynamic_cast<vrMKPHeatAndSaturationVisualizer &>(*plugin);
}

bool Has(const vrMKPPlugin &plugin, const char *name)
{
    return plugin.Get_Parameter_By_Name(name) != nullptr;
}

struct EnumRow
{
    const char *name;
    std::vector<std::string> labels;
    int index;
};

void Expect_Enum(int id, const EnumRow &row)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
    const auto &choice = Parameter_Of<EnumParameterClass>(*plugin, row.name);
    EXPECT_EQ(std::vector<std::string>(choice.Get_Labels().begin(), choice.Get_Labels().end()), row.labels)
        << Plugin_Label(id) << ", " << row.name;
    EXPECT_EQ(choice.Get_Index(), row.index) << Plugin_Label(id) << ", " << row.name;
}

} // namespace

TEST(Visualizers, ListTheirParametersInTheOrderOfTheFileNotOfTheIds)
{
    const std::vector<int> simple = {10000, 0, 1, 2, 3, 4, 7};
    const std::vector<int> aspect = {5, 6};
    const std::vector<int> billboard = {100, 107, 108, 101, 102, 105, 106, 109, 110, 111, 112, 113, 114, 115};
    const std::vector<int> oldBump = {100, 108, 101, 102, 105, 106, 109, 110, 111, 112, 113, 114, 115};
    const std::vector<int> velocity = {200, 203, 205, 206, 207, 208};
    const std::vector<int> chain = {100, 102, 105, 106, 107, 108, 109, 110};
    const std::vector<int> hardware = {6400, 6401, 6415, 6416, 6402, 6404, 6405, 6406,
                                       6407, 6408, 6409, 6410, 6411, 6412, 6413, 6414};
    const std::map<int, std::vector<std::vector<int>>> cases = {
        {kvrMKPNULLVisualizer, {{10000}}},
        {kvrMKPLineVisualizer, {simple, aspect}},
        {kvrMKPVolumetricVisualizer, {simple, aspect}},
        {kvrMKPBillboardVisualizer, {simple, aspect, billboard}},
        {kvrMKPKiteVisualizer, {simple, aspect, billboard}},
        {kvrMKPXYZAlignedVisualizer, {simple, aspect, billboard, {200, 201, 202, 203}}},
        {kvrMKPInstantProjectileVisualizer, {simple, aspect, billboard, {203}}},
        {kvrMKPHeatAndSaturationVisualizer, {simple, aspect, billboard, {200, 201, 202}}},
        {kvrMKPSphericalBumpVisualizer, {simple, aspect, billboard, {200}}},
        {kvrMKPCylindricalBumpVisualizer, {simple, aspect, billboard, {200}}},
        {kvrMKPCenterToVertBumpVisualizer, {simple, aspect, billboard, {200}}},
        {kvrMKPVelocityAlignedVisualizer, {simple, aspect, billboard, velocity}},
        {kvrMKPVelocityAlignedWorldSpaceVisualizer, {simple, aspect, billboard, velocity, {300}}},
        {kvrMKPVelocityAlignedNormalVisualizer, {simple, aspect, billboard, velocity, {300}}},
        {kvrMKPVelocityAlignedPlanarVisualizer, {simple, aspect, billboard, velocity, {300}}},
        {kvrMKPAxisAlignedVisualizer, {simple, aspect, billboard, velocity, {300}}},
        {kvrMKPChainVisualizer, {simple, chain}},
        {kvrMKPStretchedTextureChainVisualizer, {simple, chain}},
        {kvrMKPXYAlignedChainVisualizer, {simple, chain}},
        {kvrMKPMultiChainVisualizer, {simple, chain}},
        {kvrMKPHardwareBillboardVisualizer, {simple, hardware}},
        {kvrMKPBumpMapVisualizer, {simple, aspect, oldBump}},
        {kvrMKPObsoleteSphericalBumpVisualizer, {simple, aspect, oldBump, {200}}},
        {kvrMKPObsoleteCylindricalBumpVisualizer, {simple, aspect, oldBump, {200}}},
        {kvrMKPObsoleteCenterToVertBumpVisualizer, {simple, aspect, oldBump, {200}}},
    };
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        ASSERT_TRUE(cases.contains(id)) << Plugin_Label(id);
        std::vector<int> expected;
        for (const auto &part : cases.at(id)) expected.insert(expected.end(), part.begin(), part.end());
        EXPECT_EQ(Parameter_IDs(*Make_Plugin(id)), expected) << Plugin_Label(id);
    }
}

TEST(Visualizers, TellTheShaderThatTheirParameterNames)
{
    const std::map<int, std::string_view> own = {
        {kvrMKPHeatAndSaturationVisualizer, "ParticleBillboardHeat.mks"},
        {kvrMKPHardwareBillboardVisualizer, "HWParticleBillboard.mks"},
        {kvrMKPLineVisualizer, "Unknown"},
        {kvrMKPVolumetricVisualizer, "Unknown"},
        {kvrMKPNULLVisualizer, ""},
    };
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        const auto row = own.find(id);
        const std::string_view name = row == own.end() ? "ParticleBillboardAdditive.mks" : row->second;
        EXPECT_EQ(Visualizer(plugin).Get_Shader_Name(), name) << Plugin_Label(id);
        // A name that nobody can choose is neither shown nor saved.
        ASSERT_EQ(Has(*plugin, "Shader Name"), name != "Unknown" && name != "") << Plugin_Label(id);
        if (!Has(*plugin, "Shader Name")) continue;
        Parameter_Of<ShaderNameParameterClass>(*plugin, "Shader Name").Set_Value("Other.mks");
        EXPECT_EQ(Visualizer(plugin).Get_Shader_Name(), "Other.mks") << Plugin_Label(id);
        EXPECT_EQ(Visualizer(plugin->Clone()).Get_Shader_Name(), "Other.mks") << Plugin_Label(id);
        EXPECT_EQ(Visualizer(Load_Plugin(Save_Plugin(*plugin))).Get_Shader_Name(), "Other.mks") << Plugin_Label(id);
    }
}

TEST(Visualizers, StartWithTheTextureOfTheirFamily)
{
    const std::map<int, std::string_view> own = {
        {kvrMKPHeatAndSaturationVisualizer, "p_particle_heat_master.tga"},
        {kvrMKPChainVisualizer, "W_Clouds01.tga"},
        {kvrMKPStretchedTextureChainVisualizer, "W_Clouds01.tga"},
        {kvrMKPXYAlignedChainVisualizer, "W_Clouds01.tga"},
        {kvrMKPMultiChainVisualizer, "W_Clouds01.tga"},
    };
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        if (!Has(*plugin, "Texture Name")) continue;
        const auto row = own.find(id);
        EXPECT_EQ(Parameter_Of<TextureNameParameterClass>(*plugin, "Texture Name").Get_Value(),
                  row == own.end() ? "p_particle_master.tga" : row->second)
            << Plugin_Label(id);
    }
}

TEST(Visualizers, OfferTheirChoicesInTheOrderOfTheFile)
{
    const EnumRow sortType = {"Sort Type", {"Normal", "Stop After Max Sort Age"}, 1};
    const EnumRow source = {"Lighting Source", {"Sun", "Particle Light Source"}, 0};
    const EnumRow anchor = {"Anchor Point", {"Center", "Bottom", "Top", "Bottom To Top With Age"}, 0};
    const EnumRow turn = {"Texture Rotation", {"None", "90 Degrees", "180 Degrees", "270 Degrees"}, 0};
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        for (const EnumRow &row : {sortType, source, anchor, turn})
            if (Has(*plugin, row.name)) Expect_Enum(id, row);
    }
    Expect_Enum(kvrMKPChainVisualizer, {"Wrap Anchor", {"Start Delta", "Start", "End"}, 0});
}

TEST(Visualizers, DeclareTheChannelsThatTheyRead)
{
    const std::map<int, uint32_t> others = {
        {kvrMKPVelocityAlignedVisualizer, 0x2f000},
        {kvrMKPVelocityAlignedWorldSpaceVisualizer, 0x2f000},
        {kvrMKPVelocityAlignedNormalVisualizer, 0x2f000},
        {kvrMKPVelocityAlignedPlanarVisualizer, 0x2f000},
        {kvrMKPAxisAlignedVisualizer, 0x2f000},
        {kvrMKPInstantProjectileVisualizer, 0x2f000},
        {kvrMKPKiteVisualizer, 0x2f000},
        {kvrMKPChainVisualizer, 0x2f010},
        {kvrMKPStretchedTextureChainVisualizer, 0x2f010},
        {kvrMKPXYAlignedChainVisualizer, 0x2f010},
        {kvrMKPMultiChainVisualizer, 0x2f010},
        {kvrMKPNULLVisualizer, 0},
    };
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        const auto row = others.find(id);
        EXPECT_EQ(Make_Plugin(id)->Get_Read_Attributes(), row == others.end() ? 0x3f000u : row->second)
            << Plugin_Label(id);
    }
}

TEST(Visualizers, BendNormalsByTheCurvatureOfTheirShape)
{
    const struct
    {
        int id;
        float curvature;
        const char *shading;
    } cases[] = {
        {kvrMKPSphericalBumpVisualizer, 1.0f, "spherical"},
        {kvrMKPCylindricalBumpVisualizer, 1.0f, "cylindrical"},
        {kvrMKPCenterToVertBumpVisualizer, 0.5f, "exaggerated"},
        {kvrMKPObsoleteSphericalBumpVisualizer, 1.0f, "spherical"},
        {kvrMKPObsoleteCylindricalBumpVisualizer, 1.0f, "cylindrical"},
        {kvrMKPObsoleteCenterToVertBumpVisualizer, 0.5f, "exaggerated"},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        const auto &curvature = Parameter_Of<RangedFloatParameter>(*plugin, "Curvature");
        EXPECT_EQ(curvature.Get_Value(), row.curvature) << Plugin_Label(row.id);
        EXPECT_EQ(curvature.Get_Description(),
                  "Determines how much to apply the " + std::string(row.shading) + " shading.");
    }
}

TEST(Visualizers, LoseNothingAsAnOldBumpKindBecomesItsSuccessor)
{
    const struct
    {
        int old;
        int now;
    } cases[] = {
        {kvrMKPBumpMapVisualizer, kvrMKPBillboardVisualizer},
        {kvrMKPObsoleteSphericalBumpVisualizer, kvrMKPSphericalBumpVisualizer},
        {kvrMKPObsoleteCylindricalBumpVisualizer, kvrMKPCylindricalBumpVisualizer},
        {kvrMKPObsoleteCenterToVertBumpVisualizer, kvrMKPCenterToVertBumpVisualizer},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> old = Make_Plugin(row.old);
        const SmartPtr<vrMKPPlugin> now = Make_Plugin(row.now);
        Change_All(*old);
        now->Copy_Parameters_By_Name(*old);
        for (int index = 0; index < old->Get_Parameters().Get_Parameter_Count(); ++index) {
            const ParameterClass &was = *old->Get_Parameters().Get_Parameter(index);
            const ParameterClass *is = now->Get_Parameter_By_Name(was.Get_Name());
            ASSERT_NE(is, nullptr) << Plugin_Label(row.now) << " lacks " << was.Get_Name();
            EXPECT_EQ(is->Get_Type(), was.Get_Type()) << was.Get_Name();
            EXPECT_EQ(Describe(*is), Describe(was)) << Plugin_Label(row.now);
        }
        // What the successor has beyond it is the switch alone, which the load turns on.
        EXPECT_FALSE(Has(*old, "Enable Bump"));
        EXPECT_FALSE(Parameter_Of<BoolParameter>(*now, "Enable Bump").Get_Value());
        EXPECT_EQ(now->Get_Parameters().Get_Parameter_Count(), old->Get_Parameters().Get_Parameter_Count() + 1);
    }
}

TEST(HeatVisualizer, ReadsAndWritesItsParametersWithoutClamping)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPHeatAndSaturationVisualizer);
    vrMKPHeatAndSaturationVisualizer &heat = Heat(plugin);
    EXPECT_EQ(heat.Get_Distance_Cutoff(), 10000.0f);
    EXPECT_EQ(heat.Get_Distortion_Scale(), 1.0f);
    EXPECT_EQ(heat.Get_Saturation_Scale(), 1.0f);

    constexpr float INF = std::numeric_limits<float>::infinity();
    const float cases[][3] = {{0.0001f, 2.0f, -2.0f}, {-1.0f, 17.0f, 3.5f}, {INF, 0.0f, -0.0f}};
    for (const auto &[cutoff, distortion, saturation] : cases) {
        heat.Set_Distance_Cutoff(cutoff);
        heat.Set_Distortion_Scale(distortion);
        heat.Set_Saturation_Scale(saturation);
        for (const SmartPtr<vrMKPPlugin> &same :
             {plugin, SmartPtr<vrMKPPlugin>(plugin->Clone()), Load_Plugin(Save_Plugin(*plugin))})
        {
            EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*same, "Distance Cutoff").Get_Value(), cutoff);
            EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*same, "Distortion Scale").Get_Value(), distortion);
            EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*same, "Saturation Scale").Get_Value(), saturation);
            EXPECT_EQ(Heat(same).Get_Distance_Cutoff(), cutoff);
            EXPECT_EQ(Heat(same).Get_Distortion_Scale(), distortion);
            EXPECT_EQ(Heat(same).Get_Saturation_Scale(), saturation);
        }
    }
}

TEST(HeatVisualizer, TellsAnEditorItsRanges)
{
    const struct
    {
        const char *name;
        float minimum;
        float maximum;
    } cases[] = {
        {"Distance Cutoff", 0.0001f, 10000.0f}, {"Distortion Scale", 0.0f, 2.0f}, {"Saturation Scale", -2.0f, 2.0f}};
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPHeatAndSaturationVisualizer);
    for (const auto &row : cases) {
        const auto &value = Parameter_Of<RangedFloatParameter>(*plugin, row.name);
        EXPECT_EQ(value.Get_Minimum(), row.minimum) << row.name;
        EXPECT_EQ(value.Get_Maximum(), row.maximum) << row.name;
    }
}
