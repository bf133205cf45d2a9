#include "vrGraphics/drivercommon/vrEffectManager.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/nulldriver/vrNullEffectInstance.h"
#include "vrGraphics/postfx/vrPostFxsChain.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

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

TEST_F(SampleEffects, AllParseWithTheirPhases)
{
    const std::vector<std::string> names = vrEffectFinder::List_Effects("");
    ASSERT_FALSE(names.empty());
    // Those that the engine asks for by itself.
    for (const char *name : {"ParticleBillboardAdditive", "ParticleBillboardHeat", "HWParticleBillboard",
                             "PostFxStretchRect", "MISSINGEFFECT"})
        EXPECT_THAT(names, testing::Contains(name));
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
    for (const auto &effect : chain.Get_Effects()) {
        ASSERT_FALSE(effect->Steps.empty());
        EXPECT_EQ(effect->Steps.back().OutputMode, TO_MAIN_RT) << "an effect that can't be seen";
        for (const vrPostFxStep &step : effect->Steps)
            for (const vrPostFxStep::Binding &binding : step.Params)
                EXPECT_TRUE(binding.Value && binding.ShaderIndex >= 0) << step.Name << ": " << binding.Name;
    }
}

} // namespace
