#pragma once

#include "vro/JsonText.h"

namespace vro
{

/// All plugin kinds in the order of their ids, as `vro plugins --json` prints them.
Json Get_Plugin_Reference();

} // namespace vro
