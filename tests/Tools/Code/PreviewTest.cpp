#include "Code/ParticleData.h"
#include "Tools/Code/RecordingPreview.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKPContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::unique_ptr<PreviewDriver> Record(PreviewRecord &record)
{
    return std::make_unique<RecordingPreview>(record);
}

/// Rows 0 and 1 belong to "fire", row 2 to "smoke". The preview has a device.
class Preview : public testing::Test
{
protected:
    Preview()
    {
        tool.Add_Emitter("fire.vro", {Old_Heat_Layer("a"), Plain_Layer("b")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("c")});
        tool.Scan();
        record.Take();
    }
    HeadlessSceneViewForm &View() { return *tool.application.Get_View_Form(); }

    PreviewRecord record;
    Tool tool{Record(record)};
};

TEST(PreviewStart, BringsDeviceSceneAndTimerUp)
{
    PreviewRecord record;
    Tool tool(Record(record));
    EXPECT_THAT(record.Take(),
                ElementsAre("init device", "init scene", "reset camera", "heat on", "bloom on", "background "));
    tool.application.Fire_Timers();
    EXPECT_THAT(record.Take(), ElementsAre("update by 0", "render axes background"));

    ASSERT_EQ(record.paths.size(), 2u);
    EXPECT_EQ(record.paths[0].Effects.front(), "..\\Art\\Shaders\\PC\\DX9\\");
    const std::string work = tool.directory / "game";
    EXPECT_EQ(record.paths[1].Effects.back(), work + "\\Run\\DATA\\Art\\Shaders\\DX9\\ShadowMap\\");
    EXPECT_EQ(record.paths[1].Textures.back(), work + "\\Art\\Textures\\Heat\\");
}

TEST(PreviewStart, WithoutADeviceTheWindowStaysHiddenAndTheEditorModeIsOn)
{
    PreviewRecord record;
    record.hasDevice = false;
    Tool tool(Record(record));
    EXPECT_THAT(record.Take(), ElementsAre("init device"));
    EXPECT_FALSE(tool.application.Get_View_Form()->Get_State().visible);
    tool.application.Fire_Timers();
    EXPECT_THAT(record.Take(), IsEmpty());
    EXPECT_TRUE(vrMKPContext::InEditor);
    EXPECT_TRUE(tool.form->Close());
    EXPECT_THAT(record.Take(), ElementsAre("free scene", "destroy"));
}

TEST_F(Preview, ASelectionShowsItsEmitterOnceAndAConversionRestartsIt)
{
    tool.form->Set_Preview(true);
    record.Take();
    tool.Select({2});
    EXPECT_THAT(record.Take(), ElementsAre("add smoke"));
    tool.Select({1});
    EXPECT_THAT(record.Take(), ElementsAre("remove smoke", "add fire"));
    tool.Select({0});
    EXPECT_THAT(record.Take(), IsEmpty()) << "a row of the same emitter resets nothing";
    ASSERT_TRUE(tool.form->Click_Convert_To_Heat());
    EXPECT_THAT(record.Take(), ElementsAre("remove fire", "add fire"));
    tool.application.Fire_Timers();
    EXPECT_THAT(record.Take(), ElementsAre("update by 0", "render axes background"));
    EXPECT_EQ(View().Get_State().particlesSimulated, 70);
    EXPECT_EQ(View().Get_State().particlesRendered, 30);
}

TEST_F(Preview, ShutdownTakesTheEmitterOutAheadOfSceneAndDevice)
{
    tool.form->Set_Preview(true);
    tool.Select({2});
    record.Take();
    EXPECT_TRUE(tool.form->Close());
    EXPECT_THAT(record.Take(), ElementsAre("remove smoke with hint", "free scene", "shutdown device", "destroy"));
    EXPECT_EQ(tool.application.Get_View_Form(), nullptr);
    tool.application.Fire_Timers();
    EXPECT_THAT(record.Take(), IsEmpty());
}

TEST_F(Preview, ABackgroundIsKeptByItsFileName)
{
    tool.application.Set_Picked_File("C:\\art\\sky.tga");
    tool.core.Set_Background_Click(nullptr, EventArgs());
    EXPECT_THAT(record.Take(), ElementsAre("background sky.tga"));
    EXPECT_EQ(tool.core.Get_Settings().BackgroundImageName, "sky.tga");
    EXPECT_EQ(View().Get_View_Panel().invalidateCount, 1);
}

TEST_F(Preview, ButtonsAndWheelDriveTheCamera)
{
    tool.application.Set_Mouse({300, 100}, MOUSE_LEFT | MOUSE_RIGHT);
    tool.core.View_Panel_Mouse_Down(nullptr, {MOUSE_RIGHT, 0, 0, 0});
    tool.core.View_Panel_Mouse_Up(nullptr, {MOUSE_RIGHT, 0, 0, 0});
    EXPECT_THAT(record.Take(), ElementsAre("rotate end", "rotate end", "rotate begin", "rotate end"));

    for (const int delta : {120, -120}) tool.core.View_Panel_Mouse_Wheel(nullptr, {MOUSE_NONE, 0, 0, delta});
    EXPECT_EQ(record.cameraDistance, 550.0f + 4 * 1200.0f) << "either way zooms out";
    EXPECT_EQ(View().Get_State().cameraDistance, 5350);
}

TEST_F(Preview, ThePanelsSizeReachesTheDevice)
{
    tool.core.View_Panel_Resize(nullptr, {});
    EXPECT_THAT(record.Take(), ElementsAre("640x480"));
    View().Set_Window_State(FormWindowState::Minimized);
    tool.core.View_Panel_Resize(nullptr, {});
    tool.core.View_Form_Closed(nullptr, {});
    View().Set_Window_State(FormWindowState::Normal);
    tool.core.View_Panel_Resize(nullptr, {});
    tool.core.View_Panel_Paint(nullptr, {});
    EXPECT_THAT(record.Take(), IsEmpty());
}

} // namespace
