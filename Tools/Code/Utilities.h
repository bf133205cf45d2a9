#pragma once

#include <string>

namespace Utilities
{

/// Configures the loggers from a log4cxx properties file, given by engine path. Without the file the default stays:
/// warnings and worse on standard error.
void Initialize_Logger(const std::string &path);

} // namespace Utilities
