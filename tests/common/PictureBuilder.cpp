#include "common/PictureBuilder.h"

#include <zlib.h>

namespace MKTest
{

namespace
{

void Append_Big_Endian(Bytes &bytes, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<uint8_t>(value >> shift));
}

void Append_Chunk(Bytes &file, std::string_view name, const Bytes &content)
{
    Append_Big_Endian(file, static_cast<uint32_t>(content.size()));
    Bytes checked(name.begin(), name.end());
    checked.insert(checked.end(), content.begin(), content.end());
    file.insert(file.end(), checked.begin(), checked.end());
    Append_Big_Endian(file, static_cast<uint32_t>(crc32(0, checked.data(), static_cast<uInt>(checked.size()))));
}

} // namespace

PictureBuilder::PictureBuilder(uint32_t width, uint32_t height, ColorTypes type, uint8_t bitDepth, bool isInterlaced)
    : File{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}
{
    Bytes header;
    Append_Big_Endian(header, width);
    Append_Big_Endian(header, height);
    for (const int value : {int(bitDepth), int(type), 0, 0, int(isInterlaced)})
        header.push_back(static_cast<uint8_t>(value));
    Append_Chunk(File, "IHDR", header);
}

PictureBuilder &PictureBuilder::With(std::string_view name, const Bytes &content)
{
    Append_Chunk(File, name, content);
    return *this;
}

Bytes PictureBuilder::Build(const std::vector<Bytes> &rows) const
{
    Bytes pixels;
    for (const Bytes &row : rows) {
        pixels.push_back(0); // no filter
        pixels.insert(pixels.end(), row.begin(), row.end());
    }
    uLongf size = compressBound(pixels.size());
    Bytes packed(size);
    compress(packed.data(), &size, pixels.data(), pixels.size());
    packed.resize(size);
    Bytes file = File;
    Append_Chunk(file, "IDAT", packed);
    Append_Chunk(file, "IEND", {});
    return file;
}

Bytes Grey_Picture(uint32_t width, uint32_t height, const Bytes &levels)
{
    std::vector<Bytes> rows;
    for (size_t row = 0; row < height; ++row) {
        const auto begin = levels.begin() + static_cast<std::ptrdiff_t>(row * width);
        rows.emplace_back(begin, begin + width);
    }
    return PictureBuilder(width, height, PictureBuilder::GREY).Build(rows);
}

} // namespace MKTest
