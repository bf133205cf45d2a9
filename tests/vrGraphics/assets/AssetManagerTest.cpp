#include "vrGraphics/assets/vrAssetManager.h"

#include "common/EmitterBuilder.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/assets/vrDefaultModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace MKTest;
using testing::HasSubstr;

namespace
{

/// A directory with one emitter of one group called `group`, and a manager that looks for missing files in `models`.
class AssetManager : public testing::Test
{
protected:
    std::string Write_Emitter(const std::string &name, const std::string &group)
    {
        return Directory.Write(name, Build(Emitter({Group({Block(group)})})));
    }
    SmartPtr<vrRenderable> Create(const std::string &name, bool load = true, bool clone = true)
    {
        return Manager.Create_Renderable(name.c_str(), load, clone);
    }
    /// The name of the first renderable of what was created, which tells the files apart.
    static std::string Group_Name(const SmartPtr<vrRenderable> &renderable)
    {
        const auto *emitter = MK_Dynamic_Cast<vrMKParticleEmitter>(renderable.Get());
        if (!emitter || !emitter->Get_Particle_Renderable(0)) return "none";
        return std::string(emitter->Get_Particle_Renderable(0)->Get_Name());
    }

    TempDirectory Directory;
    vrAssetManager Manager{false};
};

TEST_F(AssetManager, OneLoadServesEveryRequestWithAnObjectOfItsOwn)
{
    const std::string path = Write_Emitter("Fire.vro", "flames");
    const auto first = Create(path);
    Directory.Write("Fire.vro", "no longer an emitter");
    const auto second = Create(path);
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(first->Get_Ref_Count(), 1);
    EXPECT_EQ(MK_Dynamic_Cast<vrMKParticleEmitter>(first.Get())->Get_Instance_Count(), 3);
    EXPECT_EQ(MK_Dynamic_Cast<vrMKParticleEmitter>(first.Get())->Get_Name(), "Fire");
    Manager.Free_All_Assets();
    EXPECT_EQ(Manager.Get_Prototype_Count(), 0);
    EXPECT_EQ(Group_Name(second), "flames");
}

TEST_F(AssetManager, WithoutCloningTheRequestGetsThePrototype)
{
    const std::string path = Write_Emitter("fire.vro", "flames");
    const auto first = Create(path, true, false);
    ASSERT_TRUE(first);
    EXPECT_EQ(Create(path, true, false), first);
    EXPECT_EQ(Manager.Find_Prototype("fire"), first.Get());
    EXPECT_EQ(first->Get_Ref_Count(), 2);
}

TEST_F(AssetManager, TheBaseNameIsTheAssetWhateverItsDirectoryOrLetters)
{
    const std::string first = Write_Emitter("a/Fire.vro", "first");
    const std::string second = Write_Emitter("b/fire.vro", "second");
    EXPECT_EQ(Group_Name(Create(first)), "first");
    EXPECT_EQ(Group_Name(Create(second)), "first");
    EXPECT_EQ(Group_Name(Create("FIRE", false)), "first");
    Manager.Free_All_Assets();
    EXPECT_EQ(Group_Name(Create(second)), "second");
}

TEST_F(AssetManager, AMissingPathFallsBackToTheModelsDirectory)
{
    Write_Emitter("models/smoke.vro", "fallback");
    Manager.Set_Models_Directory(Directory / "models/");
    const Reports quiet;
    EXPECT_EQ(Group_Name(Create(Directory / "elsewhere/Smoke.vro")), "fallback");
    EXPECT_EQ(Group_Name(Create("smoke")), "fallback");
}

TEST_F(AssetManager, NamesThatGiveNothing)
{
    Manager.Set_Models_Directory(Directory / "models/");
    Write_Emitter("fire.vro", "flames");
    Directory.Write("model.vro", Build(Parent(0x100, {Leaf(1, 2)})));
    Directory.Write("junk.vro", "<not a chunk file");
    const Reports reports;
    EXPECT_EQ(Manager.Create_Renderable(nullptr, true, true), nullptr);
    const struct
    {
        const char *what;
        std::string name;
        bool load;
    } rows[] = {
        {"an empty name", "", true},
        {"a file that isn't there", Directory / "none.vro", true},
        {"a file of another kind", Directory / "model.vro", true},
        {"a file of no kind", Directory / "junk.vro", true},
        {"the second kind of asset", Directory / "fire.APF", true},
        {"a directory", Directory.Get_Path(), true},
        {"a file that isn't to be loaded", Directory / "fire.vro", false},
        {"a name of nothing but an extension", ".vro", true},
    };
    for (const auto &row : rows) {
        EXPECT_FALSE(Create(row.name, row.load)) << row.what;
        EXPECT_EQ(Manager.Get_Prototype_Count(), 0) << row.what;
    }
    EXPECT_TRUE(reports.Has_Log("model.vro: not an emitter file")) << reports.Get_Text();
    EXPECT_FALSE(reports.Has_Log("Missing asset detected")) << "without a placeholder nothing is shown as missing";

    Manager.Enable_Loading(false);
    EXPECT_FALSE(Create(Directory / "fire.vro"));
}

TEST_F(AssetManager, ADamagedEmitterIsRefusedAndNeitherReplacedNorKept)
{
    const Bytes whole = Build(Emitter({Group({Block("flames")})}));
    const std::string path = Directory.Write("fire.vro", Bytes(whole.begin(), whole.end() - 3));
    Write_Emitter("models/fire.vro", "another");
    vrAssetManager withPlaceholder(true);
    const Reports reports;
    for (vrAssetManager *manager : {&Manager, &withPlaceholder}) {
        manager->Set_Models_Directory(Directory / "models/");
        EXPECT_EQ(manager->Create_Renderable(path.c_str(), true, true), nullptr);
        EXPECT_EQ(manager->Get_Prototype_Count(), 0);
    }
    EXPECT_TRUE(reports.Has_Log("fire.vro: the emitter is damaged")) << reports.Get_Text();
}

TEST_F(AssetManager, ThePlaceholderStandsInForWhatIsMissing)
{
    vrAssetManager manager(true);
    manager.Set_Models_Directory(Directory / "models/");
    const Reports reports;
    const std::string path = Directory / "Gone.vro";
    const SmartPtr<vrRenderable> first(manager.Create_Renderable(path.c_str(), true, true));
    const SmartPtr<vrRenderable> second(manager.Create_Renderable(path.c_str(), true, true));
    EXPECT_NE(MK_Dynamic_Cast<vrDefaultModel>(first.Get()), nullptr);
    EXPECT_NE(first, second);
    EXPECT_TRUE(reports.Has_Log("VorenMissingModelsLog: Missing asset detected: name = gone")) << reports.Get_Text();
    // What wasn't tried isn't missing.
    EXPECT_EQ(manager.Create_Renderable(path.c_str(), false, true), nullptr);
}

TEST_F(AssetManager, ThePlaceholderIsOnlyHandedOutAsAClone)
{
    const Reports reports;
    const auto first = Create("DefaultModel");
    EXPECT_NE(MK_Dynamic_Cast<vrDefaultModel>(first.Get()), nullptr);
    EXPECT_TRUE(reports.Get_Asserts().empty());
    const auto second = Create("DefaultModel", true, false);
    EXPECT_TRUE(reports.Has_Assert("context.Should_Clone_Renderable()"));
    EXPECT_TRUE(second);
    EXPECT_NE(second, first);
    EXPECT_FALSE(Create("defaultmodel", false)) << "the name is compared exactly";
}

TEST_F(AssetManager, ABadNormalIsTold)
{
    const std::string path = Write_Emitter("fire.vro", "flames");
    Create(path);
    const Reports reports;
    vrLoadContext context(Manager, path.c_str(), false, false);
    context.HasBadNormal = true;
    EXPECT_NE(Manager.Register_3D_Asset(context), nullptr);
    EXPECT_TRUE(reports.Has_Log("fire.vro had a bad normal, please re-export."));
}

TEST_F(AssetManager, AskingOnTheMainThreadWhileAFrameRunsInParallelAsserts)
{
    const Reports reports;
    RenderThread::InParallelSection = true;
    std::thread([&] { Create(""); }).join();
    EXPECT_TRUE(reports.Get_Asserts().empty());
    Create("");
    RenderThread::InParallelSection = false;
    EXPECT_EQ(reports.Get_Asserts(),
              (std::vector<std::string>{"(!Is_Main_Thread() || !RenderThread::InParallelSection)"}));
}

TEST_F(AssetManager, ThreadsThatAskAtOnceShareOneLoad)
{
    const std::string path = Write_Emitter("fire.vro", "flames");
    std::vector<std::thread> threads;
    std::vector<SmartPtr<vrRenderable>> made(8);
    for (auto &slot : made) threads.emplace_back([&] { slot = Create(path); });
    for (auto &thread : threads) thread.join();
    for (const auto &renderable : made) EXPECT_EQ(Group_Name(renderable), "flames");
    EXPECT_EQ(MK_Dynamic_Cast<vrMKParticleEmitter>(made[0].Get())->Get_Instance_Count(), 9);
}

TEST_F(AssetManager, TexturesComeFromTheDriverAndGoWithTheAssets)
{
    const Reports reports;
    const auto get = [&](const char *name) { return Manager.Get_Texture(name, true, true, 0, true, false, 8, false); };
    EXPECT_EQ(get("grey.tga"), nullptr) << "there is no driver";
    vrNullDriverMethods::Init(nullptr, 1, 1);
    vrGraphicsDriver::Add_Texture_Path(Directory.Get_Path());
    // a grey picture of two texels: 8 bits, from the top
    Directory.Write("grey.tga", Bytes{0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 8, 0x20, 7, 9});
    vrTexture *texture = get("grey.tga");
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->Get_Width(), 2);
    EXPECT_EQ(get(nullptr), nullptr);
    EXPECT_EQ(get(""), nullptr);
    const SmartPtr<vrTexture> held = texture;
    std::thread([&] { Manager.Free_All_Assets(); }).join();
    EXPECT_EQ(held->Get_Ref_Count(), 2) << "another thread frees no textures";
    Manager.Free_All_Assets();
    EXPECT_EQ(held->Get_Ref_Count(), 2) << "somebody has a share";
    EXPECT_TRUE(reports.Get_Asserts().empty()) << reports.Get_Text();
    RenderThread::InParallelSection = true;
    EXPECT_EQ(get("grey.tga"), texture);
    RenderThread::InParallelSection = false;
    EXPECT_TRUE(reports.Has_Assert("(!Is_Main_Thread() || !RenderThread::InParallelSection)"));
    vrNullDriverMethods::Shutdown();
    vrGraphicsDriver::Clear_Texture_Path();
}

} // namespace
