#include "vrGraphics/drivercommon/vrTgaPicture.h"

#include "vrGraphics/drivercommon/vrPicture.h"

#include "MKLib/File/File.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr size_t HEADER_BYTES = 18;
constexpr size_t BYTES_PER_TEXEL = 4;
constexpr int RUN_MAX = 128;

enum KindType : int
{
    KIND_PALETTE = 1,
    KIND_COLOR = 2,
    KIND_GREY = 3
};

constexpr int CODED = 8; ///< added to a kind
constexpr int ORIGIN_RIGHT = 0x10;
constexpr int ORIGIN_TOP = 0x20;
constexpr int ALPHA_BITS = 0x0f;

struct Header
{
    int Kind = 0;
    bool IsCoded = false;
    int PaletteStart = 0;
    int PaletteCount = 0;
    int PaletteBits = 0;
    int Width = 0;
    int Height = 0;
    int Bits = 0;
    int Descriptor = 0;
    int NameBytes = 0;

    /// Bytes of a texel, or of an index into the palette.
    size_t Get_Unit() const { return static_cast<size_t>(Bits + 7) / 8; }
    size_t Get_Texels() const { return static_cast<size_t>(Width) * static_cast<size_t>(Height); }
};

int Read_16(const uint8_t *bytes)
{
    return bytes[0] | bytes[1] << 8;
}

bool Is_Color_Bits(int bits)
{
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

/// Whether the fields fit together, which is all by which a TGA file can be told.
bool Is_Possible(const Header &header, int paletteKind)
{
    if (paletteKind > 1) return false;
    switch (header.Kind) {
    case KIND_PALETTE: return paletteKind == 1 && header.Bits == 8 && Is_Color_Bits(header.PaletteBits);
    case KIND_COLOR: return Is_Color_Bits(header.Bits);
    case KIND_GREY: return header.Bits == 8 || header.Bits == 16;
    default: return false;
    }
}

bool Read_Header(FileClass &file, Header &header, std::string &error)
{
    uint8_t bytes[HEADER_BYTES] = {};
    const int64_t count = file.Read(bytes, HEADER_BYTES);
    if (count != static_cast<int64_t>(HEADER_BYTES)) {
        error = "neither a PNG, a DDS nor a TGA picture: " + std::to_string(count) + " bytes are too short for any";
        return false;
    }
    header.NameBytes = bytes[0];
    header.Kind = bytes[2] & ~CODED;
    header.IsCoded = (bytes[2] & CODED) != 0;
    header.PaletteStart = Read_16(bytes + 3);
    header.PaletteCount = bytes[1] == 1 ? Read_16(bytes + 5) : 0;
    header.PaletteBits = bytes[7];
    header.Width = Read_16(bytes + 12);
    header.Height = Read_16(bytes + 14);
    header.Bits = bytes[16];
    header.Descriptor = bytes[17];
    if (!Is_Possible(header, bytes[1])) {
        error = "neither a PNG, a DDS nor a TGA picture of a kind that is known";
        return false;
    }
    if (header.Width == 0 || header.Height == 0 || header.Width > static_cast<int>(vrPicture::MAX_SIDE) ||
        header.Height > static_cast<int>(vrPicture::MAX_SIDE) || header.Get_Texels() > vrPicture::MAX_PIXELS)
    {
        error = "a picture of " + std::to_string(header.Width) + " by " + std::to_string(header.Height) +
                " texels, expected 1 to " + std::to_string(vrPicture::MAX_SIDE) + " a side and at most " +
                std::to_string(vrPicture::MAX_PIXELS) + " in all";
        return false;
    }
    return true;
}

/// Reads `size` bytes, of which the file is known to have that many left, or says that it hasn't.
bool Read_Bytes(FileClass &file, size_t size, std::vector<uint8_t> &bytes, const char *what, std::string &error)
{
    if (size == 0) return true;
    const int64_t left = file.Get_Size() - file.Tell();
    if (left >= static_cast<int64_t>(size)) {
        bytes.resize(size);
        if (file.Read(bytes.data(), static_cast<int64_t>(size)) == static_cast<int64_t>(size)) return true;
    }
    error = "the file ends early: " + std::string(what) + " takes " + std::to_string(size) + " bytes, " +
            std::to_string(std::max<int64_t>(left, 0)) + " are left";
    return false;
}

/// The units of all texels out of runs, each of which repeats one unit or lists up to 128.
bool Unfold_Runs(const std::vector<uint8_t> &coded, size_t unit, size_t texels, std::vector<uint8_t> &plain,
                 std::string &error)
{
    // A run of one unit can fill 128 texels, no more: what is shorter than that isn't worth the memory.
    if (coded.size() < (texels + RUN_MAX - 1) / RUN_MAX * (unit + 1)) {
        error = "the file ends early: " + std::to_string(coded.size()) + " bytes of runs can't fill " +
                std::to_string(texels) + " texels";
        return false;
    }
    plain.resize(texels * unit);
    size_t from = 0;
    size_t to = 0;
    while (to < plain.size()) {
        if (from >= coded.size()) break;
        const uint8_t packet = coded[from++];
        const size_t count = (packet & 0x7fu) + 1;
        const bool isRepeated = (packet & 0x80) != 0;
        const size_t bytes = count * unit;
        if (bytes > plain.size() - to) {
            error = "a run goes past the last texel";
            return false;
        }
        if ((isRepeated ? unit : bytes) > coded.size() - from) break;
        if (isRepeated) {
            for (size_t index = 0; index < count; ++index) std::memcpy(&plain[to + index * unit], &coded[from], unit);
        } else {
            std::memcpy(&plain[to], &coded[from], bytes);
        }
        from += isRepeated ? unit : bytes;
        to += bytes;
    }
    if (to == plain.size()) return true;
    error =
        "the file ends early: its runs fill " + std::to_string(to / unit) + " of " + std::to_string(texels) + " texels";
    return false;
}

uint8_t Spread_5(int value)
{
    return static_cast<uint8_t>(value << 3 | value >> 2);
}

void Put_Color(const uint8_t *unit, int bits, bool hasAlphaBit, uint8_t *texel)
{
    if (bits <= 16) {
        const int packed = Read_16(unit);
        texel[0] = Spread_5(packed >> 10 & 31);
        texel[1] = Spread_5(packed >> 5 & 31);
        texel[2] = Spread_5(packed & 31);
        texel[3] = hasAlphaBit && !(packed & 0x8000) ? 0 : 255;
        return;
    }
    texel[0] = unit[2];
    texel[1] = unit[1];
    texel[2] = unit[0];
    texel[3] = bits == 32 ? unit[3] : 255;
}

void Put_Grey(const uint8_t *unit, int bits, uint8_t *texel)
{
    texel[0] = texel[1] = texel[2] = unit[0];
    texel[3] = bits == 16 ? unit[1] : 255;
}

/// The palette as texels; an index that it hasn't gives black.
class Palette
{
public:
    bool Read(FileClass &file, const Header &header, std::string &error)
    {
        if (header.PaletteCount == 0) return true;
        const size_t unit = static_cast<size_t>(header.PaletteBits + 7) / 8;
        const size_t size = unit * static_cast<size_t>(header.PaletteCount);
        std::vector<uint8_t> bytes;
        if (!Read_Bytes(file, size, bytes, "the palette", error)) return false;
        if (header.Kind != KIND_PALETTE) return true; // of no use to any other
        for (int index = 0; index < header.PaletteCount && header.PaletteStart + index < ENTRIES; ++index)
            Put_Color(&bytes[static_cast<size_t>(index) * unit], header.PaletteBits, false,
                      Texels[header.PaletteStart + index]);
        return true;
    }
    void Put(uint8_t index, uint8_t *texel) const { std::memcpy(texel, Texels[index], BYTES_PER_TEXEL); }

private:
    static constexpr int ENTRIES = 256;
    uint8_t Texels[ENTRIES][BYTES_PER_TEXEL] = {};
};

std::vector<uint8_t> Spread_Units(const Header &header, const Palette &palette, const std::vector<uint8_t> &units)
{
    const bool hasAlphaBit = (header.Descriptor & ALPHA_BITS) != 0;
    const size_t unit = header.Get_Unit();
    const auto width = static_cast<size_t>(header.Width);
    const auto height = static_cast<size_t>(header.Height);
    std::vector<uint8_t> pixels(header.Get_Texels() * BYTES_PER_TEXEL);
    const uint8_t *from = units.data();
    for (size_t line = 0; line < height; ++line) {
        const size_t row = header.Descriptor & ORIGIN_TOP ? line : height - 1 - line;
        for (size_t place = 0; place < width; ++place, from += unit) {
            const size_t column = header.Descriptor & ORIGIN_RIGHT ? width - 1 - place : place;
            uint8_t *texel = &pixels[(row * width + column) * BYTES_PER_TEXEL];
            if (header.Kind == KIND_PALETTE)
                palette.Put(*from, texel);
            else if (header.Kind == KIND_GREY)
                Put_Grey(from, header.Bits, texel);
            else
                Put_Color(from, header.Bits, hasAlphaBit, texel);
        }
    }
    return pixels;
}

bool Read_Units(FileClass &file, const Header &header, std::vector<uint8_t> &units, std::string &error)
{
    const size_t size = header.Get_Texels() * header.Get_Unit();
    if (!header.IsCoded) return Read_Bytes(file, size, units, "the picture", error);
    // No coder needs more than a byte ahead of each texel; what lies behind that isn't the picture's.
    const int64_t left = std::max<int64_t>(file.Get_Size() - file.Tell(), 0);
    const size_t most = std::min(static_cast<size_t>(left), size + header.Get_Texels());
    std::vector<uint8_t> coded;
    return Read_Bytes(file, most, coded, "the picture", error) &&
           Unfold_Runs(coded, header.Get_Unit(), header.Get_Texels(), units, error);
}

/// How many texels from `at` on are equal, up to a run's limit.
int Count_Equal(const uint8_t *row, int at, int width)
{
    int count = 1;
    while (at + count < width && count < RUN_MAX &&
           std::memcmp(row + at * 4, row + (at + count) * 4, BYTES_PER_TEXEL) == 0)
        ++count;
    return count;
}

void Append_Texel(std::vector<uint8_t> &coded, const uint8_t *rgba)
{
    coded.insert(coded.end(), {rgba[2], rgba[1], rgba[0], rgba[3]});
}

void Fold_Row(const uint8_t *row, int width, std::vector<uint8_t> &coded)
{
    for (int at = 0; at < width;) {
        const int equal = Count_Equal(row, at, width);
        if (equal > 1) {
            coded.push_back(static_cast<uint8_t>(0x80 | (equal - 1)));
            Append_Texel(coded, row + at * 4);
            at += equal;
            continue;
        }
        int count = 1;
        while (at + count < width && count < RUN_MAX && Count_Equal(row, at + count, width) == 1) ++count;
        coded.push_back(static_cast<uint8_t>(count - 1));
        for (int index = 0; index < count; ++index) Append_Texel(coded, row + (at + index) * 4);
        at += count;
    }
}

} // namespace

bool Load_Tga(FileClass &file, vrPicture2D &picture, std::string &error)
{
    Header header;
    std::vector<uint8_t> name;
    Palette palette;
    std::vector<uint8_t> units;
    if (!Read_Header(file, header, error) ||
        !Read_Bytes(file, static_cast<size_t>(header.NameBytes), name, "the name", error) ||
        !palette.Read(file, header, error) || !Read_Units(file, header, units, error))
        return false;
    picture.Format = vrPicture2D::FORMAT_RGBA8;
    picture.Levels.clear();
    picture.Levels.push_back({header.Width, header.Height, Spread_Units(header, palette, units)});
    return true;
}

bool Write_Tga(FileClass &file, int width, int height, const uint8_t *rgba, std::string &error)
{
    constexpr int SIDE_MAX = 65535;
    if (width <= 0 || height <= 0 || width > SIDE_MAX || height > SIDE_MAX) {
        error = "a picture of " + std::to_string(width) + " by " + std::to_string(height) + " texels can't be written";
        return false;
    }
    std::vector<uint8_t> bytes(HEADER_BYTES);
    bytes[2] = KIND_COLOR | CODED;
    bytes[12] = static_cast<uint8_t>(width);
    bytes[13] = static_cast<uint8_t>(width >> 8);
    bytes[14] = static_cast<uint8_t>(height);
    bytes[15] = static_cast<uint8_t>(height >> 8);
    bytes[16] = 32;
    bytes[17] = ORIGIN_TOP | 8;
    for (int row = 0; row < height; ++row)
        Fold_Row(rgba + static_cast<size_t>(row) * static_cast<size_t>(width) * BYTES_PER_TEXEL, width, bytes);
    if (file.Write(bytes.data(), static_cast<int64_t>(bytes.size())) == static_cast<int64_t>(bytes.size())) return true;
    error = "the file can't be written";
    return false;
}
