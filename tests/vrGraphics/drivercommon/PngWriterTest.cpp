#include "vrGraphics/drivercommon/vrPngWriter.h"

#include "common/Reports.h"
#include "vrGraphics/drivercommon/vrPicture.h"

#include "MKLib/File/RAMFile.h"

#include <gtest/gtest.h>

TEST(PngWriter, WhatIsWrittenIsReadBack)
{
    std::vector<uint8_t> pixels;
    for (int at = 0; at < 5 * 3 * 4; ++at) pixels.push_back(static_cast<uint8_t>(at * 37));
    RAMFileClass file;
    ASSERT_TRUE(file.Open("out.png", MKPlatform::FILE_OPEN_GENERIC_WRITE));
    std::string error;
    ASSERT_TRUE(Write_Png(file, 5, 3, pixels.data(), error)) << error;
    file.Close();
    ASSERT_TRUE(file.Open("out.png", MKPlatform::FILE_OPEN_GENERIC_READ));
    vrPicture picture;
    ASSERT_TRUE(picture.Load(file, error)) << error;
    EXPECT_EQ(picture.Get_Width(), 5);
    EXPECT_EQ(picture.Get_Height(), 3);
    EXPECT_EQ(picture.Get_Pixels(), pixels);
}

TEST(PngWriter, WhatCannotBeWrittenIsTold)
{
    const MKTest::Reports reports; // the file asserts too
    const uint8_t pixel[4] = {};
    RAMFileClass file;
    std::string error;
    EXPECT_FALSE(Write_Png(file, 0, 1, pixel, error));
    EXPECT_EQ(error, "a picture of 0 by 1 pixels can't be written");
    EXPECT_FALSE(Write_Png(file, 1, 1, pixel, error)) << "the file isn't open";
    EXPECT_EQ(error, "the file can't be written");
}
