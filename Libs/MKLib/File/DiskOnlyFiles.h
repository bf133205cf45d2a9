#pragma once

#include "MKLib/MKString.h"

#include <string_view>
#include <vector>

/// The set of file names (without directory) that are never looked for inside archives, and the roots under which their
/// `Data\` names are looked for first. Names match with A to Z equal to a to z. Any thread.
namespace DiskOnlyFiles
{

void Add(std::string_view name);
/// Whether what stands after the last separator of `path` is in the set.
bool Contains(std::string_view path);

void Set_Data_Roots(std::vector<MK::String> roots);
/// For a name that starts with `Data\`, after an optional `.` and then an optional separator: that name under each
/// root, in order. Empty for other names.
std::vector<MK::String> Data_Root_Names(std::string_view name);

} // namespace DiskOnlyFiles
