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

/// Values that differ from the defaults in every field.
ApplicationSettings Make_Other_Settings()
{
    ApplicationSettings settings;
    settings.WorkingDirectory = "/art/Grün & <neu>/日本";
    settings.AutoCheckout = false;
    settings.ViewMode = 2;
    settings.RenderAxes = false;
    settings.RenderBackground = false;
    settings.BackgroundImageName = "sky \"1\".tga";
    settings.EnableHeat = false;
    settings.EnableBloom = false;
    settings.MainFormLocationSet = true;
    settings.MainFormMaximized = true;
    settings.MainFormLocation = {-8, 20};
    settings.MainFormSize = {1024, 768};
    settings.ViewFormLocationSet = true;
    settings.ViewFormMaximized = true;
    settings.ViewFormLocation = {2147483647, -2147483647 - 1};
    settings.ViewFormSize = {640, 480};
    return settings;
}

std::string Fields_Of(const ApplicationSettings &s)
{
    std::string text = s.WorkingDirectory + "|" + s.BackgroundImageName;
    text.append("|").append(std::to_string(s.ViewMode));
    for (const bool flag : {s.AutoCheckout, s.RenderAxes, s.RenderBackground, s.EnableHeat, s.EnableBloom,
                            s.MainFormLocationSet, s.MainFormMaximized, s.ViewFormLocationSet, s.ViewFormMaximized})
        text += flag ? "|1" : "|0";
    for (const int number : {s.MainFormLocation.X, s.MainFormLocation.Y, s.MainFormSize.Width, s.MainFormSize.Height,
                             s.ViewFormLocation.X, s.ViewFormLocation.Y, s.ViewFormSize.Width, s.ViewFormSize.Height})
        text.append("|").append(std::to_string(number));
    return text;
}

class ApplicationSettingsTest : public testing::Test
{
protected:
    ApplicationSettings Load(const std::string &text)
    {
        directory.Write(std::string("run/") + FILE_NAME, text);
        return ApplicationSettings::Load(FILE_NAME);
    }
    ApplicationSettings Load_Fields(const std::string &fields)
    {
        return Load("<?xml version=\"1.0\"?><ApplicationSettings>" + fields + "</ApplicationSettings>");
    }

    MKTest::Reports reports;
    TempDirectory directory;
    CurrentDirectory current{directory.Make_Directory("run")};
    HeadlessApplication application;
};

TEST_F(ApplicationSettingsTest, AMissingFileGivesTheDefaults)
{
    const ApplicationSettings settings = ApplicationSettings::Load(FILE_NAME);
    const std::string parent = std::filesystem::canonical(directory.Get_Path()).string();
    EXPECT_EQ(Fields_Of(settings), parent + "/||4|1|1|1|1|1|0|0|0|0|0|0|0|0|0|0|0|0");
    EXPECT_TRUE(application.Get_Message_Boxes().empty());
}

TEST_F(ApplicationSettingsTest, SavesTheShapeThatOtherToolsRead)
{
    Make_Other_Settings().Save(FILE_NAME);
    EXPECT_EQ(MKTest::Read_Text_File(FILE_NAME), R"(<?xml version="1.0" encoding="utf-8"?>
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
)");
}

TEST_F(ApplicationSettingsTest, ReadsBackWhatItSaved)
{
    ApplicationSettings settings = Make_Other_Settings();
    settings.Save(FILE_NAME);
    EXPECT_EQ(Fields_Of(ApplicationSettings::Load(FILE_NAME)), Fields_Of(settings));

    settings.WorkingDirectory = " a\rb\nc ";
    settings.BackgroundImageName = "";
    settings.Save(FILE_NAME);
    EXPECT_EQ(Fields_Of(ApplicationSettings::Load(FILE_NAME)), Fields_Of(settings));
}

TEST_F(ApplicationSettingsTest, AnAbsentElementLeavesItsDefault)
{
    const ApplicationSettings settings = Load_Fields(
        "<ViewMode> +1 </ViewMode><MainFormSize><Height>9</Height></MainFormSize><Unknown><X>3</X></Unknown>"
        "<EnableHeat>0</EnableHeat><ViewMode>3</ViewMode>");
    EXPECT_EQ(settings.ViewMode, 1);
    EXPECT_EQ(settings.MainFormSize, (Size{0, 9}));
    EXPECT_FALSE(settings.EnableHeat);
    EXPECT_TRUE(settings.EnableBloom);
    EXPECT_EQ(settings.MainFormLocation, Point{});
}

TEST_F(ApplicationSettingsTest, AnyDamageGivesAllDefaultsWithoutAMessage)
{
    const struct
    {
        const char *what;
        std::string text;
    } damaged[] = {
        {"empty file", ""},
        {"cut short", "<ApplicationSettings><ViewMode>1</ViewMode>"},
        {"another root", "<Settings><ViewMode>1</ViewMode></Settings>"},
        {"word for a number",
         "<ApplicationSettings><ViewMode>1</ViewMode><RenderAxes>no</RenderAxes></ApplicationSettings>"},
        {"number too large", "<ApplicationSettings><ViewMode>2147483648</ViewMode></ApplicationSettings>"},
        {"number with a fraction", "<ApplicationSettings><ViewMode>1.0</ViewMode></ApplicationSettings>"},
        {"Boolean in capitals",
         "<ApplicationSettings><ViewMode>1</ViewMode><EnableHeat>True</EnableHeat></ApplicationSettings>"},
        {"damage inside a size", "<ApplicationSettings><ViewMode>1</ViewMode><MainFormSize><Width>w</Width></"
                                 "MainFormSize></ApplicationSettings>"},
        {"entity bomb",
         "<!DOCTYPE a [<!ENTITY b \"bbbb\">]><ApplicationSettings><ViewMode>1</ViewMode></ApplicationSettings>"},
    };
    const std::string defaults = Fields_Of(ApplicationSettings());
    for (const auto &row : damaged) EXPECT_EQ(Fields_Of(Load(row.text)), defaults) << row.what;
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
