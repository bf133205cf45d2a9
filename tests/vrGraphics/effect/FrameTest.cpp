#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <limits>

namespace
{

using MKTest::EditorMode;

/// Creates the plugin of a slot and sets its parameters by name.
template <typename Plugin>
SmartPtr<Plugin> Make(uint32_t id)
{
    return static_cast<Plugin *>(vrMKPPlugin::Create_Plugin(id));
}

void Set(const vrMKPPlugin *plugin, const char *name, float value)
{
    dynamic_cast<RangedFloatParameter &>(*plugin->Get_Parameter_By_Name(name)).Set_Value(value);
}
void Set(const vrMKPPlugin *plugin, const char *name, bool value)
{
    dynamic_cast<BoolParameter &>(*plugin->Get_Parameter_By_Name(name)).Set_Value(value);
}
void Set(const vrMKPPlugin *plugin, const char *name, int value)
{
    dynamic_cast<RangedIntParameter &>(*plugin->Get_Parameter_By_Name(name)).Set_Value(value);
}
void Set_Velocity(const vrMKPPlugin *plugin, const Vector3 &velocity)
{
    ShapeStruct shape;
    shape.Center = velocity;
    dynamic_cast<ShapeParameterClass &>(*plugin->Get_Parameter_By_Name("Velocity")).Set_Value(shape);
}

void Set_Random_Velocity(const vrMKPPlugin *plugin)
{
    dynamic_cast<ShapeParameterClass &>(*plugin->Get_Parameter_By_Name("Velocity"))
        .Set_Value({.ShapeType = SHAPE_SPHERE});
}

/// An emitter with one group in a simple scene, whose layers spawn at a point, one particle each tenth of a second,
/// which live a second and stay where they are.
struct Stage
{
    vrSimpleScene Scene;
    SmartPtr<vrMKParticleEmitter> Emitter{new vrMKParticleEmitter};
    vrMKParticleGroup *Group = new vrMKParticleGroup;

    Stage()
    {
        Emitter->Add_Renderable(Group);
        Group->Complete_Definition();
    }

    vrMKParticle &Add_Layer(const char *name = "layer", uint32_t spawner = 34)
    {
        auto *layer = new vrMKParticle;
        layer->Set_Name(name);
        layer->Set_Spawner(Make<vrMKPSpawner>(spawner).Get());
        layer->Set_Transformer(Make<vrMKPTransformer>(27).Get());
        layer->Set_Stomper(Make<vrMKPStomper>(19).Get());
        layer->Set_Visualizer(Make<vrMKPVisualizer>(22).Get());
        Set(layer->Get_Stomper(), "Stomp Time", 1.0f);
        if (spawner == 34) {
            Set(layer->Get_Spawner(), "Particles / Second", 10.0f);
            Set(layer->Get_Spawner(), "Random Seed", 7);
            Set_Velocity(layer->Get_Spawner(), Vector3(0.0f));
        }
        Group->Add_Particle(layer);
        return *layer;
    }
    void Play(int frames, float dt = 0.1f)
    {
        if (!Emitter->Get_Scene() && Scene.Get_Frame_Count() == 0) Scene.Add_Renderable(Emitter.Get());
        for (int frame = 0; frame < frames; ++frame) Scene.Update(dt);
    }
    int Live(int layer = 0) const { return Group->Get_Particle(layer)->Get_Buffer()->ActiveCount; }
};

TEST(Frame, AParticleIsBornMovesAgesAndDiesInTheOrderOfTheFrame)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    Set(layer.Get_Spawner(), "Particles / Second", 2.0f);
    Set_Velocity(layer.Get_Spawner(), Vector3(8.0f, 0.0f, 0.0f));
    stage.Play(1, 0.25f);
    const vrMKPBuffer &buffer = *layer.Get_Buffer();
    // Born at the head of the frame, it has moved by its share of it, and is not moved again.
    ASSERT_EQ(buffer.ActiveCount, 1);
    EXPECT_EQ(buffer.Age[0], 0.25f);
    EXPECT_EQ(buffer.Position[0], Vector3(2.0f, 0.0f, 0.0f));
    stage.Play(3, 0.25f);
    EXPECT_EQ(buffer.ActiveCount, 2);
    EXPECT_EQ(buffer.Age[0], 1.0f); // at its greatest age it lives on
    EXPECT_EQ(buffer.Position[0], Vector3(8.0f, 0.0f, 0.0f));
    EXPECT_EQ(buffer.PreviousPosition[0], Vector3(6.0f, 0.0f, 0.0f));
    stage.Play(1, 0.25f);
    EXPECT_EQ(buffer.ActiveCount, 2); // the second one, at 6, and a third one, at 2
    EXPECT_EQ(buffer.Head, 1);
    EXPECT_EQ(layer.Get_Bounds().Center, Vector3(4.0f, 0.0f, 0.0f));
    EXPECT_EQ(layer.Get_Bounds().Extent, Vector3(4.0f, 2.0f, 2.0f)); // a size of 1 and 1 reaches 2 each way
}

TEST(Frame, PreSimulationRunsWholeStepsOnceAndCountsThem)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    Set(layer.Get_Spawner(), "PreSimulateSeconds", 0.5f);
    Set(layer.Get_Stomper(), "Stomp Time", 100.0f);
    stage.Play(1, 0.0f);
    // 15 steps of 0.033 seconds, at ten a second, from 0 on: at 0, 0.1 ... 0.4.
    EXPECT_EQ(stage.Live(), 5);
    // Each step is charged: three steps each with one to five particles, and the frame itself.
    EXPECT_EQ(stage.Group->Get_State().ParticleCount, 3 * (1 + 2 + 3 + 4 + 5) + 5);
    stage.Play(1, 0.0f);
    EXPECT_EQ(stage.Group->Get_State().ParticleCount, 5);
}

TEST(Frame, WhatRunsAheadOfAStartIsBoundedByTheRingThatItComesToHave)
{
    Stage stage;
    vrMKParticle &parent = stage.Add_Layer("parent");
    Set(parent.Get_Spawner(), "Particles / Second", 1000000.0f);
    vrMKParticle &slave = stage.Add_Layer("slave", 95);
    dynamic_cast<StringParameterClass &>(*slave.Get_Spawner()->Get_Parameter_By_Name("Parent Name"))
        .Set_Value("parent");
    Set(slave.Get_Spawner(), "PreSimulateSeconds", 100.0f);
    const MKTest::Reports reports;
    stage.Play(1, 0.0f);
    EXPECT_EQ(slave.Get_Buffer()->Capacity, parent.Get_Buffer()->Capacity);
    // 2^26 particle steps of a ring of 1.1 million are 62, and one more with the first, small one.
    EXPECT_EQ(reports.Count_Logs("Layer \"slave\" asks for 100 seconds ahead of its start, gets 2.0"), 1)
        << reports.Get_Text();
}

TEST(Frame, ALayerWithoutAChanceDoesNotRun)
{
    Stage stage;
    stage.Emitter->Set_Remove_On_Depleted(false);
    Set(stage.Add_Layer().Get_Spawner(), "Probability", 0.0f);
    stage.Play(3);
    EXPECT_FALSE(stage.Group->Get_Particle(0)->Get_Buffer());
}

TEST(Frame, AnEffectWithAnEndKeepsTheQualityThatItStartedWith)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    Set(layer.Get_Spawner(), "Stop Time", 60.0f);
    layer.Get_Spawner()->Set_LOD(3);
    vrMKPSpawner::Set_Global_LOD_Level(2);
    stage.Emitter->Set_Remove_On_Depleted(false);
    stage.Play(2);
    vrMKPSpawner::Set_Global_LOD_Level(4);
    stage.Play(2);
    EXPECT_EQ(stage.Live(), 0);
    stage.Emitter->Restart();
    stage.Play(2);
    EXPECT_GT(stage.Live(), 0);
}

TEST(Frame, AHardwareLayerPlaysBesideItsBufferCountsCyclesAndEnds)
{
    const EditorMode editor(true);
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer("hardware", 60);
    Set(layer.Get_Spawner(), "Particle Lifetime", 0.5f);
    Set(layer.Get_Spawner(), "Stop Time", 0.8f);
    stage.Play(3);
    ASSERT_TRUE(layer.Get_Buffer()->Companion);
    EXPECT_EQ(layer.Get_Buffer()->ActiveCount, 0);
    EXPECT_EQ(stage.Group->Get_State().HardwareCycles, 1);
    stage.Play(9); // 0.8 s of spawning, the last of 0.5 s of life
    EXPECT_EQ(stage.Group->Get_State().HardwareCycles, 2);
    EXPECT_NE(stage.Emitter->Get_Scene(), nullptr);
    stage.Play(4);
    EXPECT_EQ(stage.Emitter->Get_Scene(), nullptr);
}

void Expect_Same(const vrMKPBuffer &a, const vrMKPBuffer &b)
{
    ASSERT_EQ(a.ActiveCount, b.ActiveCount);
    ASSERT_EQ(a.Head, b.Head);
    for (const vrMKPSpan span : a.Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            ASSERT_EQ(a.WorldPosition[slot], b.WorldPosition[slot]) << slot;
            ASSERT_EQ(a.PreviousPosition[slot], b.PreviousPosition[slot]) << slot;
            ASSERT_EQ(a.Velocity[slot], b.Velocity[slot]) << slot;
            ASSERT_EQ(a.Age[slot], b.Age[slot]) << slot;
            ASSERT_EQ(a.Time[slot], b.Time[slot]) << slot;
            ASSERT_EQ(a.Color[slot], b.Color[slot]) << slot;
            ASSERT_EQ(a.UV[slot], b.UV[slot]) << slot;
            ASSERT_EQ(a.Size[slot], b.Size[slot]) << slot;
            ASSERT_EQ(a.Rotation[slot], b.Rotation[slot]) << slot;
        }
}

/// Writes what is no number into the slots that don't live.
void Fill_Others(vrMKPBuffer &buffer)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (int slot = buffer.Next_Slot(buffer.Tail), left = buffer.Capacity - buffer.ActiveCount; left > 0;
         --left, slot = buffer.Next_Slot(slot))
    {
        for (const vrMKPVectors &channel : {buffer.Position, buffer.PreviousPosition, buffer.Velocity})
            channel.Put(slot, Vector3(none));
        buffer.Age[slot] = buffer.Time[slot] = buffer.MaxAge[slot] = none;
        buffer.Size[slot] = buffer.UV[slot] = buffer.DUV[slot] = Vector2(none);
        buffer.Color[slot] = buffer.Rotation[slot] = 0x12345678;
    }
}

void Set_Parent(const vrMKPPlugin *plugin, const char *name)
{
    dynamic_cast<StringParameterClass &>(*plugin->Get_Parameter_By_Name("Parent Name")).Set_Value(name);
}

TEST(Frame, ARestartPlaysTheSameAgain)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    Set_Random_Velocity(layer.Get_Spawner());
    stage.Play(7);
    const vrMKPBuffer &buffer = *layer.Get_Buffer();
    const auto positions = [&buffer] {
        std::vector<Vector3> all;
        for (int slot = 0; slot < buffer.ActiveCount; ++slot) all.push_back(buffer.Position[slot]);
        return all;
    };
    const std::vector<Vector3> first = positions();
    stage.Emitter->Restart();
    EXPECT_FALSE(buffer.Active);
    stage.Play(7);
    EXPECT_EQ(first, positions());
}

/// Blocks hand each modifier the ring in pieces; the outcome is that of whole walks, one modifier after the other.
TEST(Frame, BlocksOfTheRingGiveWhatWholeWalksGive)
{
    const auto build = [](Stage &stage, bool byBlocks) -> vrMKParticle & {
        vrMKParticle &layer = stage.Add_Layer();
        Set(layer.Get_Spawner(), "Particles / Second", 9000.0f);
        Set_Random_Velocity(layer.Get_Spawner());
        for (const uint32_t id : {10u, 57u, 8u, 78u, 9u, 42u, 13u, 30u}) {
            layer.Add_Modifier(Make<vrMKPModifier>(id).Get());
            // A modifier of the whole ring between two others keeps them from sharing blocks.
            if (!byBlocks) layer.Add_Modifier(Make<vrMKPModifier>(75).Get());
        }
        for (int index = 0; index < layer.Get_Modifier_Count(); ++index) {
            if (layer.Get_Modifier(index)->Get_Plugin_Class() != vrMKPPlugin::kvrMKPRandomWalkModifier) continue;
            dynamic_cast<Vector3Parameter &>(*layer.Get_Modifier(index)->Get_Parameter_By_Name("Velocity Scale"))
                .Set_Value(Vector3(0.0f));
        }
        return layer;
    };
    Stage blocks;
    Stage whole;
    const vrMKParticle &left = build(blocks, true);
    const vrMKParticle &right = build(whole, false);
    for (int frame = 0; frame < 25; ++frame) {
        blocks.Play(1, 0.07f);
        whole.Play(1, 0.07f);
        ASSERT_NO_FATAL_FAILURE(Expect_Same(*left.Get_Buffer(), *right.Get_Buffer())) << frame;
    }
    EXPECT_GT(left.Get_Buffer()->Head, 0); // the ring went round
}

/// Its ring takes its parent's size in the middle of a frame, ahead of modifiers that went by the larger one.
TEST(Frame, ASlaveModifierMayShrinkTheRingThatOthersWork)
{
    Stage stage;
    const vrMKParticle &parent = stage.Add_Layer("parent");
    vrMKParticle &child = stage.Add_Layer("child");
    Set(child.Get_Spawner(), "Particles / Second", 40000.0f);
    for (const uint32_t id : {98u, 10u, 8u, 9u, 13u, 57u, 124u, 97u, 8u})
        child.Add_Modifier(Make<vrMKPModifier>(id).Get());
    Set_Parent(child.Get_Modifier(0), "parent");
    Set_Parent(child.Get_Modifier(7), "parent");
    stage.Play(1, 0.03f);
    EXPECT_EQ(child.Get_Buffer()->Capacity, parent.Get_Buffer()->Capacity);
    EXPECT_EQ(stage.Live(1), 0);
    stage.Play(5, 0.03f);
    EXPECT_EQ(stage.Live(1), child.Get_Buffer()->Capacity);
}

/// Slaves copy all slots of their parents, so that those that don't live keep what they held.
TEST(Frame, OtherSlotsKeepWhatASlaveMayShow)
{
    for (const bool byModifier : {true, false}) {
        Stage stage;
        vrMKParticle &parent = stage.Add_Layer("parent");
        parent.Add_Modifier(Make<vrMKPModifier>(8).Get()); // Linear Color
        vrMKParticle &child = stage.Add_Layer("child", byModifier ? 34 : 95);
        if (byModifier) child.Add_Modifier(Make<vrMKPModifier>(98).Get());
        Set_Parent(byModifier ? static_cast<const vrMKPPlugin *>(child.Get_Modifier(0)) : child.Get_Spawner(),
                   "parent");
        stage.Play(4);
        const vrMKPBuffer &buffer = *parent.Get_Buffer();
        ASSERT_LT(buffer.Tail, buffer.Capacity - 1);
        EXPECT_NE(buffer.Color[buffer.Tail], 0u);
        EXPECT_EQ(buffer.Color[buffer.Tail + 1], 0u) << byModifier;
        EXPECT_EQ(buffer.Age[buffer.Tail + 1], 0.0f) << byModifier;
        if (!byModifier) continue;
        ASSERT_TRUE(child.Remove_Modifier(0));
        stage.Play(1);
        EXPECT_NE(buffer.Age[buffer.Tail + 1], 0.0f); // nobody looks any more
    }
}

/// Loops may take in slots beside the live ones: whatever these hold, nobody sees it and no fault is told of it.
TEST(Frame, SlotsThatDoNotLiveChangeNothing)
{
    for (const float rate : {40.0f, 900.0f, 9000.0f}) {
        const auto build = [rate](Stage &stage) -> vrMKParticle & {
            vrMKParticle &layer = stage.Add_Layer();
            Set(layer.Get_Spawner(), "Particles / Second", rate);
            Set_Random_Velocity(layer.Get_Spawner());
            for (const uint32_t id : {10u, 8u, 9u, 13u, 14u, 57u, 76u, 124u})
                layer.Add_Modifier(Make<vrMKPModifier>(id).Get());
            return layer;
        };
        const MKTest::Reports reports;
        Stage clean;
        Stage foul;
        const vrMKParticle &left = build(clean);
        const vrMKParticle &right = build(foul);
        for (int frame = 0; frame < 40; ++frame) {
            clean.Play(1, 0.07f);
            foul.Play(1, 0.07f);
            ASSERT_NO_FATAL_FAILURE(Expect_Same(*left.Get_Buffer(), *right.Get_Buffer())) << rate << " " << frame;
            Fill_Others(*right.Get_Buffer());
        }
        EXPECT_EQ(reports.Count_Asserts("buffer->Velocity[where].Is_Valid()"), 0) << rate;
        EXPECT_EQ(reports.Count_Asserts("Position[where].Is_Valid()"), 0) << rate;
    }
}

TEST(Frame, CapacitiesOfAnySizePlayOrAreRefusedByName)
{
    const struct
    {
        const char *what;
        float rate;
        float life;
        int capacity; ///< -1 for none
    } cases[] = {
        {"ten million", 10000.0f, 1000.0f, -1},
        {"endless life", 30.0f, std::numeric_limits<float>::infinity(), 1}, // a part of it is no number
        {"no number", std::numeric_limits<float>::quiet_NaN(), 1.0f, 1},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.what);
        const MKTest::Reports reports;
        Stage stage;
        stage.Emitter->Set_Remove_On_Depleted(false);
        vrMKParticle &layer = stage.Add_Layer("embers");
        Set(layer.Get_Spawner(), "Particles / Second", row.rate);
        Set(layer.Get_Stomper(), "Stomp Time", row.life);
        stage.Play(5);
        EXPECT_EQ(layer.Get_Buffer() ? layer.Get_Buffer()->Capacity : -1, row.capacity);
        EXPECT_EQ(reports.Count_Logs("Layer \"embers\" gets no particles"), row.capacity < 0 ? 1 : 0)
            << reports.Get_Text();
    }
}

TEST(Frame, ScaleTurnsIntoSizesAndTheTransformIsFreeOfIt)
{
    const std::tuple<float, float, float> cases[] = {{1.004f, 1.003f, 1.0f}, {3.0f, 2.5f, 3.0f}, {0.0f, 0.01f, 0.01f}};
    for (const auto &[scale, multiplier, positionScale] : cases) {
        SCOPED_TRACE(scale);
        Stage stage;
        stage.Add_Layer();
        stage.Group->Set_Scale_Enabled(true);
        Mat3DClass place = Mat3DClass().Scaled(scale);
        place.Set_Translation({10.0f, 0.0f, 0.0f});
        stage.Emitter->Set_Transform(place);
        stage.Play(1);
        const vrMKPRenderState &state = stage.Group->Get_State();
        EXPECT_NEAR(state.RenderSizeMultiplier, multiplier, 1e-5f);
        EXPECT_NEAR(state.PositionScale, positionScale, 1e-5f);
        EXPECT_NEAR(state.PositionOffset.x, 10.0f - 10.0f * positionScale, 1e-4f);
        EXPECT_EQ(state.Get_Position(), Vector3(10.0f, 0.0f, 0.0f));
        if (scale > 0.0f) {
            EXPECT_NEAR(state.Transform.Get_Uniform_Scale(), 1.0f, 1e-5f);
        }
    }
}

TEST(Frame, TheLastDeathOfAnEffectStillBursts)
{
    const EditorMode editor(true);
    Stage stage;
    vrMKParticle &child = stage.Add_Layer("child", 40); // ahead of its parent, it hears of a death a frame later
    dynamic_cast<StringParameterClass &>(*child.Get_Spawner()->Get_Parameter_By_Name("Parent Name"))
        .Set_Value("parent");
    Set(child.Get_Stomper(), "Stomp Time", 5.0f);
    vrMKParticle &parent = stage.Add_Layer("parent");
    Set(parent.Get_Spawner(), "Stop Time", 0.05f);
    Set(parent.Get_Stomper(), "Stomp Time", 0.35f);
    Set(parent.Get_Stomper(), "Spawn on Age", true);
    stage.Play(7);
    EXPECT_NE(stage.Emitter->Get_Scene(), nullptr);
    EXPECT_EQ(stage.Live(0), 30);
}

TEST(Frame, AHiddenEffectWithoutAnEndComesBack)
{
    Stage stage;
    stage.Add_Layer();
    stage.Play(2);
    stage.Emitter->Set_Hidden(true);
    stage.Play(15);
    EXPECT_EQ(stage.Live(), 0);
    ASSERT_NE(stage.Emitter->Get_Scene(), nullptr);
    stage.Emitter->Set_Hidden(false);
    stage.Play(1);
    EXPECT_EQ(stage.Live(), 2); // it bursts again: at 0, and at the end of the frame
}

TEST(Frame, WhatASpawnerBringsBackIsModifiedAndPlaced)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer("rain", 63);
    Set(layer.Get_Spawner(), "Particle Count", 5000); // more than a block
    layer.Set_Stomper(Make<vrMKPStomper>(66).Get());
    layer.Add_Modifier(Make<vrMKPModifier>(10).Get()); // one unit a second each second, downward
    dynamic_cast<ShapeParameterClass &>(*layer.Get_Spawner()->Get_Parameter_By_Name("Velocity")).Set_Value({});
    stage.Play(2);
    stage.Emitter->Set_Hidden(true);
    stage.Play(3);
    EXPECT_EQ(stage.Live(), 0);
    stage.Emitter->Set_Hidden(false);
    stage.Play(1);
    const vrMKPBuffer &buffer = *layer.Get_Buffer();
    ASSERT_EQ(buffer.ActiveCount, 5000);
    EXPECT_NEAR(buffer.Velocity[4999].z, -0.3f, 1e-5f);
    EXPECT_EQ(buffer.WorldPosition[4999], buffer.Position[4999]);
    EXPECT_GT(layer.Get_Bounds().Extent.x, 100.0f);
}

TEST(Frame, AModelsKillerEndsIt)
{
    Stage stage;
    stage.Emitter->Set_Remove_On_Depleted(false);
    auto *model = new vrMKPModel;
    auto killer = Make<vrMKPRenderableModifier>(119);
    Set(killer.Get(), "Lifetime", 0.5f);
    model->Set_Killer(killer.Get());
    model->Complete_Definition();
    stage.Emitter->Add_Renderable(model);
    stage.Play(4);
    EXPECT_FALSE(model->Is_Ended());
    stage.Play(2);
    EXPECT_TRUE(model->Is_Ended());
}

TEST(Frame, AnInstanceFromThePoolHasNothingOfTheLastOne)
{
    Stage stage;
    stage.Add_Layer();
    const SmartPtr<vrMKParticleEmitter> prototype = stage.Emitter;
    SmartPtr<vrMKParticleEmitter> first(prototype->Clone(VR_CLONE_COPY));
    vrMKPRenderable *renderable = first->Peek_Particle_Renderable(0);
    {
        vrSimpleScene scene;
        scene.Add_Renderable(first.Get());
        renderable->Set_Hidden(true);
        renderable->Set_Dynamic_Setting(4, Vector4(5.0f), 0.0f);
        renderable->Set_Dynamic_Setting(13, Vector4(1.0f), 0.0f);
        scene.Update(0.1f);
    }
    first = nullptr;
    const SmartPtr<vrMKParticleEmitter> second(prototype->Clone(VR_CLONE_COPY));
    ASSERT_EQ(second->Peek_Particle_Renderable(0), renderable); // it is the same object
    EXPECT_FALSE(renderable->Is_Hidden());
    EXPECT_FALSE(renderable->Was_Given_Homing_Target());
    EXPECT_EQ(renderable->Get_Dynamic_Settings().Get_Scalar(4).Get_Current(), 0.0f);
    EXPECT_EQ(static_cast<vrMKParticleGroup *>(renderable)->Get_Particle(0)->Get_Buffer(), nullptr);
}

TEST(Frame, AnEditorMayReplaceThePluginsOfAPlayingLayer)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    stage.Play(5);
    const int live = stage.Live();
    auto stomper = Make<vrMKPStomper>(19); // lives of 5 seconds
    layer.Set_Stomper(stomper.Get());
    stage.Play(1);
    EXPECT_GT(stage.Live(), live);
    stage.Add_Layer("parent");
    layer.Set_Spawner(Make<vrMKPSpawner>(95).Get());
    dynamic_cast<StringParameterClass &>(*layer.Get_Spawner()->Get_Parameter_By_Name("Parent Name"))
        .Set_Value("parent");
    stage.Emitter->Restart();
    stage.Play(3);
    EXPECT_GT(stage.Live(0), 0);
    EXPECT_EQ(layer.Get_Buffer()->Capacity, stage.Group->Get_Particle(1)->Get_Buffer()->Capacity);
}

TEST(Frame, AFaultIsToldOnceAStepHoweverManyBlocksHaveIt)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    Set(layer.Get_Spawner(), "Particles / Second", 200000.0f);
    layer.Add_Modifier(Make<vrMKPModifier>(10).Get());
    dynamic_cast<Vector3Parameter &>(*layer.Get_Modifier(0)->Get_Parameter_By_Name("Acceleration"))
        .Set_Value(Vector3(std::numeric_limits<float>::infinity()));
    const MKTest::Reports reports;
    stage.Play(3);
    EXPECT_EQ(reports.Count_Asserts("buffer->Velocity[where].Is_Valid()"), 3);
    EXPECT_EQ(reports.Count_Asserts("Position[where].Is_Valid()"), 2); // a step later
}

TEST(Frame, ModifierDataStaysWithItsModifier)
{
    Stage stage;
    vrMKParticle &layer = stage.Add_Layer();
    layer.Add_Modifier(Make<vrMKPModifier>(67).Get()); // keeps a clock
    layer.Add_Modifier(Make<vrMKPModifier>(10).Get());
    stage.Play(2);
    const vrMKPBuffer &buffer = *layer.Get_Buffer();
    const vrMKPBufferPluginData *clock = buffer.ModifierData[0].Get();
    ASSERT_NE(clock, nullptr);
    EXPECT_TRUE(layer.Swap_Modifiers(0, 1));
    EXPECT_EQ(buffer.ModifierData[1].Get(), clock);
    layer.Add_Modifier(Make<vrMKPModifier>(67).Get());
    ASSERT_EQ(buffer.ModifierData.size(), 3u);
    EXPECT_TRUE(layer.Remove_Modifier(0));
    EXPECT_EQ(buffer.ModifierData[0].Get(), clock);
    stage.Play(2);
}

TEST(Frame, LayersWithoutASlotDoNothing)
{
    Stage stage;
    stage.Emitter->Set_Remove_On_Depleted(false);
    stage.Add_Layer("no stomper").Set_Stomper(nullptr);
    stage.Add_Layer("no spawner").Set_Spawner(nullptr);
    stage.Add_Layer("no transformer").Set_Transformer(nullptr);
    stage.Add_Layer("no visualizer").Set_Visualizer(nullptr);
    stage.Play(3);
    EXPECT_EQ(stage.Group->Get_Particle(0)->Get_Buffer(), nullptr);
    EXPECT_EQ(stage.Group->Get_Particle(1)->Get_Buffer(), nullptr);
    EXPECT_GT(stage.Live(2), 0);
    EXPECT_GT(stage.Live(3), 0);
}

} // namespace
