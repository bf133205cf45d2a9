#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// Tables of named enums, so that data files hold names where the code holds numbers. A library registers its tables
/// when it starts; any thread may look up.
class EnumConverterClass
{
public:
    struct Entry
    {
        const char *Text;
        int32_t Value;
    };

    /// Keeps both arguments, which must be static. A name that is registered already gets the new table.
    static void Register(const char *enumName, std::span<const Entry> entries);
    static bool Is_Registered(std::string_view enumName);

    /// The value of a text, ignoring case. False, with `value` as it was, for an unknown text or enum.
    static bool To_Value(std::string_view enumName, std::string_view text, int32_t &value);
    /// The first text with that value; null for an unknown value or enum.
    static const char *To_Text(std::string_view enumName, int32_t value);

    /// The same in a table that needs no name.
    static bool To_Value(std::span<const Entry> entries, std::string_view text, int32_t &value);
    static const char *To_Text(std::span<const Entry> entries, int32_t value);
};
