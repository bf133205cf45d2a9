#pragma once

#include "vro/RenderOptions.h"

namespace CLI
{
class App;
}

namespace vro
{

/// Declares the arguments of `vro render`, which fill `options`. Parsing throws CLI::ParseError for what is wrong.
void Add_Render_Options(CLI::App &command, RenderOptions &options);

} // namespace vro
