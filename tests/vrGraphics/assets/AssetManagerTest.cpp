#include "vrGraphics/assets/vrAssetManager.h"

#include "common/EmitterBuilder.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/assets/vrDefaultModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace MKTest;

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

TEST_F(AssetManager, TheBaseNameIsTheAssetWhateverItsDirectoryOrLetters)
{
    const std::string first = Write_Emitter("a/Fire.vro", "first");
    const std::string second = Write_Emitter("b/fire.vro", "second");
    EXPECT_EQ(Group_Name(Create(first)), "first");
    EXPECT_EQ(Group_Name(Create(second)), "first");
    EXPECT_EQ(Group_Name(Create("FIRE", false)), "first");
    EXPECT_EQ(Create("fire", true, false), Create("fire", true, false)) << "without cloning it is the one";
    Manager.Free_All_Assets();
    EXPECT_EQ(Group_Name(Create(second)), "second");
}

TEST_F(AssetManager, AMissingPathFallsBackToTheModelsDirectory)
{
    Write_Emitter("models/smoke.vro", "fallback");
    Manager.Set_Models_Directory(Directory / "models/");
    const Reports quiet;
    EXPECT_EQ(Group_Name(Create(Directory / "elsewhere/Smoke.vro")), "fallback");
}

TEST_F(AssetManager, NamesThatGiveNothing)
{
    Manager.Set_Models_Directory(Directory / "models/");
    Write_Emitter("fire.vro", "flames");
    Directory.Write("model.vro", Build(Parent(0x100, {Leaf(1, 2)})));
    Directory.Write("junk.vro", "<not a chunk file");
    const Reports reports;
    EXPECT_EQ(Manager.Create_Renderable(nullptr, true, true), nullptr);
    for (const std::string &name : {std::string(), Directory / "none.vro", Directory / "model.vro",
                                    Directory / "junk.vro", Directory.Get_Path(), std::string(".vro")})
    {
        EXPECT_FALSE(Create(name)) << name;
        EXPECT_EQ(Manager.Get_Prototype_Count(), 0) << name;
    }
    EXPECT_FALSE(Create(Directory / "fire.vro", false)) << "it isn't to be loaded";
    EXPECT_TRUE(reports.Has_Log("model.vro: not an emitter file")) << reports.Get_Text();
    EXPECT_FALSE(reports.Has_Log("Missing asset detected")) << "without a placeholder nothing is shown as missing";
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
    // The placeholder itself is no prototype to hand out.
    EXPECT_NE(Create("DefaultModel", true, false), Create("DefaultModel", true, false));
    EXPECT_TRUE(reports.Has_Assert("context.Should_Clone_Renderable()"));
}

TEST_F(AssetManager, ThreadsThatAskAtOnceShareOneLoad)
{
    const std::string path = Write_Emitter("fire.vro", "flames");
    std::vector<std::thread> threads;
    std::vector<SmartPtr<vrRenderable>> made(8);
    for (auto &slot : made) threads.emplace_back([&] { slot = Create(path); });
    for (auto &thread : threads) thread.join();
    ASSERT_TRUE(made[0]);
    EXPECT_EQ(MK_Dynamic_Cast<vrMKParticleEmitter>(made[0].Get())->Get_Instance_Count(), 9);
    Manager.Free_All_Assets();
    for (const auto &renderable : made) EXPECT_EQ(Group_Name(renderable), "flames");
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
    const SmartPtr<vrTexture> held = texture;
    std::thread([&] { Manager.Free_All_Assets(); }).join();
    EXPECT_EQ(held->Get_Ref_Count(), 2) << "another thread frees no textures";
    Manager.Free_All_Assets();
    EXPECT_EQ(held->Get_Ref_Count(), 2) << "somebody has a share";
    EXPECT_TRUE(reports.Get_Asserts().empty()) << reports.Get_Text();
    vrNullDriverMethods::Shutdown();
    vrGraphicsDriver::Clear_Texture_Path();
}

} // namespace
