#include "EffectTestFiles.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrLODManager.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace
{

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto PARTICLES = vrRenderPhaseEnum::Particles;
constexpr auto HEAT = vrRenderPhaseEnum::Heat;

/// Writes down what it is asked for.
class NotingVisualizer final : public vrMKPVisualizer
{
public:
    NotingVisualizer(std::string name, vrRenderPhaseEnum phase, std::vector<std::string> &notes)
        : Name(std::move(name)), Phase(phase), Notes(notes)
    {
    }

    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrRenderPhaseEnum Get_Render_Phase() const override { return Phase; }
    bool Is_Render_Mode_Enabled(vrRenderModeType mode) const override { return (Modes & mode) != 0; }
    void Load_Assets(bool force, const vrMKPVisualizer *shared) override { Loads += !force && !shared ? 1 : 100; }
    void Bind_To_Emitter(vrMKPEmitterFace &emitter) override { BoundLight = emitter.Find_Light_Source("LAMP"); }

    uint32_t Modes = VR_RENDER_MODE_NORMAL;
    int BoundLight = -2;
    int Loads = 0;

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &) const override
    {
        Notes.push_back("pre " + Name + " " + std::to_string(buffer.VisibleCount));
    }
    void Do_Visualize(vrMKPBuffer &, vrRenderContext &context) const override
    {
        Notes.push_back(Name + " in " + Get_Phase_Name(context.Phase));
    }

private:
    std::string Name;
    vrRenderPhaseEnum Phase;
    std::vector<std::string> &Notes;
};

/// An emitter with a group, whose layers get one particle in each of the first frames, on the null driver.
class GroupRender : public testing::Test
{
protected:
    GroupRender()
    {
        vrNullDriverMethods::Set_Runs_Tasks(true);
        vrNullDriverMethods::Init(nullptr, 64, 64);
        Camera->Set_Depth_Range(1.0f, 1000.0f);
        Camera->Set_Transform(Mat3DClass::Look_At({0.0f, -100.0f, 0.0f}, Vector3(0.0f)));
        Emitter->Set_Remove_On_Depleted(false);
    }
    ~GroupRender() override
    {
        vrNullDriverMethods::Shutdown();
        vrNullDriverMethods::Set_Runs_Tasks(false);
    }
    vrMKParticleGroup &Add_Group(float sortBias = 0.0f)
    {
        auto *group = new vrMKParticleGroup;
        Emitter->Add_Renderable(group);
        group->Complete_Definition();
        group->Set_Sort_Bias(sortBias);
        return *group;
    }
    NotingVisualizer &Add_Layer(vrMKParticleGroup &group, const std::string &name, vrRenderPhaseEnum phase,
                                int transformer = 27)
    {
        auto *layer = new vrMKParticle;
        auto *visualizer = new NotingVisualizer(name, phase, Notes);
        layer->Set_Name(name);
        layer->Set_Spawner(static_cast<vrMKPSpawner *>(vrMKPPlugin::Create_Plugin(34)));
        layer->Set_Transformer(static_cast<vrMKPTransformer *>(vrMKPPlugin::Create_Plugin(transformer)));
        layer->Set_Stomper(static_cast<vrMKPStomper *>(vrMKPPlugin::Create_Plugin(19)));
        layer->Set_Visualizer(visualizer);
        dynamic_cast<RangedFloatParameter &>(*layer->Get_Spawner()->Get_Parameter_By_Name("Particles / Second"))
            .Set_Value(8.0f);
        group.Add_Particle(layer);
        return *visualizer;
    }
    void Play(int frames)
    {
        Scene.Add_Renderable(Emitter.Get());
        for (int frame = 0; frame < frames; ++frame) Scene.Update(0.1f);
    }
    /// What a render did, once the notes of the pre-render are in.
    std::vector<std::string> Render(vrRenderModeType mode = VR_RENDER_MODE_NORMAL)
    {
        Notes.clear();
        Scene.Render(Camera.Get(), mode, false);
        return Notes;
    }

    std::vector<std::string> Notes;
    vrSimpleScene Scene;
    SmartPtr<vrMKParticleEmitter> Emitter{new vrMKParticleEmitter};
    SmartPtr<vrCamera> Camera{new vrCamera};
};

TEST_F(GroupRender, DrawsItsLayersInOrderPhaseByPhase)
{
    vrMKParticleGroup &group = Add_Group();
    Add_Layer(group, "smoke", PARTICLES);
    Add_Layer(group, "shimmer", HEAT);
    Add_Layer(group, "sparks", PARTICLES);
    Play(2);
    vrGraphicsStats::Get_Stats(true);
    EXPECT_THAT(Render(), ElementsAre("pre smoke 2", "pre sparks 2", "pre shimmer 2", "smoke in Particles",
                                      "sparks in Particles", "shimmer in Heat"));
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).ParticlesRendered, 6);
}

TEST_F(GroupRender, TheModeOfALayerHoldsForItAlone)
{
    vrMKParticleGroup &group = Add_Group();
    Add_Layer(group, "smoke", PARTICLES);
    Add_Layer(group, "mirrored", PARTICLES).Modes = VR_RENDER_MODE_REFLECTION;
    Add_Layer(group, "shimmer", HEAT).Modes = VR_RENDER_MODE_REFLECTION;
    Play(1);
    EXPECT_THAT(Render(), ElementsAre("pre smoke 1", "smoke in Particles"));
    EXPECT_THAT(Render(VR_RENDER_MODE_REFLECTION), ElementsAre("pre mirrored 1", "mirrored in Particles")); // no heat
    EXPECT_THAT(Render(VR_RENDER_MODE_SHADOW_MAP), IsEmpty());
}

TEST_F(GroupRender, AssetsComeWithARunWhereThereIsADriver)
{
    NotingVisualizer &visualizer = Add_Layer(Add_Group(), "smoke", PARTICLES);
    Play(3);
    EXPECT_EQ(visualizer.Loads, 1);
    vrNullDriverMethods::Shutdown();
    Emitter->Restart();
    Scene.Update(0.1f);
    EXPECT_EQ(visualizer.Loads, 1);
    vrNullDriverMethods::Init(nullptr, 64, 64);
}

TEST_F(GroupRender, GoesByItsBiasAmongGroups)
{
    Add_Layer(Add_Group(2.0f), "near", PARTICLES);
    Add_Layer(Add_Group(-2.0f), "far", PARTICLES);
    Play(1);
    const auto notes = Render();
    ASSERT_EQ(notes.size(), 4u);
    EXPECT_EQ(notes[2], "far in Particles");
    EXPECT_EQ(notes[3], "near in Particles");
}

TEST_F(GroupRender, WhatIsHiddenSuspendedEmptyOrEndedDrawsNothing)
{
    vrMKParticleGroup &group = Add_Group();
    Add_Layer(group, "smoke", PARTICLES);
    Play(1);
    Emitter->Set_Hidden(true);
    EXPECT_THAT(Render(), IsEmpty());
    Emitter->Set_Hidden(false);
    group.Get_Particle(0)->Set_Hidden_By_LOD(true);
    EXPECT_THAT(Render(), IsEmpty());
    group.Get_Particle(0)->Set_Hidden_By_LOD(false);
    vrGraphicsDriver::Enable(0x8, false);
    EXPECT_THAT(Render(), IsEmpty());
    vrGraphicsDriver::Enable(0x8, true);
    EXPECT_EQ(Render().size(), 2u);
    group.Get_Outcome().Killed = true;
    EXPECT_THAT(Render(), IsEmpty());
    group.Get_Outcome().Killed = false;
    group.Get_Particle(0)->Get_Buffer()->Clear_Particles();
    EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(GroupRender, ThePassMaskGatesEachStep)
{
    Add_Layer(Add_Group(), "smoke", PARTICLES);
    Play(1);
    const uint32_t passes = vrGraphicsDriver::Get_Particle_Passes();
    vrGraphicsDriver::Set_Particle_Passes(passes & ~vrGraphicsDriver::PASS_RENDER);
    EXPECT_THAT(Render(), ElementsAre("pre smoke 1"));
    vrGraphicsDriver::Set_Particle_Passes(passes & ~vrGraphicsDriver::PASS_PRE_RENDER);
    EXPECT_THAT(Render(), ElementsAre("smoke in Particles"));
    vrGraphicsDriver::Set_Particle_Passes(passes);
}

TEST_F(GroupRender, IsCulledByItsParticlesUnlessTheyDependOnTheView)
{
    vrMKParticleGroup &group = Add_Group();
    Add_Layer(group, "smoke", PARTICLES);
    Play(1);
    Camera->Set_Transform(Mat3DClass::Look_At({0.0f, -500.0f, 0.0f}, {0.0f, -600.0f, 0.0f}));
    EXPECT_THAT(Render(), IsEmpty());
    vrBounds box;
    EXPECT_TRUE(Emitter->Get_Cull_Box(box));
    EXPECT_EQ(box.Center, group.Get_Bounds().Center);
    group.Get_Particle(0)->Set_Transformer(static_cast<vrMKPTransformer *>(vrMKPPlugin::Create_Plugin(122)));
    ASSERT_TRUE(group.Get_Particle(0)->Get_Transformer()->Needs_Camera());
    EXPECT_FALSE(Emitter->Get_Cull_Box(box));
    EXPECT_EQ(Render().size(), 2u);
}

TEST_F(GroupRender, IsCulledByWhatAViewMayShowOfIt)
{
    vrMKParticleGroup &group = Add_Group();
    Add_Layer(group, "smoke", PARTICLES);
    vrMKParticle &layer = *group.Get_Particle(0);
    layer.Set_Visualizer(static_cast<vrMKPVisualizer *>(vrMKPPlugin::Create_Plugin(22)));
    auto &offset = dynamic_cast<RangedFloatParameter &>(*layer.Get_Visualizer()->Get_Parameter_By_Name("Depth Offset"));
    Emitter->Set_Transform(Mat3DClass::From_Translation({0.0f, 7.0f, 0.0f}));
    Play(1);
    vrBounds box;
    for (const float value : {-50.0f, 50.0f, std::numeric_limits<float>::infinity()}) {
        offset.Set_Value(value);
        EXPECT_TRUE(Emitter->Get_Cull_Box(box));
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(box.Extent[axis] - group.Get_Bounds().Extent[axis], std::isfinite(value) ? 50.0f : 0.0f, 1e-4f);
    }
    // Those of a device may be anywhere in a box of a fixed size.
    layer.Set_Visualizer(static_cast<vrMKPVisualizer *>(vrMKPPlugin::Create_Plugin(61)));
    layer.Set_Spawner(static_cast<vrMKPSpawner *>(vrMKPPlugin::Create_Plugin(60)));
    Scene.Update(0.1f);
    EXPECT_TRUE(Emitter->Get_Cull_Box(box));
    EXPECT_EQ(box.Center, Vector3(0.0f, 7.0f, 0.0f));
    EXPECT_EQ(box.Extent, Vector3(5000.0f));
}

TEST_F(GroupRender, LightsOfAllGroupsStandInOneRow)
{
    const auto light = [](const char *name, float intensity) {
        auto *controller = static_cast<vrMKPLightSourceController *>(vrMKPPlugin::Create_Plugin(107));
        dynamic_cast<StringParameterClass &>(*controller->Get_Parameter_By_Name("Name")).Set_Value(name);
        dynamic_cast<RangedFloatParameter &>(*controller->Get_Parameter_By_Name("Intensity")).Set_Value(intensity);
        return controller;
    };
    vrMKParticleGroup &first = Add_Group();
    vrMKParticleGroup &second = Add_Group();
    first.Add_Light(light("fire", 1.0f));
    second.Add_Light(light("moon", 2.0f));
    second.Add_Light(light("Lamp", 3.0f));
    NotingVisualizer &visualizer = Add_Layer(first, "smoke", PARTICLES);
    EXPECT_EQ(Emitter->Get_Light_Source_Count(), 3);
    EXPECT_EQ(Emitter->Find_Light_Source("lam"), -1);
    Play(1);
    EXPECT_EQ(visualizer.BoundLight, 2);
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(Emitter->Get_Light_Source(index).Intensity, static_cast<float>(index + 1));
}

TEST_F(GroupRender, TakesTheTintOfItsScene)
{
    vrMKParticleGroup &group = Add_Group();
    Scene.Set_Tint({0.5f, 1.0f, 0.25f, 0.75f});
    Play(1);
    EXPECT_EQ(group.Get_State().ColorMultiplier, (RGBAClass{0.5f, 1.0f, 0.25f, 0.75f}));
}

TEST_F(GroupRender, KeepUpdatingHoldsADepletedEmitter)
{
    Emitter->Set_Remove_On_Depleted(true);
    Emitter->Keep_Updating();
    Play(3);
    EXPECT_EQ(Emitter->Get_Scene(), &Scene);
    Emitter->Hold_Removal_Off(false);
    Scene.Update(0.1f);
    EXPECT_EQ(Emitter->Get_Scene(), nullptr);
}

TEST_F(GroupRender, FramesOfASceneAdvanceTheFades)
{
    vrLODManager::Set_LOD_Fade(vrLODManager::LOD_FADE_3, 0.0f, 0.5f, 1.0f);
    Scene.Update(0.25f);
    EXPECT_NEAR(vrLODManager::Get_LOD_Fade(vrLODManager::LOD_FADE_3), 0.125f, 1e-4f);
}

} // namespace
