#pragma once

class ParameterListClass;

/// Appends "Duration" (`id`) and "Loop" (`id` + 1) to a plugin of a whole renderable. Such a plugin's keys run from 0
/// to 1 over the duration, counted from the renderable's start; without a loop the last ones stay.
void Add_Keyframe_Timing(ParameterListClass &parameters, int id);
/// Appends a float curve that is `value` at all times until an artist keys it.
void Add_Constant_Curve(ParameterListClass &parameters, int id, const char *name, float value, const char *description);
