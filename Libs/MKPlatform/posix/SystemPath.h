#pragma once

#include <string>
#include <string_view>

namespace MKPlatform
{

constexpr char Lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// The path with `/` as its only separator and nothing else changed.
std::string With_System_Separators(std::string_view enginePath);

} // namespace MKPlatform
