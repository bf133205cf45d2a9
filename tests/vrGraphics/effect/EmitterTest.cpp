#include "EffectTestFiles.h"

#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

#include <gtest/gtest.h>

using namespace MKTest;

namespace
{

TEST(Emitter, ASaveWritesEveryChunkInItsPlace)
{
    const std::vector<Micro> variables{
        {2, true},  {1, true}, {10, 1.5f}, {3, Vector3(1, 2, 3)}, {4, Vector3(-4, 5, -6)}, {5, 0.75f}, {7, 2.0f},
        {8, 10.0f}, {9, 77},   {6, true}};
    const Chunk killer = Plugin(0x1682, 119, {{100, 1.0f}, {101, 0.0f}, {102, 2.0f}, {103, true}});
    const Chunk model =
        Model({Block("m", variables, {Plugin(0x1681, 83)}), Attached_Model("a", "b", true), Parent(0x1680, {killer})});
    const Chunk group = Group({Block("g", variables, {Plugin(0x1681, 83)}),
                               Layer({Leaf(0, std::string("ash")), Plugin(2, 27), Plugin(5, 30), Plugin(5, 12)})});
    const Bytes file = Build(Emitter({Leaf(0, std::string("smoke")), model, group, Micros(0x1502, {{0, true}})}));
    EXPECT_EQ(Save_Emitter(*Load_Emitter(file).emitter), file);
}

TEST(Emitter, TheNameIsThatOfTheFileAndNotTheOneInIt)
{
    const Bytes file = Build(Emitter({Leaf(0, std::string("old"))}));
    EXPECT_EQ(Load_Emitter(file, "Art\\Models\\Fire Burst.vro")->Get_Name(), "Fire Burst");
    EXPECT_EQ(Load_Emitter(file, "/game/art/models/a.b.vro")->Get_Name(), "a.b");
    EXPECT_EQ(Load_Emitter(file, "dir/" + std::string(300, 'x') + ".vro")->Get_Name().size(), 260u);

    const Bytes saved = Save_Emitter(*Load_Emitter(file, "new.vro").emitter);
    const std::string text(saved.begin(), saved.end());
    EXPECT_NE(text.find("new"), std::string::npos);
}

TEST(Emitter, WhatPlaysOrIsKeptDoesNotGoToThePool)
{
    const EditorMode mode(false);
    const LoadedEmitter loaded = Load_Emitter(Small_File());
    const SmartPtr<vrMKParticleEmitter> playing(loaded->Clone(VR_CLONE_COPY));
    playing->Get_Particle_Renderable(0)->Set_Renderable_State(vrMKPRenderable::STATE_IN_SCENE, true);
    {
        const SmartPtr<vrMKParticleEmitter> kept(loaded->Clone(VR_CLONE_COPY));
        kept->Set_Keep_Renderables(true);
    }
    EXPECT_TRUE(playing->Remove_Renderable(playing->Get_Particle_Renderable(0).Get()));
    EXPECT_EQ(loaded->Get_Pool()->Get_Count(), 0u);
}

TEST(Emitter, AnUnknownChunkIsSkippedInTheRootAndEndsARenderable)
{
    const LoadedEmitter loaded = Load_Emitter(
        Build(Emitter({Leaf(7, 1), Parent(0x9999, {Leaf(1, true), Group({Block("hidden")})}),
                       Group({Block("a"), Leaf(1, 1), Layer("lost", 34, 27, 19, 22)}),
                       Model({Leaf(1, 1), Block("unread")}), Group({Block("b"), Layer("kept", 34, 27, 19, 22)})})));
    EXPECT_TRUE(loaded.result);
    ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 3);
    EXPECT_EQ(loaded.Group_At(0).Particle_Count(), 0);
    EXPECT_EQ(loaded.Get<vrMKPModel>(1).Get_Name(), "");
    EXPECT_EQ(loaded.Layer_At(2, 0).Get_Name(), "kept");
    EXPECT_TRUE(loaded.Has_Finding("", "unknown chunk 0x9999", "dropped"));
}

TEST(Emitter, LightsOfOneChunkAreSavedInOneEach)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Group({Parent(0x16c0, {Plugin(0x16c1, 108), Plugin(0x16c1, 34), Leaf(3, 1), Plugin(0x16c1, 107)})})})));
    const vrMKParticleGroup &group = loaded.Group_At(0);
    ASSERT_EQ(group.Light_Count(), 2);
    EXPECT_EQ(Plugin_ID(group.Get_Light(0)), 108);
    EXPECT_EQ(Plugin_ID(group.Get_Light(1)), 107);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / light 1", "\"Shape\"", "dropped"));
}

TEST(Emitter, ACopyOwnsItsRenderablesAndSharesPluginsUnlessEdited)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    const Bytes saved = Save_Emitter(*loaded.emitter);
    vrMKParticle &source = loaded.Layer_At(0, 1);
    source.Set_Buffer(vrMKPBuffer::Create(1, "test"));
    for (const bool inEditor : {false, true}) {
        SCOPED_TRACE(inEditor);
        const EditorMode mode(inEditor);
        const SmartPtr<vrMKParticleEmitter> clone(loaded->Clone(VR_CLONE_COPY));
        EXPECT_EQ(Save_Emitter(*clone), saved);
        EXPECT_EQ(clone->Get_Instance_Count(), 2);
        auto &group = *MK_Dynamic_Cast<vrMKParticleGroup>(clone->Get_Particle_Renderable(0).Get());
        const vrMKParticle &layer = *group.Get_Particle(1);
        EXPECT_EQ(layer.Get_Group(), &group);
        EXPECT_EQ(layer.Get_Buffer(), nullptr);
        EXPECT_EQ(layer.Get_Spawner() == source.Get_Spawner(), !inEditor);
        EXPECT_EQ(layer.Get_Modifier(1) == source.Get_Modifier(1), !inEditor);
        EXPECT_EQ(layer.Get_Bullet_Modifier(), layer.Get_Modifier(0));
        EXPECT_EQ(group.Get_Physics() == loaded.Group_At(0).Get_Physics(), !inEditor);
        EXPECT_EQ(group.Get_Modifier(0) == loaded.Group_At(0).Get_Modifier(0), !inEditor);
        EXPECT_EQ(group.Get_Light(0) == loaded.Group_At(0).Get_Light(0), !inEditor);
        auto &model = *MK_Dynamic_Cast<vrMKPModel>(clone->Get_Particle_Renderable(1).Get());
        EXPECT_EQ(model.Get_Killer() == loaded.Get<vrMKPModel>(1).Get_Killer(), !inEditor);
        EXPECT_EQ(model.Get_Attached_Model() == loaded.Get<vrMKPModel>(1).Get_Attached_Model(), !inEditor);
    }
    EXPECT_EQ(loaded->Get_Instance_Count(), 1);
}

TEST(Emitter, AnInstanceCloneTakesTheFirstProjectileAlone)
{
    const Chunk plain = Group({Block("a", {}, {Plugin(0x1681, 84)}), Layer("x", 34, 27, 19, 22, {10})});
    const Chunk flying = Model({Block("b", {}, {Plugin(0x1681, 85)})});
    const Chunk firing = Group({Block("c"), Layer("y", 34, 27, 88, 22, {10, 87})});
    for (const bool flies : {true, false}) {
        const LoadedEmitter loaded =
            Load_Emitter(Build(Emitter(flies ? std::vector{plain, flying, firing} : std::vector{firing, flying})));
        const SmartPtr<vrMKParticleEmitter> instance(loaded->Clone(VR_CLONE_INSTANCE));
        const SmartPtr<vrMKParticleEmitter> second(instance->Clone(VR_CLONE_INSTANCE));
        for (const vrMKParticleEmitter *clone : {instance.Get(), second.Get()}) {
            EXPECT_EQ(clone->Get_Particle_Renderable_Count(), 0);
            EXPECT_EQ(clone->Get_Shared_Physics() != nullptr, flies);
            EXPECT_EQ(clone->Get_Shared_Projectile() == nullptr, flies);
        }
        EXPECT_EQ(instance->Get_Shared_Physics() == second->Get_Shared_Physics(), !flies) << "cloned";
        EXPECT_EQ(instance->Get_Shared_Projectile(), second->Get_Shared_Projectile()) << "shared";
        EXPECT_EQ(loaded->Get_Instance_Count(), 3);
    }
}

} // namespace
