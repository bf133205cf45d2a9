#pragma once

#include "MKLib/Parameters/ParametersFwd.h"

#include <string_view>

class vrMKPPlugin;

/// A plugin's parameter by its name, ignoring case, when it is of the kind; null otherwise.
BoolParameter *Find_Bool_Parameter(vrMKPPlugin &plugin, std::string_view name);
/// Texture and shader names are texts too.
StringParameterClass *Find_String_Parameter(vrMKPPlugin &plugin, std::string_view name);

/// Gives `heat` what it has in common with the visualizer that it takes the place of: render modes, depth test,
/// texture, shader and sorting. A parameter that one of the two lacks asserts and is left out.
void Copy_Heat_Parameters(vrMKPPlugin &heat, vrMKPPlugin &source);
