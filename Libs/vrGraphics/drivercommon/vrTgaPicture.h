#pragma once

/// TGA files.

#include "vrGraphics/drivercommon/vrPicture2D.h"

/// Reads true colour, palettes and grey, plain and run-length coded, from where the file stands. 16 bits are five a
/// channel and a bit of alpha, where the file says that it has one. False with the reason in `error`, and the picture
/// as it was.
bool Load_Tga(FileClass &file, vrPicture2D &picture, std::string &error);

/// Writes a picture of four bytes a texel, rows from the top, run-length coded with its alpha, to a file that is open
/// for writing. False with the reason in `error`.
bool Write_Tga(FileClass &file, int width, int height, const uint8_t *rgba, std::string &error);
