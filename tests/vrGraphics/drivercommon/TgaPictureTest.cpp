#include "vrGraphics/drivercommon/vrTgaPicture.h"

#include "vrGraphics/drivercommon/PictureFiles.h"

#include "MKLib/File/RAMFile.h"

#include <gtest/gtest.h>

using namespace MKTest;

namespace
{

constexpr int TOP = 0x20;
constexpr int RIGHT = 0x10;

/// Two by two of 24 bits from the top, in runs: two texels listed, then one repeated twice.
const Bytes RUNS = Tga_Header(10, 2, 2, 24, TOP) + Bytes{0x01, 3, 2, 1, 6, 5, 4, 0x81, 9, 8, 7};

Bytes With_Palette(Bytes header, int start, int count, int bits)
{
    header[1] = 1;
    header[3] = static_cast<uint8_t>(start);
    header[5] = static_cast<uint8_t>(count);
    header[7] = static_cast<uint8_t>(bits);
    return header;
}

Bytes With_Name(Bytes header, uint8_t length)
{
    header[0] = length;
    return header + Bytes(length, 'n');
}

} // namespace

TEST(TgaPicture, EveryFormBecomesFourBytesATexelFromTheTop)
{
    Expect_Texels({
        {"from the bottom", Tga_Header(2, 1, 2, 24, 0) + Bytes{3, 2, 1, 6, 5, 4}, "040506ff 010203ff"},
        {"from the right", Tga_Header(2, 2, 1, 24, TOP | RIGHT) + Bytes{3, 2, 1, 6, 5, 4}, "040506ff 010203ff"},
        {"32 bits", Tga_Header(2, 1, 1, 32, TOP | 8) + Bytes{3, 2, 1, 0x80}, "01020380"},
        // 0x7c00 is all of red and 0x83ff alpha with all of green and blue; 0x4210 is 16 of 31 each: 16 * 8 + 16 / 4
        {"16 bits", Tga_Header(2, 3, 1, 16, TOP) + Bytes{0x00, 0x7c, 0xff, 0x83, 0x10, 0x42},
         "ff0000ff 00ffffff 848484ff"},
        {"16 bits with alpha", Tga_Header(2, 2, 1, 16, TOP | 1) + Bytes{0x00, 0x7c, 0xff, 0x83}, "ff000000 00ffffff"},
        {"grey and alpha", Tga_Header(3, 1, 1, 16, TOP | 8) + Bytes{7, 9}, "07070709"},
        {"palette that starts at 2",
         With_Palette(Tga_Header(1, 3, 1, 8, TOP), 2, 2, 24) + Bytes{3, 2, 1, 6, 5, 4} + Bytes{3, 2, 0},
         "040506ff 010203ff 00000000"},
        {"palette in runs", With_Palette(Tga_Header(9, 2, 1, 8, TOP), 0, 1, 32) + Bytes{3, 2, 1, 8} + Bytes{0x81, 0},
         "01020308 01020308"},
        {"an unused palette", With_Palette(Tga_Header(3, 1, 1, 8, TOP), 0, 1, 24) + Bytes{1, 2, 3} + Bytes{9},
         "090909ff"},
        {"a run over the end of a row", Tga_Header(11, 2, 2, 8, TOP) + Bytes{0x82, 5, 0x00, 6},
         "050505ff 050505ff 050505ff 060606ff"},
    });
}

TEST(TgaPicture, WhatIsNoPictureIsRefusedWithItsReason)
{
    Expect_Refused({
        {"nothing", {}, "the file is empty"},
        {"seventeen bytes", Bytes(17), "17 bytes are too short"},
        {"colour of 8 bits", Tga_Header(2, 1, 1, 8, 0) + Bytes(1), "neither a PNG, a DDS nor a TGA"},
        {"a palette that isn't there", Tga_Header(1, 1, 1, 8, 0) + Bytes(1), "neither a PNG, a DDS nor a TGA"},
        {"too wide", Tga_Header(2, 16385, 1, 24, 0), "a picture of 16385 by 1 texels, expected 1 to 16384 a side"},
        {"too large in all", Tga_Header(10, 16384, 4097, 24, 0), "at most 67108864 in all"},
        // refused before there is memory for it: 16384 x 4096 texels of 3 bytes, and runs of 2^26 / 128 times 4 bytes
        {"pixels that aren't there", Tga_Header(2, 16384, 4096, 24, 0) + Bytes(9),
         "the picture takes 201326592 bytes, 9 are left"},
        {"runs that aren't there", Tga_Header(10, 16384, 4096, 24, 0) + Bytes(9),
         "9 bytes of runs can't fill 67108864"},
        {"a run past the end", Tga_Header(11, 2, 1, 8, TOP) + Bytes{0x82, 5}, "a run goes past the last texel"},
        {"runs that stop", Tga_Header(11, 9, 1, 8, TOP) + Bytes{0x82, 5}, "its runs fill 3 of 9 texels"},
    });
}

TEST(TgaPicture, NoPrefixIsAPicture)
{
    Expect_No_Prefixes({RUNS, Tga_Header(2, 2, 2, 32, 0) + Bytes(16, 7),
                        With_Palette(With_Name(Tga_Header(1, 1, 1, 8, 0), 3), 0, 2, 24) + Bytes(7)});
}

TEST(TgaPicture, WhatIsWrittenIsReadBack)
{
    // A row of one colour longer than a run, one of changing colours longer than a list, and one that mixes both.
    constexpr int WIDTH = 300;
    std::vector<uint8_t> pixels;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < WIDTH; ++column) {
            const auto level = static_cast<uint8_t>(row == 0 ? 5 : row == 1 ? column * 7 : column / 3);
            pixels.insert(pixels.end(), {level, static_cast<uint8_t>(level + 1), 9, static_cast<uint8_t>(255 - level)});
        }
    RAMFileClass file;
    ASSERT_TRUE(file.Open("out.tga", MKPlatform::FILE_OPEN_GENERIC_WRITE));
    std::string error;
    ASSERT_TRUE(Write_Tga(file, WIDTH, 3, pixels.data(), error)) << error;
    file.Close();
    ASSERT_TRUE(file.Open("out.tga", MKPlatform::FILE_OPEN_GENERIC_READ));
    // The header, 3 runs of 5 bytes, 3 lists of 1 + 4 n, and 100 runs of 5 bytes.
    EXPECT_EQ(file.Get_Size(), 18 + 15 + 3 + 1200 + 500);
    vrPicture2D picture;
    ASSERT_TRUE(Load_Tga(file, picture, error)) << error;
    EXPECT_EQ(picture.Levels.at(0).Width, WIDTH);
    EXPECT_EQ(picture.Levels.at(0).Bytes, pixels);
    EXPECT_FALSE(Write_Tga(file, 65536, 1, pixels.data(), error));
}
