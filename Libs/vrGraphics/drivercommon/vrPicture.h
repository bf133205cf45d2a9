#pragma once

#include <cstdint>
#include <string>
#include <vector>

class FileClass;

/// A picture in memory: rows from the top, four bytes a pixel, red, green, blue, alpha, with the values that the file
/// has (no gamma is applied). Pictures of any PNG kind become that: palettes and grey are spread out, 16 bits are
/// rounded to 8, and what has no alpha is opaque.
class vrPicture
{
public:
    /// Pixels along one side, and in all; what is larger is refused before anything is allocated for it.
    static constexpr uint32_t MAX_SIDE = 16384;
    static constexpr uint64_t MAX_PIXELS = uint64_t(1) << 26;

    /// Reads a PNG file that is open for reading, from where it stands. False with the reason in `error`, and the
    /// picture as it was, for what is no PNG, is damaged or cut short, or is too large.
    bool Load(FileClass &file, std::string &error);

    int Get_Width() const { return Width; }
    int Get_Height() const { return Height; }
    const std::vector<uint8_t> &Get_Pixels() const { return Pixels; }
    /// One byte a pixel: the luma of its colour, which for a grey picture is its very value.
    std::vector<uint8_t> Get_Grey() const;

private:
    int Width = 0;
    int Height = 0;
    std::vector<uint8_t> Pixels;
};
