#include "vrGraphics/plugins/modifiers/ColorModifiers.h"

namespace
{

// Indices into this are a file format.
constexpr const char *TIME_AXES[] = {"Time", "Dynamic Parameter 1"};

constexpr RGBAClass PALE_YELLOW = RGBA_From_Bytes(255, 255, 64, 255);

/// The pair of one channel, with ids in a row.
void Add_Variance(ParameterListClass &parameters, int32_t firstId, const char *minimumName,
                  const char *minimumDescription, const char *maximumName, const char *maximumDescription)
{
    parameters.Add_Float(firstId, minimumName, 0.0f, -1.0f, 0.0f, minimumDescription);
    parameters.Add_Float(firstId + 1, maximumName, 0.0f, 0.0f, 1.0f, maximumDescription);
}

} // namespace

vrMKPLinearColorModifier::vrMKPLinearColorModifier()
{
    Parameters.Add_RGBA(200, "Start Color", PALE_YELLOW, "Starting color");
    Parameters.Add_RGBA(201, "End Color", PALE_YELLOW, "Ending color");
}

vrMKPConstantColorModifier::vrMKPConstantColorModifier()
{
    Parameters.Add_RGBA(200, "Color", PALE_YELLOW, "Color of the particle.");
}

vrMKPKeyedColorModifier::vrMKPKeyedColorModifier()
{
    Parameters.Add_Keyed_RGBA(300, "Color", "Keyed color of the particle");
    Parameters.Add_Enum(301, "Time Axis", TIME_AXES, 0, "What to use for the time axis when keyframing.");
}

vrMKPColorVarianceModifier::vrMKPColorVarianceModifier()
{
    Add_Variance(Parameters, 200, "Min Red Variance", "Minimum amount to vary red by.", "Max Red Variance",
                 "Maximum amount to vary red by.");
    Add_Variance(Parameters, 202, "Min Green Variance", "Minimum amount to vary Green by.", "Max Green Variance",
                 "Maximum amount to vary Green by.");
    Add_Variance(Parameters, 204, "Min Blue Variance", "Minimum amount to vary Blue by.", "Max Blue Variance",
                 "Maximum amount to vary Blue by.");
    Parameters.Add_Bool(206, "Lock RGB", false, "Locks RGB variance to all be equal (based off the red value).");
    Add_Variance(Parameters, 207, "Min Alpha Variance", "Minimum amount to vary Alpha by.", "Max Alpha Variance",
                 "Maximum amount to vary Alpha by.");
    Parameters.Add_Bool(209, "Write Once", false, "Write the constant value only once at spawn.");
}
