#include "MKPlatform/Processes.h"

#include "common/TempFiles.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace MKPlatform;
using namespace MKTest;

namespace
{

/// A directory with a program "tool" on PATH that writes its arguments, one a line, and its directory's name.
class Processes : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string tool = Directory.Write(
            "bin/tool", "#!/bin/sh\n"
                        "for word in \"$@\"; do printf '<%s>\\n' \"$word\"; done > '" +
                            (Directory / "out") + "'\npwd -P > '" + (Directory / "where") +
                            "'\nls /proc/self/fd | wc -l > '" + (Directory / "handles") + "'\nexit 3\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        Path = getenv("PATH");
        setenv("PATH", (Directory / "bin:" + Path).c_str(), 1);
    }
    void TearDown() override { setenv("PATH", Path.c_str(), 1); }

    TempDirectory Directory;
    std::string Path;
};

} // namespace

TEST_F(Processes, WordsAreSplitWithoutAShell)
{
    const std::pair<const char *, const char *> cases[] = {
        {"tool", ""},
        {"tool edit \"C:\\My Art\\fire.vro\"", "<edit>\n<C:\\My Art\\fire.vro>\n"},
        {"  tool   a\tb  ", "<a>\n<b>\n"},
        {"tool \"\" x", "<>\n<x>\n"},
        {"tool a\"b c\"d", "<ab cd>\n"},
        {"tool \\\"quoted\\\"", "<\"quoted\">\n"},
        {"tool \"ends\\\\\" next", "<ends\\>\n<next>\n"},
        {"tool \"never closed", "<never closed>\n"},
        {"tool $HOME `x`;*|&>", "<$HOME>\n<`x`;*|&>>\n"},
        {"tool \xc3\xa4\xff", "<\xc3\xa4\xff>\n"},
    };
    for (const auto &[line, output] : cases) {
        EXPECT_TRUE(Run_And_Wait(line, "")); // the exit code, 3, is not looked at
        EXPECT_EQ(Read_Text_File(Directory / "out"), output) << line;
    }
}

TEST_F(Processes, AProgramThatCannotStartIsTold)
{
    Directory.Write("bin/plain", "not executable");
    EXPECT_FALSE(Run_And_Wait("no-such-program-anywhere", ""));
    EXPECT_FALSE(Run_And_Wait("plain", ""));
    EXPECT_FALSE(Run_And_Wait("tool", Directory / "none"));
    EXPECT_FALSE(Run_And_Wait("   ", ""));
    EXPECT_FALSE(Run_And_Wait(std::string_view("tool\0x", 6), ""));
}

TEST_F(Processes, RunsInTheDirectoryGivenWithoutOurFileHandles)
{
    const std::string sub = Directory.Make_Directory("Art/Models");
    EXPECT_TRUE(Run_And_Wait("tool", Directory / "art\\models"));
    EXPECT_EQ(Read_Text_File(Directory / "where"), std::filesystem::canonical(sub).string() + "\n");
    const std::string before = Read_Text_File(Directory / "handles");
    const int leaky = open("/dev/null", O_RDONLY); // as a library would, without O_CLOEXEC
    EXPECT_TRUE(Run_And_Wait("tool", ""));
    close(leaky);
    EXPECT_EQ(Read_Text_File(Directory / "handles"), before);
}
