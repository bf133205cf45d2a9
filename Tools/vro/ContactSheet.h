#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vro
{

/// Pictures side by side in one, each with a label below it. Four bytes a pixel, rows from the top.
class ContactSheet
{
public:
    /// Room for `count` pictures of one size. All are at least 1.
    ContactSheet(int columns, int count, int width, int height);

    /// The next picture, of the size that was told, row by row. Beyond the last one nothing happens.
    void Add(const std::vector<uint8_t> &pixels, std::string_view label);
    int Get_Width() const { return Width; }
    int Get_Height() const { return Height; }
    const std::vector<uint8_t> &Get_Pixels() const { return Pixels; }

private:
    void Put_Pixel(int x, int y, uint8_t value);
    void Write_Label(int left, int top, std::string_view label);

    int Columns;
    int Count;
    int CellWidth;
    int CellHeight;
    int Width;
    int Height;
    int Added = 0;
    std::vector<uint8_t> Pixels;
};

} // namespace vro
