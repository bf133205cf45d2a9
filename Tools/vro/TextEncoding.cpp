#include "vro/TextEncoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace vro
{

namespace
{

/// Windows-1252's characters of 0x80 to 0x9f; the rest of the page is Latin-1.
constexpr char16_t UPPER_CONTROLS[32] = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

/// Reads one code point at `position` and moves past it. False where the text isn't well-formed UTF-8.
bool Next_Code_Point(std::string_view text, size_t &position, uint32_t &codePoint)
{
    const auto byte = [&](size_t index) { return static_cast<uint8_t>(text[index]); };
    const uint8_t first = byte(position);
    const int length = first < 0x80 ? 1 : first >= 0xc2 && first < 0xe0 ? 2 : first >= 0xe0 && first < 0xf0 ? 3 : 4;
    if (length == 4 && (first < 0xf0 || first > 0xf4)) return false;
    if (position + static_cast<size_t>(length) > text.size()) return false;
    codePoint = length == 1 ? first : first & (0x7fu >> length);
    for (int i = 1; i < length; ++i) {
        const uint8_t next = byte(position + static_cast<size_t>(i));
        if ((next & 0xc0) != 0x80) return false;
        codePoint = codePoint << 6 | (next & 0x3fu);
    }
    constexpr uint32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
    if (codePoint < LEAST[length] || codePoint > 0x10ffff || (codePoint >= 0xd800 && codePoint <= 0xdfff)) return false;
    position += static_cast<size_t>(length);
    return true;
}

} // namespace

bool Is_Valid_Utf8(std::string_view text)
{
    uint32_t codePoint = 0;
    for (size_t position = 0; position < text.size();)
        if (!Next_Code_Point(text, position, codePoint)) return false;
    return true;
}

std::string Windows_1252_To_Utf8(std::string_view bytes)
{
    std::string text;
    for (const char raw : bytes) {
        const auto byte = static_cast<uint8_t>(raw);
        const uint32_t codePoint = byte >= 0x80 && byte < 0xa0 ? UPPER_CONTROLS[byte - 0x80] : byte;
        if (codePoint < 0x80) {
            text += static_cast<char>(codePoint);
        } else if (codePoint < 0x800) {
            text += static_cast<char>(0xc0 | codePoint >> 6);
            text += static_cast<char>(0x80 | (codePoint & 0x3f));
        } else {
            text += static_cast<char>(0xe0 | codePoint >> 12);
            text += static_cast<char>(0x80 | (codePoint >> 6 & 0x3f));
            text += static_cast<char>(0x80 | (codePoint & 0x3f));
        }
    }
    return text;
}

bool Utf8_To_Windows_1252(std::string_view text, std::string &bytes)
{
    bytes.clear();
    uint32_t codePoint = 0;
    for (size_t position = 0; position < text.size();) {
        if (!Next_Code_Point(text, position, codePoint)) return false;
        if (codePoint < 0x80 || (codePoint >= 0xa0 && codePoint < 0x100)) {
            bytes += static_cast<char>(codePoint);
            continue;
        }
        const auto *found = std::find(std::begin(UPPER_CONTROLS), std::end(UPPER_CONTROLS), codePoint);
        if (found == std::end(UPPER_CONTROLS)) return false;
        bytes += static_cast<char>(0x80 + (found - std::begin(UPPER_CONTROLS)));
    }
    return true;
}

} // namespace vro
