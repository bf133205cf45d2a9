#include "Code/ParticleData.h"
#include "Tools/Code/FakeP4.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace
{

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

    Tool tool;
    std::string fire = tool.Model_Path("fire.vro");
    std::string smoke = tool.Model_Path("smoke.vro");
};

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

TEST_F(Saving, ANameWithAQuoteIsOneWordToP4)
{
    const std::string path = tool.Model_Path("a \" -f \"b.vro");
    Write_Emitter(path, {Plain_Layer()});
    tool.Scan();
    const FakeP4 p4(tool.directory, MAKE_WRITABLE);
    Edit({0});
    Set_Read_Only(path, true);
    tool.form->Click_Save();
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

TEST_F(Saving, SaveAllKeepsWhatFailed)
{
    Edit({0, 2});
    fs::remove(fire);
    EXPECT_TRUE(tool.form->Click_Save_All());
    EXPECT_THAT(tool.Box_Texts(), ElementsAre("File not found!"));
    EXPECT_TRUE(tool.reports.Has_Log(fire + ": File not found!"));
    EXPECT_EQ(Read_Level(smoke), 1);
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire"));

    Write_Emitter(fire, {Plain_Layer()});
    EXPECT_TRUE(tool.form->Click_Save_All());
    EXPECT_EQ(Read_Level(fire), 1);
    EXPECT_THAT(tool.Modified_Names(), IsEmpty());
    EXPECT_FALSE(tool.form->Is_Save_All_Button_Enabled());
}

} // namespace
