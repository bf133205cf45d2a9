#pragma once

#include "MKLib/Parameters/ParametersFwd.h"

/// The clock of the keys of a whole renderable: they run from 0 to 1 over "Duration", counted from the renderable's
/// start; without "Loop" the last ones stay.
struct KeyframeTiming
{
    RangedFloatParameter *Duration;
    BoolParameter *Loop;

    /// Where the keys stand, 0 to 1. All is over at once for a duration that isn't positive.
    float Get_Key_Time(float runningTime) const;
};

/// Appends "Duration" (`id`) and "Loop" (`id` + 1).
KeyframeTiming Add_Keyframe_Timing(ParameterListClass &parameters, int id);
/// Appends a float curve that is `value` at all times until an artist keys it.
KeyedFloatParameterClass *Add_Constant_Curve(ParameterListClass &parameters, int id, const char *name, float value,
                                             const char *description);
/// The curve at a key time.
float Evaluate_Curve(const KeyedFloatParameterClass &curve, float keyTime);
