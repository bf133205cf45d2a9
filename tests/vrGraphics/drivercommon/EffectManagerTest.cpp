#include "vrGraphics/drivercommon/vrEffectManager.h"

#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Compiles whatever isn't called "Broken".
class FakeEffect final : public RefCountClass
{
public:
    std::string Name;
    vrEffectSource Source;

    static SmartPtr<FakeEffect> Compile_Shader(std::string_view name, vrEffectSource &&source, std::string &errors)
    {
        errors = "0:1: syntax error";
        if (name == "Broken") return nullptr;
        SmartPtr<FakeEffect> effect = new FakeEffect;
        effect->Name = name;
        effect->Source = std::move(source);
        return effect;
    }
};

constexpr const char *SMALL = "technique GLOBAL_LOD_0 { pass { vertex { v } fragment { f } } }";

class EffectManager : public testing::Test
{
protected:
    EffectManager()
    {
        vrGraphicsDriver::Clear_Effects_Path();
        vrGraphicsDriver::Add_Effects_Path(Folder / "first");
        vrGraphicsDriver::Add_Effects_Path(Folder / "second");
    }
    ~EffectManager() override { vrGraphicsDriver::Clear_Effects_Path(); }

    MKTest::TempDirectory Folder;
    MKTest::Reports Reports;
    vrEffectManager<FakeEffect> Manager;
};

TEST_F(EffectManager, FindsAnEffectByAnyFormOfItsName)
{
    Folder.Write("second/Fire.mks", SMALL);
    const SmartPtr<FakeEffect> fire = Manager.Get_Effect("Fire.mks");
    ASSERT_TRUE(fire);
    for (const char *name : {"fire", "FIRE.FX", "some\\where\\fire.mkso"}) EXPECT_EQ(Manager.Get_Effect(name), fire);
    EXPECT_FALSE(Manager.Is_Missing_Effect(fire.Get()));
}

TEST_F(EffectManager, TakesTheFirstFolderThatHasTheEffectAndIncludesFromItsOwn)
{
    Folder.Write("first/Fire.mks", std::string("include \"..\\second\\Part.mksh\" include \"Late.mksh\"") + SMALL);
    Folder.Write("second/Fire.mks", "not even an effect");
    Folder.Write("first/Part.mksh", "annotation From \"first\"");
    Folder.Write("second/Part.mksh", "annotation From \"second\"");
    Folder.Write("second/Late.mksh", "annotation Late \"yes\"");
    const SmartPtr<FakeEffect> fire = Manager.Get_Effect("Fire");
    EXPECT_EQ(fire->Source.Get_Annotation("From"), "first");
    EXPECT_EQ(fire->Source.Get_Annotation("Late"), "yes");
}

TEST_F(EffectManager, StandsInForMissingOnesAndTellsItOnceAName)
{
    Folder.Write("first/MISSINGEFFECT.mks", std::string("annotation Mine \"yes\"") + SMALL);
    const SmartPtr<FakeEffect> smoke = Manager.Get_Effect("Smoke.mks");
    Manager.Get_Effect("smoke");
    const SmartPtr<FakeEffect> water = Manager.Get_Effect("");
    EXPECT_TRUE(Manager.Is_Missing_Effect(smoke.Get()));
    EXPECT_EQ(smoke, water);
    EXPECT_EQ(smoke->Source.Get_Annotation("Mine"), "yes");
    EXPECT_EQ(Reports.Count_Logs("Shader Smoke.mks isn't in any effects path"), 1);
}

TEST_F(EffectManager, TellsWhatDoesNotCompileWithItsErrors)
{
    Folder.Write("first/Broken.mks", "technique Own_LOD_0 { pass { vertex { v } fragment { f } } }");
    Folder.Write("first/Cut.mks", "technique");
    EXPECT_TRUE(Manager.Is_Missing_Effect(Manager.Get_Effect("Broken").Get()));
    EXPECT_TRUE(Manager.Is_Missing_Effect(Manager.Get_Effect("Cut").Get()));
    EXPECT_TRUE(Reports.Has_Log(" Shader Broken failed to compile!\r\nErrors: 0:1: syntax error"));
    EXPECT_TRUE(Reports.Has_Log(" Shader Cut failed to compile!\r\nErrors: "));
    EXPECT_TRUE(Reports.Has_Log("Cut.mks:1: expected a technique's name but got the end of the file"));
}

TEST_F(EffectManager, WarnsOfAnEffectWithoutABaseLevel)
{
    Folder.Write("first/High.mks", "technique Own_LOD_2 { pass { vertex { v } fragment { f } } }");
    Folder.Write("first/Base.mks", "technique VorenEngine_LOD_0 { pass { vertex { v } fragment { f } } }");
    EXPECT_FALSE(Manager.Is_Missing_Effect(Manager.Get_Effect("High").Get()));
    Manager.Get_Effect("Base");
    EXPECT_EQ(Reports.Count_Logs("has neither technique GLOBAL_LOD_0 nor VORENENGINE_LOD_0"), 1);
}

TEST_F(EffectManager, LoadsAllEffectsOfTheFolders)
{
    Folder.Write("first/B.mks", SMALL);
    Folder.Write("second/A.mks", SMALL);
    Folder.Write("second/Part.mksh", "");
    std::vector<std::string> names;
    const auto note = [](const char *name, void *context) {
        static_cast<std::vector<std::string> *>(context)->push_back(name);
    };
    EXPECT_EQ(Manager.Load_All_Effects("", note, &names), 2);
    EXPECT_THAT(names, ElementsAre("B", "A"));
    EXPECT_EQ(Manager.Load_All_Effects(Folder / "second", nullptr, nullptr), 1);
    EXPECT_EQ(Manager.Load_All_Effects(Folder / "nowhere", nullptr, nullptr), 0);
}

TEST_F(EffectManager, ReadsAnewWhatWasCleared)
{
    EXPECT_TRUE(Manager.Is_Missing_Effect(Manager.Get_Effect("Late").Get()));
    Folder.Write("first/Late.mks", SMALL);
    EXPECT_TRUE(Manager.Is_Missing_Effect(Manager.Get_Effect("Late").Get()));
    Manager.Clear();
    EXPECT_EQ(Manager.Get_Effect("Late")->Name, "Late");
}

} // namespace
