#include "vrGraphics/drivercommon/vrPicture.h"

#include "common/PictureBuilder.h"

#include "MKLib/File/RAMFile.h"

#include <gmock/gmock.h>

using MKTest::Bytes;
using MKTest::PictureBuilder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

bool Load(const Bytes &bytes, vrPicture &picture, std::string &error)
{
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    file.Open("picture.png", MKPlatform::FILE_OPEN_GENERIC_READ);
    return picture.Load(file, error);
}

/// Three by two of grey, from 0 to 250.
const Bytes GREY = MKTest::Grey_Picture(3, 2, {0, 50, 100, 150, 200, 250});

Bytes With_Byte(Bytes bytes, size_t at, uint8_t value)
{
    bytes.at(at) = value;
    return bytes;
}

Bytes Prefix(const Bytes &bytes, size_t size)
{
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

} // namespace

TEST(Picture, EveryKindBecomesFourBytesAPixel)
{
    using B = PictureBuilder;
    const struct
    {
        const char *what;
        Bytes file;
        std::vector<int> pixels; ///< of a picture of two pixels side by side
    } rows[] = {
        {"grey, 1 bit", B(2, 1, B::GREY, 1).Build({{0x40}}), {0, 0, 0, 255, 255, 255, 255, 255}},
        // 0x8000 / 65535 * 255 is 127.502, and 0x7fff gives 127.498
        {"grey, 16 bits",
         B(2, 1, B::GREY, 16).Build({{0x80, 0, 0x7f, 0xff}}),
         {128, 128, 128, 255, 127, 127, 127, 255}},
        {"colour and alpha", B(2, 1, B::RGBA).Build({{1, 2, 3, 9, 4, 5, 6, 0}}), {1, 2, 3, 9, 4, 5, 6, 0}},
        {"palette with alpha",
         B(2, 1, B::PALETTE).With("PLTE", {9, 8, 7, 6, 5, 4}).With("tRNS", {77}).Build({{1, 0}}),
         {6, 5, 4, 255, 9, 8, 7, 77}},
        // no gamma is applied: the chunk says that the values are linear
        {"grey with gamma",
         B(2, 1, B::GREY).With("gAMA", {0, 1, 0x86, 0xa0}).Build({{7, 250}}),
         {7, 7, 7, 255, 250, 250, 250, 255}},
        // of a picture this small the first pass has the first pixel and the sixth the second
        {"interlaced", B(2, 1, B::GREY, 8, true).Build({{7}, {250}}), {7, 7, 7, 255, 250, 250, 250, 255}},
    };
    for (const auto &row : rows) {
        vrPicture picture;
        std::string error;
        ASSERT_TRUE(Load(row.file, picture, error)) << row.what << ": " << error;
        EXPECT_EQ(std::vector<int>(picture.Get_Pixels().begin(), picture.Get_Pixels().end()), row.pixels) << row.what;
    }
}

TEST(Picture, GreyIsTheLumaOfAColour)
{
    vrPicture picture;
    std::string error;
    // 0.2126, 0.7152 and 0.0722 of 255 are 54.2, 182.4 and 18.4
    ASSERT_TRUE(
        Load(PictureBuilder(3, 1, PictureBuilder::RGB).Build({{255, 0, 0, 0, 255, 0, 0, 0, 255}}), picture, error));
    EXPECT_THAT(picture.Get_Grey(), ElementsAre(54, 182, 19));
}

TEST(Picture, WhatIsNoPictureIsRefusedWithItsReason)
{
    using B = PictureBuilder;
    constexpr size_t HEADER_CRC = 8 + 8 + 13;
    const struct
    {
        const char *what;
        Bytes file;
        const char *reason;
    } rows[] = {
        {"nothing", {}, "the file is empty"},
        {"the signature alone", Prefix(GREY, 8), "the file ends early"},
        {"header of a wrong checksum", With_Byte(GREY, HEADER_CRC, GREY[HEADER_CRC] ^ 1), "CRC"},
        {"no width", B(0, 1, B::GREY).Build({{1}}), "IHDR"},
        {"fewer rows than stated", B(1, 2, B::GREY).Build({{1}}), "Not enough image data"},
        {"too high", B(1, 2000000000, B::GREY).Build({{1}}), "a picture of 1 by 2000000000 pixels is too large"},
        {"too large in all", B(16384, 4097, B::GREY).Build({{1}}), "at most 16384 a side and 67108864 in all"},
    };
    for (const auto &row : rows) {
        vrPicture picture;
        std::string error;
        ASSERT_TRUE(Load(GREY, picture, error));
        EXPECT_FALSE(Load(row.file, picture, error)) << row.what;
        EXPECT_THAT(error, HasSubstr(row.reason)) << row.what;
        EXPECT_THAT(picture.Get_Grey(), ElementsAre(0, 50, 100, 150, 200, 250)) << row.what;
    }
}

TEST(Picture, NoPrefixAndNoFlippedByteDoesHarm)
{
    vrPicture picture;
    std::string error;
    for (size_t size = 0; size < GREY.size(); ++size) EXPECT_FALSE(Load(Prefix(GREY, size), picture, error)) << size;
    for (size_t at = 0; at < GREY.size(); ++at) Load(With_Byte(GREY, at, GREY[at] ^ 0x55), picture, error);
}
