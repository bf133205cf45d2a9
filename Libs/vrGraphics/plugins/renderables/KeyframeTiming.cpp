#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterList.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"

float KeyframeTiming::Get_Key_Time(float runningTime) const
{
    const float duration = Duration->Get_Value();
    if (!(duration > 0.0f)) return 1.0f;
    const float rounds = runningTime / duration;
    return Particle::Clamp_01(Loop->Get_Value() ? rounds - std::floor(rounds) : rounds);
}

KeyframeTiming Add_Keyframe_Timing(ParameterListClass &parameters, int id)
{
    return {parameters.Add_Float(id, "Duration", 1.0f, 0.01f, 300.0f,
                                 "Time in seconds over which the keys run from 0 to 1."),
            parameters.Add_Bool(id + 1, "Loop", true,
                                "Start over at the end of the duration; otherwise the last key stays.")};
}

KeyedFloatParameterClass *Add_Constant_Curve(ParameterListClass &parameters, int id, const char *name, float value,
                                             const char *description)
{
    KeyedFloatParameterClass *const curve = parameters.Add_Keyed_Float(id, name, description);
    curve->Add_Key(0.0f, value);
    return curve;
}

float Evaluate_Curve(const KeyedFloatParameterClass &curve, float keyTime)
{
    float value = 0.0f;
    curve.Evaluate(keyTime, false, value);
    return value;
}
