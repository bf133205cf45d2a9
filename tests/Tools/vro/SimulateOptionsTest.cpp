#include "vro/Commands.h"

#include "Tools/vro/VroProgram.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::IsEmpty;

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
        {{"--dt", "nan"}, "--dt: expected a finite number, found \"nan\""},
        {{"--report", "11"}, "--report: frame 11 is beyond the end, expected at most 10"},
        {{"--channels", "Position,Colour"},
         "no channel \"Colour\"; there are ProjectileStartingPosition, PreviousPosition"},
        {{"--quality", "1.1"}, "--quality: expected 0 to 1, found \"1.1\""},
        {{"--camera", "1,2"}, "--camera: expected X,Y,Z, three finite numbers, found \"1,2\""},
        {{"--hide", "2", "--show", "2"}, "frame 2 is to be hidden and shown"},
        {{"--spawn", "5:1", "--spawn", "5:2"}, "--spawn: frame 5 stands twice"},
        {{"--target-velocity", "1,0,0"}, "--target-velocity: there is no --target"},
        {{"--dynamic", "0=1"}, "--dynamic: expected a whole number of 1 to 15, found \"0\""},
        {{"--terrain", "hills.png"}, "--terrain: expected a height or PICTURE:SIZE_X,SIZE_Y,HEIGHT"},
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
