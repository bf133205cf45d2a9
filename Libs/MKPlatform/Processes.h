#pragma once

#include <string_view>

namespace MKPlatform
{

/// Runs a command line without a window and waits, without limit, for its end. The line is split into words as the
/// command interpreter of the tool's users does: blanks separate, double quotes hold a word together and `\"` is a quote;
/// no shell sees it. `directory` is the engine path to run in, or empty for the caller's. False when the process could
/// not be started; what it answered is not looked at. File handles are not inherited but for the three standard ones.
bool Run_And_Wait(std::string_view commandLine, std::string_view directory);

} // namespace MKPlatform
