#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/plugins/renderables/Physics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace MKTest;

namespace
{

LoadedEmitter Load_Block(std::vector<Micro> variables, std::vector<Chunk> plugins = {})
{
    return Load_Emitter(Build(Emitter({Group({Block("fire", std::move(variables), std::move(plugins))})})));
}

TEST(Renderable, AllVariablesComeBackFromASave)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    const vrMKPRenderable &group = loaded.Group_At(0);
    EXPECT_EQ(group.Get_Name(), "fire");
    EXPECT_TRUE(group.Get_Always_Simulate());
    EXPECT_EQ(group.Get_Update_Mode(), vrRenderable::UPDATE_ALWAYS);
    EXPECT_TRUE(group.Get_Always_Awake());
    EXPECT_TRUE(group.Get_Velocity_Aligned());
    EXPECT_EQ(group.Get_Translate_Offset(), Vector3(1, 2, 3));
    EXPECT_EQ(group.Get_Rotate_Offset(), Vector3(-4, 5, -6));
    EXPECT_EQ(group.Get_Scale_Offset(), 0.75f);
    EXPECT_EQ(group.Get_Start_Delay(), 2.0f);
    EXPECT_EQ(group.Get_Start_Delay_Variation(), 10.0f);
    EXPECT_EQ(group.Get_Base_Random_Seed(), 77);
    EXPECT_EQ(group.Get_Sort_Bias(), 2.25f);
    EXPECT_EQ(Plugin_ID(group.Get_Physics()), 84);
    EXPECT_EQ(Plugin_ID(group.Get_Modifier(0)), 120);

    const vrMKPModel &model = loaded.Get<vrMKPModel>(1);
    EXPECT_EQ(model.Get_Name(), "torch");
    EXPECT_FALSE(model.Get_Always_Simulate());
    EXPECT_EQ(model.Get_Update_Mode(), vrRenderable::UPDATE_WHEN_VISIBLE);
    ASSERT_NE(model.Get_Attached_Model(), nullptr);
    EXPECT_EQ(model.Get_Attached_Model()->Get_Name(), "torch.mod");
    EXPECT_EQ(model.Get_Attached_Model()->Get_Animation(), "sway");
    EXPECT_TRUE(model.Get_Attached_Model()->Get_Enabled());
    EXPECT_EQ(Plugin_ID(model.Get_Killer()), 119);
}

TEST(Renderable, TheBiasInMemoryIsTheSignedSquareOfTheFiles)
{
    const struct
    {
        float file;
        float memory;
    } rows[] = {{0.0f, 0.0f}, {3.0f, 9.0f}, {-1.5f, -2.25f}, {0.5f, 0.25f}};
    for (const auto &row : rows) {
        const LoadedEmitter loaded = Load_Block({{10, row.file}});
        EXPECT_EQ(loaded.Group_At(0).Get_Sort_Bias(), row.memory);
        EXPECT_EQ(loaded.Group_At(0).Get_File_Sort_Bias(), row.file);
    }
    vrMKPModel model;
    model.Set_Sort_Bias(-2.0f);
    EXPECT_NEAR(model.Get_File_Sort_Bias(), -1.41421f, 1e-5f);
    model.Set_File_Sort_Bias(model.Get_File_Sort_Bias());
    EXPECT_NEAR(model.Get_Sort_Bias(), -2.0f, 1e-6f);
}

TEST(Renderable, ValuesThatAreNotFiniteAreKeptAndBreakNothing)
{
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    const LoadedEmitter loaded = Load_Block({{10, NOT_A_NUMBER}, {5, -INFINITE}, {7, INFINITE}, {8, NOT_A_NUMBER}});
    const LoadedEmitter again = Load_Emitter(Save_Emitter(*loaded.emitter));
    const vrMKPRenderable &group = again.Group_At(0);
    EXPECT_TRUE(std::isnan(group.Get_Sort_Bias()));
    EXPECT_EQ(group.Get_Scale_Offset(), -INFINITE);
    EXPECT_EQ(group.Get_Start_Delay(), INFINITE);
    EXPECT_TRUE(std::isnan(group.Get_Start_Delay_Variation()));
    // A bias that overflows in memory saves as what is left of it, and from then on stays.
    EXPECT_EQ(Load_Block({{10, 1e30f}}).Group_At(0).Get_File_Sort_Bias(), INFINITE);
}

TEST(Renderable, SeedsAreOfTheInstanceUnlessTheFileGivesOne)
{
    const Bytes given = Build(Emitter({Group({Block("a", {{7, 10.0f}, {8, 50.0f}, {9, 7}})})}));
    const Bytes own = Build(Emitter({Group({Block("a", {{7, 10.0f}, {8, 50.0f}})})}));
    const LoadedEmitter first = Load_Emitter(given);
    const LoadedEmitter second = Load_Emitter(given);
    EXPECT_EQ(first.Group_At(0).Get_Random_Seed(), 7);
    EXPECT_EQ(first.Group_At(0).Get_Actual_Start_Delay(), second.Group_At(0).Get_Actual_Start_Delay());
    EXPECT_NE(first.Group_At(0).Get_Actual_Start_Delay(), 10.0f);
    // 50 per cent of ten seconds either way, the ends excluded.
    EXPECT_GT(first.Group_At(0).Get_Actual_Start_Delay(), 5.0f);
    EXPECT_LT(first.Group_At(0).Get_Actual_Start_Delay(), 15.0f);

    const LoadedEmitter third = Load_Emitter(own);
    const LoadedEmitter fourth = Load_Emitter(own);
    EXPECT_NE(third.Group_At(0).Get_Random_Seed(), fourth.Group_At(0).Get_Random_Seed());
    const SmartPtr<vrMKParticleEmitter> clone(third->Clone(VR_CLONE_COPY));
    const auto cloned = clone->Get_Particle_Renderable(0);
    EXPECT_NE(cloned->Get_Random_Seed(), third.Group_At(0).Get_Random_Seed());
    EXPECT_EQ(cloned->Get_Base_Random_Seed(), 0);
}

TEST(Renderable, WithoutVariationTheStartDelayIsExact)
{
    EXPECT_EQ(Load_Block({{7, 3.25f}}).Group_At(0).Get_Actual_Start_Delay(), 3.25f);
    const Reports reports;
    const float delay = Load_Block({{7, 4.0f}, {8, -25.0f}}).Group_At(0).Get_Actual_Start_Delay();
    EXPECT_GT(delay, 3.0f);
    EXPECT_LT(delay, 5.0f);
    EXPECT_TRUE(reports.Get_Asserts().empty()) << "a negative variation is a file's business: " << reports.Get_Text();
}

TEST(Renderable, APhysicsThatCannotBeHadIsReplacedByNullPhysicsAndThenSaved)
{
    const struct
    {
        const char *what;
        std::vector<Chunk> plugins;
    } rows[] = {
        {"no plugins chunk", {}},
        {"unknown kind", {Plugin(0x1681, 200)}},
        {"renderable modifier as physics", {Plugin(0x1681, 120)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const LoadedEmitter loaded = Load_Block({}, row.plugins);
        EXPECT_EQ(Plugin_ID(loaded.Group_At(0).Get_Physics()), 83);
        const LoadedEmitter again = Load_Emitter(Save_Emitter(*loaded.emitter));
        EXPECT_EQ(Plugin_ID(again.Group_At(0).Get_Physics()), 83);
        EXPECT_TRUE(again.findings.empty()) << again.Describe_Findings();
    }
}

TEST(Renderable, PluginsOfAnotherFamilyAreNeitherModifiersNorKillers)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Model({Block("m", {}, {Plugin(0x1683, 119), Plugin(0x1683, 120)}), Parent(0x1680, {Plugin(0x1682, 120)})})})));
    const vrMKPModel &model = loaded.Get<vrMKPModel>(0);
    ASSERT_EQ(model.Get_Modifier_Count(), 1);
    EXPECT_EQ(Plugin_ID(model.Get_Modifier(0)), 120);
    EXPECT_EQ(model.Get_Killer(), nullptr);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / killer", "\"Keyed Light Scale\"", "without one"))
        << loaded.Describe_Findings();
}

TEST(Renderable, ModifiersAreSavedEvenWithoutPhysics)
{
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    auto *group = new vrMKParticleGroup;
    emitter->Add_Renderable(group);
    group->Add_Modifier(static_cast<vrMKPRenderableModifier *>(vrMKPPlugin::Create_Plugin(120)));
    ASSERT_EQ(group->Get_Physics(), nullptr);
    const LoadedEmitter again = Load_Emitter(Save_Emitter(*emitter));
    EXPECT_EQ(Plugin_ID(again.Group_At(0).Get_Modifier(0)), 120);
    EXPECT_EQ(Plugin_ID(again.Group_At(0).Get_Physics()), 83);
}

TEST(Renderable, UnknownVariablesAreSkippedAndUnknownChunksEndTheBlock)
{
    const LoadedEmitter loaded = Load_Emitter(
        Build(Emitter({Group({Parent(0x1700, {Micros(0x1701, {{0, std::string("a")}, {11, 5.0f}, {5, 2.0f}}),
                                              Leaf(0x1702, 1), Parent(0x1680, {Plugin(0x1681, 84)})}),
                              Layer({Leaf(0, std::string("after"))})})})));
    EXPECT_EQ(loaded.Group_At(0).Get_Scale_Offset(), 2.0f);
    EXPECT_EQ(Plugin_ID(loaded.Group_At(0).Get_Physics()), 83) << "what follows the unknown chunk isn't read";
    EXPECT_EQ(loaded.Layer_At(0, 0).Get_Name(), "after");
    EXPECT_TRUE(loaded.Has_Finding("renderable 0", "unknown variable 11", "dropped"));
    EXPECT_TRUE(loaded.Has_Finding("renderable 0", "unknown chunk 0x1702", "ends"));
}

TEST(Renderable, ANameThatFillsItsMicroChunkIsCutToWhatCanBeSaved)
{
    // Old texts have no length in front, so that 255 bytes of a micro-chunk can be a name.
    std::string record("\0\xff", 2);
    record += std::string(255, 'n');
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter({Group({Parent(0x1700, {Bytes_Leaf(0x1701, record)})})})));
    EXPECT_EQ(loaded.Group_At(0).Get_Name().size(), 252u);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0", "255 bytes", "cut")) << loaded.Describe_Findings();
    for (const uint32_t mode : All_Emitter_Modes()) EXPECT_NO_THROW(Save_Emitter(*loaded.emitter, mode)) << mode;
}

TEST(Renderable, EnteringAnEmitterTakesItsNameAndIsRefusedToOneInAScene)
{
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    emitter->Set_Name("smoke");
    const SmartPtr<vrMKPModel> model(new vrMKPModel);
    model->Set_Emitter(emitter.Get());
    EXPECT_EQ(model->Get_Parent_Name(), "smoke");
    model->Set_Renderable_State(vrMKPRenderable::STATE_IN_SCENE, true);
    const Reports reports;
    model->Set_Emitter(nullptr);
    EXPECT_TRUE(reports.Get_Asserts().empty());
    model->Set_Emitter(emitter.Get());
    EXPECT_TRUE(reports.Has_Assert("(!RenderableState.Flags.InScene) || !emitter"));
}

TEST(RenderablePool, GivesBackWhatStandsForTheSameDefinition)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    const SmartPtr<vrMKPRenderablePool> pool(new vrMKPRenderablePool);
    SmartPtr<vrMKPRenderable> group(loaded.Group_At(0).Clone(VR_CLONE_COPY));
    group->Set_Pool(pool.Get());
    pool->Give(group.Get());
    EXPECT_EQ(group->Get_Pool(), nullptr);
    EXPECT_FALSE(pool->Take(loaded.Group_At(0))) << "someone else still holds it";
    const vrMKPRenderable *address = group.Get();
    group = nullptr;
    EXPECT_FALSE(pool->Take(loaded.Get<vrMKPModel>(1))) << "of another class";
    EXPECT_EQ(pool->Take(loaded.Group_At(0)).Get(), address);
    EXPECT_EQ(pool->Get_Count(), 0u);
}

TEST(RenderablePool, DoesNotGiveBackWhatWasChanged)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    const struct
    {
        const char *what;
        void (*change)(vrMKParticleGroup &);
    } rows[] = {
        {"another start delay", [](vrMKParticleGroup &group) { group.Set_Start_Delay(9.0f); }},
        {"another layer name", [](vrMKParticleGroup &group) { group.Get_Particle(0)->Set_Name("x"); }},
        {"an emptied slot", [](vrMKParticleGroup &group) { group.Get_Particle(1)->Set_Stomper(nullptr); }},
        {"modifiers in another order", [](vrMKParticleGroup &group) { group.Get_Particle(0)->Swap_Modifiers(0, 1); }},
        {"other physics", [](vrMKParticleGroup &group) { group.Set_Physics(new vrMKPFollowRenderablePhysics); }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const SmartPtr<vrMKPRenderablePool> pool(new vrMKPRenderablePool);
        SmartPtr<vrMKParticleGroup> group(loaded.Group_At(0).Clone(VR_CLONE_COPY));
        row.change(*group);
        pool->Give(group.Get());
        group = nullptr;
        EXPECT_FALSE(pool->Take(loaded.Group_At(0)));
    }
}

} // namespace
