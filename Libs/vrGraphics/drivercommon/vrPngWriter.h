#pragma once

#include <cstdint>
#include <string>

class FileClass;

/// Writes a picture of four bytes a pixel, red, green, blue, alpha, rows from the top, to a file that is open for
/// writing. One picture always gives the same bytes. False with the reason in `error`; what was written stays.
bool Write_Png(FileClass &file, int width, int height, const uint8_t *rgba, std::string &error);
