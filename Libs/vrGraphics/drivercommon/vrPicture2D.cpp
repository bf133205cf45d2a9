#include "vrGraphics/drivercommon/vrPicture2D.h"

#include "vrGraphics/drivercommon/vrBlockCodec.h"
#include "vrGraphics/drivercommon/vrDdsPicture.h"
#include "vrGraphics/drivercommon/vrPicture.h"
#include "vrGraphics/drivercommon/vrTgaPicture.h"

#include "MKLib/File/File.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr size_t BYTES_PER_TEXEL = 4;
constexpr int BLOCK_SIDE = 4;
constexpr uint8_t PNG_START[4] = {0x89, 'P', 'N', 'G'};
constexpr uint8_t DDS_START[4] = {'D', 'D', 'S', ' '};

bool Load_Png(FileClass &file, vrPicture2D &picture, std::string &error)
{
    vrPicture png;
    if (!png.Load(file, error)) return false;
    picture.Format = vrPicture2D::FORMAT_RGBA8;
    picture.Levels.clear();
    picture.Levels.push_back({png.Get_Width(), png.Get_Height(), png.Get_Pixels()});
    return true;
}

/// Copies what of a block lies inside of the picture.
void Put_Block(const uint8_t (&texels)[64], int x, int y, int width, int height, uint8_t *pixels)
{
    const int columns = std::min(BLOCK_SIDE, width - x);
    const int rows = std::min(BLOCK_SIDE, height - y);
    for (int row = 0; row < rows; ++row) {
        const size_t at = static_cast<size_t>(y + row) * static_cast<size_t>(width) + static_cast<size_t>(x);
        std::memcpy(pixels + at * BYTES_PER_TEXEL, texels + row * BLOCK_SIDE * static_cast<int>(BYTES_PER_TEXEL),
                    static_cast<size_t>(columns) * BYTES_PER_TEXEL);
    }
}

} // namespace

bool Load_Picture(FileClass &file, vrPicture2D &picture, std::string &error)
{
    uint8_t start[4] = {};
    const int64_t from = file.Tell();
    const int64_t count = file.Read(start, sizeof start);
    if (count == 0) {
        error = "the file is empty";
        return false;
    }
    file.Seek(from, MKPlatform::FILE_SEEK_BEGIN);
    if (std::memcmp(start, DDS_START, sizeof start) == 0) return Load_Dds(file, picture, error);
    if (std::memcmp(start, PNG_START, sizeof start) == 0) return Load_Png(file, picture, error);
    return Load_Tga(file, picture, error); // which has no signature
}

std::vector<uint8_t> Decode_Picture(const vrPicture2D &picture)
{
    if (picture.Levels.empty()) return {};
    const vrPicture2D::LevelType &level = picture.Levels.front();
    const int blockBytes = Get_Block_Bytes(picture.Format);
    if (blockBytes == 0) return level.Bytes;
    std::vector<uint8_t> pixels(static_cast<size_t>(level.Width) * static_cast<size_t>(level.Height) * BYTES_PER_TEXEL);
    const uint8_t *block = level.Bytes.data();
    for (int y = 0; y < level.Height; y += BLOCK_SIDE) {
        for (int x = 0; x < level.Width; x += BLOCK_SIDE) {
            uint8_t texels[64];
            Decode_Block(picture.Format, block, texels);
            Put_Block(texels, x, y, level.Width, level.Height, pixels.data());
            block += blockBytes;
        }
    }
    return pixels;
}
