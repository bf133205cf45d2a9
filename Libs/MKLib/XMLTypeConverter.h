#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/MKString.h"

#include <cstdint>
#include <string_view>

/// The engine's plain types from the text of an XML element or attribute, the same under every locale. Blanks around a
/// value and between its parts don't matter; anything else left over is refused. On failure `value` stays as it was.
class XMLTypeConverter
{
public:
    static bool Convert(std::string_view text, bool &value); ///< "true", "false", "1" or "0", ignoring case
    static bool Convert(std::string_view text, int32_t &value);
    static bool Convert(std::string_view text, uint32_t &value);
    static bool Convert(std::string_view text, float &value);
    static bool Convert(std::string_view text, Vector2 &value);
    static bool Convert(std::string_view text, Vector3 &value);
    static bool Convert(std::string_view text, Vector4 &value);
    static bool Convert(std::string_view text, Vector2i &value);
    static bool Convert(std::string_view text, Vector4i &value);
    static bool Convert(std::string_view text, RGBAClass &value);  ///< red, green, blue and, 1 unless given, alpha
    static bool Convert(std::string_view text, MK::String &value); ///< as it stands, blanks included
    /// A name of an enum that EnumConverterClass knows.
    static bool Convert_Enum(std::string_view text, std::string_view enumName, int32_t &value);
};
