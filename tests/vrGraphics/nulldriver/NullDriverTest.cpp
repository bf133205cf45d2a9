#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include "common/Reports.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"
#include "vrGraphics/nulldriver/vrNullDevice.h"

#include <gmock/gmock.h>

#include <thread>

using MKTest::Reports;
using testing::ElementsAre;

namespace
{

class NullDriver : public testing::Test
{
protected:
    NullDriver() { vrNullDriverMethods::Init(nullptr, 640, 480); }
    ~NullDriver() override
    {
        vrNullDriverMethods::Set_Runs_Tasks(false);
        vrNullDriverMethods::Set_Recording(false);
        vrNullDriverMethods::Shutdown();
    }
    Reports Told;
};

/// Notes what is done with it, and draws two lines' worth of vertices.
class Task final : public vrRenderTask
{
public:
    Task(std::string &story, char name, float bias = 0.0f) : Story(story), Name(name), Bias(bias) {}

    void Pre_Render(const vrPreRenderContext &context) override
    {
        Story += 'p';
        Story += Name;
        Prepared = static_cast<int>(context.Phase);
    }
    void Render(vrRenderContext &context) override
    {
        Story += 'r';
        Story += Name;
        EXPECT_EQ(static_cast<int>(context.Phase), Prepared);
        vrPrimVertex *vertices = nullptr;
        TheGraphicsDriver->Begin_Prim_Vertices(VR_PRIMITIVE_LINES, 2, &vertices);
        vertices[0] = vertices[1] = {{static_cast<float>(Name), 0.0f, 0.0f}, {0.0f, 0.0f}, VR_WHITE};
        TheGraphicsDriver->End_Prim_Vertices();
    }
    vrBounds Get_Bounds() const override { return {}; }
    const void *Get_Owner() const override { return &Story; }
    float Get_Sort_Bias() const override { return Bias; }

private:
    std::string &Story;
    char Name;
    float Bias;
    int Prepared = -1;
};

} // namespace

TEST_F(NullDriver, AnswersAreWellFormed)
{
    EXPECT_TRUE(vrNullDriverMethods::Is_Initialized());
    EXPECT_EQ(TheGraphicsDriver->Get_Driver_Type(), 3);
    EXPECT_EQ(TheGraphicsDriver->Get_Renderer_Type(), VR_RENDERER_NULL);
    EXPECT_FALSE(TheGraphicsDriver->Is_Renderer_Supported(VR_RENDERER_FORWARD));
    TheGraphicsDriver->Set_Render_Mode(VR_RENDER_MODE_OFFSCREEN, nullptr);
    EXPECT_EQ(TheGraphicsDriver->Get_Render_Mode(), 1u);
    EXPECT_EQ(TheGraphicsDriver->Get_Width(), 640);
    EXPECT_TRUE(TheGraphicsDriver->Get_Generic_Texture()->Is_Valid());
    EXPECT_TRUE(TheGraphicsDriver->Create_Shader_Instance("Anything.mks"));
    const auto target = TheGraphicsDriver->Create_Render_Target("APP_CORE_SHADOWMAP_RT", 2048, 1024, 0, 0, 1);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->Get_Width(), 2048);
    EXPECT_EQ(target->Get_Height(), 1024);
    EXPECT_EQ(TheGraphicsDriver->Create_Depth_Buffer(2048, 1024, 1, 0, 0)->Get_Height(), 1024);
    EXPECT_EQ(TheGraphicsDriver->Get_Main_Thread_Id(), Get_Current_Thread_Number());
}

TEST_F(NullDriver, OneDriverAtATime)
{
    vrGraphicsDriver *first = TheGraphicsDriver;
    EXPECT_FALSE(vrNullDriverMethods::Init(nullptr, 1, 1));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("TheGraphicsDriver == NULL"));
    EXPECT_EQ(TheGraphicsDriver, first);
    vrNullDriverMethods::Shutdown();
    EXPECT_EQ(TheGraphicsDriver, nullptr);
    EXPECT_FALSE(vrNullDriverMethods::Is_Initialized());
    vrNullDriverMethods::Shutdown();
    EXPECT_TRUE(vrNullDriverMethods::Init(nullptr, 1, 1)) << "it starts again";
}

TEST_F(NullDriver, RequestsPastTheLimitAssertAndGetRoomForAllOfTheirVertices)
{
    vrLitBumpVertex *usual = nullptr;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 65534, &usual));
    vrLitVertex *same = nullptr;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &same));
    EXPECT_EQ(static_cast<void *>(same), static_cast<void *>(usual));
    EXPECT_TRUE(Told.Get_Asserts().empty());

    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 65535, &usual));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("vcount < MAX_PRIM_VERTICES"));
    ASSERT_NE(usual, nullptr);
    usual[65534].Color = VR_WHITE;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 262140, &usual));
    usual[262139].Color = VR_WHITE; // the sanitizers watch this one
    EXPECT_FALSE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 2147483647, &usual));
    EXPECT_EQ(usual, nullptr);
    TheGraphicsDriver->End_Lit_Bump_Vertices();
}

TEST_F(NullDriver, RequestsWithoutAPlaceOrWithTooManyIndicesAssert)
{
    EXPECT_FALSE(TheGraphicsDriver->Begin_Prim_Vertices(VR_PRIMITIVE_LINES, 2, nullptr));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("ppv != NULL"));
    Told.Clear();
    vrLitVertex *vertices = nullptr;
    uint16_t *indices = nullptr;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 4, &vertices, 65535, &indices));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("icount < MAX_PRIM_INDICES"));
    ASSERT_NE(indices, nullptr);
    indices[65534] = 1;
    EXPECT_FALSE(TheGraphicsDriver->Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 4, &vertices, 3, nullptr));
    EXPECT_EQ(vertices, nullptr);
}

TEST_F(NullDriver, DrawsAreKeptWhileRecording)
{
    vrNullDriverMethods::Set_Recording(true);
    vrLitVertex *vertices = nullptr;
    uint16_t *indices = nullptr;
    ASSERT_TRUE(TheGraphicsDriver->Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 3, &vertices, 3, &indices));
    for (int index = 0; index < 3; ++index) {
        vertices[index] = {{static_cast<float>(index), 2.0f, 3.0f}, {0.0f, 0.0f, 1.0f}, {0.5f, 0.25f}, 0x11223344};
        indices[index] = static_cast<uint16_t>(2 - index);
    }
    TheGraphicsDriver->End_Prim_Vertices(); // the end of another kind ends nothing
    EXPECT_TRUE(vrNullDriverMethods::Get_Draws().empty());
    TheGraphicsDriver->End_Indexed_Lit_Vertices();
    TheGraphicsDriver->End_Indexed_Lit_Vertices();
    ASSERT_EQ(vrNullDriverMethods::Get_Draws().size(), 1u);
    const vrNullDrawRecord &draw = vrNullDriverMethods::Get_Draws().front();
    EXPECT_EQ(draw.Type, VR_LIT_VERTEX);
    EXPECT_THAT(draw.Indices, ElementsAre(2, 1, 0));
    const auto kept = draw.Get_Vertices<vrLitVertex>();
    ASSERT_EQ(kept.size(), 3u);
    EXPECT_EQ(kept[2].Position, Vector3(2.0f, 2.0f, 3.0f));
    EXPECT_EQ(kept[2].Color, 0x11223344u);
    EXPECT_TRUE(draw.Get_Vertices<vrPrimVertex>().empty());
}

TEST_F(NullDriver, RenderTasksEmptiesTheListsAndDrawsNothing)
{
    std::string story;
    Task task(story, 'a');
    const SmartPtr<vrCamera> camera = new vrCamera;
    vrRenderContext context(camera.Get());
    context.Add_Task(vrRenderPhaseEnum::Particles, &task);
    vrGraphicsStats::Get_Stats(true);
    TheGraphicsDriver->Render_Tasks(context);
    EXPECT_EQ(context.Get_Task_Count(), 0);
    EXPECT_EQ(story, "");
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).Renders, 1);
}

TEST_F(NullDriver, OnRequestTasksRunPhaseByPhase)
{
    std::string story;
    Task heat(story, 'h');
    Task first(story, 'a');
    Task second(story, 'b', -1.0f);
    Task masked(story, 'x');
    const SmartPtr<vrCamera> camera = new vrCamera;
    vrRenderContext context(camera.Get());
    context.PhaseMask = 0xffffu & ~Phase_Bit(vrRenderPhaseEnum::Opaque);
    context.Add_Task(vrRenderPhaseEnum::Heat, &heat);
    context.Add_Task(vrRenderPhaseEnum::Particles, &first);
    context.Add_Task(vrRenderPhaseEnum::Particles, &second);
    context.Add_Task(vrRenderPhaseEnum::Opaque, &masked);
    vrNullDriverMethods::Set_Runs_Tasks(true);
    vrNullDriverMethods::Set_Recording(true);
    vrGraphicsStats::Get_Stats(true);
    TheGraphicsDriver->Render_Tasks(context);
    EXPECT_EQ(context.Get_Task_Count(), 0);
    EXPECT_EQ(story.substr(story.find('r')), "rbrarh") << "the lower bias first, the phases by their value";
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).Vertices, 6);
    ASSERT_EQ(vrNullDriverMethods::Get_Draws().size(), 3u);
    EXPECT_EQ(vrNullDriverMethods::Get_Draws()[0].Phase, vrRenderPhaseEnum::Particles);
    EXPECT_EQ(vrNullDriverMethods::Get_Draws()[2].Phase, vrRenderPhaseEnum::Heat);
}

TEST_F(NullDriver, TheRendererChangesOnTheMainThreadAlone)
{
    RenderThread::InParallelSection = true;
    TheGraphicsDriver->Set_Renderer_Type(VR_RENDERER_FORWARD, false);
    EXPECT_TRUE(Told.Get_Asserts().empty());
    std::thread([] { TheGraphicsDriver->Set_Renderer_Type(VR_RENDERER_FORWARD, false); }).join();
    RenderThread::InParallelSection = false;
    EXPECT_THAT(Told.Get_Asserts(),
                ElementsAre("(Is_Main_Thread() || !RenderThread::InParallelSection) && \"Attempting to call a function "
                            "from an unsafe section of code.\""));
}

TEST_F(NullDriver, AQuadOnTheScreenHasItsCornersInOrder)
{
    vrNullDriverMethods::Set_Recording(true);
    vrRenderUtils::Begin_Render_2D_Quad(nullptr, 0, 0, VR_SAMPLER_PLAIN);
    EXPECT_TRUE(TheGraphicsDriver->Is_Screen_Space());
    vrRenderUtils::Render_2D_Quad(-1.0f, 1.0f, 1.0f, -1.0f, 0.5f, {0.0f, 0.0f}, {1.0f, 1.0f}, VR_WHITE);
    vrRenderUtils::End_Render_2D_Quad();
    EXPECT_FALSE(TheGraphicsDriver->Is_Screen_Space());
    ASSERT_EQ(vrNullDriverMethods::Get_Draws().size(), 1u);
    const auto corners = vrNullDriverMethods::Get_Draws()[0].Get_Vertices<vrPrimVertex>();
    ASSERT_EQ(corners.size(), 4u);
    const float expected[4][4] = {{-1, 1, 0, 0}, {-1, -1, 0, 1}, {1, -1, 1, 1}, {1, 1, 1, 0}};
    for (size_t corner = 0; corner < 4; ++corner) {
        EXPECT_EQ(corners[corner].Position, Vector3(expected[corner][0], expected[corner][1], 0.5f)) << corner;
        EXPECT_EQ(corners[corner].UV, Vector2(expected[corner][2], expected[corner][3])) << corner;
    }
}

TEST(NullDevice, StandsFromInitToShutdown)
{
    vrNullDevice device(320, 200);
    std::string error;
    EXPECT_FALSE(device.Is_Device_Operational());
    EXPECT_FALSE(device.Create_Device(error));
    EXPECT_EQ(error, "the null driver isn't started");
    ASSERT_TRUE(device.Init());
    EXPECT_TRUE(device.Create_Device(error));
    EXPECT_TRUE(device.Is_Device_Operational());
    device.Resize_Back_Buffer(100, -1);
    EXPECT_EQ(TheGraphicsDriver->Get_Viewport(), (vrViewport{0, 0, 100, 200}));
    device.Shutdown();
    EXPECT_FALSE(device.Is_Device_Operational());
    EXPECT_EQ(TheGraphicsDriver, nullptr);
}
