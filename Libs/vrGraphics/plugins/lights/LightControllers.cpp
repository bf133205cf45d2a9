#include "vrGraphics/plugins/lights/LightControllers.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

namespace
{

constexpr const char *COLOR_TEXT = "Color of the light.";
constexpr const char *INTENSITY_TEXT = "Strength of the light; the color is multiplied by it.";

// What a light without keys has, with the same ids in each kind.
void Add_Steady_Light(ParameterListClass &parameters)
{
    parameters.Add_RGBA(100, "Color", RGBAClass(), COLOR_TEXT);
    parameters.Add_Float(101, "Intensity", 1.0f, 0.0f, 100.0f, INTENSITY_TEXT);
    parameters.Add_Float(102, "Flicker Amount", 0.0f, 0.0f, 1.0f,
                         "Part of the intensity that comes and goes at random.");
    parameters.Add_Float(103, "Flicker Rate", 10.0f, 0.0f, 100.0f, "Number of random intensities per second.");
}

} // namespace

vrMKPLegacyLightSourceController::vrMKPLegacyLightSourceController()
{
    Add_Steady_Light(Parameters);
    Parameters.Add_Float(110, "Start Delay", 0.0f, 0.0f, 300.0f, "Time in seconds before the light comes on.");
    Parameters.Add_Float(111, "Duration", 0.0f, 0.0f, 300.0f,
                         "Time in seconds that the light stays on (0 = As long as the group).");
    Parameters.Add_Float(112, "Fade In Time", 0.0f, 0.0f, 60.0f, "Time in seconds to reach full intensity.");
    Parameters.Add_Float(113, "Fade Out Time", 0.0f, 0.0f, 60.0f, "Time in seconds to go out at the end.");
}

vrMKPKeyedLightSourceController::vrMKPKeyedLightSourceController()
{
    Add_Keyframe_Timing(Parameters, 100);
    Parameters.Add_Keyed_RGBA(102, "Color", COLOR_TEXT)->Add_Key(0.0f, RGBAClass());
    Add_Constant_Curve(Parameters, 103, "Intensity", 1.0f, INTENSITY_TEXT);
    Add_Constant_Curve(Parameters, 104, "Radius Scale", 1.0f, "Factor for both radii.");
}

vrMKPCentroidLightSourceController::vrMKPCentroidLightSourceController()
{
    Add_Steady_Light(Parameters);
    Parameters.Add_String(120, "Layer Name", "",
                          "Name of the particle layer to follow. Without a name, the first layer of the group.");
}
