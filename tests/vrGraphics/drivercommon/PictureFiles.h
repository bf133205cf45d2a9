#pragma once

#include "common/TempFiles.h"
#include "vrGraphics/drivercommon/vrPicture2D.h"

#include <string>
#include <vector>

namespace MKTest
{

/// The reader's answer to bytes that stand in memory, which it gives without an assertion.
bool Read_Picture(const Bytes &bytes, vrPicture2D &picture, std::string &error);

/// A picture and the beginning of its texels, or of the reason why it is refused.
struct PictureRow
{
    const char *What;
    Bytes File;
    const char *Expected;
};
void Expect_Texels(const std::vector<PictureRow> &rows);
void Expect_Refused(const std::vector<PictureRow> &rows);
/// Whole files are pictures, and none of their prefixes is.
void Expect_No_Prefixes(const std::vector<Bytes> &files);

/// The 18 bytes of a TGA header without palette and name.
Bytes Tga_Header(int kind, int width, int height, int bits, int descriptor);
/// The 128 bytes of a DDS header in a form of four letters.
Bytes Dds_Header(int width, int height, int levels, const char *four);
/// The same in a form of whole numbers, with the masks red, green, blue, alpha.
Bytes Dds_Header(int width, int height, int bits, const uint32_t (&masks)[4]);

void Set_32(Bytes &bytes, size_t at, uint32_t value);
Bytes operator+(Bytes left, const Bytes &right);

} // namespace MKTest
