#include "vrGraphics/plugins/modifiers/Interpolating.h"

namespace
{

constexpr const char *TIME_TEXT = "(0..1) <-> (spawn..death)";

BoolParameter *Add_Smooth(ParameterListClass &parameters, int32_t id)
{
    return parameters.Add_Bool(id, "Flat Tangent Smooth", false, "True for smooth, False for linear");
}

} // namespace

vrMKPLinearModifier::vrMKPLinearModifier()
{
    StartTime = Parameters.Add_Float(100, "Start Time", 0.0f, 0.0f, 1.0f, TIME_TEXT);
    EndTime = Parameters.Add_Float(101, "End Time", 1.0f, 0.0f, 1.0f, TIME_TEXT);
    Smooth = Add_Smooth(Parameters, 102);
}

vrMKPConstantModifier::vrMKPConstantModifier()
{
    WriteOnce = Parameters.Add_Bool(100, "Write Once", true, "Write the constant value only once at spawn.");
}

vrMKPKeyedModifier::vrMKPKeyedModifier()
{
    Smooth = Add_Smooth(Parameters, 200);
}
