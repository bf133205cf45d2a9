#pragma once

#include "common/TempFiles.h"
#include "vrGraphics/drivercommon/vrPicture2D.h"

#include <string>

namespace MKTest
{

/// The reader's answer to bytes that stand in memory, which it gives without an assertion.
using PictureReader = bool (*)(FileClass &file, vrPicture2D &picture, std::string &error);
bool Read_Picture(PictureReader reader, const Bytes &bytes, vrPicture2D &picture, std::string &error);

/// The texels of the first level in rows from the top, each as eight digits "rrggbbaa", with a space between.
std::string Texels(const vrPicture2D &picture);

/// The 18 bytes of a TGA header without palette and name.
Bytes Tga_Header(int kind, int width, int height, int bits, int descriptor);
/// The 128 bytes of a DDS header in a form of four letters.
Bytes Dds_Header(int width, int height, int levels, const char *four);
/// The same in a form of whole numbers, with the masks red, green, blue, alpha.
Bytes Dds_Header(int width, int height, int bits, const uint32_t (&masks)[4]);

void Set_32(Bytes &bytes, size_t at, uint32_t value);
Bytes operator+(Bytes left, const Bytes &right);

} // namespace MKTest
