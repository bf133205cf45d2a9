#include "vro/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vro
{

namespace
{

constexpr size_t LINE_WIDTH = 120;
/// Levels that a line may hold: an object of arrays of arrays.
constexpr int LINE_DEPTH = 3;

void Append_Scalar(const Json &value, std::string &text)
{
    if (value.is_number_float())
        Append_Float(value.get<float>(), text);
    else if (value.is_string())
        Append_String(value.get_ref<const std::string &>(), text);
    else
        text += value.dump();
}

/// Appends the value in one line. False, with `text` in any state, when it would pass `limit` characters or hold more
/// levels than `depth`.
bool Append_Line(const Json &value, int depth, size_t limit, std::string &text)
{
    if (!value.is_structured()) {
        Append_Scalar(value, text);
    } else if (value.empty()) {
        text += value.is_object() ? "{}" : "[]";
    } else {
        if (depth == 0) return false;
        bool first = true;
        text += value.is_object() ? "{ " : "[";
        for (auto item = value.begin(); item != value.end(); ++item) {
            if (!first) text += ", ";
            first = false;
            if (value.is_object()) {
                Append_String(item.key(), text);
                text += ": ";
            }
            if (!Append_Line(*item, depth - 1, limit, text)) return false;
        }
        text += value.is_object() ? " }" : "]";
    }
    return text.size() <= limit;
}

/// `column` is where in its line the value starts.
void Append(const Json &value, size_t indent, size_t column, std::string &text)
{
    if (!value.is_structured()) {
        Append_Scalar(value, text);
        return;
    }
    const size_t start = text.size();
    if (Append_Line(value, LINE_DEPTH, start + LINE_WIDTH - column, text)) return;
    text.resize(start);
    bool first = true;
    text += value.is_object() ? "{\n" : "[\n";
    for (auto item = value.begin(); item != value.end(); ++item) {
        if (!first) text += ",\n";
        first = false;
        const size_t lineStart = text.size();
        text.append(indent + 2, ' ');
        if (value.is_object()) {
            Append_String(item.key(), text);
            text += ": ";
        }
        Append(*item, indent + 2, text.size() - lineStart, text);
    }
    text += '\n';
    text.append(indent, ' ');
    text += value.is_object() ? '}' : ']';
}

} // namespace

void Append_Float(float value, std::string &text)
{
    if (!std::isfinite(value)) {
        text += std::isnan(value) ? "\"nan\"" : value > 0.0f ? "\"inf\"" : "\"-inf\"";
        return;
    }
    char buffer[64];
    char *end = std::to_chars(buffer, std::end(buffer), value).ptr;
    // Readers go by way of a double; where its rounding would land on the neighbour, nine digits are far enough from it.
    double asRead = 0.0;
    std::from_chars(buffer, end, asRead);
    if (static_cast<float>(asRead) != value)
        end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::general, 9).ptr;
    text.append(buffer, end);
    if (std::none_of(buffer, end, [](char letter) { return letter == '.' || letter == 'e'; })) text += ".0";
}

void Append_String(const std::string &value, std::string &text)
{
    const auto isPlain = [](char letter) { return letter >= 0x20 && letter != '"' && letter != '\\'; };
    if (std::all_of(value.begin(), value.end(), isPlain))
        text.append(1, '"').append(value).append(1, '"');
    else
        text += Json(value).dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json Float_To_Json(float value)
{
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0.0f ? "inf" : "-inf";
    return static_cast<double>(value);
}

std::string To_Text(const Json &document)
{
    std::string text;
    Append(document, 0, 0, text);
    text += '\n';
    return text;
}

} // namespace vro
