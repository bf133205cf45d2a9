#include "vrGraphics/drivercommon/PictureFiles.h"

#include "common/Reports.h"

#include "MKLib/File/RAMFile.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstring>

namespace MKTest
{

bool Read_Picture(const Bytes &bytes, vrPicture2D &picture, std::string &error)
{
    const Reports reports;
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    file.Open("picture", MKPlatform::FILE_OPEN_GENERIC_READ);
    const bool isRead = Load_Picture(file, picture, error);
    EXPECT_TRUE(reports.Get_Asserts().empty()) << reports.Get_Text();
    return isRead;
}

namespace
{

/// The texels of the first level in rows from the top, each as eight digits "rrggbbaa", with a space between.
std::string Texels(const vrPicture2D &picture)
{
    std::string text;
    const std::vector<uint8_t> pixels = Decode_Picture(picture);
    for (size_t at = 0; at < pixels.size(); ++at) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", pixels[at]);
        if (at > 0 && at % 4 == 0) text += ' ';
        text += digits;
    }
    return text;
}

} // namespace

void Expect_Texels(const std::vector<PictureRow> &rows)
{
    for (const PictureRow &row : rows) {
        vrPicture2D picture;
        std::string error;
        EXPECT_TRUE(Read_Picture(row.File, picture, error)) << row.What << ": " << error;
        EXPECT_THAT(Texels(picture), testing::StartsWith(row.Expected)) << row.What;
    }
}

void Expect_Refused(const std::vector<PictureRow> &rows)
{
    for (const PictureRow &row : rows) {
        vrPicture2D picture;
        std::string error;
        EXPECT_FALSE(Read_Picture(row.File, picture, error)) << row.What;
        EXPECT_THAT(error, testing::HasSubstr(row.Expected)) << row.What;
        EXPECT_TRUE(picture.Levels.empty()) << row.What;
    }
}

void Expect_No_Prefixes(const std::vector<Bytes> &files)
{
    vrPicture2D picture;
    std::string error;
    for (const Bytes &file : files) {
        ASSERT_TRUE(Read_Picture(file, picture, error)) << error;
        for (auto end = file.begin(); end != file.end(); ++end) {
            error.clear();
            EXPECT_FALSE(Read_Picture({file.begin(), end}, picture, error)) << end - file.begin();
            EXPECT_FALSE(error.empty()) << end - file.begin();
        }
    }
}

void Set_32(Bytes &bytes, size_t at, uint32_t value)
{
    for (size_t byte = 0; byte < 4; ++byte) bytes.at(at + byte) = static_cast<uint8_t>(value >> byte * 8);
}

Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes Tga_Header(int kind, int width, int height, int bits, int descriptor)
{
    Bytes header(18);
    header[2] = static_cast<uint8_t>(kind);
    Set_32(header, 12, static_cast<uint32_t>(width | height << 16));
    header[16] = static_cast<uint8_t>(bits);
    header[17] = static_cast<uint8_t>(descriptor);
    return header;
}

Bytes Dds_Header(int width, int height, int levels, const char *four)
{
    Bytes header(128);
    std::memcpy(header.data(), "DDS ", 4);
    Set_32(header, 4, 124);
    Set_32(header, 12, static_cast<uint32_t>(height));
    Set_32(header, 16, static_cast<uint32_t>(width));
    Set_32(header, 28, static_cast<uint32_t>(levels));
    Set_32(header, 76, 32);
    Set_32(header, 80, 0x4);
    std::memcpy(header.data() + 84, four, 4);
    return header;
}

Bytes Dds_Header(int width, int height, int bits, const uint32_t (&masks)[4])
{
    Bytes header = Dds_Header(width, height, 1, "\0\0\0");
    Set_32(header, 80, 0x41);
    Set_32(header, 88, static_cast<uint32_t>(bits));
    for (size_t mask = 0; mask < 4; ++mask) Set_32(header, 92 + mask * 4, masks[mask]);
    return header;
}

} // namespace MKTest
