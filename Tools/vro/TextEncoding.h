#pragma once

#include <string>
#include <string_view>

/// Texts of a file are bytes; texts of the JSON are UTF-8.
namespace vro
{

bool Is_Valid_Utf8(std::string_view text);

/// The bytes as Windows-1252, in UTF-8. The five bytes that Windows-1252 leaves open become the control characters of
/// their number, so that every byte has a character of its own.
std::string Windows_1252_To_Utf8(std::string_view bytes);

/// The reverse. False when `text` isn't UTF-8 or has a character that Windows-1252 lacks.
bool Utf8_To_Windows_1252(std::string_view text, std::string &bytes);

} // namespace vro
