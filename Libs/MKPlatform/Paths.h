#pragma once

#include <string>
#include <string_view>

/// Splitting of engine paths by text alone: `\` and `/` both separate.
namespace MKPlatform
{

/// What stands after the last separator.
std::string_view Path_File_Name(std::string_view path);
/// The extension of the file name with its dot, or empty. A dot at the name's start counts as one.
std::string_view Path_Extension(std::string_view path);
/// The file name without directory and extension.
std::string_view Path_Base_Name(std::string_view path);
/// What stands up to the last separator, without it.
std::string_view Path_Directory(std::string_view path);

} // namespace MKPlatform
