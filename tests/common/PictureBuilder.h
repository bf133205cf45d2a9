#pragma once

#include "common/TempFiles.h"

#include <cstdint>
#include <string_view>

namespace MKTest
{

/// Makes the bytes of a PNG file, chunk by chunk, so that any of them can be wrong.
class PictureBuilder
{
public:
    enum ColorTypes : uint8_t
    {
        GREY = 0,
        RGB = 2,
        PALETTE = 3,
        RGBA = 6
    };

    PictureBuilder(uint32_t width, uint32_t height, ColorTypes type, uint8_t bitDepth = 8, bool isInterlaced = false);
    /// A chunk ahead of the pixels, of four letters.
    PictureBuilder &With(std::string_view name, const Bytes &content);
    /// The rows in the order of the file, each without its filter byte.
    Bytes Build(const std::vector<Bytes> &rows) const;

private:
    Bytes File;
};

/// An ordinary grey picture of 8 bits.
Bytes Grey_Picture(uint32_t width, uint32_t height, const Bytes &levels);

} // namespace MKTest
