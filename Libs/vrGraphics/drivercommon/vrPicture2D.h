#pragma once

/// A picture as a texture takes it, with its smaller levels.

#include <cstdint>
#include <string>
#include <vector>

class FileClass;

struct vrPicture2D
{
    enum FormatType : int
    {
        FORMAT_RGBA8, ///< four bytes a texel: red, green, blue, alpha
        FORMAT_BC1,   ///< blocks of 4 by 4 texels, 8 bytes each
        FORMAT_BC2,   ///< 16 bytes each, alpha of four bits
        FORMAT_BC3    ///< 16 bytes each, interpolated alpha
    };

    struct LevelType
    {
        int Width = 0;
        int Height = 0;
        std::vector<uint8_t> Bytes; ///< rows from the top
    };

    FormatType Format = FORMAT_RGBA8;
    std::vector<LevelType> Levels; ///< from the largest, each half the size of the one before, rounded down, 1 at least
};

/// Reads a picture file by what it holds, whatever its name: TGA (colour, palettes and grey, 8 to 32 bits, run-length
/// coded or not, from either edge), DDS (RGBA, BC1 to BC3, with levels), PNG. Sizes are those that `vrPicture` allows.
/// False, with the reason, for what is none of them, damaged or cut short; `picture` is then as it was.
bool Load_Picture(FileClass &file, vrPicture2D &picture, std::string &error);
/// The first level as plain texels, four bytes each.
std::vector<uint8_t> Decode_Picture(const vrPicture2D &picture);
