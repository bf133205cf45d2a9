#include "TextureMaker/TextureFiles.h"

#include "TextureMaker/Canvas.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace TextureMaker
{

namespace
{

using Bytes = std::vector<uint8_t>;

void Write_File(const std::string &path, const Bytes &bytes)
{
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) throw std::runtime_error(path + " can't be opened for writing");
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !isWritten) throw std::runtime_error(path + " can't be written");
}

void Append_Word(Bytes &bytes, uint32_t word, int count)
{
    for (int index = 0; index < count; ++index) bytes.push_back(static_cast<uint8_t>(word >> (8 * index)));
}

bool Is_Opaque(const Canvas &canvas)
{
    const Bytes &pixels = canvas.Get_Pixels();
    for (size_t at = 3; at < pixels.size(); at += 4)
        if (pixels[at] != 255) return false;
    return true;
}

/// One row as packets: runs of one pixel that is repeated, and stretches of pixels as they are.
void Append_Targa_Row(Bytes &bytes, const uint8_t *row, int width, size_t size)
{
    constexpr int LONGEST = 128;
    const auto same = [row](int a, int b) { return std::memcmp(row + a * 4, row + b * 4, 4) == 0; };
    const auto append = [&](int at) {
        const uint8_t *pixel = row + at * 4;
        const uint8_t turned[4] = {pixel[2], pixel[1], pixel[0], pixel[3]};
        bytes.insert(bytes.end(), turned, turned + size);
    };
    for (int at = 0; at < width;) {
        int run = 1;
        while (run < LONGEST && at + run < width && same(at, at + run)) ++run;
        if (run > 1) {
            bytes.push_back(static_cast<uint8_t>(0x80 | (run - 1)));
            append(at);
            at += run;
            continue;
        }
        int count = 1;
        while (count < LONGEST && at + count < width && (at + count + 1 >= width || !same(at + count, at + count + 1)))
            ++count;
        bytes.push_back(static_cast<uint8_t>(count - 1));
        for (int index = 0; index < count; ++index) append(at + index);
        at += count;
    }
}

uint16_t To_565(const uint8_t *color)
{
    return static_cast<uint16_t>(((color[0] * 31 + 127) / 255) << 11 | ((color[1] * 63 + 127) / 255) << 5 |
                                 ((color[2] * 31 + 127) / 255));
}

std::array<int, 3> From_565(uint16_t word)
{
    return {(word >> 11) * 255 / 31, ((word >> 5) & 63) * 255 / 63, (word & 31) * 255 / 31};
}

using Block = std::array<std::array<uint8_t, 4>, 16>;

void Append_Alpha_Block(Bytes &bytes, const Block &block)
{
    int least = 255;
    int most = 0;
    for (const auto &pixel : block) {
        least = std::min<int>(least, pixel[3]);
        most = std::max<int>(most, pixel[3]);
    }
    bytes.push_back(static_cast<uint8_t>(most));
    bytes.push_back(static_cast<uint8_t>(least));
    uint64_t indices = 0;
    for (size_t at = 0; at < 16 && most > least; ++at) {
        // Steps from `most` down to `least`: step 0 has index 0, step 7 index 1, the others one more than the step.
        const int step = ((most - block[at][3]) * 14 / (most - least) + 1) / 2;
        const auto index = static_cast<uint64_t>(step == 0 ? 0 : step == 7 ? 1 : step + 1);
        indices |= index << (3 * at);
    }
    for (int byte = 0; byte < 6; ++byte) bytes.push_back(static_cast<uint8_t>(indices >> (8 * byte)));
}

void Append_Color_Block(Bytes &bytes, const Block &block)
{
    std::array<uint8_t, 3> least{255, 255, 255};
    std::array<uint8_t, 3> most{0, 0, 0};
    for (const auto &pixel : block)
        for (size_t channel = 0; channel < 3; ++channel) {
            least[channel] = std::min(least[channel], pixel[channel]);
            most[channel] = std::max(most[channel], pixel[channel]);
        }
    const uint16_t high = To_565(most.data());
    const uint16_t low = To_565(least.data());
    Append_Word(bytes, high, 2);
    Append_Word(bytes, low, 2);
    const auto bright = From_565(high);
    const auto dark = From_565(low);
    uint32_t indices = 0;
    for (size_t at = 0; at < 16 && high != low; ++at) {
        int best = 0;
        int bestError = 1 << 30;
        for (int index = 0; index < 4; ++index) {
            constexpr int BRIGHT_THIRDS[] = {3, 0, 2, 1};
            int error = 0;
            for (size_t channel = 0; channel < 3; ++channel) {
                const int value =
                    (bright[channel] * BRIGHT_THIRDS[index] + dark[channel] * (3 - BRIGHT_THIRDS[index])) / 3;
                error += (value - block[at][channel]) * (value - block[at][channel]);
            }
            if (error < bestError) {
                best = index;
                bestError = error;
            }
        }
        indices |= static_cast<uint32_t>(best) << (2 * at);
    }
    Append_Word(bytes, indices, 4);
}

void Append_Blocks(Bytes &bytes, const Canvas &canvas)
{
    for (int top = 0; top < canvas.Get_Height(); top += 4)
        for (int left = 0; left < canvas.Get_Width(); left += 4) {
            Block block;
            for (int at = 0; at < 16; ++at) {
                const int x = std::min(left + at % 4, canvas.Get_Width() - 1);
                const int y = std::min(top + at / 4, canvas.Get_Height() - 1);
                const uint8_t *pixel = &canvas.Get_Pixels()[static_cast<size_t>((y * canvas.Get_Width() + x) * 4)];
                std::copy_n(pixel, 4, block[static_cast<size_t>(at)].begin());
            }
            Append_Alpha_Block(bytes, block);
            Append_Color_Block(bytes, block);
        }
}

} // namespace

void Write_Targa(const std::string &path, const Canvas &canvas)
{
    constexpr uint8_t RUN_LENGTH_ENCODED_COLOR = 10;
    constexpr uint8_t FROM_THE_TOP = 0x20;
    const size_t size = Is_Opaque(canvas) ? 3 : 4;
    Bytes bytes{0, 0, RUN_LENGTH_ENCODED_COLOR, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    Append_Word(bytes, static_cast<uint32_t>(canvas.Get_Width()), 2);
    Append_Word(bytes, static_cast<uint32_t>(canvas.Get_Height()), 2);
    bytes.push_back(static_cast<uint8_t>(size * 8));
    bytes.push_back(static_cast<uint8_t>(FROM_THE_TOP | (size == 4 ? 8 : 0))); // 8 bits of alpha
    for (int row = 0; row < canvas.Get_Height(); ++row) {
        const auto offset = static_cast<size_t>(row) * static_cast<size_t>(canvas.Get_Width()) * 4;
        Append_Targa_Row(bytes, canvas.Get_Pixels().data() + offset, canvas.Get_Width(), size);
    }
    Write_File(path, bytes);
}

void Write_Block_Compressed(const std::string &path, const Canvas &canvas)
{
    constexpr uint32_t HAS_CAPS_SIZES_FORMAT_LEVELS_AND_LINEAR_SIZE = 0xA1007;
    constexpr uint32_t IS_COMPLEX_TEXTURE_WITH_LEVELS = 0x401008;
    constexpr uint32_t FORMAT_IS_A_CODE = 4;
    Bytes levels;
    uint32_t count = 1;
    Canvas level = canvas;
    Append_Blocks(levels, level);
    const auto first = static_cast<uint32_t>(levels.size());
    for (; level.Get_Width() > 1 || level.Get_Height() > 1; ++count) {
        level = level.Get_Half();
        Append_Blocks(levels, level);
    }

    Bytes bytes{'D', 'D', 'S', ' '};
    for (const uint32_t word :
         {124u, HAS_CAPS_SIZES_FORMAT_LEVELS_AND_LINEAR_SIZE, static_cast<uint32_t>(canvas.Get_Height()),
          static_cast<uint32_t>(canvas.Get_Width()), first, 0u, count})
        Append_Word(bytes, word, 4);
    bytes.resize(bytes.size() + 11 * 4);
    Append_Word(bytes, 32, 4);
    Append_Word(bytes, FORMAT_IS_A_CODE, 4);
    for (const char letter : {'D', 'X', 'T', '5'}) bytes.push_back(static_cast<uint8_t>(letter));
    bytes.resize(bytes.size() + 5 * 4);
    Append_Word(bytes, IS_COMPLEX_TEXTURE_WITH_LEVELS, 4);
    bytes.resize(bytes.size() + 4 * 4);
    bytes.insert(bytes.end(), levels.begin(), levels.end());
    Write_File(path, bytes);
}

} // namespace TextureMaker
