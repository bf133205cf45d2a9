#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace vro
{

/// JSON whose objects keep the order in which their members were added.
using Json = nlohmann::ordered_json;

/// A number that reads back to the same 32-bit float, or "nan", "inf" and "-inf".
Json Float_To_Json(float value);

// What documents that are written without a tree are made of: the same texts, appended.
void Append_Float(float value, std::string &text);
void Append_String(const std::string &value, std::string &text);

/// The text of a document: two blanks of indent, and what fits a line of 120 columns and holds no deeper structure than
/// an array of arrays stands in one line. Floats print as the shortest decimal that reads back to the same 32-bit float.
/// The text ends with a newline. Strings must be UTF-8.
std::string To_Text(const Json &document);

} // namespace vro
