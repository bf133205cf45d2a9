#include "vrGraphics/postfx/vrPostFxManager.h"

#include "common/Reports.h"
#include "common/TempFiles.h"
#include "vrGraphics/postfx/RecordingDriver.h"

#include "vrGraphics/drivercommon/vrCamera.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::Contains;
using ::testing::ElementsAre;

TEST(PostFx, RunsByTypeMasksQualityAndRenderer)
{
    constexpr auto FORWARD = VR_RENDERER_FORWARD, PRE_PASS = VR_RENDERER_LIGHT_PRE_PASS;
    const std::tuple<vrPostFx::vrPostFxTypeEnum, int, vrPostFxConditions, bool> rows[] = {
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM, 0, {FORWARD, 0x1, 0x1, 0}, true},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM, 0, {FORWARD, 0x1e, 0x1f, 0}, false},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM, 0, {FORWARD, 0x1f, 0x1e, 0}, false},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM, 2, {FORWARD, 0x1f, 0x1f, 1}, false},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM, 2, {FORWARD, 0x1f, 0x1f, 2}, true},
        // Heat goes by the context alone.
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION, 9, {FORWARD, 0, 0x2, 0}, true},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION, 0, {FORWARD, 0x1f, 0x1d, 4}, false},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_DOF, 0, {FORWARD, 0x1f, 0x1f, 4}, false},
        {vrPostFx::VR_POSTFX_TYPE_ENGINE_DOF, 0, {PRE_PASS, 0x4, 0x4, 4}, true},
        {vrPostFx::VR_POSTFX_TYPE_GAME, 0, {FORWARD, 0x10, 0x10, 0}, true},
        {vrPostFx::VR_POSTFX_TYPE_GAME_LPPR_ONLY, 0, {FORWARD, 0x1f, 0x1f, 4}, false},
        {vrPostFx::VR_POSTFX_TYPE_GAME_LPPR_ONLY, 0, {PRE_PASS, 0x10, 0x10, 0}, true},
    };
    for (const auto &[type, priority, conditions, runs] : rows) {
        vrPostFx effect;
        effect.Type = type;
        effect.Priority = priority;
        EXPECT_EQ(effect.Should_Run(conditions), runs) << type << " " << priority << " " << runs;
        effect.Enabled = false;
        EXPECT_FALSE(effect.Should_Run(conditions)) << type << " " << priority << " " << runs;
    }
}

class PostFxManager : public testing::Test
{
protected:
    PostFxManager() : Context(Camera.Get())
    {
        vrGraphicsDriver::Set_PostFxs_Path(Folder.Get_Path());
        Manager.Init();
    }
    ~PostFxManager() override { vrGraphicsDriver::Set_PostFxs_Path(""); }

    void Write_Step(const std::string &name, const std::string &from, const std::string &to)
    {
        Folder.Write("PostFxSteps/" + name, "<S><Shader>" + name + "</Shader><InputMode>" + from +
                                                "</InputMode><OutputMode>" + to + "</OutputMode></S>");
    }
    static std::string Effect(const std::string &type, const std::vector<std::string> &steps)
    {
        std::string text = "<PostFx><Type>VR_POSTFX_TYPE_" + type + "</Type><Steps>";
        for (const std::string &step : steps) text += "<Step template_file='" + step + "'/>";
        return text + "</Steps></PostFx>";
    }
    void Load(const std::string &effects)
    {
        Folder.Write("PostFxsChains/Test.xml", "<C>" + effects + "</C>");
        ASSERT_TRUE(Manager.Load_Chain("Test.xml")) << Reports.Get_Text();
        Driver.Lines.clear();
    }

    MKTest::TempDirectory Folder;
    MKTest::Reports Reports;
    MKTest::RecordingDriver Driver;
    SmartPtr<vrCamera> Camera = new vrCamera;
    vrRenderContext Context;
    vrPostFxManager Manager{Driver};
};

TEST_F(PostFxManager, RunsTheChainFromTheSceneToTheScreen)
{
    Write_Step("bright", "FROM_MAIN_RT", "TO_IRT0");
    Write_Step("combine", "FROM_ORIGINAL_SCENE", "TO_MAIN_RT");
    Write_Step("heat", "FROM_MAIN_RT", "TO_MAIN_RT");
    Load(Effect("ENGINE_BLOOM", {"bright", "combine"}) + Effect("ENGINE_DOF", {"bright"}) +
         Effect("ENGINE_HEAT_DISTORTION", {"heat"}));
    Driver.Viewport = {1, 2, 30, 20};
    Manager.Execute(Context, nullptr);
    EXPECT_THAT(Driver.Lines, ElementsAre("{ Render Post-processing Effects", "{ Execute PostFx Chain", "no depth", //
                                          "from Scene", "to IRT0", "draw bright",                                   //
                                          "from Scene", "to Main0", "draw combine",                                 //
                                          "from Main0", "to Main1", "draw heat",                                    //
                                          "{ Display Final Image", "to default", "from Main1", "clear color",
                                          "draw PostFxStretchRect", "depth", "}", "}", "from nothing", "}"));
    EXPECT_EQ(Driver.Mode, VR_RENDER_MODE_NORMAL);
    EXPECT_EQ(Driver.Viewport, (vrViewport{1, 2, 30, 20}));
    EXPECT_EQ(Context.PostFxMask, VR_POSTFX_ALL);
}

TEST_F(PostFxManager, NeverReadsTheTargetThatItWrites)
{
    Write_Step("main", "FROM_MAIN_RT", "TO_MAIN_RT");
    Write_Step("side", "FROM_MAIN_RT", "TO_IRT0");
    Write_Step("same", "FROM_IRT0", "TO_IRT0");
    Load(Effect("GAME", {"main", "side", "main", "side", "side", "main", "same"}));
    for (int frame = 0; frame < 3; ++frame) {
        Driver.Lines.clear();
        Manager.Execute(Context, nullptr);
        std::string from, to, lastMain = "Scene";
        for (const std::string &line : Driver.Lines) {
            if (line == "to default") break;
            if (line.starts_with("from ")) from = line.substr(5);
            if (line.starts_with("to ")) to = line.substr(3);
            if (!line.starts_with("draw ")) continue;
            EXPECT_NE(from, to);
            EXPECT_EQ(from, line == "draw same" ? "nothing" : lastMain);
            if (line == "draw main") lastMain = to;
        }
    }
}

TEST_F(PostFxManager, WritesAQuadWithTheCamerasRays)
{
    Folder.Write("PostFxSteps/part",
                 "<S><Shader>part</Shader><QuadMax>0.5 0.25</QuadMax><OutputMode>TO_IRT0</OutputMode></S>");
    Load(Effect("GAME", {"part"}));
    // 90 degrees, twice as wide as high: at a depth of 10 the corners are 20 to the side and 10 up.
    Camera->Set_Perspective(1.57079633f, 2.0f);
    Camera->Set_Depth_Range(1.0f, 10.0f);
    Manager.Execute(Context, nullptr);
    const struct
    {
        float x, y, u, v;
        Vector3 ray;
    } rows[] = {
        {-1.0f, 1.0f, 0.0f, 0.0f, {-20.0f, 10.0f, -10.0f}},
        {-1.0f, 0.5f, 0.0f, 0.25f, {-20.0f, 5.0f, -10.0f}},
        {0.0f, 0.5f, 0.5f, 0.25f, {0.0f, 5.0f, -10.0f}},
        {0.0f, 1.0f, 0.5f, 0.0f, {0.0f, 10.0f, -10.0f}},
    };
    for (int i = 0; i < 4; ++i) {
        const vrLitVertex &vertex = Driver.Vertices[i];
        EXPECT_EQ(vertex.Position, Vector3(rows[i].x, rows[i].y, 0.0f)) << i;
        EXPECT_EQ(vertex.UV, Vector2(rows[i].u, rows[i].v)) << i;
        for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(vertex.Normal[axis], rows[i].ray[axis], 1e-4f) << i;
    }
}

TEST_F(PostFxManager, LeavesThePictureAloneWhenItCouldNotShowTheResult)
{
    Driver.MissingShaders = {"PostFxStretchRect"};
    Manager.Init();
    Write_Step("main", "FROM_MAIN_RT", "TO_MAIN_RT");
    Load(Effect("GAME", {"main"}));
    EXPECT_TRUE(Reports.Has_Log("stay off, since there is no shader PostFxStretchRect"));
    Manager.Execute(Context, nullptr);
    EXPECT_EQ(std::count(Driver.Lines.begin(), Driver.Lines.end(), "draw main"), 0);
    // The effects' folders came later.
    Driver.MissingShaders.clear();
    Manager.Execute(Context, nullptr);
    EXPECT_THAT(Driver.Lines, Contains("draw PostFxStretchRect"));
}

} // namespace
