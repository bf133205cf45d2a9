// Particles on a device: what their visualizers make of its states.

#include "GLTestCase.h"

#include "vrGraphics/plugins/BufferBuilder.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"
#include "vrGraphics/plugins/visualizers/Billboards.h"

using testing::ElementsAre;

namespace
{

constexpr vrColor RED = Pack_Color(255, 0, 0, 255);
constexpr vrColor GREEN = Pack_Color(0, 255, 0, 255);

using ParticlesGLTest = GLTestCase;
} // namespace

// A red quad covers the left half, and a green particle lies behind it, as wide as the picture.
TEST_F(ParticlesGLTest, ShowThroughWhatIsNearerWithTheDepthTestDisabled)
{
    Make_Effect("ParticleBillboardAdditive", "outColor = color;", "", "test");
    vrMKPBillboardVisualizer visualizer;
    visualizer.Load_Assets(false, nullptr);
    auto &disabled = dynamic_cast<BoolParameter &>(*visualizer.Get_Parameter_By_Name("Disable Depth Test"));
    MKTest::BufferBuilder built;
    built.Buffer->VisualizerData = visualizer.Create_Buffer_Data(built.State);
    built.Buffer->Color[built.Add({0.0f, 0.0f, 0.5f})] = GREEN;
    const SmartPtr<vrCamera> camera(new vrCamera);
    vrRenderContext context(camera.Get());

    const std::tuple<vrRenderModeType, bool, int> rows[] = {
        {VR_RENDER_MODE_NORMAL, false, VR_DEPTH_TEST},
        {VR_RENDER_MODE_NORMAL, true, VR_DEPTH_NONE},
        {VR_RENDER_MODE_OFFSCREEN, true, VR_DEPTH_NONE_OFFSCREEN},
        {VR_RENDER_MODE_NORMAL, false, VR_DEPTH_TEST}, // nothing of the others is left
    };
    for (const auto &[mode, isDisabled, depthState] : rows) {
        disabled.Set_Value(isDisabled);
        Begin();
        Driver().Set_Screen_Space(true);
        Driver().Begin_Primitive_State(0, 0, VR_DEPTH_TEST_WRITE);
        vrRenderUtils::Render_2D_Quad(-1, 1, 0, -1, -0.5f, {}, {}, RED);
        Driver().End_Primitive_State();
        Driver().Set_Screen_Space(false);
        Driver().Set_Render_Mode(mode, nullptr);
        visualizer.Select_Visible_Particles(*built.Buffer, {});
        visualizer.Pre_Visualize(*built.Buffer, {});
        visualizer.Visualize(*built.Buffer, context);
        EXPECT_EQ(Driver().Get_Render_State_Block().m_depthStencilState, depthState);
        EXPECT_EQ(Driver().Get_Render_Mode(), mode);
        End();
        EXPECT_EQ(At(16, 32)[1], isDisabled ? 255 : 0) << mode << ", " << isDisabled;
        EXPECT_THAT(At(48, 32), ElementsAre(0, 255, 0));
    }
    EXPECT_EQ(Reports.Get_Asserts().size(), 0u) << Reports.Get_Text();
}
