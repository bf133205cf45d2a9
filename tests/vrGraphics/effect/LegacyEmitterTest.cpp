#include "EffectTestFiles.h"

#include "vrGraphics/plugins/renderables/Physics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace MKTest;
using testing::IsEmpty;

namespace
{

/// A load, a save and a load again, which must give the same and have nothing left to mend.
void Expect_Survives(const LoadedEmitter &loaded)
{
    const Bytes saved = Save_Emitter(*loaded.emitter);
    const LoadedEmitter again = Load_Emitter(saved);
    EXPECT_TRUE(again.result);
    EXPECT_THAT(again.findings, IsEmpty()) << again.Describe_Findings();
    EXPECT_EQ(Save_Emitter(*again.emitter), saved);
}

TEST(LegacyEmitter, SmallChunksMakeOneGroupBetweenThem)
{
    const struct
    {
        const char *what;
        std::vector<Chunk> chunks;
        int groups;
        bool alwaysAwake;
    } rows[] = {
        {"1 sets it back", {Leaf(1, true), Leaf(1, false)}, 1, false},
        {"3 and 5 make none", {Leaf(3, true), Leaf(5, true)}, 0, false},
        {"an empty 1 leaves the state", {Leaf(1, true), Parent(1, {})}, 1, true},
        {"a new group isn't the current one", {Leaf(4, 1), Group({Block("new")}), Leaf(1, true)}, 2, true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const LoadedEmitter loaded = Load_Emitter(Build(Emitter(row.chunks)));
        EXPECT_TRUE(loaded.result);
        ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), row.groups);
        if (row.groups > 0) {
            EXPECT_EQ(loaded.Group_At(0).Get_Always_Awake(), row.alwaysAwake);
            EXPECT_EQ(Plugin_ID(loaded.Group_At(0).Get_Physics()), 83);
            EXPECT_NE(loaded.Group_At(0).Get_Random_Seed(), 0);
        }
        if (row.groups > 1) {
            EXPECT_FALSE(loaded.Group_At(1).Get_Always_Awake());
        }
        Expect_Survives(loaded);
    }
}

TEST(LegacyEmitter, OldLayersStandInTheRoot)
{
    const LoadedEmitter loaded = Load_Emitter(
        Build(Emitter({Leaf(1, true), Group({Block("new")}),
                       Parent(0x1520, {Leaf(0x1521, 1), Leaf(0x1522, 2), Layer("flames", 34, 27, 19, 22, {10}),
                                       Leaf(0x1530, 1), Layer("lost", 34, 27, 19, 22)})})));
    ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 2);
    ASSERT_EQ(loaded.Group_At(0).Particle_Count(), 1) << "they go to the group of chunk 1, and end at an unknown chunk";
    EXPECT_EQ(loaded.Layer_At(0, 0).Get_Name(), "flames");
    EXPECT_EQ(loaded.Group_At(1).Get_Name(), "new");
    EXPECT_TRUE(loaded.Has_Finding("renderable 0", "unknown chunk 0x1530", "dropped"));
    Expect_Survives(loaded);
}

TEST(LegacyEmitter, TheAttachedModelOfAGroupBecomesAModelAheadOfIt)
{
    const Chunk block = Block("fire", {{2, true}, {10, 2.0f}, {3, Vector3(1, 2, 3)}, {7, 1.5f}, {9, 11}, {6, true}},
                              {Plugin(0x1681, 84, {{104, true}})});
    const Chunk attached = Attached_Model("torch.mod", "sway", true);
    const Chunk layer = Layer("flames", 34, 27, 19, 22);
    for (const Chunk &former : {Group({block, attached, layer}), Group({attached, layer, block})}) {
        const LoadedEmitter loaded = Load_Emitter(Build(Emitter({Group({Block("first")}), former})));
        ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 3);
        const vrMKPModel &model = loaded.Get<vrMKPModel>(1);
        EXPECT_EQ(model.Get_Name(), "fire_Model_2") << "there were two renderables when it was made";
        EXPECT_EQ(model.Get_Attached_Model()->Get_Name(), "torch.mod");
        EXPECT_TRUE(model.Get_Always_Simulate());
        EXPECT_EQ(model.Get_Sort_Bias(), 4.0f);
        EXPECT_EQ(model.Get_Translate_Offset(), Vector3(1, 2, 3));
        EXPECT_EQ(Plugin_ID(model.Get_Physics()), 84);
        EXPECT_EQ(Plugin_ID(model.Get_Killer()), 119);

        const vrMKParticleGroup &group = loaded.Group_At(2);
        ASSERT_EQ(Plugin_ID(group.Get_Physics()), 118);
        EXPECT_EQ(static_cast<vrMKPFollowRenderablePhysics *>(group.Get_Physics())->Get_Parent_Name(), "fire_Model_2");
        EXPECT_EQ(group.Particle_Count(), 1);
        Expect_Survives(loaded);
    }
}

TEST(LegacyEmitter, WithoutPhysicsNoKillerComesAndNothingFollows)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter({Group({Attached_Model("torch.mod", "", false)})})));
    ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 2);
    const vrMKPModel &model = loaded.Get<vrMKPModel>(0);
    EXPECT_EQ(model.Get_Name(), "_Model_1");
    EXPECT_EQ(model.Get_Killer(), nullptr);
    EXPECT_EQ(Plugin_ID(model.Get_Physics()), 83);
    EXPECT_EQ(Plugin_ID(loaded.Group_At(1).Get_Physics()), 83);
    Expect_Survives(loaded);
}

} // namespace
