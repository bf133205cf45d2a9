#include "MKPlatform/Files.h"

#include "common/TempFiles.h"

#include <filesystem>
#include <gtest/gtest.h>

using MKPlatform::To_System_Path;
using MKTest::TempDirectory;

TEST(SystemPath, FindsComponentsInAnyCase)
{
    const TempDirectory directory;
    directory.Write("Art/Models/Fire.VRO", "x");
    const std::pair<const char *, const char *> cases[] = {
        {"aRT\\mODELS\\fIRE.vro", "Art/Models/Fire.VRO"},
        {"ART\\models\\Smoke.vro", "Art/Models/Smoke.vro"},
        {"Nowhere\\Models\\Fire.VRO", "Nowhere/Models/Fire.VRO"},
        {"art/./models/../MODELS/fire.vro", "Art/./Models/../Models/Fire.VRO"},
        {"art\\\\models\\", "Art//Models/"},
    };
    for (const auto &[engine, system] : cases) EXPECT_EQ(To_System_Path(directory / engine), directory / system);
}

TEST(SystemPath, AnExactNameWinsAndElseTheFirstByBytes)
{
    const TempDirectory directory;
    for (const char *name : {"fire.vro", "FIRE.vro", "Fire.vro"}) directory.Write(name, name);
    EXPECT_EQ(To_System_Path(directory / "Fire.vro"), directory / "Fire.vro");
    EXPECT_EQ(To_System_Path(directory / "fIRE.vro"), directory / "FIRE.vro"); // F is before f, I before i
}

TEST(SystemPath, ABackslashInsideOfANameIsFoundWhenNothingElseIs)
{
    const TempDirectory directory;
    directory.Write("odd\\name", "x");
    EXPECT_EQ(To_System_Path(directory / "odd\\name"), directory / "odd\\name");
    directory.Write("odd/name", "y");
    EXPECT_EQ(To_System_Path(directory / "odd\\name"), directory / "odd/name");
}

TEST(SystemPath, NamesBeyondAsciiMatchByBytes)
{
    const TempDirectory directory;
    directory.Write("\xc3\x84rger/Feuer\xff.vro", "x");
    EXPECT_EQ(To_System_Path(directory / "\xc3\x84RGER\\feuer\xff.VRO"), directory / "\xc3\x84rger/Feuer\xff.vro");
    EXPECT_EQ(To_System_Path(directory / "\xc3\xa4rger"), directory / "\xc3\xa4rger"); // not folded, not found
}

TEST(SystemPath, RelativeNamesCountFromTheCurrentDirectory)
{
    const TempDirectory directory;
    directory.Write("Data/List.xml", "x");
    const MKTest::CurrentDirectory here(directory.Get_Path());
    EXPECT_EQ(To_System_Path("DATA\\list.XML"), "Data/List.xml");
    EXPECT_EQ(MKPlatform::Absolute_Path("data\\..\\DATA\\.\\list.xml"),
              std::filesystem::canonical(directory.Get_Path()).string() + "/Data/List.xml");
}
