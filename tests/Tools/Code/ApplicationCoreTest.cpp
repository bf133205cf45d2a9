#include "Code/ApplicationCore.h"

#include "Code/ParticleData.h"
#include "Code/RunTool.h"
#include "Tools/Code/ToolFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::HasSubstr;

namespace
{

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

} // namespace
