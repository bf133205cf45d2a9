#include "GLTestCase.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"

#include <filesystem>
#include <thread>

using testing::ElementsAre;

namespace
{

using EffectsGLTest = GLTestCase;

std::vector<float> Fill(std::string_view name, const EngineParameterSource &source)
{
    const EngineParameter *parameter = Find_Engine_Parameter(name);
    if (!parameter) return {};
    std::vector<float> values(size_t(parameter->Count));
    Fill_Engine_Parameter(*parameter, source, values.data());
    return values;
}

} // namespace

TEST_F(EffectsGLTest, CompilesEveryEffectOfTheSamples)
{
    int files = 0;
    vrGraphicsDriver::Clear_Effects_Path();
    for (const auto &entry : std::filesystem::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.is_directory()) vrGraphicsDriver::Add_Effects_Path(entry.path().string());
        if (entry.path().extension() == ".mks") ++files;
    }
    ASSERT_GT(files, 0);
    Reports.Clear();
    EXPECT_EQ(Driver().Load_All_Effects("", nullptr, nullptr), files);
    EXPECT_FALSE(Reports.Has_Log("failed to compile")) << Reports.Get_Text();
    EXPECT_FALSE(Reports.Has_Log("nothing fills in the uniform")) << Reports.Get_Text();
}

TEST_F(EffectsGLTest, DrawsWhatIsMissingVisiblyAndFindsItInAFolderThatComesLater)
{
    const auto missing = Driver().Create_Shader_Instance("NoSuchEffect.mks");
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->Is_Missing_Effect());
    Begin();
    Draw_Quad(*missing, -1, 1, 1, -1, 0);
    End();
    EXPECT_THAT(At(4, 4), ElementsAre(255, 0, 255));

    MKTest::TempDirectory later;
    later.Write("NoSuchEffect.mks",
                "technique GLOBAL_LOD_0 { pass { vertex { void main() { gl_Position = vec4(0.0); } } "
                "fragment { void main() { outColor = vec4(1.0); } } } }");
    vrGraphicsDriver::Add_Effects_Path(later.Get_Path());
    EXPECT_FALSE(Driver().Create_Shader_Instance("NoSuchEffect.mks")->Is_Missing_Effect()) << Reports.Get_Text();
}

TEST_F(EffectsGLTest, TellsFileAndLineOfAnErrorAndDrawsAllTheSame)
{
    Folder.Write("Part.mksh", "shared fragment\n{\nvec4 Part()\n{\nreturn nowhere;\n}\n}\n");
    const auto broken = Make_Effect("Broken", "outColor = Part();", "include \"Part.mksh\"\n");
    EXPECT_TRUE(broken->Is_Missing_Effect());
    EXPECT_TRUE(Reports.Has_Log("Part.mksh:5")) << Reports.Get_Text();
    EXPECT_FALSE(Reports.Has_Log("Broken.mks:")) << Reports.Get_Text();
    Make_Effect("Own", "\n\n\noutColor = nowhere;");
    EXPECT_TRUE(Reports.Has_Log("Own.mks:20")) << Reports.Get_Text();
}

TEST_F(EffectsGLTest, FallsBackWhenWhatAnotherThreadAskedForDoesNotCompile)
{
    SmartPtr<vrShaderInstance> broken;
    std::thread([&] { broken = Make_Effect("Broken", "outColor = nowhere;"); }).join();
    ASSERT_TRUE(broken);
    EXPECT_FALSE(Reports.Has_Log("failed to compile"));
    Begin();
    Draw_Quad(*broken, -1, 1, 1, -1, 0);
    End();
    EXPECT_THAT(At(4, 4), ElementsAre(255, 0, 255));
    EXPECT_TRUE(Reports.Has_Log(" Shader Broken failed to compile!"));
}

TEST_F(EffectsGLTest, GivesEachInstanceItsOwnValues)
{
    const auto first = Make_Effect("Value", "outColor = vec4(Shade, Pair, 1.0) * (Lit ? 1.0 : 0.5);",
                                   "parameter float Shade = 0.4\nparameter float2 Pair = 0 1\n"
                                   "parameter bool Lit = true\n");
    ASSERT_FALSE(first->Is_Missing_Effect()) << Reports.Get_Text();
    const SmartPtr<vrShaderInstance> second(first->Clone());
    second->Set_Float(second->Get_Parameter_Index("SHADE"), 1.0f);
    second->Set_Bool(second->Get_Parameter_Index("Lit"), false);
    // What has no such index, or another type, is ignored.
    for (const int wrong : {-1, 3, 1 << 20, second->Get_Parameter_Index("Lit")}) second->Set_Float(wrong, 9.0f);
    float none = 5.0f;
    EXPECT_FALSE(second->Get_Float(second->Get_Parameter_Index("Lit"), none));
    EXPECT_EQ(none, 0.0f);
    Begin();
    Draw_Quad(*first, -1, 1, 0, -1, 0);
    Draw_Quad(*second, 0, 1, 1, -1, 0);
    End();
    EXPECT_THAT(At(8, 8), ElementsAre(102, 0, 255));
    Expect_Near(At(40, 8), {128, 0, 128}, 1, "second");
}

TEST_F(EffectsGLTest, TakesTheTechniqueOfTheQuality)
{
    const auto technique = [](int lod, const char *color) {
        return "technique GLOBAL_LOD_" + std::to_string(lod) +
               " { pass { vertex { void main() { gl_Position = vec4(inPosition, 1.0); } } fragment { void main() { "
               "outColor = vec4(" +
               color + "); } } } }\n";
    };
    const auto shader = Make_Effect_File("Levels", technique(0, "1, 0, 0, 1") + technique(2, "0, 1, 0, 1"));
    ASSERT_FALSE(shader->Is_Missing_Effect()) << Reports.Get_Text();
    for (const int quality : {1, 2}) {
        vrGraphicsDriver::Set_Quality(quality);
        Begin();
        Draw_Quad(*shader, -1, 1, 1, -1, 0);
        End();
        EXPECT_EQ(At(9, 9)[0], quality < 2 ? 255 : 0) << quality;
    }
}

TEST_F(EffectsGLTest, FillsInWhatTheEngineKnows)
{
    const SmartPtr<vrCamera> camera(new vrCamera);
    camera->Set_Depth_Range(2.0f, 100.0f);
    camera->Set_Transform(Mat3DClass::From_Translation({1.0f, 2.0f, 3.0f}));
    const Mat3DClass world = Mat3DClass::From_Translation({10.0f, 0.0f, 0.0f});
    Driver().Set_Camera(camera.Get());
    Driver().Set_World_Transform(&world);
    vrEnvironmentValues environment;
    environment.FogNear = 5.0f;
    environment.FogFar = 50.0f;
    environment.FogDensity = 0.25f;
    environment.FogEnabled = true;
    Driver().Set_Environment(environment);
    const vrRenderContext context(camera.Get());
    const EngineParameterSource source = Driver().Get_Parameter_Source(&context);

    EXPECT_THAT(Fill("g_EyePos", source), ElementsAre(1.0f, 2.0f, 3.0f, 1.0f));
    EXPECT_THAT(Fill("g_EyeObjPos", source), ElementsAre(-9.0f, 2.0f, 3.0f, 1.0f));
    EXPECT_THAT(Fill("g_FogValues", source), ElementsAre(5.0f, 50.0f, 0.25f, 1.0f));
    EXPECT_THAT(Fill("g_NearFar", source), ElementsAre(2.0f, 100.0f));
    EXPECT_THAT(Fill("g_ResolutionConstants", source), ElementsAre(64.0f, 64.0f, 1.0f / 64.0f, 1.0f / 64.0f));
    // The camera's own frame: the last column of world and view is where the object's origin lies, seen from the eye.
    const std::vector<float> worldView = Fill("g_WorldView", source);
    EXPECT_THAT(std::vector<float>(worldView.begin() + 12, worldView.end()), ElementsAre(9.0f, -2.0f, -3.0f, 1.0f));
    const std::vector<float> inverse = Fill("g_WorldInv", source);
    EXPECT_THAT(std::vector<float>(inverse.begin() + 12, inverse.end()), ElementsAre(-10.0f, 0.0f, 0.0f, 1.0f));
    Driver().Set_Viewport({16, 0, 32, 64});
    EXPECT_THAT(Fill("ScreenspaceUVTransform", source), ElementsAre(0.25f, -0.5f, 0.5f, 0.5f));
}
