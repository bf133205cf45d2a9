#include "vrGraphics/nulldriver/vrNullEffectInstance.h"

#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/nulldriver/vrNullTextures.h"

#include <gtest/gtest.h>

namespace
{

constexpr const char *EFFECT = R"(
annotation _VOREN_RENDER_PHASE "Heat"
parameter texture2d BaseTexture
parameter float DistanceCutoff = 10000
parameter float2 Two = 1 2
parameter float3 Three
parameter float4 Four = 1 2 3 4
parameter bool Truth = true
technique GLOBAL_LOD_0 { pass { vertex { v } fragment { f } } }
)";

class NullEffectInstance : public testing::Test
{
protected:
    NullEffectInstance()
    {
        vrGraphicsDriver::Clear_Effects_Path();
        vrGraphicsDriver::Add_Effects_Path(Folder.Get_Path());
        Folder.Write("Hot.mks", EFFECT);
        Folder.Write("Other.mks", std::string("parameter bool Switch") + EFFECT);
        vrNullEffectInstance::Set_Pure_Null_Run(false);
    }
    ~NullEffectInstance() override
    {
        vrNullEffectInstance::Set_Pure_Null_Run(true);
        vrGraphicsDriver::Clear_Effects_Path();
    }

    SmartPtr<vrShaderInstance> Make(const char *name) { return new vrNullEffectInstance(name, Effects); }

    MKTest::TempDirectory Folder;
    MKTest::Reports Reports;
    vrEffectManager<vrNullEffect> Effects;
};

TEST_F(NullEffectInstance, IsEmptyInAPureNullRun)
{
    vrNullEffectInstance::Set_Pure_Null_Run(true);
    const SmartPtr<vrShaderInstance> hot = Make("Hot.mks");
    EXPECT_EQ(hot->Get_Render_Phase(), vrRenderPhaseEnum::Opaque);
    EXPECT_EQ(hot->Get_Parameter_Index("whatever"), 0);
    EXPECT_EQ(hot->Get_Parameter_Name(0), nullptr);
    hot->Set_Float(0, 7.0f);
    float value[4] = {5.0f, 5.0f, 5.0f, 5.0f};
    EXPECT_FALSE(hot->Get_Float(0, value[0]));
    EXPECT_FALSE(hot->Get_Vector3(0, value + 1));
    for (const float part : value) EXPECT_EQ(part, 0.0f);
    EXPECT_EQ(Reports.Get_Text(), "");
}

TEST_F(NullEffectInstance, KnowsWhatItsEffectSays)
{
    const SmartPtr<vrShaderInstance> hot = Make("hot.FX");
    EXPECT_EQ(hot->Get_Render_Phase(), vrRenderPhaseEnum::Heat);
    EXPECT_EQ(hot->Get_Parameter_Count(), 6);
    EXPECT_EQ(hot->Get_Parameter_Index("distancecutoff"), 1);
    EXPECT_EQ(hot->Get_Parameter_Index("Distance"), -1);
    EXPECT_EQ(hot->Get_Parameter_Type(6), SHADER_PARAMS_NONE);
    EXPECT_EQ(hot->Get_Parameter_Name(-1), nullptr);
    float cutoff = 0.0f;
    EXPECT_TRUE(hot->Get_Float(1, cutoff));
    EXPECT_EQ(cutoff, 10000.0f);
}

TEST_F(NullEffectInstance, KeepsValuesOfTheRightTypeOnly)
{
    const SmartPtr<vrShaderInstance> hot = Make("Hot");
    const float values[4] = {9.0f, 8.0f, 7.0f, 6.0f};
    const SmartPtr<vrTexture> texture = new vrNullTexture2D("t", 1, 1);
    hot->Set_Texture(0, texture.Get());
    hot->Set_Vector3(3, values);
    hot->Set_Bool(5, false);
    for (const int wrong : {-1, 6, 1 << 20}) hot->Set_Vector4(wrong, values);
    hot->Set_Vector4(3, values);
    hot->Set_Float(4, 3.0f);
    hot->Set_Texture(1, texture.Get());

    EXPECT_EQ(hot->Get_Texture(0), texture.Get());
    EXPECT_EQ(hot->Get_Texture(1), nullptr);
    float three[3], four[4];
    EXPECT_TRUE(hot->Get_Vector3(3, three));
    EXPECT_EQ(three[2], 7.0f);
    EXPECT_TRUE(hot->Get_Vector4(4, four));
    EXPECT_EQ(four[0], 1.0f);
    bool truth = true;
    EXPECT_TRUE(hot->Get_Bool(5, truth));
    EXPECT_FALSE(truth);
    EXPECT_FALSE(hot->Get_Vector2(4, four));
    EXPECT_EQ(four[1], 0.0f);
}

TEST_F(NullEffectInstance, IsFoundInAFolderThatComesLater)
{
    EXPECT_TRUE(Make("Cold.mks")->Is_Missing_Effect());
    EXPECT_TRUE(Reports.Has_Log("Shader Cold.mks isn't in any effects path"));
    Folder.Write("later/Cold.mks", EFFECT);
    vrGraphicsDriver::Add_Effects_Path(Folder / "later");
    EXPECT_FALSE(Make("Cold.mks")->Is_Missing_Effect());
    vrGraphicsDriver::Clear_Effects_Path();
    EXPECT_TRUE(Make("Hot.mks")->Is_Missing_Effect());
}

TEST_F(NullEffectInstance, ClonesAndCopiesTakeOverEachValueForTheirOwn)
{
    const SmartPtr<vrShaderInstance> from = Make("Hot"), copy = Make("Hot");
    const SmartPtr<vrTexture> texture = new vrNullTexture2D("t", 1, 1);
    const float values[4] = {9.0f, 8.0f, 7.0f, 6.0f}, others[4] = {};
    from->Set_Texture(0, texture.Get());
    from->Set_Vector4(4, values);
    from->Set_Bool(5, false);
    vrShaderInstance::Copy_Params(copy.Get(), from.Get());
    const SmartPtr<vrShaderInstance> clone = from->Clone();
    from->Set_Vector4(4, others);
    for (const auto &to : {copy, clone}) {
        float four[4];
        bool truth = true;
        EXPECT_EQ(to->Get_Texture(0), texture.Get());
        EXPECT_TRUE(to->Get_Vector4(4, four) && to->Get_Bool(5, truth));
        EXPECT_EQ(four[3], 6.0f);
        EXPECT_FALSE(truth);
    }
    EXPECT_EQ(Reports.Get_Asserts().size(), 0u);
}

TEST_F(NullEffectInstance, CopyAssertsWhatDoesNotFit)
{
    const SmartPtr<vrShaderInstance> hot = Make("Hot"), other = Make("Other");
    vrShaderInstance::Copy_Params(hot.Get(), nullptr);
    EXPECT_TRUE(Reports.Has_Assert("shader0 && shader1 && \"Both shaders have to be not NULL. Call Brem.\""));
    vrShaderInstance::Copy_Params(hot.Get(), other.Get());
    // One parameter more in front, so that none of the six is where it was.
    EXPECT_EQ(Reports.Count_Asserts("(shader0_param_type == shader1->Get_Parameter_Type(i)) && ..."), 6);
}

} // namespace
