#include "vrGraphics/drivercommon/vrDdsPicture.h"

#include "vrGraphics/drivercommon/PictureFiles.h"

#include "MKLib/File/RAMFile.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace MKTest;

namespace
{

/// A block of colours: 0xf800 is red and 0x001f blue. The first row takes the entries 0 to 3, the others entry 0.
const Bytes RED_OVER_BLUE{0x00, 0xf8, 0x1f, 0x00, 0xe4, 0, 0, 0};
const Bytes BLUE_OVER_RED{0x1f, 0x00, 0x00, 0xf8, 0xe4, 0, 0, 0};

constexpr uint32_t CUBE = 0xfe00;

Bytes Cube_File(int side)
{
    Bytes file = Dds_Header(side, side, 1, "DXT1");
    Set_32(file, 112, CUBE);
    for (uint8_t face = 0; face < 6; ++face) file = file + Bytes{face, 0, 0, 0, 0, 0, 0, 0};
    return file;
}

bool Read_Cube(const Bytes &bytes, std::array<vrPicture2D, 6> &faces, std::string &error)
{
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    file.Open("cube", MKPlatform::FILE_OPEN_GENERIC_READ);
    return Load_Dds_Cube(file, faces, error);
}

/// Extended header: the form, a flat picture, no cube, one of it.
Bytes Extended(uint32_t form)
{
    Bytes bytes(20);
    Set_32(bytes, 0, form);
    Set_32(bytes, 4, 3);
    Set_32(bytes, 12, 1);
    return bytes;
}

} // namespace

TEST(DdsPicture, BlocksDecodeByHand)
{
    const Bytes opaque(8, 0xff);
    Expect_Texels({
        // between red and blue: (2 * 255 + 0 + 1) / 3 = 170 and (255 + 1) / 3 = 85
        {"BC1 of four colours", Dds_Header(4, 4, 1, "DXT1") + RED_OVER_BLUE, "ff0000ff 0000ffff aa0055ff 5500aaff"},
        // half way: (255 + 0 + 1) / 2 = 128, and a hole
        {"BC1 with a hole", Dds_Header(4, 4, 1, "DXT1") + BLUE_OVER_RED, "0000ffff ff0000ff 800080ff 00000000"},
        // the other kinds have four colours in either order
        {"BC2", Dds_Header(4, 4, 1, "DXT3") + Bytes{0x10, 0xf8, 0, 0, 0, 0, 0, 0} + BLUE_OVER_RED,
         "0000ff00 ff000011 5500aa88 aa0055ff"},
        // alpha from 100 to 30 in seventh parts of 70: index 2 is 100 - 10, index 7 is 30 + 10
        {"BC3 of eight alphas",
         Dds_Header(4, 4, 1, "DXT5") + Bytes{100, 30, 0b10001000, 0b00001110, 0, 0, 0, 0} + RED_OVER_BLUE,
         "ff000064 0000ff1e aa00555a 5500aa28"},
        // alpha from 30 to 80 in fifth parts of 50, then 0 and 255: indices 2, 5, 6 and 7
        {"BC3 of six alphas",
         Dds_Header(4, 4, 1, "DXT5") + Bytes{30, 80, 0b10101010, 0b00001111, 0, 0, 0, 0} + RED_OVER_BLUE,
         "ff000028 0000ff46 aa005500 5500aaff"},
    });
}

TEST(DdsPicture, TexelsAreReadByTheirMasks)
{
    Expect_Texels({
        {"32 bits", Dds_Header(1, 1, 32, {0xff0000, 0xff00, 0xff, 0xff000000}) + Bytes{1, 2, 3, 4}, "03020104"},
        {"24 bits", Dds_Header(1, 1, 24, {0xff0000, 0xff00, 0xff, 0}) + Bytes{1, 2, 3}, "030201ff"},
        // 5, 6 and 5 bits: 31, 21 and 0 become 255, 21 * 255 / 63 = 85 and 0
        {"16 bits", Dds_Header(1, 1, 16, {0xf800, 0x7e0, 0x1f, 0}) + Bytes{0xa0, 0xfa}, "ff5500ff"},
        {"a mask of all bits", Dds_Header(1, 1, 32, {0xffffffff, 0, 0, 0}) + Bytes{255, 255, 255, 255}, "ff0000ff"},
        {"extended, blue first", Dds_Header(1, 1, 1, "DX10") + Extended(87) + Bytes{1, 2, 3, 4}, "03020104"},
    });
}

TEST(DdsPicture, LevelsHalveDownToOne)
{
    // 5 by 2 has 2 by 1 blocks, 2 by 1 and 1 by 1 have one each. The header claims more levels than there can be.
    const Bytes file = Dds_Header(5, 2, 99, "DXT1") + Bytes(4 * 8);
    vrPicture2D picture;
    std::string error;
    ASSERT_TRUE(Read_Picture(file, picture, error)) << error;
    std::ostringstream levels;
    for (const auto &level : picture.Levels)
        levels << level.Width << 'x' << level.Height << ':' << level.Bytes.size() << ' ';
    EXPECT_EQ(levels.str(), "5x2:16 2x1:8 1x1:8 ");
}

TEST(DdsPicture, ACubeHasSixFacesInOrder)
{
    std::array<vrPicture2D, 6> faces;
    std::string error;
    const Bytes file = Cube_File(4);
    ASSERT_TRUE(Read_Cube(file, faces, error)) << error;
    for (uint8_t face = 0; face < 6; ++face) EXPECT_EQ(faces[face].Levels.at(0).Bytes.at(0), face);
    EXPECT_FALSE(Read_Cube(Bytes(file.begin(), file.end() - 1), faces, error));
    EXPECT_FALSE(Read_Cube(Dds_Header(4, 4, 1, "DXT1") + Bytes(48), faces, error));
    Bytes holed = file;
    Set_32(holed, 112, CUBE & ~0x400u);
    EXPECT_FALSE(Read_Cube(holed, faces, error));
    EXPECT_EQ(error, "a DDS cube that hasn't all of its faces");
}

TEST(DdsPicture, WhatIsNoPictureIsRefusedWithItsReason)
{
    Bytes volume = Dds_Header(4, 4, 1, "DXT1") + Bytes(8);
    Set_32(volume, 112, 0x200000);
    Bytes formless = Dds_Header(4, 4, 1, "DXT1") + Bytes(8);
    Set_32(formless, 80, 0);
    Expect_Refused({
        {"the signature alone", {'D', 'D', 'S', ' '}, "a DDS header takes 128 bytes, 4 are there"},
        {"no height", Dds_Header(4, 0, 1, "DXT1"), "a picture of 4 by 0 texels"},
        {"a side of 2^32 - 1", Dds_Header(-1, -1, 1, "DXT1"), "a picture of 4294967295 by 4294967295 texels"},
        // 4096 by 1024 blocks of 16 bytes, refused before there is memory for them
        {"blocks that aren't there", Dds_Header(16384, 4096, 1, "DXT5"), "1 levels take 67108864 bytes, 0 are left"},
        {"an unknown form", Dds_Header(4, 4, 1, "ATI2") + Bytes(16), "of the form 843666497, which isn't known"},
        {"a cut extended header", Dds_Header(4, 4, 1, "DX10") + Bytes(19), "inside of its extended header"},
        {"depth", volume, "with depth"},
        {"no form", formless, "doesn't say its form"},
        {"7 bits", Dds_Header(1, 1, 7, {1, 2, 4, 0}) + Bytes(4), "7 bits a texel"},
    });
}

TEST(DdsPicture, NoPrefixIsAPicture)
{
    Expect_No_Prefixes(
        {Dds_Header(8, 4, 4, "DXT5") + Bytes(16 * 5), Dds_Header(4, 4, 1, "DX10") + Extended(72) + Bytes(8)});
}
