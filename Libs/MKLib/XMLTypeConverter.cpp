#include "MKLib/XMLTypeConverter.h"

#include "MKLib/EnumConverter.h"

#include <charconv>
#include <system_error>

namespace
{

constexpr std::string_view BLANKS = " \t\r\n";

std::string_view Trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

/// Takes the next number off the front of `text`; a blank or the end must follow it.
template <typename T>
bool Take(std::string_view &text, T &value)
{
    const size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos) return false;
    text.remove_prefix(first);
    // from_chars knows no plus sign, which texts written by hand have.
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return text.empty() || BLANKS.find(text.front()) != std::string_view::npos;
}

template <typename T, size_t Count>
bool Take_All(std::string_view text, T (&values)[Count])
{
    for (T &value : values)
        if (!Take(text, value)) return false;
    return Trimmed(text).empty();
}

template <typename T>
bool Convert_Number(std::string_view text, T &value)
{
    T values[1];
    if (!Take_All(text, values)) return false;
    value = values[0];
    return true;
}

template <typename Vector>
bool Convert_Vector(std::string_view text, Vector &value)
{
    typename Vector::value_type values[Vector::length()];
    if (!Take_All(text, values)) return false;
    for (int component = 0; component < Vector::length(); ++component) value[component] = values[component];
    return true;
}

} // namespace

bool XMLTypeConverter::Convert(std::string_view text, bool &value)
{
    const std::string_view word = Trimmed(text);
    const bool isTrue = word == "1" || MK::Equal_Ignoring_Case(word, "true");
    if (!isTrue && word != "0" && !MK::Equal_Ignoring_Case(word, "false")) return false;
    value = isTrue;
    return true;
}

bool XMLTypeConverter::Convert(std::string_view text, int32_t &value)
{
    return Convert_Number(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, uint32_t &value)
{
    return Convert_Number(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, float &value)
{
    return Convert_Number(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, Vector2 &value)
{
    return Convert_Vector(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, Vector3 &value)
{
    return Convert_Vector(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, Vector4 &value)
{
    return Convert_Vector(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, Vector2i &value)
{
    return Convert_Vector(text, value);
}
bool XMLTypeConverter::Convert(std::string_view text, Vector4i &value)
{
    return Convert_Vector(text, value);
}

bool XMLTypeConverter::Convert(std::string_view text, RGBAClass &value)
{
    Vector4 components{1.0f};
    Vector3 opaque{1.0f};
    if (Convert(text, opaque))
        components = Vector4(opaque, 1.0f);
    else if (!Convert(text, components))
        return false;
    value = {components.x, components.y, components.z, components.w};
    return true;
}

bool XMLTypeConverter::Convert(std::string_view text, MK::String &value)
{
    value.assign(text.data(), text.size());
    return true;
}

bool XMLTypeConverter::Convert_Enum(std::string_view text, std::string_view enumName, int32_t &value)
{
    return EnumConverterClass::To_Value(enumName, Trimmed(text), value);
}
