#include "vrGraphics/plugins/modifiers/SizeModifiers.h"

namespace
{

constexpr const char *START_TEXT = "Starting size";
constexpr const char *END_TEXT = "Ending size";
constexpr const char *UNIFORM_VARIATION_TEXT = "Size Variation Percentage";
constexpr const char *WIDTH_VARIATION_TEXT = "Width Variation Percentage";
constexpr const char *HEIGHT_VARIATION_TEXT = "Height Variation Percentage";

void Add_Ends(ParameterListClass &parameters, int32_t firstId, const char *startName, const char *endName)
{
    parameters.Add_Float(firstId, startName, 1.0f, 0.0f, 200.0f, START_TEXT);
    parameters.Add_Float(firstId + 1, endName, 1.0f, 0.0f, 200.0f, END_TEXT);
}

void Add_Constant_Size(ParameterListClass &parameters, int32_t id, const char *name, const char *description)
{
    parameters.Add_Float(id, name, 1.0f, 0.0f, 1000.0f, description);
}

/// A fraction: 0.25 varies a size by a quarter either way.
void Add_Variation(ParameterListClass &parameters, int32_t id, const char *name, const char *description)
{
    parameters.Add_Float(id, name, 0.0f, 0.0f, 1.0f, description);
}

void Add_Scale_By_Target_Radius(ParameterListClass &parameters, int32_t id)
{
    parameters.Add_Bool(id, "Scale by Target Radius", false,
                        "Multiply the size by the target radius passed in from XML.");
}

/// Ids 300 to 303.
void Add_Keyed_Width_And_Height(ParameterListClass &parameters)
{
    parameters.Add_Keyed_Float(300, "Width", "Width of particle");
    parameters.Add_Keyed_Float(301, "Height", "Height of particle");
    Add_Variation(parameters, 302, "Width Variation", WIDTH_VARIATION_TEXT);
    Add_Variation(parameters, 303, "Height Variation", HEIGHT_VARIATION_TEXT);
}

} // namespace

vrMKPLinearUniformSizeModifier::vrMKPLinearUniformSizeModifier()
{
    Add_Ends(Parameters, 200, "Start Size", "End Size");
    Add_Variation(Parameters, 202, "Size Variation", UNIFORM_VARIATION_TEXT);
    Add_Scale_By_Target_Radius(Parameters, 203);
}

vrMKPLinearSizeModifier::vrMKPLinearSizeModifier()
{
    Add_Ends(Parameters, 200, "Start Width", "End Width");
    Add_Variation(Parameters, 202, "Width Variation", WIDTH_VARIATION_TEXT);
    Add_Ends(Parameters, 203, "Start Height", "End Height");
    Add_Variation(Parameters, 205, "Height Variation", HEIGHT_VARIATION_TEXT);
    Add_Scale_By_Target_Radius(Parameters, 206);
}

vrMKPConstantUniformSizeModifier::vrMKPConstantUniformSizeModifier()
{
    Add_Constant_Size(Parameters, 200, "Size", "Size of a particle.");
    Add_Variation(Parameters, 201, "Size Variation", "Percentage to vary the size by.");
    Add_Scale_By_Target_Radius(Parameters, 202);
}

vrMKPConstantSizeModifier::vrMKPConstantSizeModifier()
{
    Add_Constant_Size(Parameters, 200, "Width", "Width of a particle.");
    Add_Constant_Size(Parameters, 201, "Height", "Height of a particle.");
    Add_Variation(Parameters, 202, "Width Variation", "Percentage to vary the width by.");
    Add_Variation(Parameters, 203, "Height Variation", "Percentage to vary the height by.");
    Add_Scale_By_Target_Radius(Parameters, 204);
}

vrMKPKeyedUniformSizeModifier::vrMKPKeyedUniformSizeModifier()
{
    Parameters.Add_Keyed_Float(300, "Size", "Size of particle");
    Add_Variation(Parameters, 301, "Size Variation", UNIFORM_VARIATION_TEXT);
    Add_Scale_By_Target_Radius(Parameters, 302);
}

vrMKPKeyedSizeModifier::vrMKPKeyedSizeModifier()
{
    Add_Keyed_Width_And_Height(Parameters);
    Add_Scale_By_Target_Radius(Parameters, 304);
}

vrMKPKeyedSphericalSizeModifier::vrMKPKeyedSphericalSizeModifier()
{
    Add_Keyed_Width_And_Height(Parameters);
    Parameters.Add_Float(305, "Start Radius", 0.0f, 0.0f, 10000.0f, "Radius to start at");
    Parameters.Add_Float(306, "End Radius", 35.0f, 0.0f, 10000.0f, "Radius to end at");
}

vrMKPNearAndFarUniformSizeModifier::vrMKPNearAndFarUniformSizeModifier()
{
    Parameters.Add_Float(300, "Near Distance", 10.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the group at which the near size displays.");
    Parameters.Add_Float(301, "Far Distance", -10.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the group at which the far size displays.");
    Parameters.Add_Float(302, "Near Size", 10.0f, 0.0f, 1000.0f, "Size at the start.");
    Parameters.Add_Float(303, "Far Size", 10.0f, 0.0f, 1000.0f, "Size at the end.");
}
