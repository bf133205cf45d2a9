#include "MKPlatform/Files.h"

#include "common/TempFiles.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>

using namespace MKPlatform;
using MKTest::TempDirectory;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Directories, PatternsMatchWholeNames)
{
    const std::tuple<const char *, const char *, bool> cases[] = {
        {"FIRE.VRO", "*.vro", true},
        {"fire.vrox", "*.vro", false},
        {"fire", "*.*", true},
        {"fire.vro", "f??e.*", true},
        {"fie.vro", "f??e.*", false},
        {"aaac", "*a*b", false},
        {"", "*", true},
        {"", "?", false},
        {"\xc3\xa4.vro", "??.vro", true},
    };
    for (const auto &[name, pattern, matches] : cases) EXPECT_EQ(Name_Matches(name, pattern), matches) << name;
    // A pattern of many stars must not try all ways to share the name out.
    std::string stars;
    for (int i = 0; i < 200; ++i) stars += "*a";
    EXPECT_FALSE(Name_Matches(std::string(5000, 'a'), stars + "b"));
}

TEST(Directories, ListsAreSortedAndOfOneKind)
{
    const TempDirectory directory;
    for (const char *name : {"b.vro", "a.vro", "C.VRO", "d.txt", "sub.vro/inner.vro"}) directory.Write(name, "x");
    std::filesystem::create_symlink("a.vro", directory / "link.vro");
    std::filesystem::create_symlink("nowhere", directory / "broken.vro");
    std::vector<std::string> names;
    ASSERT_TRUE(List_Files(directory.Get_Path(), "*.vro", names));
    EXPECT_THAT(names, ElementsAre("C.VRO", "a.vro", "b.vro", "link.vro"));
    ASSERT_TRUE(List_Directories(directory.Get_Path(), names));
    EXPECT_THAT(names, ElementsAre("sub.vro"));
}

TEST(Directories, AMissingDirectoryIsNamed)
{
    const TempDirectory directory;
    std::vector<std::string> names = {"stale"};
    std::string error;
    EXPECT_FALSE(List_Files(directory / "none", "*", names, &error));
    EXPECT_TRUE(names.empty());
    EXPECT_THAT(error, HasSubstr(directory / "none"));
    EXPECT_TRUE(Directory_Exists(directory.Get_Path()) && !File_Exists(directory.Get_Path()));
}
