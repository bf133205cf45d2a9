#include "EffectTestFiles.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace MKTest;
using testing::ElementsAre;

namespace
{

LoadedEmitter Load_Layer(std::vector<Chunk> children)
{
    return Load_Emitter(Build(Emitter({Group({Block("g"), Layer(std::move(children))})})));
}

TEST(Layer, ABadSlotGetsItsDefaultKindAndTheRestIsKept)
{
    const std::pair<Chunk, std::string> rows[] = {
        {Parent(2, {}), "transformer"},
        {Plugin(2, 22), "transformer"},                   // a visualizer
        {Parent(4, {Bytes_Leaf(0, "ab")}), "visualizer"}, // with an unreadable id
    };
    for (const auto &[bad, place] : rows) {
        SCOPED_TRACE(place);
        std::vector<Chunk> children{
            Leaf(0, std::string("smoke")), Plugin(1, 40), Plugin(2, 26), Plugin(3, 20), Plugin(4, 38), Plugin(5, 7)};
        children[bad.id] = bad;
        const LoadedEmitter loaded = Load_Layer(children);
        const vrMKParticle &layer = loaded.Layer_At(0, 0);
        EXPECT_EQ(Plugin_ID(layer.Get_Transformer()), bad.id == 2 ? 27 : 26);
        EXPECT_EQ(Plugin_ID(layer.Get_Visualizer()), bad.id == 4 ? 22 : 38);
        EXPECT_THAT(Modifier_IDs(layer), ElementsAre(7));
        EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0 / " + place, "", "stands in"));
        EXPECT_TRUE(loaded.result) << "a layer's loss must not fail the emitter";
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

TEST(Layer, ParametersThatTheKindDoesNotHaveAreReportedAndDropped)
{
    const LoadedEmitter loaded = Load_Layer({Plugin(1, 34, {{9999, 1.0f}, {116, 8.0f}})});
    const auto *rate = loaded.Layer_At(0, 0).Get_Spawner()->Get_Parameter_By_Name("Particles / Second");
    EXPECT_EQ(dynamic_cast<const FloatParameter &>(*rate).Get_Value(), 8.0f);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / layer 0 / spawner", "unknown parameter 9999", "dropped"));
}

TEST(Layer, TheBulletModifierIsFoundThroughEveryChangeOfTheList)
{
    const auto make = [](vrMKPPluginId id) {
        return SmartPtr<vrMKPModifier>(static_cast<vrMKPModifier *>(vrMKPPlugin::Create_Plugin(id)));
    };
    const SmartPtr<vrMKParticle> layer(new vrMKParticle);
    const auto first = make(kvrMKPBulletModifier);
    const auto second = make(kvrMKPBulletModifier);
    layer->Add_Modifier(make(kvrMKPAccelerationModifier).Get());
    layer->Add_Modifier(first.Get());
    layer->Add_Modifier(second.Get());
    EXPECT_EQ(layer->Get_Bullet_Modifier(), first.Get());
    EXPECT_TRUE(layer->Swap_Modifiers(1, 2));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), second.Get());
    EXPECT_TRUE(layer->Remove_Modifier(1));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), first.Get());
    EXPECT_TRUE(layer->Remove_Modifier(1));
    EXPECT_EQ(layer->Get_Bullet_Modifier(), nullptr);
    EXPECT_FALSE(layer->Swap_Modifiers(0, 1));
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
