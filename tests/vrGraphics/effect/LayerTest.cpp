#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/File/RAMFile.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace MKTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

LoadedEmitter Load_Layer(std::vector<Chunk> children)
{
    return Load_Emitter(Build(Emitter({Group({Block("g"), Layer(std::move(children))})})));
}

float Float_Value(const vrMKPPlugin &plugin, const char *name)
{
    return dynamic_cast<FloatParameter &>(*plugin.Get_Parameter_By_Name(name)).Get_Value();
}

TEST(Layer, TheSlotsOfMissingChunksStayEmptyAndAreNotSaved)
{
    const LoadedEmitter loaded = Load_Layer({Leaf(0, std::string("bare")), Plugin(5, 10)});
    const vrMKParticle &layer = loaded.Layer_At(0, 0);
    EXPECT_EQ(layer.Get_Name(), "bare");
    EXPECT_EQ(layer.Get_Spawner(), nullptr);
    EXPECT_EQ(layer.Get_Transformer(), nullptr);
    EXPECT_EQ(layer.Get_Stomper(), nullptr);
    EXPECT_EQ(layer.Get_Visualizer(), nullptr);

    const LoadedEmitter again = Load_Emitter(Save_Emitter(*loaded.emitter));
    EXPECT_EQ(again.Layer_At(0, 0).Get_Spawner(), nullptr) << "an empty slot was written as something";
    EXPECT_EQ(again.Layer_At(0, 0).Get_Visualizer(), nullptr);
    EXPECT_THAT(Modifier_IDs(again.Layer_At(0, 0)), ElementsAre(10));
    EXPECT_THAT(again.findings, IsEmpty()) << again.Describe_Findings();
}

TEST(Layer, ABadSlotGetsItsDefaultKindAndTheRestIsKept)
{
    const struct
    {
        const char *what;
        Chunk bad;
        const char *place;
    } rows[] = {
        {"spawner of an unknown kind", Plugin(1, 129), "spawner"},
        {"stomper as spawner", Plugin(1, 19), "spawner"},
        {"transformer chunk with nothing in it", Parent(2, {}), "transformer"},
        {"visualizer as transformer", Plugin(2, 22), "transformer"},
        {"stomper whose chunk ends before the id", Parent(3, {Parent(1, {})}), "stomper"},
        {"visualizer with an unreadable id", Parent(4, {Bytes_Leaf(0, "ab")}), "visualizer"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        std::vector<Chunk> children{
            Leaf(0, std::string("smoke")), Plugin(1, 40), Plugin(2, 26), Plugin(3, 20), Plugin(4, 38), Plugin(5, 7)};
        children[row.bad.id] = row.bad;
        const Bytes bytes = Build(Layer(children));
        RAMFileClass memory(bytes.data(), static_cast<int64_t>(bytes.size()));
        ChunkFileReaderClass reader(&memory);
        ASSERT_TRUE(reader.Open_Chunk());
        const SmartPtr<vrMKParticle> layer(new vrMKParticle);
        EXPECT_FALSE(layer->Load(&reader));

        EXPECT_EQ(Plugin_ID(layer->Get_Spawner()), row.bad.id == 1 ? 34 : 40);
        EXPECT_EQ(Plugin_ID(layer->Get_Transformer()), row.bad.id == 2 ? 27 : 26);
        EXPECT_EQ(Plugin_ID(layer->Get_Stomper()), row.bad.id == 3 ? 19 : 20);
        EXPECT_EQ(Plugin_ID(layer->Get_Visualizer()), row.bad.id == 4 ? 22 : 38);
        EXPECT_THAT(Modifier_IDs(*layer), ElementsAre(7));

        const LoadedEmitter told = Load_Layer(children);
        EXPECT_TRUE(told.Has_Finding(std::string("renderable 0 / layer 0 / ") + row.place, "", "stands in"))
            << told.Describe_Findings();
        EXPECT_TRUE(told.result) << "a layer's loss must not fail the emitter";
    }
}

TEST(Layer, ModifiersThatCannotBeHadAreDroppedAndTheOthersKeepTheirOrder)
{
    const LoadedEmitter loaded =
        Load_Layer({Plugin(5, 17), Plugin(5, 129), Plugin(5, 10), Plugin(5, 22), Plugin(5, 7)});
    EXPECT_THAT(Modifier_IDs(loaded.Layer_At(0, 0)), ElementsAre(17, 10, 7));
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0 / modifier 1", "no plugin of a known kind", "dropped"));
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0 / modifier 2", "\"Billboard\"", "dropped"));
}

TEST(Layer, ChunksComeInAnyOrderAndAnUnknownOneEndsTheLayerAlone)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Group({Block("g"), Layer({Plugin(5, 10), Plugin(4, 22), Leaf(0, std::string("a")), Leaf(6, 1), Plugin(1, 34)}),
                Layer({Leaf(0, std::string("b"))})})})));
    ASSERT_EQ(loaded.Group_At(0).Particle_Count(), 2);
    const vrMKParticle &first = loaded.Layer_At(0, 0);
    EXPECT_EQ(first.Get_Name(), "a");
    EXPECT_EQ(Plugin_ID(first.Get_Visualizer()), 22);
    EXPECT_EQ(first.Get_Spawner(), nullptr) << "what follows an unknown chunk isn't read";
    EXPECT_EQ(loaded.Layer_At(0, 1).Get_Name(), "b");
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0", "unknown chunk 0x6", "ends the layer"));
}

TEST(Layer, FourObsoleteVisualizersBecomeTodaysWithTheBumpOn)
{
    const struct
    {
        int loaded;
        int saved;
    } rows[] = {{37, 22}, {103, 112}, {104, 113}, {105, 114}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.loaded);
        // 7 is the old kind's "Depth Offset"; the new kinds have one of that name.
        const LoadedEmitter loaded = Load_Layer({Plugin(4, row.loaded, {{7, 12.5f}})});
        const vrMKPVisualizer *visualizer = loaded.Layer_At(0, 0).Get_Visualizer();
        ASSERT_EQ(Plugin_ID(visualizer), row.saved);
        EXPECT_TRUE(dynamic_cast<BoolParameter &>(*visualizer->Get_Parameter_By_Name("enable bump")).Get_Value());
        EXPECT_EQ(Float_Value(*visualizer, "Depth Offset"), 12.5f);

        const LoadedEmitter again = Load_Emitter(Save_Emitter(*loaded.emitter));
        EXPECT_EQ(Plugin_ID(again.Layer_At(0, 0).Get_Visualizer()), row.saved);
        EXPECT_TRUE(
            dynamic_cast<BoolParameter &>(*again.Layer_At(0, 0).Get_Visualizer()->Get_Parameter_By_Name("Enable Bump"))
                .Get_Value());
        EXPECT_TRUE(again.findings.empty()) << again.Describe_Findings();
    }
}

TEST(Layer, ALoadFinishesThePluginsItRead)
{
    // 100 particles each 4 seconds, which only old files say, are 25 a second.
    const LoadedEmitter loaded = Load_Layer({Plugin(1, 34, {{100, 100.0f}, {101, 4.0f}})});
    EXPECT_EQ(Float_Value(*loaded.Layer_At(0, 0).Get_Spawner(), "Particles / Second"), 25.0f);
    EXPECT_TRUE(
        loaded.Has_Finding("renderable 0 / layer 0 / spawner", "retired parameter \"Particles / Interval\"", "folded"))
        << loaded.Describe_Findings();
}

TEST(Layer, ParametersThatTheKindDoesNotHaveAreReportedAndDropped)
{
    const LoadedEmitter loaded = Load_Layer({Plugin(1, 34, {{9999, 1.0f}, {116, 8.0f}})});
    EXPECT_EQ(Float_Value(*loaded.Layer_At(0, 0).Get_Spawner(), "Particles / Second"), 8.0f);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0 / spawner", "unknown parameter 9999", "dropped"));
}

TEST(Layer, TheBulletModifierIsFoundThroughEveryChangeOfTheList)
{
    const auto make = [](vrMKPPluginId id) {
        return SmartPtr<vrMKPModifier>(static_cast<vrMKPModifier *>(vrMKPPlugin::Create_Plugin(id)));
    };
    const SmartPtr<vrMKParticle> layer(new vrMKParticle);
    EXPECT_EQ(layer->Get_Bullet_Modifier(), nullptr);
    const auto first = make(kvrMKPBulletModifier);
    const auto second = make(kvrMKPBulletModifier);
    layer->Add_Modifier(make(kvrMKPAccelerationModifier).Get());
    layer->Add_Modifier(first.Get());
    layer->Add_Modifier(second.Get());
    EXPECT_EQ(layer->Get_Bullet_Modifier(), first.Get());
    EXPECT_EQ(layer->Get_Modifier_Index(second.Get()), 2);
    EXPECT_TRUE(layer->Swap_Modifiers(1, 2));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), second.Get());
    EXPECT_TRUE(layer->Remove_Modifier(1));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), first.Get());
    EXPECT_TRUE(layer->Remove_Modifier(1));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), nullptr);
    EXPECT_EQ(layer->Get_Modifier_Index(first.Get()), -1);
    EXPECT_FALSE(layer->Swap_Modifiers(0, 1));
    EXPECT_FALSE(layer->Remove_Modifier(-1));
}

TEST(Layer, AScreenSpaceTransformerTellsTheGroupThatItNeedsTheCamera)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Group({Block("a"), Layer({Plugin(2, 122)}), Layer({Plugin(2, 26)})}), Group({Layer({Plugin(2, 26)})})})));
    const bool needsCamera = loaded.Layer_At(0, 0).Get_Transformer()->Needs_Camera();
    EXPECT_EQ((loaded.Group_At(0).Get_Group_States() & vrMKParticleGroup::GROUP_STATE_NEEDS_CAMERA) != 0, needsCamera);
    EXPECT_TRUE(needsCamera);
    EXPECT_EQ(loaded.Group_At(1).Get_Group_States() & vrMKParticleGroup::GROUP_STATE_NEEDS_CAMERA, 0);
}

TEST(Layer, ACloneSharesPluginsAndInTheEditorOwnsThem)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    vrMKParticle &source = loaded.Layer_At(0, 1);
    source.Set_Buffer(vrMKPBuffer::Create(1, "test"));
    source.Set_Hidden_By_Spawner(true);
    source.Set_Hidden_By_LOD(true);
    for (const bool inEditor : {false, true}) {
        SCOPED_TRACE(inEditor);
        const EditorMode mode(inEditor);
        const SmartPtr<vrMKParticle> clone(source.Clone());
        EXPECT_EQ(clone->Get_Name(), source.Get_Name());
        EXPECT_EQ(clone->Get_Group(), source.Get_Group());
        EXPECT_EQ(clone->Get_Buffer(), nullptr);
        EXPECT_EQ(clone->Get_Spawner() == source.Get_Spawner(), !inEditor);
        EXPECT_EQ(clone->Get_Transformer() == source.Get_Transformer(), !inEditor);
        EXPECT_EQ(clone->Get_Stomper() == source.Get_Stomper(), !inEditor);
        EXPECT_EQ(clone->Get_Visualizer() == source.Get_Visualizer(), !inEditor);
        EXPECT_EQ(clone->Get_Modifier(1) == source.Get_Modifier(1), !inEditor);
        EXPECT_EQ(Modifier_IDs(*clone), Modifier_IDs(source));
        EXPECT_EQ(clone->Get_Bullet_Modifier(), clone->Get_Modifier(0));
        EXPECT_EQ(clone->Is_Same_Definition(source), !inEditor);

        clone->Set_Hidden_By_Spawner(false); // the last of the flags isn't taken over
        EXPECT_FALSE(clone->Is_Suspended());
    }
}

TEST(Layer, ALoadReplacesAllButTheName)
{
    const SmartPtr<vrMKParticle> layer(new vrMKParticle);
    layer->Set_Name("kept");
    layer->Set_Spawner(static_cast<vrMKPSpawner *>(vrMKPPlugin::Create_Plugin(34)));
    layer->Set_Buffer(vrMKPBuffer::Create(1, "test"));
    layer->Add_Modifier(static_cast<vrMKPModifier *>(vrMKPPlugin::Create_Plugin(kvrMKPBulletModifier)));
    const Bytes bytes = Build(Layer({Plugin(2, 26)}));
    RAMFileClass memory(bytes.data(), static_cast<int64_t>(bytes.size()));
    ChunkFileReaderClass reader(&memory);
    ASSERT_TRUE(reader.Open_Chunk());
    EXPECT_TRUE(layer->Load(&reader));
    EXPECT_EQ(layer->Get_Name(), "kept");
    EXPECT_EQ(layer->Get_Spawner(), nullptr);
    EXPECT_EQ(layer->Get_Buffer(), nullptr);
    EXPECT_EQ(layer->Get_Modifier_Count(), 0);
    EXPECT_EQ(layer->Get_Bullet_Modifier(), nullptr);
    EXPECT_EQ(Plugin_ID(layer->Get_Transformer()), 26);
}

TEST(Layer, LayersOutliveTheirGroupWithoutPointingAtIt)
{
    SmartPtr<vrMKParticle> layer;
    {
        const LoadedEmitter loaded = Load_Emitter(Small_File());
        layer = &loaded.Layer_At(0, 0);
        EXPECT_EQ(layer->Get_Group(), &loaded.Group_At(0));
    }
    EXPECT_EQ(layer->Get_Group(), nullptr);
}

} // namespace
