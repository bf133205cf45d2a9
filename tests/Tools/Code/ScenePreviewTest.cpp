#include "Code/ScenePreview.h"

#include "Code/EmitterData.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/nulldriver/vrNullDevice.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/scene/vrSimpleScene.h"
#include "vro/Workloads.h"

#include <gtest/gtest.h>

using namespace ToolTest;

namespace
{

constexpr float STEP = 1.0f / 60.0f;

/// The null device, which may be lost meanwhile.
class FragileDevice final : public vrDevice
{
public:
    FragileDevice(const ViewPanel &panel, const bool &isLost)
        : Null(panel.Get_Width(), panel.Get_Height()), IsLost(isLost)
    {
    }
    bool Init() override { return Null.Init(); }
    bool Create_Device(std::string &error) override { return Null.Create_Device(error); }
    bool Is_Device_Operational() override { return !IsLost; }
    void Resize_Back_Buffer(int width, int height) override { Null.Resize_Back_Buffer(width, height); }
    void Shutdown() override { Null.Shutdown(); }

private:
    vrNullDevice Null;
    const bool &IsLost;
};

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
    bool isLost = false;
    ScenePreview preview{
        [this](ViewPanel &view, std::string &) { return std::make_unique<FragileDevice>(view, isLost); }};
};

TEST_F(ScenePreviewTest, SwitchesAndTheCameraReachTheScene)
{
    const auto emitter = vro::Make_Steady(10, vro::WorkloadViewer::Billboard);
    preview.Add_Emitter(*emitter);
    const vrScene &scene = *emitter->Get_Scene();
    preview.Enable_Heat(false);
    EXPECT_EQ(scene.Get_Scene_Effects_Params().Get_PostFx_Mask() & 3, 1u);
    preview.Enable_Bloom(false);
    preview.Enable_Heat(true);
    EXPECT_EQ(scene.Get_Scene_Effects_Params().Get_PostFx_Mask() & 3, 2u);

    const vrMKPRenderState &state = emitter->Peek_Particle_Renderable(0)->Get_State();
    preview.Update_Camera(STEP);
    Play(STEP);
    EXPECT_NEAR(state.Camera.Get_Translation().x, 318.573f, 0.01f); // 550 cos 35 sin 45
    EXPECT_EQ(state.Terrain, nullptr);
    preview.Enable_Ground_Plane(true);
    preview.Enable_Target(true);
    Play(STEP);
    ASSERT_NE(state.Terrain, nullptr);
    EXPECT_EQ(state.Terrain->Get_Height(7.0f, 8.0f), 0.0f);
    EXPECT_NE(state.TargetPosition, Vector3(0.0f));
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
}

TEST_F(ScenePreviewTest, TheAspectIsThePanelsAndThatOfNoneIsLeftAlone)
{
    // 150 units to the right, in a view that is 2 * 550 * tan(17.5 degrees) = 347 high there.
    const auto emitter = vro::Make_Steady(120, vro::WorkloadViewer::Billboard);
    Mat3DClass transform;
    transform.Set_Translation({106.0f, 106.0f, 0.0f});
    emitter->Set_Transform(transform);
    preview.Add_Emitter(*emitter);
    Play(0.2f);
    EXPECT_EQ(Draw().size(), 1u);
    preview.Resize(0, 100);
    preview.Resize(100, 0);
    EXPECT_EQ(Draw().size(), 1u);
    preview.Resize(20, 100);
    EXPECT_TRUE(Draw().empty());
    preview.Resize(300, 200);
    EXPECT_EQ(Draw().size(), 1u);
    EXPECT_TRUE(reports.Get_Asserts().empty()) << reports.Get_Text();
}

TEST_F(ScenePreviewTest, ALostDeviceSkipsFramesAndTheSimulationGoesOn)
{
    const auto emitter = vro::Make_Steady(600, vro::WorkloadViewer::Billboard);
    preview.Add_Emitter(*emitter);
    Play(0.1f);
    isLost = true;
    preview.Get_Statistics();
    preview.Update_Scene(STEP);
    int count = preview.Get_Statistics().ParticlesSimulated;
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_TRUE(Draw().empty());
        preview.Update_Scene(STEP);
        count += 5; // are born in each, and none dies so soon
        EXPECT_EQ(preview.Get_Statistics().ParticlesSimulated, count);
        EXPECT_EQ(preview.Get_Statistics().ParticlesRendered, 0);
    }
    isLost = false;
    const auto draws = Draw(true);
    ASSERT_EQ(draws.size(), 2u);
    EXPECT_EQ(draws[0].VertexCount, 4 * count);
    EXPECT_EQ(draws[1].Get_Vertices<vrPrimVertex>().size(), 6u) << "three axes";
    EXPECT_EQ(preview.Get_Statistics().ParticlesRendered, count);
    preview.Remove_Emitter(*emitter);
    EXPECT_TRUE(Draw().empty());
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
    // Whoever goes on all the same does no harm.
    const auto emitter = vro::Make_Burst(10);
    preview.Init_Scene();
    preview.Reset_Camera();
    preview.Add_Emitter(*emitter);
    preview.Update_Scene(STEP);
    preview.Render(true, true);
    preview.Remove_Emitter(*emitter);
    EXPECT_EQ(emitter->Get_Ref_Count(), 1);
}

/// The whole tool with a scene behind the view: row 0 is "burst", and row 1 "steady".
class ToolWithScene : public testing::Test
{
protected:
    ToolWithScene()
    {
        const auto burst = vro::Make_Burst(60);
        const auto group = burst->Get_Particle_Renderable(0);
        vrMKPStomper *stomper = MK_Dynamic_Cast<vrMKParticleGroup>(group.Get())->Get_Particle(0)->Get_Stomper();
        dynamic_cast<RangedFloatParameter &>(*stomper->Get_Parameter_By_Name("Stomp Time")).Set_Value(0.05f);
        Write_Emitter(tool.Model_Path("burst.vro"), *burst);
        Write_Emitter(tool.Model_Path("steady.vro"), *vro::Make_Steady(120, vro::WorkloadViewer::Billboard));
        tool.Scan();
        tool.form->Set_Preview(true);
        tool.core.Pause_Click(nullptr, EventArgs());
    }
    /// A thirtieth of a second; answers how many particles were simulated.
    int Step()
    {
        tool.core.Single_Step_Click(nullptr, EventArgs());
        tool.application.Fire_Timers();
        return tool.application.Get_View_Form()->Get_State().particlesSimulated;
    }

    Tool tool{std::make_unique<ScenePreview>([](ViewPanel &view, std::string &) {
        return std::make_unique<vrNullDevice>(view.Get_Width(), view.Get_Height());
    })};
};

TEST_F(ToolWithScene, AnEmitterThatDiedOutLoops)
{
    tool.Select({1}); // the first row is the current one already
    tool.Select({0});
    // 3600 a second for the one step that the spawner runs, evenly; who is older than a twentieth at the end of a step
    // of a thirtieth is dead: half in the second step, and all in the third.
    for (int loop = 0; loop < 3; ++loop) {
        for (const int count : {120, 60, 0}) EXPECT_EQ(Step(), count) << "loop " << loop;
        EXPECT_EQ(tool.core.Get_Preview_Emitter(), tool.core.Get_Current_Emitter());
    }
    tool.Select({1});
    int before = 0;
    for (int step = 0; step < 9; ++step) { // 2 a step, of which none dies within a third of a second
        const int count = Step();
        EXPECT_GT(count, before);
        before = count;
    }
    EXPECT_TRUE(tool.reports.Get_Asserts().empty()) << tool.reports.Get_Text();
}

TEST_F(ToolWithScene, SelectionsAndScansInAnyOrderLetGoOfWhatTheyReplace)
{
    for (int round = 0; round < 4; ++round) {
        std::vector<SmartPtr<vrMKParticleEmitter>> old;
        for (const auto &emitterData : *tool.core.Get_Emitter_List()) old.emplace_back(emitterData->Get_Emitter());
        for (int row = 0; row < 7; ++row) {
            tool.Select({row % 2});
            if (row % 3 != 0) Step();
        }
        tool.Scan();
        EXPECT_NE(old[0]->Get_Scene(), nullptr) << "the old one plays on";
        Step();
        tool.Select({1});
        Step();
        for (const auto &emitter : old) {
            EXPECT_EQ(emitter->Get_Ref_Count(), 1);
            EXPECT_EQ(emitter->Get_Scene(), nullptr);
        }
    }
    EXPECT_TRUE(tool.form->Close());
    EXPECT_EQ(TheGraphicsDriver, nullptr);
    EXPECT_TRUE(tool.reports.Get_Asserts().empty()) << tool.reports.Get_Text();
}

} // namespace
