#include "vro/RenderOptions.h"

#include "vro/Commands.h"

#include "Tools/vro/VroProgram.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using vro::RenderOptions;

TEST(RenderOptions, WhatIsDrawnFollowsTheOutput)
{
    const struct
    {
        const char *output;
        int sheetColumns, every;
        int drawn; ///< of 60 frames
        int width;
    } rows[] = {
        {"last.png", 0, 0, 1, 640}, {"frames", 0, 0, 60, 640},    {"frames", 0, 7, 8, 640},   {"-", 0, 0, 1, 640},
        {"sheet", 4, 0, 12, 320},   {"sheet.PNG", 4, 30, 2, 320}, {"sheet", 100, 0, 60, 320},
    };
    for (const auto &row : rows) {
        RenderOptions options;
        options.Output = row.output;
        options.SheetColumns = row.sheetColumns;
        options.Every = row.every;
        ASSERT_EQ(vro::Complete_Options(options), "") << row.output;
        int drawn = 0;
        for (int frame = 1; frame <= options.Frames; ++frame) drawn += options.Is_Drawn(frame) ? 1 : 0;
        EXPECT_EQ(drawn, row.drawn) << row.output << " " << row.sheetColumns;
        EXPECT_EQ(options.Width, row.width) << row.output;
        EXPECT_TRUE(row.drawn != 1 || options.Is_Drawn(60)) << row.output;
    }
}

TEST(RenderOptions, WrongUsageIsToldInClearWords)
{
    const vroTest::Workshop shop;
    const struct
    {
        std::vector<std::string> options;
        const char *said;
    } rows[] = {
        {{}, "-o is required"},
        {{"-o", "x", "--size", "640"}, "--size: expected WIDTHxHEIGHT, each 1 to 8192, found \"640\""},
        {{"-o", "x", "--every", "61"}, "--every: expected at most the 60 frames that there are, found 61"},
        {{"-o", "x.png", "--every", "2"}, "--every: x.png is one picture; name a directory, or ask for a --sheet"},
        {{"-o", "x", "--sheet", "9", "--size", "8000x8000"}, "--sheet: 9 by 3 cells of 8000x8000 make more than"},
        {{"-o", "x", "--background", "1,2,256"}, "--background: expected R,G,B, each 0 to 255, found \"1,2,256\""},
        {{"-o", "x", "--post-fx", "glow"}, "--post-fx: no post-effect \"glow\"; there are bloom, heat,"},
        {{"-o", "x", "--post-fx", "heat", "--no-post-fx"}, "--post-fx excludes --no-post-fx"},
    };
    for (const auto &row : rows) {
        std::vector<std::string> line = {"render", "a.vro"};
        line.insert(line.end(), row.options.begin(), row.options.end());
        const vroTest::Outcome outcome = shop.Vro(line);
        EXPECT_EQ(outcome.Code, vro::EXIT_BAD_USAGE) << testing::PrintToString(row.options);
        EXPECT_THAT(outcome.Err, HasSubstr(row.said));
    }
}
