#include "Code/ScenePreview.h"

#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/nulldriver/vrNullDevice.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vro/Workloads.h"

#include <gtest/gtest.h>

using namespace ToolTest;

namespace
{

constexpr float STEP = 1.0f / 60.0f;

/// The null device runs the tasks and keeps its draws for as long as the fixture lives.
class ScenePreviewTest : public testing::Test
{
protected:
    ScenePreviewTest()
    {
        vrNullDriverMethods::Set_Runs_Tasks(true);
        vrNullDriverMethods::Set_Recording(true);
        EXPECT_TRUE(preview.Init_Device(panel));
        preview.Init_Scene();
        preview.Reset_Camera();
    }
    ~ScenePreviewTest() override
    {
        preview.Free_Scene();
        preview.Shutdown_Device();
        vrNullDriverMethods::Set_Runs_Tasks(false);
        vrNullDriverMethods::Set_Recording(false);
    }

    void Play(float seconds)
    {
        for (float time = 0.0f; time < seconds; time += STEP) preview.Update_Scene(STEP);
    }
    /// The draws of one frame.
    std::vector<vrNullDrawRecord> Draw(bool axes = false)
    {
        vrNullDriverMethods::Clear_Draws();
        preview.Update_Camera(STEP);
        preview.Render(axes, false);
        return vrNullDriverMethods::Get_Draws();
    }

    MKTest::Reports reports;
    HeadlessViewPanel panel;
    ScenePreview preview{[](ViewPanel &view, std::string &) {
        return std::make_unique<vrNullDevice>(view.Get_Width(), view.Get_Height());
    }};
};

TEST_F(ScenePreviewTest, AnEmitterPlaysAndIsDrawn)
{
    const auto emitter = vro::Make_Steady(120, vro::WorkloadViewer::Billboard);
    preview.Add_Emitter(*emitter);
    EXPECT_TRUE(preview.Is_Alive(*emitter));
    Play(1.0f);
    const auto draws = Draw();
    ASSERT_EQ(draws.size(), 1u);
    const PreviewStatistics statistics = preview.Get_Statistics();
    EXPECT_GT(statistics.ParticlesRendered, 30);
    EXPECT_EQ(draws[0].VertexCount, 4 * statistics.ParticlesRendered);
    EXPECT_GT(statistics.ParticlesSimulated, 0);
    EXPECT_EQ(statistics.Draws, 1);

    preview.Remove_Emitter(*emitter);
    EXPECT_TRUE(Draw().empty());
}

TEST_F(ScenePreviewTest, AnEmitterThatStartsOverHasNoParticles)
{
    const auto emitter = vro::Make_Steady(600, vro::WorkloadViewer::Billboard);
    preview.Add_Emitter(*emitter);
    Play(0.1f);
    ASSERT_FALSE(Draw().empty());
    preview.Remove_Emitter(*emitter);
    preview.Add_Emitter(*emitter);
    EXPECT_TRUE(Draw().empty());
    Play(0.1f);
    EXPECT_FALSE(Draw().empty());
}

TEST_F(ScenePreviewTest, TheAxesAreThreeColouredLines)
{
    const auto draws = Draw(true);
    ASSERT_EQ(draws.size(), 1u);
    ASSERT_EQ(draws[0].Get_Vertices<vrPrimVertex>().size(), 6u);
    const auto vertices = draws[0].Get_Vertices<vrPrimVertex>();
    EXPECT_EQ(vertices[1].Position, Vector3(30.0f, 0.0f, 0.0f));
    EXPECT_EQ(vertices[1].Color, 0xff0000ffu);
    EXPECT_EQ(vertices[5].Position, Vector3(0.0f, 0.0f, 30.0f));
    EXPECT_EQ(vertices[5].Color, 0xffff0000u);
}

TEST_F(ScenePreviewTest, TheMouseTurnsTheCameraOnlyWhileAButtonIsHeld)
{
    const auto emitter = vro::Make_Steady(10, vro::WorkloadViewer::Billboard);
    preview.Add_Emitter(*emitter);
    Play(0.5f);
    const auto before = Draw().at(0).Vertices;
    preview.On_Mouse_Move(0.5f, 0.0f);
    EXPECT_EQ(Draw().at(0).Vertices, before);
    preview.On_Rotate_Begin();
    preview.On_Mouse_Move(0.5f, 0.0f);
    EXPECT_NE(Draw().at(0).Vertices, before);
    EXPECT_EQ(preview.Get_Camera_Distance(), 550.0f);
}

TEST_F(ScenePreviewTest, PanelsWithoutAnExtentAreLeftAlone)
{
    preview.Resize(0, 100);
    preview.Resize(100, 0);
    preview.Resize(300, 200);
    EXPECT_TRUE(Draw().empty()); // and nothing was reported
    EXPECT_TRUE(reports.Get_Asserts().empty());
}

TEST(ScenePreviewStart, WithoutADeviceSaysWhy)
{
    MKTest::Reports reports;
    HeadlessViewPanel panel;
    ScenePreview preview([](ViewPanel &, std::string &error) -> std::unique_ptr<vrDevice> {
        error = "no display";
        return nullptr;
    });
    EXPECT_FALSE(preview.Init_Device(panel));
    EXPECT_EQ(preview.Get_Device_Error(), "no display");
    EXPECT_EQ(TheGraphicsDriver, nullptr);
}

} // namespace
