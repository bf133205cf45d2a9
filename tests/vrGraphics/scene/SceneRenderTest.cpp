#include "vrGraphics/postfx/RecordingDriver.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>
#include <vector>

namespace
{

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the renders of a scene asked for, in order.
struct Journal
{
    std::vector<int> Collected;
    std::vector<std::pair<int, vrRenderPhaseEnum>> Rendered;
    uint32_t PhaseMask = 0;
    uint32_t PostFxMask = 0;
    vrBounds TaskBounds;
    vrEnvironmentValues Environment; ///< the driver's, while the last task drew, like the next
    const vrLightContext *Lights = nullptr;
};

/// A box that draws in the phases that it is given.
class Block final : public vrRenderable
{
public:
    Block(Journal &journal, int number, const vrBounds &box = {}, std::vector<vrRenderPhaseEnum> phases = {})
        : Book(journal), Number(number), Box(box), Phases(std::move(phases))
    {
    }

    vrRenderable *Clone(vrCloneType) const override { return nullptr; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Get_Cull_Box(vrBounds &box) const override
    {
        box = Box;
        return HasBox;
    }
    void Collect(vrRenderContext &context) override
    {
        Book.Collected.push_back(Number);
        Book.PhaseMask = context.PhaseMask;
        Book.PostFxMask = context.PostFxMask;
        for (const vrRenderPhaseEnum phase : Phases) context.Scene->Add_Simple_Task(context, *this, phase, Box, Bias);
    }
    void Render(vrRenderContext &context) override
    {
        Book.Rendered.emplace_back(Number, context.Phase);
        Book.TaskBounds = context.TaskBounds;
        Book.Environment = TheGraphicsDriver->Get_Environment();
        Book.Lights = TheGraphicsDriver->Get_Light_Context();
    }

    Journal &Book;
    int Number;
    vrBounds Box;
    std::vector<vrRenderPhaseEnum> Phases;
    bool HasBox = true;
    float Bias = 0.0f;
};

/// The null driver with the switch that makes it run tasks.
class SceneRender : public testing::Test
{
protected:
    SceneRender()
    {
        vrNullDriverMethods::Set_Runs_Tasks(true);
        vrNullDriverMethods::Init(nullptr, 64, 64);
        Camera->Set_Depth_Range(1.0f, 1000.0f);
    }
    ~SceneRender() override
    {
        vrNullDriverMethods::Shutdown();
        vrNullDriverMethods::Set_Runs_Tasks(false);
    }
    Block &Add(vrSimpleScene &scene, const vrBounds &box = {}, std::vector<vrRenderPhaseEnum> phases = {})
    {
        auto *block = new Block(Book, scene.Get_Renderable_Count(), box, std::move(phases));
        scene.Add_Renderable(block);
        return *block;
    }
    std::vector<int> Collect(vrSimpleScene &scene, vrRenderModeType mode = VR_RENDER_MODE_NORMAL)
    {
        Book = {};
        scene.Render(Camera.Get(), mode, false);
        return Book.Collected;
    }

    Journal Book;
    SmartPtr<vrCamera> Camera{new vrCamera};
};

constexpr vrBounds AHEAD{{0.0f, 0.0f, -10.0f}, {1.0f, 1.0f, 1.0f}};
constexpr vrBounds BEHIND{{0.0f, 0.0f, 10.0f}, {1.0f, 1.0f, 1.0f}};

TEST_F(SceneRender, ModesSettlePhasesAndPostEffects)
{
    vrSimpleScene scene;
    Add(scene, AHEAD);
    vrSceneEffectsParams effects = scene.Get_Scene_Effects_Params();
    effects.Enable_PostFx(VR_POSTFX_BLOOM, false);
    scene.Set_Scene_Effects_Params(effects);
    const std::tuple<vrRenderModeType, uint32_t, uint32_t> cases[] = {{VR_RENDER_MODE_NORMAL, 0xFFFF, 0x1E},
                                                                      {VR_RENDER_MODE_REFRACTION, 0x18DB, 0},
                                                                      {VR_RENDER_MODE_SHADOW_MAP, 0x2DB, 0}};
    for (const auto &[mode, phases, postEffects] : cases) {
        EXPECT_THAT(Collect(scene, mode), ElementsAre(0));
        EXPECT_EQ(Book.PhaseMask, phases) << mode;
        EXPECT_EQ(Book.PostFxMask, postEffects) << mode;
    }
}

TEST_F(SceneRender, DrawsTheMasksPhasesByValueAndBias)
{
    using enum vrRenderPhaseEnum;
    vrSimpleScene scene;
    Add(scene, AHEAD, {Heat, Particles}).Bias = 2.0f;
    Add(scene, AHEAD, {Particles, Opaque}).Bias = -1.0f;
    Add(scene, AHEAD, {Particles}).Bias = 2.0f;
    Collect(scene);
    EXPECT_THAT(Book.Rendered, ElementsAre(std::pair(1, Opaque), std::pair(1, Particles), std::pair(0, Particles),
                                           std::pair(2, Particles), std::pair(0, Heat)));
}

TEST_F(SceneRender, MergesTheBoxesOfNearTasksAboveTheGround)
{
    vrSimpleScene scene(false);
    Add(scene, {{0.0f, 0.0f, 20.0f}, {1.0f, 2.0f, 10.0f}}, {vrRenderPhaseEnum::Particles});
    Add(scene, {{100.0f, 0.0f, 0.0f}, {1.0f, 4.0f, 1.0f}}, {vrRenderPhaseEnum::Opaque});
    Add(scene, {{2000000.0f, 0.0f, 0.0f}, Vector3(1.0f)}, {vrRenderPhaseEnum::Heat});
    Collect(scene);
    EXPECT_EQ(Book.TaskBounds.Center, Vector3(50.0f, 0.0f, 14.5f)); // -1 to 101, -4 to 4, -1 to 30
    EXPECT_EQ(Book.TaskBounds.Extent, Vector3(51.0f, 4.0f, 15.5f));
    const vrGroundPlane ground(8.0f);
    scene.Set_Terrain(&ground);
    Collect(scene);
    EXPECT_EQ(Book.TaskBounds.Center.z, 10.0f); // 8 to 12
    EXPECT_EQ(Book.TaskBounds.Extent.z, 2.0f);
}

TEST_F(SceneRender, OnlyTheModesOfARenderableAskIt)
{
    vrSimpleScene scene;
    Add(scene, AHEAD).Set_Render_Modes(VR_RENDER_MODE_SHADOW_MAP);
    Add(scene, AHEAD).Set_Hidden(true);
    Add(scene, BEHIND);
    Add(scene, BEHIND).HasBox = false;
    EXPECT_THAT(Collect(scene), ElementsAre(3));
    EXPECT_THAT(Collect(scene, VR_RENDER_MODE_SHADOW_MAP), ElementsAre(0, 3));
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_RENDERABLES, false);
    EXPECT_THAT(Collect(scene), IsEmpty());
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_RENDERABLES, true);
}

TEST_F(SceneRender, WaterKeepsReflectionsAboveAndRefractionsBelow)
{
    vrSimpleScene scene(false);
    scene.Set_Water_Height(0.0f);
    for (const float z : {-10.0f, 0.0f, 10.0f}) Add(scene, {{0.0f, 0.0f, z}, Vector3(1.0f)});
    EXPECT_THAT(Collect(scene, VR_RENDER_MODE_REFLECTION), ElementsAre(1, 2));
    EXPECT_THAT(Collect(scene, VR_RENDER_MODE_REFRACTION), ElementsAre(0, 1));
}

TEST_F(SceneRender, TreesFindWhatAskingEachBoxFinds)
{
    std::mt19937 random(5);
    const auto between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 4096) / 4096.0f;
    };
    const auto box = [&] {
        const auto place = [&] { return between(-300.0f, 300.0f); };
        const auto size = [&] { return between(0.0f, 20.0f); };
        return vrBounds{{place(), place(), place()}, {size(), size(), size()}};
    };
    vrSimpleScene scene;
    std::vector<SmartPtr<Block>> blocks;
    for (int number = 0; number < 300; ++number) {
        blocks.emplace_back(new Block(Book, number, box()));
        blocks.back()->Set_Still(number % 3 == 0);
        blocks.back()->HasBox = number % 17 != 0;
        scene.Add_Renderable(blocks.back().Get());
    }
    int seen = 0;
    for (int frame = 0; frame < 40; ++frame) {
        Camera->Set_Transform(Mat3DClass::Look_At({between(-200, 200), between(-200, 200), between(-200, 200)},
                                                  {between(-200, 200), between(-200, 200), between(-200, 200)}));
        for (const auto &block : blocks) {
            if (block->Is_Still() && random() % 8 != 0) continue;
            block->Box.Center += Vector3(between(-9, 9), between(-9, 9), between(-9, 9));
            scene.Refresh_Bounds(*block);
        }
        const size_t changed = random() % blocks.size();
        if (!scene.Remove_Renderable(blocks[changed].Get())) scene.Add_Renderable(blocks[changed].Get());
        std::vector<int> expected;
        for (const bool isStill : {true, false})
            for (int index = 0; index < scene.Get_Renderable_Count(); ++index) {
                const auto *block = static_cast<const Block *>(scene.Get_Renderable(index));
                if (block->Is_Still() == isStill && (!block->HasBox || Camera->Sees(block->Box)))
                    expected.push_back(block->Number);
            }
        EXPECT_EQ(Collect(scene), expected) << "frame " << frame;
        seen += static_cast<int>(expected.size());
    }
    EXPECT_GT(seen, 40 * 20); // more than what has no box
    EXPECT_LT(seen, 40 * 150);
}

/// Plays for a quarter of a second.
class Effect final : public vrSceneEffect
{
public:
    explicit Effect(std::function<void()> show) : Show(std::move(show)) {}
    void Update(float dt) override { Left -= dt; }
    bool Is_Finished() const override { return Left <= 0.0f; }
    void Pre_Render(vrRenderContext &) override { Show(); }

    float Left = 0.25f;
    std::function<void()> Show;
};

TEST_F(SceneRender, EffectsPlayUntilTheyHaveFinished)
{
    vrSimpleScene scene;
    int renders = 0;
    const SmartPtr<Effect> effect(new Effect([&] { ++renders; }));
    scene.Add_Effect(effect.Get());
    for (const int left : {1, 0}) {
        scene.Update(0.125f);
        Collect(scene);
        EXPECT_EQ(scene.Get_Effect_Count(), left);
    }
    EXPECT_EQ(renders, 1);
    EXPECT_EQ(effect->Get_Ref_Count(), 1);
}

TEST_F(SceneRender, TellsTheDriverOfTheWorldAndTakesFogAndGuestsBack)
{
    vrSimpleScene scene;
    vrFogParameters fog;
    fog.Enabled = true;
    fog.Far = 500.0f;
    scene.Set_Fog(fog);
    scene.Set_Day_Night_Factor(0.25f);
    scene.Get_Light_Context()->Set_Ambient({0.5f, 0.25f, 0.125f, 1.0f});
    const SmartPtr<vrDirectionalLight> guest(new vrDirectionalLight);
    guest->Set_Owner(&scene);
    scene.Get_Light_Context()->Add_Light(guest.Get());

    bool hadFog = false;
    scene.Add_Effect(new Effect([&] { hadFog = TheGraphicsDriver->Get_Environment().FogEnabled; }));
    scene.Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false);
    EXPECT_TRUE(hadFog);
    const vrEnvironmentValues &values = TheGraphicsDriver->Get_Environment();
    EXPECT_FALSE(values.FogEnabled);
    EXPECT_EQ(values.FogFar, 500.0f);
    EXPECT_EQ(values.DayNightFactor, 0.25f);
    EXPECT_EQ(values.Ambient, (RGBAClass{0.5f, 0.25f, 0.125f, 1.0f}));
    EXPECT_EQ(scene.Get_Light_Context()->Get_Light_Count(), 0); // the guest stayed for one render
    scene.Render(Camera.Get(), VR_RENDER_MODE_REFLECTION, false);
    EXPECT_FALSE(hadFog);
}

TEST_F(SceneRender, ASceneThatIsShownInAnotherOneLeavesThatAlone)
{
    using enum vrRenderPhaseEnum;
    vrSimpleScene mirrored;
    Journal inner;
    mirrored.Add_Renderable(new Block(inner, 7, AHEAD, {Opaque, Particles}));
    vrSimpleScene scene;
    vrFogParameters fog;
    fog.Enabled = true;
    scene.Set_Fog(fog);
    Add(scene, AHEAD, {Particles, Heat});
    scene.Add_Effect(new Effect([&] { // as a mirror
        const SmartPtr<vrCamera> camera(new vrCamera);
        for (const auto mode : {VR_RENDER_MODE_SHADOW_MAP, VR_RENDER_MODE_REFLECTION})
            mirrored.Render(camera.Get(), mode, false);
    }));
    for (int frame = 0; frame < 2; ++frame) {
        inner = {};
        Collect(scene);
        EXPECT_THAT(Book.Rendered, ElementsAre(std::pair(0, Particles), std::pair(0, Heat)));
        EXPECT_TRUE(Book.Environment.FogEnabled);
        EXPECT_EQ(Book.Lights, scene.Get_Light_Context());
        // The shadow has no particles.
        EXPECT_THAT(inner.Rendered, ElementsAre(std::pair(7, Opaque), std::pair(7, Opaque), std::pair(7, Particles)));
        EXPECT_EQ(inner.Lights, mirrored.Get_Light_Context());
        EXPECT_FALSE(inner.Environment.FogEnabled);
    }
}

/// Shines in a box.
class Lamp final : public vrLightSource
{
public:
    Lamp(const vrBounds &box, float intensity) : Box(box) { Set_Intensity(intensity); }
    vrRenderable *Clone(vrCloneType) const override { return nullptr; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Get_Cull_Box(vrBounds &box) const override { return box = Box, true; }

    vrBounds Box;
};

TEST(SceneLightField, OfTheForwardRendererHasTheLampsTheStrongestFirst)
{
    MKTest::RecordingDriver driver;
    TheGraphicsDriver = &driver;
    const SmartPtr<vrCamera> camera(new vrCamera);
    {
        vrSimpleScene scene;
        scene.Set_Sun_Direction({0.0f, 0.0f, 1.0f});
        scene.Get_Light_Context()->Add_Light(new Lamp({Vector3(0.0f), Vector3(1.0f)}, 1.0f));
        scene.Get_Light_Context()->Add_Light(new Lamp({{10.0f, 0.0f, 0.0f}, Vector3(2.0f)}, 3.0f));
        scene.Render(camera.Get(), VR_RENDER_MODE_NORMAL, false);
        scene.Enable_Light_Field(true);
        scene.Render(camera.Get(), VR_RENDER_MODE_REFLECTION, false);
        EXPECT_THAT(driver.Lines, IsEmpty()) << "it was off, and a reflection has none";
        scene.Render(camera.Get(), VR_RENDER_MODE_NORMAL, false);
        scene.Set_Light_Field_Scene_Bounds({Vector3(5.0f), Vector3(6.0f)});
        scene.Set_Use_Light_Field_Scene_Bounds(true);
        scene.Render(camera.Get(), VR_RENDER_MODE_NORMAL, false);
        // -1 to 12, and then what was given.
        EXPECT_THAT(driver.Lines, ElementsAre("light field 512: 3 1, 5.5 +- 6.5", "light field 512: 3 1, 5 +- 6"));
    }
    TheGraphicsDriver = nullptr;
}

TEST_F(SceneRender, TheDriverForgetsTheLightsOfASceneThatEnds)
{
    {
        vrSimpleScene scene;
        scene.Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false);
        EXPECT_NE(TheGraphicsDriver->Get_Light_Context(), nullptr);
    }
    EXPECT_EQ(TheGraphicsDriver->Get_Light_Context(), nullptr);
}

} // namespace
