#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/plugins/renderables/Physics.h"

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

TEST(Renderable, TheBiasInMemoryIsTheSignedSquareOfTheFiles)
{
    EXPECT_EQ(Load_Block({{10, -1.5f}}).Group_At(0).Get_Sort_Bias(), -2.25f);
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
    EXPECT_NEAR(first.Group_At(0).Get_Actual_Start_Delay(), 10.0f, 4.9999f);
    const Reports reports;
    EXPECT_NEAR(Load_Block({{7, 4.0f}, {8, -25.0f}}).Group_At(0).Get_Actual_Start_Delay(), 4.0f, 0.9999f);
    EXPECT_TRUE(reports.Get_Asserts().empty()) << "a negative variation is a file's business: " << reports.Get_Text();

    const LoadedEmitter third = Load_Emitter(own);
    const LoadedEmitter fourth = Load_Emitter(own);
    EXPECT_NE(third.Group_At(0).Get_Random_Seed(), fourth.Group_At(0).Get_Random_Seed());
    const SmartPtr<vrMKParticleEmitter> clone(third->Clone(VR_CLONE_COPY));
    const auto cloned = clone->Get_Particle_Renderable(0);
    EXPECT_NE(cloned->Get_Random_Seed(), third.Group_At(0).Get_Random_Seed());
}

TEST(Renderable, APhysicsThatCannotBeHadIsReplacedByNullPhysicsAndThenSaved)
{
    for (const int id : {200, 120}) { // of no kind, and a modifier
        const LoadedEmitter loaded = Load_Block({}, {Plugin(0x1681, id)});
        const LoadedEmitter again = Load_Emitter(Save_Emitter(*loaded.emitter));
        EXPECT_EQ(Plugin_ID(again.Group_At(0).Get_Physics()), 83) << id;
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
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / killer", "\"Keyed Light Scale\"", "without one"));
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
    EXPECT_TRUE(loaded.Has_Finding("renderable 0", "255 bytes", "cut"));
    for (const uint32_t mode : All_Emitter_Modes()) EXPECT_NO_THROW(Save_Emitter(*loaded.emitter, mode)) << mode;
}

TEST(RenderablePool, GivesBackWhatIsUnchangedAndNobodyHolds)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    SmartPtr<vrMKPRenderable> held(loaded.Group_At(0).Clone(VR_CLONE_COPY));
    const SmartPtr<vrMKPRenderablePool> holding(new vrMKPRenderablePool);
    holding->Give(held.Get());
    EXPECT_FALSE(holding->Take(loaded.Group_At(0)));
    held = nullptr;
    EXPECT_FALSE(holding->Take(loaded.Get<vrMKPModel>(1))) << "of another class";
    EXPECT_TRUE(holding->Take(loaded.Group_At(0)));
    const struct
    {
        const char *what;
        void (*change)(vrMKParticleGroup &);
    } rows[] = {
        {"another start delay", [](vrMKParticleGroup &group) { group.Set_Start_Delay(9.0f); }},
        {"an emptied slot", [](vrMKParticleGroup &group) { group.Get_Particle(1)->Set_Stomper(nullptr); }},
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
