#include "vrGraphics/effect/vrLODManager.h"
#include "vrGraphics/effect/vrMKPDynamicSettings.h"

#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/particle/vrMKPRenderState.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using namespace MKTest;

namespace
{

using Settings = SmartPtr<vrMKPDynamicSettings>;

Settings Shared()
{
    return vrMKPDynamicSettings::Get_Shared_Default();
}

/// Fades are process-wide: each test uses one of its own, which nobody has moved from its end at 1.
constexpr auto TIMED = vrLODManager::LOD_FADE_0;
constexpr auto CLAMPED = vrLODManager::LOD_FADE_1;

constexpr const char *CAMPFIRE = R"(<?xml version="1.0"?>
<LODSettings>
  <FarDistance>750.5</FarDistance>
  <DistanceBias>10</DistanceBias>
  <Model Name="Campfire">
    <Static Quality="3"><Setting Distance="200" LOD="1"/></Static>
    <Static Quality="1"><Setting Distance="80" LOD="3"/><Setting Distance="0" LOD="2"/></Static>
    <Dynamic Distance="150" Detail="0.5"/>
  </Model>
  <Comment>skipped</Comment>
</LODSettings>)";

std::string With_Model(const std::string &inside)
{
    return "<LODSettings><NearDistance>1</NearDistance><Model Name=\"a\">" + inside + "</Model></LODSettings>";
}

} // namespace

// What is left of a way of 8 over 4 seconds is 8 (3 - 2u) u^2: u is 3/4, 1/2 and 1/4 after 1, 2 and 3 seconds.
TEST(DynamicSettings, EaseTowardTheTarget)
{
    Settings settings = Shared();
    ASSERT_TRUE(vrMKPDynamicSettings::Set(settings, 2, Vector4(8.0f), 4.0f));
    ASSERT_TRUE(vrMKPDynamicSettings::Set(settings, 9, Vector4(8.0f, 0.0f, -8.0f, 16.0f), 4.0f));
    for (const float expected : {1.25f, 4.0f, 6.75f, 8.0f, 8.0f}) {
        settings->Update(1.0f);
        EXPECT_EQ(settings->Get_Scalar(2).Get_Current(), expected);
        EXPECT_EQ(settings->Get_Vector4(9).Get_Current(), Vector4(expected, 0.0f, -expected, 2 * expected));
    }
    // A new target starts from where the value is.
    vrMKPDynamicSettings::Set(settings, 2, Vector4(0.0f), 2.0f);
    settings->Update(1.0f);
    vrMKPDynamicSettings::Set(settings, 2, Vector4(12.0f), 2.0f);
    settings->Update(1.0f);
    EXPECT_EQ(settings->Get_Scalar(2).Get_Current(), 8.0f);
}

TEST(DynamicSettings, ReachThePluginsOnlyWhenTheyWereSet)
{
    Settings settings = Shared();
    vrMKPRenderState state;
    state.Dynamic.fill(5.0f);
    state.HomingTarget = Vector3(5.0f);
    vrMKPDynamicSettings::Set(settings, 0, Vector4(3.0f), 0.0f); // no fade: there at once
    vrMKPDynamicSettings::Set(settings, 1, Vector4(3.0f), 1.0f); // hasn't moved yet
    vrMKPDynamicSettings::Set(settings, 7, Vector4(3.0f), 9.0f); // doesn't fade
    settings->Write_To(state);
    EXPECT_EQ(state.Dynamic, (std::array<float, 16>{3, 0, 5, 5, 5, 5, 5, 3, 5, 5, 5, 5, 5, 5, 5, 5}));
    EXPECT_EQ(state.HomingTarget, Vector3(5.0f));
    vrMKPDynamicSettings::Set(settings, 13, Vector4(1.0f, 2.0f, 3.0f, 4.0f), 9.0f);
    settings->Write_To(state);
    EXPECT_EQ(state.HomingTarget, Vector3(1.0f, 2.0f, 3.0f));
}

TEST(DynamicSettings, OfOneRenderableLeaveTheSharedOnesAlone)
{
    // A setting that has no value gives the renderable an object of its own as well.
    Settings settings = Shared();
    EXPECT_TRUE(vrMKPDynamicSettings::Set(settings, 8, Vector4(3.0f), 0.0f));
    EXPECT_NE(settings.Get(), Shared().Get());
    const Settings own = settings;
    vrMKPDynamicSettings::Set(settings, 0, Vector4(3.0f), 0.0f);
    EXPECT_EQ(settings, own);
    EXPECT_EQ(Shared()->Get_Scalar(0).Get_Current(), 0.0f);
}

TEST(DynamicSettings, RefuseWhatIsNoSetting)
{
    const Reports reports;
    Settings settings = Shared();
    for (const int setting : {15, -1}) EXPECT_FALSE(vrMKPDynamicSettings::Set(settings, setting, Vector4(3.0f), 0.0f));
    EXPECT_EQ(settings.Get(), Shared().Get());
    EXPECT_EQ(reports.Get_Asserts(), (std::vector<std::string>{"setting < EMITTER_DS_COUNT", "setting >= 0"}));
}

TEST(DynamicSettings, SurviveAnyFadeTime)
{
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float fade : {-1.0f, 1e-40f, infinity, -infinity, std::numeric_limits<float>::quiet_NaN()}) {
        Settings settings = Shared();
        vrMKPDynamicSettings::Set(settings, 0, Vector4(4.0f), fade);
        settings->Update(1.0f);
        EXPECT_EQ(settings->Get_Scalar(0).Get_Current(), fade == infinity ? 0.0f : 4.0f) << fade;
    }
}

TEST(LODFades, RunOverTheirDuration)
{
    vrLODManager::Set_LOD_Fade(TIMED, 1.0f, 1.0f, 0.0f); // where all of them are at the start
    vrLODManager::On_New_Frame(0.5f);
    EXPECT_EQ(vrLODManager::Get_LOD_Fade(TIMED), 1.0f);
    vrLODManager::Set_LOD_Fade(TIMED, 1.0f, 0.2f, 2.0f);
    const auto &fade = vrLODManager::Get_Fade_Record(TIMED);
    vrLODManager::On_New_Frame(0.5f);
    EXPECT_NEAR(vrLODManager::Get_LOD_Fade(TIMED), 0.8f, 1e-4f);
    vrLODManager::On_New_Frame(0.6f); // a load
    EXPECT_NEAR(fade.T, 0.25f, 1e-4f);
    // An end that is the same but for rounding restarts nothing.
    vrLODManager::Set_LOD_Fade(TIMED, 0.0f, 0.20005f, 9.0f);
    EXPECT_NEAR(fade.T, 0.25f, 1e-4f);
    for (int frame = 0; frame < 4; ++frame) vrLODManager::On_New_Frame(0.5f);
    EXPECT_EQ(vrLODManager::Get_LOD_Fade(TIMED), 0.2f);
}

TEST(LODFades, AreCutToWhatMakesSense)
{
    vrLODManager::Set_LOD_Fade(CLAMPED, 7.0f, -3.0f, -5.0f);
    EXPECT_EQ(vrLODManager::Get_Fade_Record(CLAMPED).Start, 1.0f);
    vrLODManager::On_New_Frame(0.02f);
    EXPECT_EQ(vrLODManager::Get_LOD_Fade(CLAMPED), 0.0f);
}

TEST(LODSettings, TellTheLevelOfAModel)
{
    const TempDirectory directory;
    ASSERT_TRUE(vrLODManager::Load_LOD_Settings(directory.Write("lod.xml", CAMPFIRE).c_str()));
    const SmartPtr<ModelLODMapClass> model = vrLODManager::Get_Model_LOD_Map(NameTableRef("campfire"));
    ASSERT_TRUE(model);
    EXPECT_EQ(model->Get_Static_LOD(1, 69.0f), 2);
    EXPECT_EQ(model->Get_Static_LOD(1, 70.0f), 3);
    EXPECT_EQ(model->Get_Dynamic_Detail(139.0f), 1.0f);
    EXPECT_EQ(model->Get_Dynamic_Detail(140.0f), 0.5f);

    EXPECT_FALSE(vrLODManager::Get_Model_LOD_Map(NameTableRef()));
    EXPECT_EQ(vrLODManager::Get_Model_LOD_Map(NameTableRef("tent"))->Get_Static_LOD(4, 1e9f), 0);
}

TEST(LODSettings, FallBackToTheDefaultsForABadFile)
{
    const TempDirectory directory;
    const std::string good = directory.Write("good.xml", CAMPFIRE);
    const std::pair<const char *, std::string> rows[] = {
        {"no XML", "<LODSettings>"},
        {"no distance", "<LODSettings><NearDistance>inf</NearDistance></LODSettings>"},
        {"no name", "<LODSettings><Model/></LODSettings>"},
        {"quality too high", With_Model("<Static Quality=\"5\"/>")},
        {"level too high", With_Model("<Static Quality=\"4\"><Setting Distance=\"1\" LOD=\"5\"/></Static>")},
        {"level without a distance", With_Model("<Static Quality=\"4\"><Setting LOD=\"1\"/></Static>")},
        {"detail above all", With_Model("<Dynamic Distance=\"1\" Detail=\"1.5\"/>")},
    };
    for (const auto &[what, text] : rows) {
        const std::string path = directory.Write("bad.xml", text);
        const Reports reports(MKDebug::LogLevel::Warning);
        ASSERT_TRUE(vrLODManager::Load_LOD_Settings(good.c_str()));
        EXPECT_FALSE(vrLODManager::Load_LOD_Settings(path.c_str())) << what;
        EXPECT_TRUE(reports.Has_Log("VorenLog: Failed to load Voren LOD settings from " + path)) << what;
        EXPECT_EQ(vrLODManager::Get_Settings().FarDistance, 500.0f) << what;
        EXPECT_TRUE(vrLODManager::Get_Settings().Models.empty()) << what;
    }
}
