#pragma once

#include <string>

namespace ManagedUtility
{

namespace Str
{

/// The text as the system's narrow functions take it. Both are UTF-8 here.
std::string ToStdString(const std::string &text);

} // namespace Str

namespace Cmd
{

/// Runs a command line without a window and waits, without limit, for its end. `directory` is where it runs, or null
/// for the current one. False when it can't be started; what it answers isn't looked at.
bool Execute_Command(const std::string &command, const char *directory);
/// Runs `p4 edit` on the file. Whether the file is writable now is the only judge of success.
bool Check_Out(const std::string &path);

} // namespace Cmd

} // namespace ManagedUtility
