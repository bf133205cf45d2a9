// The step that hands vertices to the driver, and what the shader is told, on the null driver.

#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "NullDraw.h"

#include "vrGraphics/particle/vrMKPEmitterFace.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrParticleLight.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace MKTest;

namespace
{

constexpr const char *LIT_EFFECT = R"(
annotation _VOREN_RENDER_PHASE "Transparent"
parameter texture2d BaseTexture
parameter texture2d NormalTexture
parameter float4 Specular
parameter float4 Emissive
parameter float LightWrap
parameter float NormalScale
parameter float3 ParticleLightPos
parameter float4 ParticleLightDiffuse
technique VORENENGINE_LOD_0 { pass { vertex { v } fragment { f } } }
)";

/// Two lights, the second of which is called "Lamp". Calls `OnAsk` whenever a draw asks for one.
class Emitter final : public vrMKPEmitterFace
{
public:
    int Get_Light_Source_Count() const override { return 2; }
    const vrParticleLight &Get_Light_Source(int index) const override
    {
        if (OnAsk) OnAsk();
        return Lights[index];
    }
    int Find_Light_Source(const char *name) const override { return std::string(name) == "Lamp" ? 1 : -1; }
    void Keep_Updating() override {}

    vrParticleLight Lights[2];
    std::function<void()> OnAsk;
};

class VisualizerDraw : public NullDraw
{
protected:
    VisualizerDraw() { Folder.Write("ParticleBillboardAdditive.mks", LIT_EFFECT); }
    static float Float_Of(const VisualizerStage &stage, const char *name)
    {
        const vrShaderInstance &shader = *stage.Get_Visualizer().Get_Shader();
        float value = 0.0f;
        EXPECT_TRUE(shader.Get_Float(shader.Get_Parameter_Index(name), value)) << name;
        return value;
    }
    static Vector4 Vector_Of(const VisualizerStage &stage, const char *name)
    {
        const vrShaderInstance &shader = *stage.Get_Visualizer().Get_Shader();
        const int index = shader.Get_Parameter_Index(name);
        Vector4 value(0.0f);
        EXPECT_TRUE(shader.Get_Vector4(index, &value.x) || shader.Get_Vector3(index, &value.x)) << name;
        return value;
    }
};

} // namespace

TEST(Visualizer, WithoutADriverDoesNothing)
{
    ASSERT_EQ(TheGraphicsDriver, nullptr);
    for (const int kind : Plugin_IDs_Of(vrMKPPlugin::VISUALIZER_PLUGIN)) {
        VisualizerStage stage(kind);
        stage.Add(Vector3(0.0f));
        stage.Get_Visualizer().Load_Assets(true, nullptr);
        EXPECT_EQ(stage.Get_Visualizer().Get_Shader(), nullptr) << Plugin_Label(kind);
        stage.Get_Visualizer().Select_Visible_Particles(stage.Get_Buffer(), stage.Context);
        stage.Get_Visualizer().Pre_Visualize(stage.Get_Buffer(), stage.Context);
        vrCamera camera;
        vrRenderContext context(&camera);
        stage.Get_Visualizer().Visualize(stage.Get_Buffer(), context);
        EXPECT_TRUE(!stage.Get_Buffer().VisualizerData || stage.Get_Data().VertexCount == 0) << Plugin_Label(kind);
    }
}

TEST_F(VisualizerDraw, HandsItsVerticesOverOnce)
{
    VisualizerStage stage(kvrMKPBillboardVisualizer);
    stage.Get_Visualizer().Load_Assets(false, nullptr);
    EXPECT_EQ(stage.Get_Visualizer().Get_Render_Phase(), vrRenderPhaseEnum::Transparent);
    stage.Add({1, 2, 3});
    const auto built = stage.Build<vrLitVertex>();
    const Mat3DClass elsewhere = Mat3DClass::From_Translation({5, 5, 5});
    TheGraphicsDriver->Set_World_Transform(&elsewhere);
    stage.Get_Visualizer().Visualize(stage.Get_Buffer(), Context);
    stage.Get_Visualizer().Visualize(stage.Get_Buffer(), Context);
    ASSERT_EQ(Draws().size(), 1u);
    EXPECT_EQ(Draws()[0].Kind, VR_PRIMITIVE_QUADS);
    EXPECT_EQ(Draws()[0].World, Mat3DClass()) << "vertices are in the world";
    const auto drawn = Draws()[0].Get_Vertices<vrLitVertex>();
    ASSERT_EQ(drawn.size(), 4u);
    for (size_t i = 0; i < 4; ++i) EXPECT_EQ(drawn[i].Position, built[i].Position);
}

// The driver takes fewer than 65,535 vertices at once.
TEST_F(VisualizerDraw, SplitsWhatIsTooLargeForOneDraw)
{
    VisualizerStage stage(kvrMKPBillboardVisualizer, 16384);
    stage.Get_Visualizer().Load_Assets(false, nullptr);
    for (int i = 0; i < 16384; ++i) stage.Add({static_cast<float>(i), 0, 0});
    Draw(stage);
    ASSERT_EQ(Draws().size(), 2u);
    EXPECT_EQ(Draws()[0].VertexCount, 65532);
    EXPECT_EQ(Draws()[1].VertexCount, 4);
    EXPECT_EQ(Draws()[1].Get_Vertices<vrLitVertex>()[0].Position.x, 16383.0f - 2.0f);
    EXPECT_TRUE(Told.Get_Asserts().empty()) << Told.Get_Text();
}

TEST_F(VisualizerDraw, MovesTheCameraForItsDepthOffsetAndBack)
{
    Emitter emitter;
    std::vector<Vector3> seen;
    emitter.OnAsk = [&] { seen.push_back(Camera.Get_Position()); };
    VisualizerStage stage(kvrMKPBillboardVisualizer);
    stage.Set("Enable Bump", true);
    stage.Set("Lighting Source", 1);
    stage.Built.State.Emitter = &emitter;
    stage.Get_Visualizer().Load_Assets(false, nullptr);
    stage.Add(Vector3(0.0f));
    // Looks along -x, with a scale of 2 that the offset takes no part in.
    Mat3DClass place = Mat3DClass::Look_At({10, 0, 0}, Vector3(0.0f)).Scaled(2.0f);
    Camera.Set_Transform(place);
    for (const float offset : {0.0f, 3.0f, -4.0f}) {
        stage.Set("Depth Offset", offset);
        Draw(stage);
        EXPECT_EQ(Camera.Get_Transform(), place);
    }
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].x, 10.0f);
    EXPECT_NEAR(seen[1].x, 13.0f, 1e-5f) << "particles seem farther";
    EXPECT_NEAR(seen[2].x, 6.0f, 1e-5f);

    Context.Camera = nullptr;
    Draw(stage);
    EXPECT_TRUE(Told.Has_Assert("camera != NULL")) << Told.Get_Text();
    EXPECT_EQ(Draws().size(), 4u) << "drawn all the same";
}

TEST_F(VisualizerDraw, TellsTheShaderHowItIsLit)
{
    VisualizerStage stage(kvrMKPBillboardVisualizer);
    stage.Set("Enable Bump", true);
    stage.Set("Normal Scale", 3.0f);
    // Half is 512 of 1024, and comes through any table that changes nothing as it is.
    stage.Set("Specular", RGBAClass(0.5f, 0.25f, 1.0f, 1.0f));
    stage.Set("Emissive", RGBAClass(0.25f, 0.5f, 0.75f, 1.0f));
    for (const auto &[wrap, sent] : {std::pair{0.0f, 100.0f}, {2.0f, 0.5f}}) {
        stage.Set("Light Wrap", wrap);
        stage.Get_Visualizer().Load_Assets(false, nullptr);
        EXPECT_FLOAT_EQ(Float_Of(stage, "LightWrap"), sent);
    }
    EXPECT_EQ(Float_Of(stage, "NormalScale"), 3.0f);
    EXPECT_EQ(Vector_Of(stage, "Specular"), Vector4(0.5f, 0.25f, 1.0f, 0.0f));
    EXPECT_EQ(Vector_Of(stage, "Emissive"), Vector4(0.25f, 0.5f, 0.75f, 0.0f));
}

TEST_F(VisualizerDraw, TakesItsLightFromSunOrEmitter)
{
    vrLightContext lights;
    const SmartPtr<vrDirectionalLight> sun(new vrDirectionalLight);
    sun->Set_Direction({0, 0, 1});
    sun->Set_Diffuse({0.5f, 0.25f, 1.0f, 1.0f});
    sun->Set_Intensity(2.0f);
    lights.Set_Sun_Light(sun.Get());
    TheGraphicsDriver->Set_Light_Context(&lights);
    Emitter emitter;
    emitter.Lights[1].Position = {1, 2, 3};
    emitter.Lights[1].Color = {0.5f, 0.5f, 0.25f, 0.0f};
    emitter.Lights[1].Intensity = 4.0f;
    emitter.Lights[1].IsOn = true;

    VisualizerStage stage(kvrMKPBillboardVisualizer);
    stage.Set("Enable Bump", true);
    stage.Built.State.Emitter = &emitter;
    stage.Built.State.LightScale = {1, 1, 0.5f};
    stage.Get_Visualizer().Load_Assets(false, nullptr);
    stage.Set("Light Source Name", "Lamp");
    stage.Get_Visualizer().Bind_To_Emitter(emitter);
    stage.Add(Vector3(0.0f));
    Draw(stage);
    EXPECT_EQ(Vector_Of(stage, "ParticleLightPos"), Vector4(0, 0, 1000000, 0));
    EXPECT_EQ(Vector_Of(stage, "ParticleLightDiffuse"), Vector4(1, 0.5f, 1, 1));

    stage.Set("Lighting Source", 1);
    Draw(stage);
    EXPECT_EQ(Vector_Of(stage, "ParticleLightPos"), Vector4(1, 2, 3, 0));
    EXPECT_EQ(Vector_Of(stage, "ParticleLightDiffuse"), Vector4(2, 2, 0.5f, 1));
    stage.Built.State.Emitter = nullptr;
    Draw(stage);
    EXPECT_EQ(Vector_Of(stage, "ParticleLightPos"), Vector4(0, 0, 1000000, 0)) << "no emitter, no lamp";
    TheGraphicsDriver->Set_Light_Context(nullptr);
}
