#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Texts of the XML form. Numbers are the C locale's whatever the process's locale is.
///
/// Strings are bytes, and XML holds only some characters. A byte that it can't hold (a control character, or one that
/// is not part of UTF-8 text) is written as the private-use character U+F000 plus the byte, and becomes the byte again
/// on reading; so do the bytes of a character from U+F000 to U+F0FF.
namespace ChunkFile
{

void Append_Float(std::string &out, float value); ///< as `%f`; `nan`, `inf` and `-inf` for what is not finite
void Append_Int(std::string &out, int64_t value);
void Append_UInt(std::string &out, uint64_t value);
void Append_Hex(std::string &out, const uint8_t *bytes, size_t size, const char *digits);
void Append_Text(std::string &out, std::string_view bytes);      ///< as an element's content
void Append_Attribute(std::string &out, std::string_view bytes); ///< as an attribute's value, without the quotes
/// As an element's content; a unit that XML can't hold becomes U+FFFD.
void Append_Wide_Text(std::string &out, std::u16string_view text);

/// `count` numbers separated by blanks, and nothing else.
bool Parse_Floats(std::string_view text, float *values, size_t count);
/// Decimal integers, signed or unsigned; a number that needs more than `bytes` bytes is refused.
bool Parse_Ints(std::string_view text, uint64_t *values, size_t count, size_t bytes);
bool Parse_Pointer(std::string_view text, uint32_t &value);
/// `"%i, %i"`
bool Parse_Pair(std::string_view text, uint32_t values[2]);
/// Two hexadecimal digits a byte.
bool Parse_Hex(std::string_view text, std::vector<uint8_t> &bytes);
std::string Bytes_Of_Text(std::string_view text);
std::u16string Wide_Of_Text(std::string_view text);

} // namespace ChunkFile
