#include "vro/JsonText.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace vro
{

namespace
{

constexpr size_t LINE_WIDTH = 120;

std::string Float_Text(double value)
{
    char buffer[64];
    const auto narrow = static_cast<float>(value);
    auto end = std::to_chars(buffer, std::end(buffer), narrow).ptr;
    std::string text(buffer, end);
    // Readers go by way of a double; where its rounding would land on the neighbour, nine digits are far enough from it.
    if (static_cast<float>(std::strtod(text.c_str(), nullptr)) != narrow) {
        end = std::to_chars(buffer, std::end(buffer), narrow, std::chars_format::general, 9).ptr;
        text.assign(buffer, end);
    }
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

int Depth(const Json &value)
{
    int deepest = 0;
    if (value.is_structured())
        for (const Json &child : value) deepest = std::max(deepest, 1 + Depth(child));
    return deepest;
}

std::string Line_Text(const Json &value)
{
    if (value.is_number_float()) return Float_Text(value.get<double>());
    if (!value.is_structured()) return value.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string text;
    for (const auto &item : value.items()) {
        if (!text.empty()) text += ", ";
        if (value.is_object()) text += Json(item.key()).dump() + ": ";
        text += Line_Text(item.value());
    }
    if (value.is_array()) return "[" + text + "]";
    return text.empty() ? "{}" : "{ " + text + " }";
}

void Append(const Json &value, size_t indent, size_t column, std::string &text)
{
    if (Depth(value) <= 3) {
        const std::string line = Line_Text(value);
        if (column + line.size() <= LINE_WIDTH || !value.is_structured()) {
            text += line;
            return;
        }
    }
    const bool isObject = value.is_object();
    text += isObject ? "{\n" : "[\n";
    bool first = true;
    for (const auto &item : value.items()) {
        if (!first) text += ",\n";
        first = false;
        std::string start(indent + 2, ' ');
        if (isObject) start += Json(item.key()).dump() + ": ";
        text += start;
        Append(item.value(), indent + 2, start.size(), text);
    }
    text += '\n';
    text.append(indent, ' ');
    text += isObject ? '}' : ']';
}

} // namespace

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
