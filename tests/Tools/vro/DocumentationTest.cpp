#include "Tools/vro/VroProgram.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>

using MKTest::Read_Text_File;

namespace
{

std::set<std::string> Matches(const std::string &text, const std::string &pattern)
{
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        found.insert((*match)[1]);
    return found;
}

std::set<std::string> Long_Options(const std::string &text)
{
    return Matches(text, "(--[a-z][a-z-]*)");
}

/// The page without the marks of its format.
std::string Manual_Page()
{
    std::string text = Read_Text_File(PROJECT_ROOT "/docs/man/vro.1");
    return std::regex_replace(text, std::regex("\\\\-"), "-");
}

} // namespace

TEST(Documentation, ManualAndCompletionKnowEveryOptionAndNoOther)
{
    const vroTest::Workshop shop;
    const std::string top = shop.Vro({"--help"}).Out;
    const std::set<std::string> commands = Matches(top.substr(top.find("Subcommands:")), "\n  ([a-z]+) ");
    ASSERT_EQ(commands.size(), 11u) << top;
    std::set<std::string> options = Long_Options(top);
    for (const std::string &command : commands) options.merge(Long_Options(shop.Vro({command, "--help"}).Out));
    ASSERT_TRUE(options.contains("--convert-to-heat"));

    const std::string completion = Read_Text_File(PROJECT_ROOT "/completions/vro.bash");
    EXPECT_EQ(Long_Options(Manual_Page()), options);
    EXPECT_EQ(Long_Options(completion), options);
    const std::string manual = Manual_Page();
    for (const std::string &command : commands) {
        EXPECT_TRUE(std::regex_search(manual, std::regex("\n\\.B[IR]? \"?" + command + " "))) << command;
        EXPECT_TRUE(std::regex_search(completion, std::regex("commands='[a-z ]*\\b" + command + "\\b"))) << command;
    }
}

/// What to do about a failure: run scripts/plugin-reference.
TEST(Documentation, ThePluginReferenceIsTheEnginesOwn)
{
    const vroTest::Workshop shop;
    const std::string page = shop.Directory / "reference.md";
    ASSERT_EQ(std::system((std::string(SAMPLE_MAKER) + " reference '" + page + "'").c_str()), 0);
    EXPECT_EQ(Read_Text_File(page), Read_Text_File(PROJECT_ROOT "/docs/plugin-reference.md"));
}
