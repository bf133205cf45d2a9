#include "vro/SimulateOptions.h"

#include "vro/Commands.h"

#include "Tools/vro/VroProgram.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using vro::SimulateOptions;

TEST(SimulateOptions, TextsBecomeValues)
{
    SimulateOptions options;
    EXPECT_EQ(vro::Parse_Frames("90", options), "");
    EXPECT_EQ(options.Frames, 90);
    EXPECT_EQ(vro::Parse_Step("+0.5", options), "");
    EXPECT_EQ(options.StepSeconds, 0.5f);
    EXPECT_EQ(vro::Parse_Channels("dUV,Age", options), "");
    EXPECT_THAT(options.Channels, ElementsAre(MKP_DUV, MKP_AGE));
    EXPECT_EQ(vro::Parse_Vector("-1,2.5,3e2", options.Position), "");
    EXPECT_EQ(options.Position, Vector3(-1.0f, 2.5f, 300.0f));
    EXPECT_EQ(vro::Parse_Spawn("3:20", options), "");
    EXPECT_EQ(options.Spawns.at(3), 20);
    EXPECT_EQ(vro::Parse_Dynamic("15=-2", options), "");
    EXPECT_EQ(options.Dynamic.at(15), -2.0f);
    EXPECT_EQ(vro::Parse_Terrain("-3.5", options), "");
    EXPECT_EQ(std::get<float>(options.Terrain), -3.5f);
    EXPECT_EQ(vro::Parse_Terrain("a:b.png:10,20,-30", options), "");
    const auto &picture = std::get<vro::PictureTerrain>(options.Terrain);
    EXPECT_EQ(picture.Path, "a:b.png");
    EXPECT_EQ(Vector3(picture.SizeX, picture.SizeY, picture.Height), Vector3(10.0f, 20.0f, -30.0f));
    EXPECT_EQ(vro::Check_Options(options), "");
}

TEST(SimulateOptions, ReportedFramesAreTheLastUnlessTold)
{
    const struct
    {
        const char *text;
        std::vector<int> frames;
    } rows[] = {{nullptr, {4}}, {"last", {4}}, {"all", {1, 2, 3, 4}}, {"3,1,3", {1, 3}}};
    for (const auto &row : rows) {
        SimulateOptions options;
        options.Frames = 4;
        const std::string fault = row.text ? vro::Parse_Report(row.text, options) : "";
        EXPECT_EQ(fault, "");
        std::vector<int> reported;
        for (int frame = 1; frame <= 4; ++frame)
            if (options.Is_Reported(frame)) reported.push_back(frame);
        EXPECT_EQ(reported, row.frames) << (row.text ? row.text : "untold");
    }
}

TEST(SimulateOptions, WrongUsageIsToldInClearWords)
{
    const vroTest::Workshop shop;
    shop.Build("a.vro", vroTest::Group_Json({vroTest::Layer_Json("flames", R"({"name": "Billboard"})")}));
    const struct
    {
        std::vector<std::string> options; ///< beside ten frames of a tenth of a second, unless these stand there
        const char *said;
    } rows[] = {
        {{"--frames", "0"}, "--frames: expected a whole number of 1 to 10000000, found \"0\""},
        {{"--frames", "99999999999999"}, "--frames: expected a whole number"},
        {{"--dt", "-0.1"}, "--dt: expected at least 0, found \"-0.1\""},
        {{"--dt", "nan"}, "--dt: expected a finite number, found \"nan\""},
        {{"--dt", "1e60"}, "--dt: expected a finite number"},
        {{"--report", "11"}, "--report: frame 11 is beyond the end, expected at most 10"},
        {{"--report", "0"}, "--report: expected all, last or frame numbers"},
        {{"--channels", "Position,Colour"},
         "no channel \"Colour\"; there are ProjectileStartingPosition, PreviousPosition"},
        {{"--channels", "Age,Age"}, "channel \"Age\" stands twice"},
        {{"--quality", "1.1"}, "--quality: expected 0 to 1, found \"1.1\""},
        {{"--camera", "1,2"}, "--camera: expected X,Y,Z, three finite numbers, found \"1,2\""},
        {{"--position", "1,2,nan"}, "--position: expected X,Y,Z"},
        {{"--scale", "-1"}, "--scale: expected at least 0"},
        {{"--alt-index", "-2"}, "--alt-index: expected a whole number of -1"},
        {{"--hide", "2", "--show", "2"}, "frame 2 is to be hidden and shown"},
        {{"--spawn", "5"}, "--spawn: expected FRAME:COUNT, found \"5\""},
        {{"--spawn", "5:1", "--spawn", "5:2"}, "--spawn: frame 5 stands twice"},
        {{"--target-velocity", "1,0,0"}, "--target-velocity: there is no --target"},
        {{"--dynamic", "0=1"}, "--dynamic: expected a whole number of 1 to 15, found \"0\""},
        {{"--dynamic", "1"}, "--dynamic: expected 1..15=VALUE, found \"1\""},
        {{"--dynamic", "1=1", "--dynamic", "1=2"}, "--dynamic: parameter 1 stands twice"},
        {{"--terrain", "nan"}, "--terrain: expected a finite height, found \"nan\""},
        {{"--terrain", "hills.png"}, "--terrain: expected a height or PICTURE:SIZE_X,SIZE_Y,HEIGHT"},
        {{"--terrain", "hills.png:1,2"}, "--terrain: expected three finite numbers behind the picture"},
        {{"--terrain", "hills.png:0,2,3"}, "--terrain: the picture's sizes must be above 0"},
    };
    for (const auto &row : rows) {
        std::vector<std::string> line = {"simulate", "a.vro"};
        if (row.options[0] != "--frames") line.insert(line.end(), {"--frames", "10"});
        if (row.options[0] != "--dt") line.insert(line.end(), {"--dt", "0.1"});
        line.insert(line.end(), row.options.begin(), row.options.end());
        const vroTest::Outcome outcome = shop.Vro(line);
        const std::string what = testing::PrintToString(row.options);
        EXPECT_EQ(outcome.Code, vro::EXIT_BAD_USAGE) << what;
        EXPECT_THAT(outcome.Out, IsEmpty()) << what;
        EXPECT_THAT(outcome.Err, HasSubstr(row.said)) << what;
    }
}
