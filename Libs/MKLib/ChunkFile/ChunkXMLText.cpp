#include "MKLib/ChunkFile/ChunkXMLText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace ChunkFile
{

namespace
{

constexpr uint32_t BYTE_CHARACTERS = 0xf000; ///< U+F000 to U+F0FF stand for bytes
constexpr uint32_t REPLACEMENT_CHARACTER = 0xfffd;
constexpr uint32_t NO_CHARACTER = 0xffffffff;
constexpr std::string_view BLANKS = " \t\r\n";

/// One character of UTF-8 text from the front, with its length; NO_CHARACTER, of one byte, when there is none.
uint32_t Decode_UTF8(std::string_view text, size_t &length)
{
    length = 1;
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) return lead;
    const size_t size = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < size) return NO_CHARACTER;
    uint32_t character = lead & (0x7fu >> size);
    for (size_t i = 1; i < size; ++i) {
        const auto next = static_cast<uint8_t>(text[i]);
        if ((next & 0xc0) != 0x80) return NO_CHARACTER;
        character = character << 6 | (next & 0x3fu);
    }
    constexpr uint32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
    if (character < SMALLEST[size] || character > 0x10ffff || (character >= 0xd800 && character < 0xe000))
        return NO_CHARACTER;
    length = size;
    return character;
}

void Append_UTF8(std::string &out, uint32_t character)
{
    const auto put = [&out](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xc0 | character >> 6);
        put(0x80 | (character & 0x3f));
    } else if (character < 0x10000) {
        put(0xe0 | character >> 12);
        put(0x80 | (character >> 6 & 0x3f));
        put(0x80 | (character & 0x3f));
    } else {
        put(0xf0 | character >> 18);
        put(0x80 | (character >> 12 & 0x3f));
        put(0x80 | (character >> 6 & 0x3f));
        put(0x80 | (character & 0x3f));
    }
}

bool XML_Can_Hold(uint32_t character)
{
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character != 0xfffe && character != 0xffff && character <= 0x10ffff;
}

bool Stands_For_A_Byte(uint32_t character)
{
    return character >= BYTE_CHARACTERS && character <= BYTE_CHARACTERS + 0xff;
}

void Append_Character(std::string &out, uint32_t character, bool isAttribute)
{
    switch (character) {
    case '&': out += "&amp;"; return;
    case '<': out += "&lt;"; return;
    case '>': out += "&gt;"; return;
    case '\r': out += "&#13;"; return; // a parser turns a bare one into a line feed
    case '"': out += isAttribute ? "&quot;" : "\""; return;
    case '\n': out += isAttribute ? "&#10;" : "\n"; return;
    case '\t': out += isAttribute ? "&#9;" : "\t"; return;
    default: Append_UTF8(out, character);
    }
}

void Append_Escaped(std::string &out, std::string_view bytes, bool isAttribute)
{
    while (!bytes.empty()) {
        size_t length = 0;
        const uint32_t character = Decode_UTF8(bytes, length);
        if (character != NO_CHARACTER && XML_Can_Hold(character) && !Stands_For_A_Byte(character))
            Append_Character(out, character, isAttribute);
        else
            for (size_t i = 0; i < length; ++i) Append_UTF8(out, BYTE_CHARACTERS + static_cast<uint8_t>(bytes[i]));
        bytes.remove_prefix(length);
    }
}

/// Takes the next blank-separated word off the front.
std::string_view Next_Word(std::string_view &text)
{
    const size_t start = text.find_first_not_of(BLANKS);
    if (start == text.npos) {
        text = {};
        return {};
    }
    text.remove_prefix(start);
    std::string_view word = text.substr(0, text.find_first_of(BLANKS));
    text.remove_prefix(word.size());
    if (word.starts_with('+')) word.remove_prefix(1);
    return word;
}

bool Is_Blank(std::string_view text)
{
    return text.find_first_not_of(BLANKS) == text.npos;
}

/// The whole word as a number, and nothing behind it.
template <typename T, typename... Options>
std::errc Parse_Word(std::string_view word, T &value, Options... options)
{
    const char *const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value, options...);
    if (error != std::errc()) return error;
    return stop == end ? std::errc() : std::errc::invalid_argument;
}

bool Parse_Float(std::string_view word, float &value)
{
    std::errc error = Parse_Word(word, value);
    if (error == std::errc::result_out_of_range) {
        double wide = 0.0;
        error = Parse_Word(word, wide);
        if (error != std::errc()) return false;
        const float limit = std::abs(wide) < 1.0 ? 0.0f : std::numeric_limits<float>::infinity();
        value = std::copysign(limit, static_cast<float>(wide > 0.0 ? 1.0 : -1.0));
    }
    return error == std::errc();
}

bool Parse_Int(std::string_view word, uint64_t &value, size_t bytes)
{
    const int bits = static_cast<int>(bytes * 8);
    if (word.starts_with('-')) {
        int64_t negative = 0;
        if (Parse_Word(word, negative) != std::errc() || negative < std::numeric_limits<int64_t>::min() >> (64 - bits))
            return false;
        value = static_cast<uint64_t>(negative);
        return true;
    }
    return Parse_Word(word, value) == std::errc() && value <= std::numeric_limits<uint64_t>::max() >> (64 - bits);
}

} // namespace

void Append_Float(std::string &out, float value)
{
    if (std::isnan(value)) {
        out += "nan";
        return;
    }
    char text[64]; // 39 digits before the point at most
    const auto end = std::to_chars(text, text + sizeof(text), static_cast<double>(value), std::chars_format::fixed, 6);
    out.append(text, end.ptr);
}

void Append_Int(std::string &out, int64_t value)
{
    char text[24];
    out.append(text, std::to_chars(text, text + sizeof(text), value).ptr);
}

void Append_UInt(std::string &out, uint64_t value)
{
    char text[24];
    out.append(text, std::to_chars(text, text + sizeof(text), value).ptr);
}

void Append_Hex(std::string &out, const uint8_t *bytes, size_t size, const char *digits)
{
    for (size_t i = 0; i < size; ++i) {
        out.push_back(digits[bytes[i] >> 4]);
        out.push_back(digits[bytes[i] & 15]);
    }
}

void Append_Text(std::string &out, std::string_view bytes)
{
    Append_Escaped(out, bytes, false);
}

void Append_Attribute(std::string &out, std::string_view bytes)
{
    Append_Escaped(out, bytes, true);
}

void Append_Wide_Text(std::string &out, std::u16string_view text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t character = text[i];
        const bool isPair = character >= 0xd800 && character < 0xdc00 && i + 1 < text.size() && text[i + 1] >= 0xdc00 &&
                            text[i + 1] < 0xe000;
        if (isPair)
            character = 0x10000 + ((character - 0xd800) << 10) + (text[++i] - 0xdc00u);
        else if ((character >= 0xd800 && character < 0xe000) || !XML_Can_Hold(character))
            character = REPLACEMENT_CHARACTER;
        Append_Character(out, character, false);
    }
}

bool Parse_Floats(std::string_view text, float *values, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (!Parse_Float(Next_Word(text), values[i])) return false;
    return Is_Blank(text);
}

bool Parse_Ints(std::string_view text, uint64_t *values, size_t count, size_t bytes)
{
    for (size_t i = 0; i < count; ++i)
        if (!Parse_Int(Next_Word(text), values[i], bytes)) return false;
    return Is_Blank(text);
}

bool Parse_Pointer(std::string_view text, uint32_t &value)
{
    return Parse_Word(Next_Word(text), value, 16) == std::errc() && Is_Blank(text);
}

bool Parse_Pair(std::string_view text, uint32_t values[2])
{
    const size_t comma = text.find(',');
    uint64_t first = 0;
    uint64_t second = 0;
    if (comma == text.npos || !Parse_Ints(text.substr(0, comma), &first, 1, 4) ||
        !Parse_Ints(text.substr(comma + 1), &second, 1, 4))
        return false;
    values[0] = static_cast<uint32_t>(first);
    values[1] = static_cast<uint32_t>(second);
    return true;
}

bool Parse_Hex(std::string_view text, std::vector<uint8_t> &bytes)
{
    bytes.clear();
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
        uint8_t byte = 0;
        if (Parse_Word(text.substr(i, 2), byte, 16) != std::errc()) return false;
        bytes.push_back(byte);
    }
    return true;
}

std::string Bytes_Of_Text(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) {
        size_t length = 0;
        const uint32_t character = Decode_UTF8(text, length);
        if (character != NO_CHARACTER && Stands_For_A_Byte(character))
            bytes.push_back(static_cast<char>(character - BYTE_CHARACTERS));
        else
            bytes.append(text.substr(0, length));
        text.remove_prefix(length);
    }
    return bytes;
}

std::u16string Wide_Of_Text(std::string_view text)
{
    std::u16string wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        size_t length = 0;
        const uint32_t character = Decode_UTF8(text, length);
        text.remove_prefix(length);
        if (character == NO_CHARACTER) {
            wide.push_back(static_cast<char16_t>(REPLACEMENT_CHARACTER));
        } else if (character >= 0x10000) {
            wide.push_back(static_cast<char16_t>(0xd800 + ((character - 0x10000) >> 10)));
            wide.push_back(static_cast<char16_t>(0xdc00 + ((character - 0x10000) & 0x3ff)));
        } else {
            wide.push_back(static_cast<char16_t>(character));
        }
    }
    return wide;
}

} // namespace ChunkFile
