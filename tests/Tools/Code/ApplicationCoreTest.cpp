#include "Code/ApplicationCore.h"

#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Code/RunTool.h"
#include "Tools/Code/RecordingPreview.h"
#include "Tools/Code/ToolFixture.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

constexpr const char *SETTINGS = "FlareTrimSettings.xml";

TEST(ApplicationCore, BrowsingStoresTheAbsoluteChoiceAndScansNothing)
{
    Tool tool;
    tool.application.Set_Picked_Folder("..\\elsewhere");
    tool.form->Click_Browse();
    EXPECT_EQ(tool.core.Get_Settings().WorkingDirectory, tool.directory / "elsewhere");
    EXPECT_EQ(tool.form->Get_Current_Path(), tool.directory / "elsewhere");
    EXPECT_EQ(tool.core.Get_Emitter_List(), nullptr);
}

TEST(ApplicationCore, ClosingAheadOfAnyScanAsksNothingAndSavesTheSettings)
{
    Tool tool;
    tool.form->Set_Location({12, 34});
    tool.form->Set_Size({500, 400});
    EXPECT_TRUE(tool.form->Close());
    EXPECT_THAT(tool.Box_Texts(), IsEmpty());
    const ApplicationSettings saved = ApplicationSettings::Load(SETTINGS);
    EXPECT_EQ(saved.WorkingDirectory, tool.directory / "game");
    EXPECT_TRUE(saved.MainFormLocationSet && saved.ViewFormLocationSet);
    EXPECT_FALSE(saved.MainFormMaximized);
    EXPECT_EQ(saved.MainFormLocation, (Point{12, 34}));
    EXPECT_EQ(saved.MainFormSize, (Size{500, 400}));
}

TEST(ApplicationCore, ClosingWithUnsavedChangesAsks)
{
    Tool tool;
    tool.Add_Emitter("fire.vro", {Plain_Layer()});
    tool.Scan();
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    EXPECT_FALSE(tool.form->Close());
    EXPECT_THAT(tool.Box_Texts(),
                ElementsAre("Emitters have been modified, but not been saved. Continue Closing Anyway?"));
    EXPECT_FALSE(std::filesystem::exists(SETTINGS));
    EXPECT_EQ(tool.Row(0).Get_GlobalLOD(), GlobalLevelOfDetail::Low);

    tool.application.Set_Message_Box_Policy(HeadlessApplication::Accept());
    EXPECT_TRUE(tool.form->Close());
    EXPECT_TRUE(std::filesystem::exists(SETTINGS));
}

TEST(ApplicationCore, TheFirstActivationAloneRestoresThePlacement)
{
    const MKTest::Reports reports;
    const MKTest::TempDirectory directory;
    const MKTest::CurrentDirectory current(directory.Get_Path());
    HeadlessApplication application;
    ApplicationSettings settings;
    settings.MainFormLocationSet = true;
    settings.MainFormMaximized = true;
    settings.MainFormLocation = {5, 6};
    settings.MainFormSize = {700, 300};
    settings.ViewFormLocation = {9, 9}; // not to be taken: ViewFormLocationSet is false
    settings.Save(SETTINGS);

    ApplicationCore core(std::make_unique<NoPreview>());
    ASSERT_TRUE(core.Initialize());
    HeadlessMainForm form(core);
    form.Activate();
    EXPECT_EQ(form.Get_Location(), (Point{5, 6}));
    EXPECT_EQ(form.Get_Size(), (Size{700, 300}));
    EXPECT_EQ(form.Get_Window_State(), FormWindowState::Maximized);
    form.Set_Location({1, 1});
    form.Activate();
    EXPECT_EQ(form.Get_Location(), (Point{1, 1}));
    application.Get_View_Form()->Activate();
    EXPECT_EQ(application.Get_View_Form()->Get_Location(), Point{});
}

/// The whole run, with a session on a fresh working directory.
class RunToolTest : public testing::Test
{
protected:
    void Run(const HeadlessApplication::Session &session)
    {
        application.Set_Session(session);
        application.Set_Picked_Folder(directory / "game");
        EXPECT_EQ(Run_Tool(application, std::make_unique<NoPreview>()), 0);
    }
    std::string Last_Text() const
    {
        return application.Get_Message_Boxes().empty() ? "" : application.Get_Message_Boxes().back().Text;
    }

    MKTest::Reports reports;
    MKTest::TempDirectory directory;
    MKTest::CurrentDirectory current{directory.Make_Directory("run")};
    HeadlessApplication application;
};

TEST_F(RunToolTest, TwoModifiedEmittersOfOneNameEndInTheExceptionBox)
{
    // An emitter's name is its file's without the extension.
    for (const char *name : {"game/Art/Models/fire.VRO", "game/Art/Models/fire.vro"}) {
        directory.Write(name, "");
        Write_Emitter(directory / name, {Plain_Layer()});
    }
    Run([](HeadlessMainForm &form) {
        form.Click_Browse();
        form.Click_Scan();
        ASSERT_EQ(form.Get_Particle_Data_Source().Get_Count(), 2);
        form.Get_Particle_Grid_View().Select_All();
        form.Edit_Current("GlobalLOD", "1");
        FAIL() << "the edit came back";
    });
    EXPECT_THAT(Last_Text(),
                testing::AllOf(testing::StartsWith("Exception: "), HasSubstr("/fire.VRO"), HasSubstr("/fire.vro")));
}

TEST_F(RunToolTest, TheNextRunReadsWhatTheLastOneSaved)
{
    directory.Make_Directory("game/Art/Models");
    Write_Emitter(directory / "game/Art/Models/fire.vro", {Plain_Layer()});
    Run([](HeadlessMainForm &form) {
        form.Click_Browse();
        form.Click_Scan();
        EXPECT_TRUE(form.Edit_Current("MinimumDynamicLODPerThousandth", "250"));
        form.Click_Save();
        EXPECT_TRUE(form.Close());
    });
    application.Set_Picked_Folder(std::nullopt);
    Run([this](HeadlessMainForm &form) {
        EXPECT_EQ(form.Get_Current_Path(), directory / "game");
        form.Click_Scan();
        EXPECT_EQ(form.Get_Particle_Data_Source().Get_Row(0)->Get_MinimumDynamicLOD(), 0.25f);
    });
}

TEST(HeadlessGrid, PrintsItselfAsATable)
{
    Tool tool;
    tool.Add_Emitter("größe.vro", {Plain_Layer("a"), Plain_Layer("flames")});
    tool.Scan();
    tool.Select({1});
    ASSERT_TRUE(tool.form->Edit_Current("DynamicLODNearDistance", "12.5"));
    tool.Select({0});
    ASSERT_TRUE(tool.form->Edit_Current("DynamicLODNearDistance", "7"));
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "0"));
    EXPECT_EQ(tool.form->Get_Particle_Grid_View().Format(
                  {"EmitterName", "ParticleName", "Bogus", "DynamicLODNearDistance", "Modified"}),
              "  EmitterName ParticleName DynamicLODNearDistance Modified\n"
              "> größe       a                                 7 true\n"
              "  größe       flames                         12.5 true\n");
}

} // namespace
