#include "vro/OutputFile.h"

#include "common/TempFiles.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fs = std::filesystem;
using MKTest::Read_Text_File;
using MKTest::TempDirectory;
using vro::Write_Output;

namespace
{

size_t Count_Entries(const TempDirectory &directory)
{
    return static_cast<size_t>(std::distance(fs::directory_iterator(directory.Get_Path()), fs::directory_iterator()));
}

} // namespace

TEST(OutputFile, ReplacesTheTargetAndLeavesNothingBeside)
{
    const TempDirectory directory;
    const std::string path = directory.Write("effect.vro", "before");
    ::chmod(path.c_str(), 0640);
    std::string error;
    ASSERT_TRUE(Write_Output(path, "after", error)) << error;
    EXPECT_EQ(Read_Text_File(path), "after");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    EXPECT_EQ(Count_Entries(directory), 1u);
}

TEST(OutputFile, WritesThroughLinksAndKeepsThem)
{
    const TempDirectory directory;
    const std::string target = directory.Write("deep/effect.vro", "before");
    fs::create_symlink("deep/effect.vro", directory / "near");
    fs::create_symlink(directory / "near", directory / "far");
    fs::create_symlink("deep/new.vro", directory / "dangling");
    std::string error;
    ASSERT_TRUE(Write_Output(directory / "far", "after", error)) << error;
    ASSERT_TRUE(Write_Output(directory / "dangling", "new", error)) << error;
    EXPECT_EQ(Read_Text_File(target), "after");
    EXPECT_EQ(Read_Text_File(directory / "deep/new.vro"), "new");
    for (const char *link : {"near", "far", "dangling"}) EXPECT_TRUE(fs::is_symlink(directory / link)) << link;
}

TEST(OutputFile, TellsWhyATargetCannotBeWritten)
{
    const TempDirectory directory;
    directory.Make_Directory("folder");
    fs::create_symlink("loop", directory / "loop");
    ::chmod(directory.Write("locked", "before").c_str(), 0444);
    const struct
    {
        std::string path, reason;
    } targets[] = {
        {directory / "folder", "Is a directory"},
        {directory / "missing/effect.vro", "No such file or directory"},
        {directory / "locked", "the file is read-only"},
        {directory / "loop", "Too many levels of symbolic links"},
        {"/dev/full", "No space left on device"},
    };
    for (const auto &target : targets) {
        std::string error;
        EXPECT_FALSE(Write_Output(target.path, "content", error)) << target.path;
        EXPECT_EQ(error, target.reason) << target.path;
    }
    EXPECT_EQ(Read_Text_File(directory / "locked"), "before");
    EXPECT_EQ(Count_Entries(directory), 3u);
}

TEST(OutputFile, TakesANameAsLongAsTheSystemDoes)
{
    const TempDirectory directory;
    std::string error;
    EXPECT_TRUE(Write_Output(directory / std::string(255, 'x'), "content", error)) << error;
    EXPECT_FALSE(Write_Output(directory / std::string(256, 'x'), "content", error));
    EXPECT_EQ(error, "File name too long");
}
