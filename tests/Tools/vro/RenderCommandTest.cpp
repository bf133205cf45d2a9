#include "vro/Commands.h"

#include "Tools/vro/VroProgram.h"

#include <gmock/gmock.h>

#include <filesystem>

using testing::HasSubstr;
using vroTest::Outcome;

namespace
{

constexpr int BACKGROUND_RED = 10;

/// A working directory with one effect: a white square in the middle of the view, without a shader or a texture of its
/// own directory.
struct Studio
{
    Studio()
    {
        std::filesystem::create_directories(Place("game/Art/Models"));
        Shop.Build("game/Art/Models/dot.vro",
                   vroTest::Group_Json({vroTest::Layer_Json("dot", R"({"name": "Billboard"})")}));
    }

    std::string Place(const std::string &name) const { return Shop.Directory.Get_Path() + "/" + name; }
    /// The leak checker falls over the threads of Mesa's renderer, so that a build with sanitizers does without it
    /// here.
    Outcome Render(std::vector<std::string> options, const std::string &shell = "ASAN_OPTIONS=detect_leaks=0") const
    {
        options.insert(options.begin(), {"render", "game/Art/Models/dot.vro", "--background", "10,20,30"});
        return Shop.Vro(options, "", shell);
    }
    /// Whether there is a device here; what it said if not.
    bool Has_Device(std::string &reason) const
    {
        const Outcome outcome = Render({"-o", "probe.png", "--frames", "1", "--size", "4x4"});
        reason = outcome.Err;
        return outcome.Code == 0;
    }

    vroTest::Workshop Shop;
};

class RenderGLTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason;
        if (!Room.Has_Device(reason)) GTEST_SKIP() << "no device: " << reason;
    }

    Studio Room;
};

} // namespace

TEST(Render, WhatCannotBeDrawnIsNamed)
{
    const Studio room;
    const Outcome homeless = room.Shop.Vro({"render", "none.vro", "-o", "x.png"});
    EXPECT_EQ(homeless.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(homeless.Err, HasSubstr("there is no Art directory above it; name one with --working-directory"));
    const Outcome missing = room.Shop.Vro({"render", "none.vro", "-o", "x.png", "--working-directory", "game"});
    EXPECT_EQ(missing.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(missing.Err, HasSubstr("none.vro"));
    EXPECT_FALSE(std::filesystem::exists(room.Place("x.png")));
}

TEST_F(RenderGLTest, FramesBecomeNumberedPicturesOrOneOrASheet)
{
    EXPECT_EQ(Room.Render({"-o", "out", "--frames", "4", "--every", "2", "--size", "12x8"}).Code, 0);
    for (const char *name : {"out/dot_0002.png", "out/dot_0004.png"}) {
        const vrPicture picture = vroTest::Load_Picture(Room.Place(name));
        EXPECT_EQ(picture.Get_Width(), 12);
        EXPECT_EQ(picture.Get_Height(), 8);
        EXPECT_EQ(picture.Get_Pixels()[0], BACKGROUND_RED);
        EXPECT_EQ(picture.Get_Pixels()[3], 255);
    }
    EXPECT_FALSE(std::filesystem::exists(Room.Place("out/dot_0003.png")));
    const Outcome outcome =
        Room.Render({"-o", "sheet.png", "--frames", "4", "--every", "1", "--size", "12x8", "--sheet", "2"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    const vrPicture sheet = vroTest::Load_Picture(Room.Place("sheet.png"));
    EXPECT_EQ(sheet.Get_Width(), 25);
    EXPECT_EQ(sheet.Get_Height(), 2 * 21);
}

TEST_F(RenderGLTest, APictureThatCannotBeWrittenOrReadFails)
{
    const Outcome unwritten = Room.Render({"-o", "missing/x.png", "--frames", "1", "--size", "4x4"});
    EXPECT_EQ(unwritten.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(unwritten.Err, HasSubstr("missing/x.png"));
    const Outcome unread =
        Room.Shop.Vro({"render", "game/Art/Models/dot.vro", "-o", "x.png", "--background", "none.tga"});
    EXPECT_EQ(unread.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(unread.Err, HasSubstr("there is no picture none.tga in the texture folders"));
}
