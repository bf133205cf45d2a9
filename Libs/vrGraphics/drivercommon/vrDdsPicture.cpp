#include "vrGraphics/drivercommon/vrDdsPicture.h"

#include "vrGraphics/drivercommon/vrBlockCodec.h"
#include "vrGraphics/drivercommon/vrPicture.h"

#include "MKLib/File/File.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace
{

using FormatType = vrPicture2D::FormatType;

constexpr size_t HEADER_BYTES = 128; ///< the signature with it
constexpr size_t EXTENDED_BYTES = 20;
constexpr size_t BYTES_PER_TEXEL = 4;
constexpr int FACES = 6;

constexpr uint32_t Four(const char (&text)[5])
{
    return static_cast<uint32_t>(static_cast<uint8_t>(text[0]) | static_cast<uint8_t>(text[1]) << 8 |
                                 static_cast<uint8_t>(text[2]) << 16 | static_cast<uint8_t>(text[3]) << 24);
}

constexpr uint32_t SIGNATURE = Four("DDS ");
constexpr uint32_t FORM_ALPHA = 0x1;
constexpr uint32_t FORM_ALPHA_ONLY = 0x2;
constexpr uint32_t FORM_FOUR = 0x4;
constexpr uint32_t FORM_COLOR = 0x40;
constexpr uint32_t FORM_GREY = 0x20000;
constexpr uint32_t CAPS_CUBE = 0x200;
constexpr uint32_t CAPS_ALL_FACES = 0xfc00;
constexpr uint32_t CAPS_VOLUME = 0x200000;
constexpr uint32_t EXTENDED_CUBE = 0x4;
constexpr uint32_t EXTENDED_2D = 3;

/// How texels lie in the file: in blocks, or as whole numbers with masks, of which one of 0 has no channel.
struct Layout
{
    FormatType Format = vrPicture2D::FORMAT_RGBA8;
    int Bytes = 0; ///< of a texel; 0 for blocks
    uint32_t Red = 0;
    uint32_t Green = 0;
    uint32_t Blue = 0;
    uint32_t Alpha = 0;
};

struct Header
{
    uint32_t Width = 0;
    uint32_t Height = 0;
    uint32_t Levels = 1;
    bool IsCube = false;
    Layout Texels;
};

uint32_t Read_32(const uint8_t *bytes)
{
    return bytes[0] | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 | uint32_t(bytes[3]) << 24;
}

bool Fail(std::string reason, std::string &error)
{
    error = std::move(reason);
    return false;
}

bool Read_Blocks_Layout(uint32_t four, Layout &layout, std::string &error)
{
    if (four == Four("DXT1"))
        layout.Format = vrPicture2D::FORMAT_BC1;
    else if (four == Four("DXT3"))
        layout.Format = vrPicture2D::FORMAT_BC2;
    else if (four == Four("DXT5"))
        layout.Format = vrPicture2D::FORMAT_BC3;
    else
        return Fail("a DDS picture of the form " + std::to_string(four) + ", which isn't known", error);
    return true;
}

/// The numbers of the extended header's forms that this system reads, the sRGB ones among them.
bool Read_Extended_Layout(uint32_t form, Layout &layout, std::string &error)
{
    switch (form) {
    case 28:
    case 29: layout = {vrPicture2D::FORMAT_RGBA8, 4, 0xff, 0xff00, 0xff0000, 0xff000000}; return true;
    case 71:
    case 72: layout.Format = vrPicture2D::FORMAT_BC1; return true;
    case 74:
    case 75: layout.Format = vrPicture2D::FORMAT_BC2; return true;
    case 77:
    case 78: layout.Format = vrPicture2D::FORMAT_BC3; return true;
    case 87:
    case 91: layout = {vrPicture2D::FORMAT_RGBA8, 4, 0xff0000, 0xff00, 0xff, 0xff000000}; return true;
    case 88:
    case 93: layout = {vrPicture2D::FORMAT_RGBA8, 4, 0xff0000, 0xff00, 0xff, 0}; return true;
    default: return Fail("a DDS picture of the extended form " + std::to_string(form) + ", which isn't known", error);
    }
}

bool Read_Masks_Layout(const uint8_t *bytes, uint32_t flags, Layout &layout, std::string &error)
{
    const uint32_t bits = Read_32(bytes + 88);
    if (bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return Fail("a DDS picture of " + std::to_string(bits) + " bits a texel, expected 8, 16, 24 or 32", error);
    layout.Bytes = static_cast<int>(bits / 8);
    layout.Red = Read_32(bytes + 92);
    layout.Green = flags & FORM_GREY ? layout.Red : Read_32(bytes + 96);
    layout.Blue = flags & FORM_GREY ? layout.Red : Read_32(bytes + 100);
    if (flags & (FORM_ALPHA | FORM_ALPHA_ONLY)) layout.Alpha = Read_32(bytes + 104);
    return true;
}

bool Read_Form(FileClass &file, const uint8_t *bytes, Header &header, std::string &error)
{
    const uint32_t flags = Read_32(bytes + 80);
    const uint32_t four = Read_32(bytes + 84);
    const uint32_t caps = Read_32(bytes + 112);
    if (caps & CAPS_VOLUME) return Fail("a DDS picture with depth, which isn't known", error);
    header.IsCube = (caps & CAPS_CUBE) != 0;
    if (header.IsCube && (caps & CAPS_ALL_FACES) != CAPS_ALL_FACES)
        return Fail("a DDS cube that hasn't all of its faces", error);
    if (!(flags & FORM_FOUR)) {
        if (flags & (FORM_COLOR | FORM_GREY | FORM_ALPHA_ONLY))
            return Read_Masks_Layout(bytes, flags, header.Texels, error);
        return Fail("a DDS picture that doesn't say its form", error);
    }
    if (four != Four("DX10")) return Read_Blocks_Layout(four, header.Texels, error);
    uint8_t extended[EXTENDED_BYTES] = {};
    if (file.Read(extended, EXTENDED_BYTES) != static_cast<int64_t>(EXTENDED_BYTES))
        return Fail("the file ends early, inside of its extended header", error);
    if (Read_32(extended + 4) != EXTENDED_2D) return Fail("a DDS picture that isn't flat", error);
    header.IsCube = (Read_32(extended + 8) & EXTENDED_CUBE) != 0;
    return Read_Extended_Layout(Read_32(extended), header.Texels, error);
}

bool Read_Header(FileClass &file, Header &header, std::string &error)
{
    uint8_t bytes[HEADER_BYTES] = {};
    const int64_t count = file.Read(bytes, HEADER_BYTES);
    if (count != static_cast<int64_t>(HEADER_BYTES))
        return Fail("the file ends early: a DDS header takes " + std::to_string(HEADER_BYTES) + " bytes, " +
                        std::to_string(count) + " are there",
                    error);
    if (Read_32(bytes) != SIGNATURE || Read_32(bytes + 4) != 124 || Read_32(bytes + 76) != 32)
        return Fail("not a DDS picture", error);
    header.Height = Read_32(bytes + 12);
    header.Width = Read_32(bytes + 16);
    header.Levels = std::max(Read_32(bytes + 28), 1u);
    if (header.Width == 0 || header.Height == 0 || header.Width > vrPicture::MAX_SIDE ||
        header.Height > vrPicture::MAX_SIDE || uint64_t(header.Width) * header.Height > vrPicture::MAX_PIXELS)
        return Fail("a picture of " + std::to_string(header.Width) + " by " + std::to_string(header.Height) +
                        " texels, expected 1 to " + std::to_string(vrPicture::MAX_SIDE) + " a side and at most " +
                        std::to_string(vrPicture::MAX_PIXELS) + " in all",
                    error);
    const auto possible = static_cast<uint32_t>(std::bit_width(std::max(header.Width, header.Height)));
    header.Levels = std::min(header.Levels, possible);
    return Read_Form(file, bytes, header, error);
}

size_t Get_Level_Bytes(const Layout &layout, uint32_t width, uint32_t height)
{
    if (layout.Bytes != 0) return size_t(width) * height * static_cast<size_t>(layout.Bytes);
    return size_t((width + 3) / 4) * ((height + 3) / 4) * static_cast<size_t>(Get_Block_Bytes(layout.Format));
}

size_t Get_Picture_Bytes(const Header &header)
{
    size_t bytes = 0;
    for (uint32_t level = 0; level < header.Levels; ++level)
        bytes +=
            Get_Level_Bytes(header.Texels, std::max(header.Width >> level, 1u), std::max(header.Height >> level, 1u));
    return bytes;
}

/// A channel of any width as 8 bits.
uint8_t Get_Channel(uint32_t texel, uint32_t mask, uint8_t without)
{
    if (mask == 0) return without;
    const int shift = std::countr_zero(mask);
    const uint64_t most = mask >> shift;
    return static_cast<uint8_t>((uint64_t((texel & mask) >> shift) * 255 + most / 2) / most);
}

std::vector<uint8_t> Spread_Texels(const Layout &layout, const std::vector<uint8_t> &bytes)
{
    const auto unit = static_cast<size_t>(layout.Bytes);
    std::vector<uint8_t> pixels(bytes.size() / unit * BYTES_PER_TEXEL);
    uint8_t *pixel = pixels.data();
    for (size_t at = 0; at < bytes.size(); at += unit, pixel += BYTES_PER_TEXEL) {
        uint32_t texel = 0;
        for (size_t byte = 0; byte < unit; ++byte) texel |= uint32_t(bytes[at + byte]) << byte * 8;
        pixel[0] = Get_Channel(texel, layout.Red, 0);
        pixel[1] = Get_Channel(texel, layout.Green, 0);
        pixel[2] = Get_Channel(texel, layout.Blue, 0);
        pixel[3] = Get_Channel(texel, layout.Alpha, 255);
    }
    return pixels;
}

bool Read_Levels(FileClass &file, const Header &header, vrPicture2D &picture, std::string &error)
{
    picture.Format = header.Texels.Format;
    for (uint32_t level = 0; level < header.Levels; ++level) {
        const uint32_t width = std::max(header.Width >> level, 1u);
        const uint32_t height = std::max(header.Height >> level, 1u);
        std::vector<uint8_t> bytes(Get_Level_Bytes(header.Texels, width, height));
        if (file.Read(bytes.data(), static_cast<int64_t>(bytes.size())) != static_cast<int64_t>(bytes.size()))
            return Fail("the file ends early, in level " + std::to_string(level), error);
        if (header.Texels.Bytes != 0) bytes = Spread_Texels(header.Texels, bytes);
        picture.Levels.push_back({static_cast<int>(width), static_cast<int>(height), std::move(bytes)});
    }
    return true;
}

/// Whether the file has what its header promises, before there is memory for it.
bool Has_Pictures(FileClass &file, const Header &header, int count, std::string &error)
{
    const size_t needed = Get_Picture_Bytes(header) * static_cast<size_t>(count);
    const int64_t left = std::max<int64_t>(file.Get_Size() - file.Tell(), 0);
    if (static_cast<size_t>(left) >= needed) return true;
    return Fail("the file ends early: " + std::to_string(header.Levels) + " levels take " + std::to_string(needed) +
                    " bytes, " + std::to_string(left) + " are left",
                error);
}

} // namespace

bool Load_Dds(FileClass &file, vrPicture2D &picture, std::string &error)
{
    Header header;
    vrPicture2D loaded;
    if (!Read_Header(file, header, error) || !Has_Pictures(file, header, 1, error) ||
        !Read_Levels(file, header, loaded, error))
        return false;
    picture = std::move(loaded);
    return true;
}

bool Load_Dds_Cube(FileClass &file, std::array<vrPicture2D, 6> &faces, std::string &error)
{
    Header header;
    if (!Read_Header(file, header, error)) return false;
    if (!header.IsCube || header.Width != header.Height) return Fail("not a cube", error);
    if (!Has_Pictures(file, header, FACES, error)) return false;
    std::array<vrPicture2D, 6> loaded;
    for (vrPicture2D &face : loaded)
        if (!Read_Levels(file, header, face, error)) return false;
    faces = std::move(loaded);
    return true;
}
