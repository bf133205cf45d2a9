#pragma once

/// Reads the texts of options. What a `Parse_...` answers is empty, or what is wrong with the text.

#include "MKLib/MKMath/Vectors.h"

#include <string>
#include <string_view>
#include <vector>

namespace vro
{

std::string Quoted(std::string_view text);
std::vector<std::string_view> Split(std::string_view text, char separator);
/// The whole text as a number, in the C locale; it may be infinite or none.
bool Read_Whole(std::string_view text, int &value);
bool Read_Whole(std::string_view text, float &value);

/// Three finite numbers, with commas between.
std::string Parse_Vector(const std::string &text, Vector3 &value);
std::string Parse_Number(const std::string &text, float least, float greatest, float &value);
std::string Parse_Integer(const std::string &text, int least, int greatest, int &value);
/// "LEFT<separator>RIGHT", with the left part a whole number of 1 to `greatest`; `form` says so to people.
std::string Parse_Numbered(std::string_view text, char separator, const char *form, int greatest, int &number,
                           std::string &rest);

} // namespace vro
