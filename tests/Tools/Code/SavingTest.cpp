#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Tools/Code/FakeP4.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace
{

constexpr const char *CHECKOUT_TEXT =
    "Unable to check out file.\nMake sure that it has been added to Perforce and is checked out, or that the Read-only "
    "tag hasn't been set in Windows.";

/// Rows 0 and 1 belong to "fire", row 2 to "smoke".
class Saving : public testing::Test
{
protected:
    Saving()
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("a"), Plain_Layer("b")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("c")});
        tool.Scan();
    }

    void Edit(std::vector<int> rows, const char *level = "1")
    {
        tool.Select(std::move(rows));
        ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", level));
    }
    void Save_With(bool autoCheckout)
    {
        tool.form->Check_Auto_Checkout(autoCheckout);
        tool.form->Click_Save();
    }

    Tool tool;
    std::string fire = tool.Model_Path("fire.vro");
    std::string smoke = tool.Model_Path("smoke.vro");
};

TEST_F(Saving, AWritableFileSavesWithNeitherQuestionNorP4)
{
    for (const bool autoCheckout : {false, true}) {
        const FakeP4 p4(tool.directory, MAKE_WRITABLE);
        Edit({0}, autoCheckout ? "1" : "2");
        Save_With(autoCheckout);
        EXPECT_EQ(Read_Level(fire), autoCheckout ? 1 : 2);
        EXPECT_EQ(p4.Calls(), "");
        EXPECT_THAT(tool.Box_Texts(), IsEmpty());
        EXPECT_THAT(tool.Modified_Names(), IsEmpty());
        EXPECT_FALSE(tool.form->Is_Save_All_Button_Enabled());
    }
}

TEST_F(Saving, TheFileIsZlibWhateverItWasAndKeepsNothingUnknown)
{
    const MKTest::Bytes before = MKTest::Read_Whole_File(fire);
    Edit({0});
    tool.form->Click_Save();
    const MKTest::Bytes once = MKTest::Read_Whole_File(fire);
    EXPECT_EQ(once[0], before[0]);
    // The same state gives the same bytes, with nothing of the old file behind them.
    MKTest::Bytes padded = once;
    padded.resize(padded.size() + 5000, 0xaa);
    MKTest::Write_Whole_File(fire, padded);
    Edit({0});
    tool.form->Click_Save();
    EXPECT_EQ(MKTest::Read_Whole_File(fire), once);
}

TEST_F(Saving, WithoutAutoCheckoutAQuestionComesFirst)
{
    const FakeP4 p4(tool.directory, MAKE_WRITABLE);
    Edit({0});
    Set_Read_Only(fire, true);
    Save_With(false);
    EXPECT_THAT(tool.Box_Texts(), ElementsAre("Checkout 'fire' from perforce?"));
    EXPECT_EQ(p4.Calls(), "");
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire"));

    tool.application.Set_Message_Box_Policy(HeadlessApplication::Accept());
    tool.form->Click_Save();
    EXPECT_EQ(Read_Level(fire), 1);
    EXPECT_THAT(tool.Modified_Names(), IsEmpty());
}

TEST_F(Saving, AFailingP4AsksUntilItWorksOrIsCancelled)
{
    const FakeP4 p4(tool.directory, "[ -e \"$2.second\" ] && chmod u+w \"$2\"\ntouch \"$2.second\"\n");
    Edit({0});
    Set_Read_Only(fire, true);
    tool.application.Set_Message_Box_Policy(HeadlessApplication::Accept());
    Save_With(true);
    ASSERT_THAT(tool.Box_Texts(), ElementsAre(CHECKOUT_TEXT));
    EXPECT_EQ(Read_Level(fire), 1);
}

TEST_F(Saving, CancelLeavesEverythingAsItWas)
{
    const MKTest::Bytes before = MKTest::Read_Whole_File(fire);
    for (const char *what : {"failing", "missing"}) {
        std::unique_ptr<FakeP4> p4;
        if (std::string(what) == "failing") p4 = std::make_unique<FakeP4>(tool.directory, REFUSE);
        Edit({0});
        Set_Read_Only(fire, true);
        tool.application.Clear_Message_Boxes();
        tool.application.Set_Message_Box_Policy(HeadlessApplication::Accept());
        Save_With(true);
        EXPECT_THAT(tool.Box_Texts(), ElementsAre(CHECKOUT_TEXT, CHECKOUT_TEXT)) << what;
        EXPECT_EQ(MKTest::Read_Whole_File(fire), before) << what;
        EXPECT_TRUE(tool.Row(0).Get_Modified()) << what;
        EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire")) << what;
        EXPECT_TRUE(tool.reports.Has_Log(fire + ": it is read-only")) << what;
    }
}

TEST_F(Saving, ANameWithAQuoteIsOneWordToP4)
{
    const std::string path = tool.Model_Path("a \" -f \"b.vro");
    Write_Emitter(path, {Plain_Layer()});
    tool.Scan();
    const FakeP4 p4(tool.directory, MAKE_WRITABLE);
    Edit({0});
    Set_Read_Only(path, true);
    Save_With(true);
    EXPECT_EQ(p4.Calls(), "[edit][" + path + "]\n");
    EXPECT_EQ(Read_Level(path), 1);
}

TEST_F(Saving, AFileWhoseNamesakeIsLeftIsGoneAllTheSame)
{
    const std::string namesake = tool.directory.Write("game/Art/Models/FIRE.vro", "another file");
    Edit({0});
    fs::remove(fire);
    tool.form->Click_Save();
    EXPECT_THAT(tool.Box_Texts(), ElementsAre("File not found!"));
    EXPECT_EQ(MKTest::Read_Text_File(namesake), "another file");
}

TEST_F(Saving, AFullDiskReportsWhatTheEmitterSaysAndLogsTheFile)
{
    Edit({0});
    // No file may grow beyond 64 bytes: the header goes through, and little of the tree.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{64, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    tool.form->Click_Save();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_LE(fs::file_size(fire), 64u);
    EXPECT_THAT(tool.Box_Texts(), IsEmpty());
    EXPECT_THAT(tool.Modified_Names(), IsEmpty());
    EXPECT_TRUE(tool.reports.Has_Log(fire + ": the file could not be written in full")) << tool.reports.Get_Text();
    EXPECT_TRUE(tool.reports.Has_Log("could be written to " + fire + ": File too large"));
}

TEST_F(Saving, AnUnmodifiedRowEndsTheWholeHandler)
{
    Edit({2});
    const int refreshes = tool.form->Get_Particle_Grid_View().Get_Refresh_Count();
    tool.Select({0, 2}); // row 0 isn't modified
    tool.form->Click_Save();
    EXPECT_NE(Read_Level(smoke), 1);
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("smoke"));
    EXPECT_EQ(tool.form->Get_Particle_Grid_View().Get_Refresh_Count(), refreshes);
}

TEST_F(Saving, TheSecondRowOfASavedEmitterEndsTheHandler)
{
    Edit({0, 1, 2});
    tool.form->Click_Save();
    EXPECT_EQ(Read_Level(fire), 1);
    EXPECT_NE(Read_Level(smoke), 1);
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("smoke"));
}

TEST_F(Saving, SaveAllKeepsWhatFailed)
{
    Edit({0, 2});
    fs::remove(fire);
    EXPECT_TRUE(tool.form->Click_Save_All());
    EXPECT_THAT(tool.Box_Texts(), ElementsAre("File not found!"));
    EXPECT_TRUE(tool.reports.Has_Log(fire + ": File not found!"));
    EXPECT_EQ(Read_Level(smoke), 1);
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire"));
    EXPECT_TRUE(tool.form->Is_Save_All_Button_Enabled());

    Write_Emitter(fire, {Plain_Layer()});
    EXPECT_TRUE(tool.form->Click_Save_All());
    EXPECT_EQ(Read_Level(fire), 1);
    EXPECT_THAT(tool.Modified_Names(), IsEmpty());
    EXPECT_FALSE(tool.form->Is_Save_All_Button_Enabled());
}

} // namespace
