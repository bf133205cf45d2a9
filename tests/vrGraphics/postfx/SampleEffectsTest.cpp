#include "vrGraphics/drivercommon/vrEffectManager.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/nulldriver/vrNullEffectInstance.h"
#include "vrGraphics/postfx/vrPostFxsChain.h"

#include "common/Reports.h"
#include "common/TempFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>

namespace
{

/// The null driver with the samples' effects and chain, by paths as the tool has them.
class SampleEffects : public testing::Test
{
protected:
    SampleEffects()
    {
        vrGraphicsDriver::Clear_Effects_Path();
        for (const char *folder : {"Common", "Engine", "Particle"})
            vrGraphicsDriver::Add_Effects_Path(std::string(MK_SAMPLES "\\Run\\DATA\\Art\\Shaders\\DX9\\") + folder);
        vrGraphicsDriver::Set_PostFxs_Path(MK_SAMPLES "\\Art\\PostFxs\\");
        vrNullEffectInstance::Set_Pure_Null_Run(false);
        EXPECT_TRUE(vrNullDriverMethods::Init(nullptr, 64, 64));
    }
    ~SampleEffects() override
    {
        vrNullDriverMethods::Shutdown();
        vrNullEffectInstance::Set_Pure_Null_Run(true);
        vrGraphicsDriver::Clear_Effects_Path();
        vrGraphicsDriver::Set_PostFxs_Path("");
    }

    MKTest::Reports Reports{MKDebug::LogLevel::Warning};
};

/// The shaders that the samples name, and those that the engine names by itself.
std::set<std::string> Named_Shaders()
{
    std::set<std::string> names{"ParticleBillboardAdditive.mks", "ParticleBillboardHeat.mks", "HWParticleBillboard.mks",
                                "PostFxStretchRect", "MISSINGEFFECT"};
    const std::regex shader("\"([^\"/]+\\.(mks|fx))\"", std::regex::icase);
    for (const auto &entry : std::filesystem::directory_iterator(MK_SAMPLES "/Effects")) {
        if (entry.path().extension() != ".json") continue;
        const std::string text = MKTest::Read_Text_File(entry.path().string());
        for (std::sregex_iterator match(text.begin(), text.end(), shader), end; match != end; ++match)
            names.insert((*match)[1]);
    }
    return names;
}

TEST_F(SampleEffects, HaveEveryShaderThatIsNamed)
{
    const std::set<std::string> names = Named_Shaders();
    ASSERT_GT(names.size(), 6u);
    for (const std::string &name : names) {
        vrEffectSource source;
        std::string error;
        EXPECT_TRUE(vrEffectFinder::Read_Effect(name, source, error)) << name << ": " << error;
    }
}

TEST_F(SampleEffects, AllParseWithTheirPhases)
{
    const std::vector<std::string> names = vrEffectFinder::List_Effects("");
    ASSERT_FALSE(names.empty());
    for (const std::string &name : names) {
        const SmartPtr<vrShaderInstance> shader = TheGraphicsDriver->Create_Shader_Instance(name);
        const auto phase = name == "ParticleBillboardHeat" ? vrRenderPhaseEnum::Heat
                           : name.starts_with("PostFx")    ? vrRenderPhaseEnum::Opaque
                                                           : vrRenderPhaseEnum::Particles;
        EXPECT_EQ(shader->Get_Render_Phase(), phase) << name;
        const bool isParticle = name.find("Particle") != std::string::npos;
        EXPECT_EQ(shader->Get_Parameter_Index("BaseTexture"), isParticle ? 0 : -1) << name;
    }
    EXPECT_EQ(Reports.Get_Text(), "");
}

TEST_F(SampleEffects, ChainFindsAllItsShadersAndTheirParameters)
{
    vrPostFxsChain chain;
    EXPECT_TRUE(chain.Load_Template("ParticleEditorChain.xml", *TheGraphicsDriver));
    EXPECT_EQ(Reports.Get_Text(), "");
    ASSERT_EQ(chain.Get_Effects().size(), 2u);
    EXPECT_EQ(chain.Get_Effects()[0]->Type, vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM);
    EXPECT_EQ(chain.Get_Effects()[1]->Type, vrPostFx::VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION);
    for (const auto &effect : chain.Get_Effects()) {
        ASSERT_FALSE(effect->Steps.empty());
        EXPECT_EQ(effect->Steps.back().OutputMode, TO_MAIN_RT) << "an effect that can't be seen";
        for (const vrPostFxStep &step : effect->Steps)
            for (const vrPostFxStep::Binding &binding : step.Params)
                EXPECT_TRUE(binding.Value && binding.ShaderIndex >= 0) << step.Name << ": " << binding.Name;
    }
}

/// A typing error in a constant would go unseen: the shader's default would stand.
TEST_F(SampleEffects, ShadersHaveEachConstantThatTheStepsSet)
{
    const std::regex shader("<Shader>(.*)</Shader>"), constant("<SetParam name=\"(\\w+)\"");
    for (const auto &entry : std::filesystem::directory_iterator(MK_SAMPLES "/Art/PostFxs/PostFxSteps")) {
        const std::string text = MKTest::Read_Text_File(entry.path().string());
        std::smatch name;
        ASSERT_TRUE(std::regex_search(text, name, shader)) << entry.path();
        const SmartPtr<vrShaderInstance> instance = TheGraphicsDriver->Create_Shader_Instance(name[1].str());
        for (std::sregex_iterator match(text.begin(), text.end(), constant), end; match != end; ++match)
            EXPECT_GE(instance->Get_Parameter_Index((*match)[1].str()), 0) << entry.path() << " " << (*match)[1];
    }
}

} // namespace
