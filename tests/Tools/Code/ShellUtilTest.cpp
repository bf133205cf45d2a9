#include "Code/ShellUtil.h"

#include "Code/ManagedUtility.h"
#include "Headless/HeadlessApplication.h"
#include "common/TempFiles.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace
{

TEST(ShellUtil, NewCharStringKeepsTheLowByteOfEachUnit)
{
    // U+00E9, U+0141, and U+1F525 as the pair D83D DD25.
    EXPECT_STREQ(ShellUtil::New_Char_String("a\u00e9\u0141\U0001f525").get(), "a\xe9\x41\x3d\x25");
    EXPECT_STREQ(ShellUtil::New_Char_String("").get(), "");
    // Bytes that are no UTF-8 stand for themselves.
    EXPECT_STREQ(ShellUtil::New_Char_String("\xff\xc3").get(), "\xff\xc3");
    EXPECT_EQ(ShellUtil::New_Std_String("a\u00e9"), "a\u00e9");
}

TEST(ShellUtil, CommandOnFileKeepsAnyNameOneWord)
{
    EXPECT_EQ(ShellUtil::Command_On_File("p4 edit", "/a b/c.vro"), "p4 edit \"/a b/c.vro\"");
    EXPECT_EQ(ShellUtil::Command_On_File("p4 edit", "a\" -f \"b"), "p4 edit \"a\\\" -f \\\"b\"");
    EXPECT_EQ(ShellUtil::Command_On_File("p4 edit", "a\\\"b\\"), "p4 edit \"a\\\\\\\"b\\\\\"");
}

class ShellUtilFiles : public testing::Test
{
protected:
    std::vector<int> Find(const std::string &text, bool caseSensitive, bool wholeWord, bool wordStart,
                          bool regex = false)
    {
        std::vector<ShellUtil::FindInFileEntry> results;
        ShellUtil::Find_In_File(path, text, caseSensitive, wholeWord, wordStart, regex, results);
        std::vector<int> lines;
        for (const ShellUtil::FindInFileEntry &entry : results) lines.push_back(entry.LineNumber);
        return lines;
    }

    MKTest::TempDirectory directory;
    HeadlessApplication application;
    std::string path;
};

TEST_F(ShellUtilFiles, FindInFile)
{
    path = directory.Write("text", "Fire\n"       // 1
                                   "campfire\r\n" // 2: a letter in front
                                   "fire!x\r"     // 3: an identifier one past the character behind
                                   "fires\n"      // 4: only the character right behind, which isn't looked at
                                   "x fire\n"     // 5
                                   "xfire fire\n" // 6: only the first occurrence is tested
                                   "fire__\n");   // 7
    EXPECT_THAT(Find("FIRE", false, false, false), ElementsAre(1, 2, 3, 4, 5, 6, 7));
    EXPECT_THAT(Find("Fire", true, false, false), ElementsAre(1));
    EXPECT_THAT(Find("fire", true, false, true), ElementsAre(3, 4, 5, 7));
    EXPECT_THAT(Find("fire", true, true, false), ElementsAre(4, 5));
    EXPECT_THAT(Find("^FIRE.?$", false, false, false, true), ElementsAre(1, 4));
    EXPECT_TRUE(Find("water", false, false, false).empty());
    std::vector<ShellUtil::FindInFileEntry> results;
    ShellUtil::Find_In_File(path, "CAMP", false, false, false, false, results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].LineText, "campfire");
    EXPECT_EQ(results[0].FileName, path);
    EXPECT_TRUE(application.Get_Message_Boxes().empty());
}

TEST_F(ShellUtilFiles, FindInFileTellsOfWhatItCantDo)
{
    path = directory / "missing";
    EXPECT_TRUE(Find("a", false, false, false).empty());
    path = directory.Write("text", "a\n");
    EXPECT_TRUE(Find("(", false, false, false, true).empty());
    ASSERT_EQ(application.Get_Message_Boxes().size(), 2u);
    for (const ShownMessageBox &box : application.Get_Message_Boxes()) EXPECT_EQ(box.Caption, "Error...");
    EXPECT_THAT(application.Get_Message_Boxes()[0].Text, testing::HasSubstr("No such file"));
}

TEST_F(ShellUtilFiles, ALongLineDoesntOverflowTheRegex)
{
    path = directory.Write("text", std::string(200000, 'a') + "b\n");
    EXPECT_THAT(Find("^(a|c)*b$", true, false, false, true), ElementsAre(1));
}

TEST_F(ShellUtilFiles, RecursiveSearchListsALevelAheadOfTheNextAndFollowsLinksButNotBack)
{
    for (const char *name :
         {"art/b.vro", "art/a.VRO", "art/c.txt", "art/sub/d.vro", "art/sub/deep/e.vro", "art/x/f.vro", "other/g.vro"})
        directory.Write(name, "");
    // With two ways back a search that took them would double at each level.
    std::filesystem::create_directory_symlink(directory / "art", directory / "art/sub/loop");
    std::filesystem::create_directory_symlink(directory / "art/sub", directory / "art/sub/self");
    std::filesystem::create_directory_symlink(directory / "other", directory / "art/sub/there");
    std::vector<std::string> list = {"first"};
    ShellUtil::Recursive_Search_For_Files(directory / "art", "*.vro", list);
    EXPECT_THAT(list, ElementsAre("first", directory / "art/a.VRO", directory / "art/b.vro",
                                  directory / "art/sub/d.vro", directory / "art/sub/deep/e.vro",
                                  directory / "art/sub/there/g.vro", directory / "art/x/f.vro"));
}

TEST_F(ShellUtilFiles, CommandsRunWhereTheyAreTold)
{
    const std::string there = directory.Make_Directory("da");
    EXPECT_TRUE(ShellUtil::Execute_Command("touch one", there.c_str()));
    EXPECT_TRUE(ManagedUtility::Cmd::Execute_Command("touch \"größe zwei\"", there.c_str()));
    EXPECT_TRUE(std::filesystem::exists(there + "/one"));
    EXPECT_TRUE(std::filesystem::exists(there + "/größe zwei"));
    EXPECT_TRUE(ManagedUtility::Cmd::Execute_Command("false", nullptr)); // what it answers isn't looked at
    EXPECT_FALSE(ManagedUtility::Cmd::Execute_Command("no-such-program-here", nullptr));
    EXPECT_FALSE(ShellUtil::Execute_Command("no-such-program-here", nullptr));
}

} // namespace
