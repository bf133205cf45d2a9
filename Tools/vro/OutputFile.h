#pragma once

#include <string>
#include <string_view>

namespace vro
{

/// Puts `content` at `path`, or on standard output for "-". A file is written beside its target and then takes its place,
/// so that what fails leaves the target as it was. A target that is read-only is refused. False with `error` set.
bool Write_Output(const std::string &path, std::string_view content, std::string &error);

/// The whole of a file, or of standard input for "-". False with `error` set.
bool Read_Input(const std::string &path, std::string &content, std::string &error);

} // namespace vro
