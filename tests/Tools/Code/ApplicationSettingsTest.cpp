#include "Code/ApplicationSettings.h"

#include "Headless/HeadlessApplication.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include <filesystem>
#include <gtest/gtest.h>

using MKTest::CurrentDirectory;
using MKTest::TempDirectory;

namespace
{

constexpr const char *FILE_NAME = "FlareTrimSettings.xml";

class ApplicationSettingsTest : public testing::Test
{
protected:
    ApplicationSettings Load(const std::string &text)
    {
        directory.Write(std::string("run/") + FILE_NAME, text);
        return ApplicationSettings::Load(FILE_NAME);
    }

    MKTest::Reports reports;
    TempDirectory directory;
    CurrentDirectory current{directory.Make_Directory("run")};
    HeadlessApplication application;
};

TEST_F(ApplicationSettingsTest, AMissingFileGivesTheDirectoryAbove)
{
    EXPECT_EQ(ApplicationSettings::Load(FILE_NAME).WorkingDirectory,
              std::filesystem::canonical(directory.Get_Path()).string() + "/");
    EXPECT_TRUE(application.Get_Message_Boxes().empty());
}

/// Each value differs from the default.
TEST_F(ApplicationSettingsTest, KeepsEveryFieldInTheShapeThatOtherToolsRead)
{
    const std::string text = R"(<?xml version="1.0" encoding="utf-8"?>
<ApplicationSettings xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema">
  <WorkingDirectory>/art/Grün &amp; &lt;neu&gt;/日本</WorkingDirectory>
  <AutoCheckout>false</AutoCheckout>
  <ViewMode>2</ViewMode>
  <RenderAxes>false</RenderAxes>
  <RenderBackground>false</RenderBackground>
  <BackgroundImageName>sky "1".tga</BackgroundImageName>
  <EnableHeat>false</EnableHeat>
  <EnableBloom>false</EnableBloom>
  <MainFormLocationSet>true</MainFormLocationSet>
  <MainFormMaximized>true</MainFormMaximized>
  <MainFormLocation>
    <X>-8</X>
    <Y>20</Y>
  </MainFormLocation>
  <MainFormSize>
    <Width>1024</Width>
    <Height>768</Height>
  </MainFormSize>
  <ViewFormLocationSet>true</ViewFormLocationSet>
  <ViewFormMaximized>true</ViewFormMaximized>
  <ViewFormLocation>
    <X>2147483647</X>
    <Y>-2147483648</Y>
  </ViewFormLocation>
  <ViewFormSize>
    <Width>640</Width>
    <Height>480</Height>
  </ViewFormSize>
</ApplicationSettings>
)";
    ApplicationSettings settings = Load(text);
    EXPECT_EQ(settings.WorkingDirectory, "/art/Grün & <neu>/日本");
    EXPECT_EQ(settings.ViewFormLocation, (Point{2147483647, -2147483647 - 1}));
    settings.Save("saved.xml");
    EXPECT_EQ(MKTest::Read_Text_File("saved.xml"), text);

    settings.WorkingDirectory = " a\rb\nc ";
    settings.Save(FILE_NAME);
    EXPECT_EQ(ApplicationSettings::Load(FILE_NAME).WorkingDirectory, settings.WorkingDirectory);
}

TEST_F(ApplicationSettingsTest, AnAbsentElementLeavesItsDefault)
{
    const ApplicationSettings settings =
        Load("<ApplicationSettings><ViewMode> +1 </ViewMode><MainFormSize><Height>9</Height></MainFormSize>"
             "<Unknown><X>3</X></Unknown><EnableHeat>0</EnableHeat><ViewMode>3</ViewMode></ApplicationSettings>");
    EXPECT_EQ(settings.ViewMode, 1);
    EXPECT_EQ(settings.MainFormSize, (Size{0, 9}));
    EXPECT_FALSE(settings.EnableHeat);
    EXPECT_TRUE(settings.EnableBloom);
}

TEST_F(ApplicationSettingsTest, AnyDamageGivesAllDefaultsWithoutAMessage)
{
    const char *const damaged[] = {
        "",
        "<ApplicationSettings><ViewMode>1</ViewMode>",
        "<Settings><ViewMode>1</ViewMode></Settings>",
        "<ApplicationSettings><ViewMode>1</ViewMode><RenderAxes>no</RenderAxes></ApplicationSettings>",
        "<ApplicationSettings><ViewMode>2147483648</ViewMode></ApplicationSettings>",
        "<!DOCTYPE a [<!ENTITY b \"bbbb\">]><ApplicationSettings><ViewMode>1</ViewMode></ApplicationSettings>",
    };
    for (const char *text : damaged) EXPECT_EQ(Load(text).ViewMode, 4) << text;
    EXPECT_TRUE(application.Get_Message_Boxes().empty());
}

TEST_F(ApplicationSettingsTest, TellsOfAFileThatCantBeWritten)
{
    std::filesystem::create_directory(FILE_NAME);
    ApplicationSettings().Save(FILE_NAME);
    ASSERT_EQ(application.Get_Message_Boxes().size(), 1u);
    EXPECT_EQ(application.Get_Message_Boxes()[0].Text, "Unable to save settings file FlareTrimSettings.xml!");
    EXPECT_TRUE(reports.Has_Log("FlareTrimSettings.xml can't be written"));
}

} // namespace
