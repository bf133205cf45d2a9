#pragma once

#include "vro/SimulateOptions.h"

namespace CLI
{
class App;
}

namespace vro
{

/// Declares the arguments of `vro simulate`, which fill `options`. Parsing throws CLI::ParseError for what is wrong.
void Add_Simulate_Options(CLI::App &command, SimulateOptions &options);

} // namespace vro
