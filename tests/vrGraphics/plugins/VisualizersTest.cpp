#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include "PluginBuilders.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <gtest/gtest.h>

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

bool Has(const vrMKPPlugin &plugin, const char *name)
{
    return plugin.Get_Parameter_By_Name(name) != nullptr;
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
