#include "vrGraphics/drivercommon/vrEffectManager.h"

#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/nulldriver/vrNullEffectInstance.h"

#include <gtest/gtest.h>

namespace
{

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
    vrEffectManager<vrNullEffect> Manager;
};

TEST_F(EffectManager, FindsAnEffectByAnyFormOfItsName)
{
    Folder.Write("second/Fire.mks", SMALL);
    const SmartPtr<vrNullEffect> fire = Manager.Get_Effect("Fire.mks");
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
    const SmartPtr<vrNullEffect> fire = Manager.Get_Effect("Fire");
    EXPECT_EQ(fire->Get_Source().Get_Annotation("From"), "first");
    EXPECT_EQ(fire->Get_Source().Get_Annotation("Late"), "yes");
}

TEST_F(EffectManager, StandsInForMissingOnesAndTellsItOnceAName)
{
    Folder.Write("first/MISSINGEFFECT.mks", std::string("annotation Mine \"yes\"") + SMALL);
    const SmartPtr<vrNullEffect> smoke = Manager.Get_Effect("Smoke.mks");
    Manager.Get_Effect("smoke");
    const SmartPtr<vrNullEffect> water = Manager.Get_Effect("");
    EXPECT_TRUE(Manager.Is_Missing_Effect(smoke.Get()));
    EXPECT_EQ(smoke, water);
    EXPECT_EQ(smoke->Get_Source().Get_Annotation("Mine"), "yes");
    EXPECT_EQ(Reports.Count_Logs("Shader Smoke.mks isn't in any effects path"), 1);
}

} // namespace
