#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterList.h"

void Add_Keyframe_Timing(ParameterListClass &parameters, int id)
{
    parameters.Add_Float(id, "Duration", 1.0f, 0.01f, 300.0f, "Time in seconds over which the keys run from 0 to 1.");
    parameters.Add_Bool(id + 1, "Loop", true, "Start over at the end of the duration; otherwise the last key stays.");
}

void Add_Constant_Curve(ParameterListClass &parameters, int id, const char *name, float value, const char *description)
{
    parameters.Add_Keyed_Float(id, name, description)->Add_Key(0.0f, value);
}
