#include "MKPlatform/Paths.h"

namespace MKPlatform
{

namespace
{
constexpr std::string_view SEPARATORS = "\\/";
}

std::string_view Path_File_Name(std::string_view path)
{
    return path.substr(path.find_last_of(SEPARATORS) + 1); // npos + 1 is 0
}

std::string_view Path_Extension(std::string_view path)
{
    const std::string_view name = Path_File_Name(path);
    const size_t dot = name.rfind('.');
    return dot == name.npos ? std::string_view() : name.substr(dot);
}

std::string_view Path_Base_Name(std::string_view path)
{
    const std::string_view name = Path_File_Name(path);
    return name.substr(0, name.rfind('.'));
}

std::string_view Path_Directory(std::string_view path)
{
    const size_t separator = path.find_last_of(SEPARATORS);
    return separator == path.npos ? std::string_view() : path.substr(0, separator);
}

} // namespace MKPlatform
