#include "vro/OptionText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace vro
{

namespace
{

template <typename T>
bool Read(std::string_view text, T &value)
{
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool Read_Finite(std::string_view text, float &value)
{
    return Read(text, value) && std::isfinite(value);
}

std::string Number_Text(float value)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, std::end(buffer), value).ptr};
}

} // namespace

std::string Quoted(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const size_t at = text.find(separator);
        parts.push_back(text.substr(0, at));
        if (at == std::string_view::npos) return parts;
        text.remove_prefix(at + 1);
    }
}

bool Read_Whole(std::string_view text, int &value)
{
    return Read(text, value);
}

bool Read_Whole(std::string_view text, float &value)
{
    return Read(text, value);
}

std::string Parse_Integer(const std::string &text, int least, int greatest, int &value)
{
    if (Read_Whole(text, value) && value >= least && value <= greatest) return {};
    return "expected a whole number of " + std::to_string(least) + " to " + std::to_string(greatest) + ", found " +
           Quoted(text);
}

std::string Parse_Number(const std::string &text, float least, float greatest, float &value)
{
    if (!Read_Finite(text, value)) return "expected a finite number, found " + Quoted(text);
    if (value >= least && value <= greatest) return {};
    const std::string range = greatest == std::numeric_limits<float>::max()
                                  ? "at least " + Number_Text(least)
                                  : Number_Text(least) + " to " + Number_Text(greatest);
    return "expected " + range + ", found " + Quoted(text);
}

std::string Parse_Vector(const std::string &text, Vector3 &value)
{
    const auto parts = Split(text, ',');
    bool isWell = parts.size() == 3;
    for (int axis = 0; isWell && axis < 3; ++axis) isWell = Read_Finite(parts[static_cast<size_t>(axis)], value[axis]);
    return isWell ? std::string() : "expected X,Y,Z, three finite numbers, found " + Quoted(text);
}

std::string Parse_Numbered(std::string_view text, char separator, const char *form, int greatest, int &number,
                           std::string &rest)
{
    const size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::string("expected ") + form + ", found " + Quoted(text);
    rest = text.substr(at + 1);
    return Parse_Integer(std::string(text.substr(0, at)), 1, greatest, number);
}

} // namespace vro
