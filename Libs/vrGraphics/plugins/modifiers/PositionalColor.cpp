#include "vrGraphics/plugins/modifiers/PositionalColor.h"

namespace
{

constexpr RGBAClass CLEAR_BLACK = RGBA_From_Bytes(0, 0, 0, 0);
constexpr RGBAClass WHITE = RGBA_From_Bytes(255, 255, 255, 255);

constexpr const char *START_COLOR_TEXT = "Color at the start.";
constexpr const char *END_COLOR_TEXT = "Color at the end.";

/// Ids 300 to 302.
void Add_Axis_And_Distances(ParameterListClass &parameters, const char *startDescription, const char *endDescription)
{
    parameters.Add_Vector3(300, "Axis", Vector3(0.0f, 0.0f, 1.0f),
                           "Direction vector along which to tint the particles.");
    parameters.Add_Float(301, "Start Distance", 0.0f, -1000.0f, 1000.0f, startDescription);
    parameters.Add_Float(302, "End Distance", 10.0f, -1000.0f, 1000.0f, endDescription);
}

/// Ids 302 and 303.
void Add_Near_And_Far_Color(ParameterListClass &parameters)
{
    parameters.Add_RGBA(302, "Near Color", WHITE, START_COLOR_TEXT);
    parameters.Add_RGBA(303, "Far Color", CLEAR_BLACK, END_COLOR_TEXT);
}

void Add_Particle_Count(ParameterListClass &parameters, int32_t id)
{
    parameters.Add_Int(id, "Particle Count", 0, 0, 1000,
                       "Particle count at the time of max shading.\nUse this to approximate the effect of shadows "
                       "becoming darker as more particles occlude the light source.\nShadows will gradually increase "
                       "as the number of particles approaches this value.\nA value of 0 gives the full shading at any "
                       "number of particles.");
}

/// A surface that the sun lights: ids 0 to 2, and the count's own.
void Add_Lit_Surface(ParameterListClass &parameters, int32_t particleCountId)
{
    parameters.Add_RGBA(0, "Light Color", WHITE, "Color of the lit portions of the system.");
    parameters.Add_RGBA(1, "Shadow Color", RGBA_From_Bytes(96, 96, 96, 255),
                        "Color at the dark portions of the system.");
    parameters.Add_Float(2, "Light Wrap", 2.0f, 1.0f, 8.0f,
                         "Amount to extend the light around the surface.\nA value of 1 creates normal lighting, 2 "
                         "creates softer lighting, etc.");
    Add_Particle_Count(parameters, particleCountId);
}

} // namespace

vrMKPPositionalKeyedColorModifier::vrMKPPositionalKeyedColorModifier()
{
    Add_Axis_And_Distances(Parameters,
                           "Distance from the center of the group at which the color change starts.\nThis corresponds "
                           "to position 0 in the graph.",
                           "Distance from the center of the group at which the color change end.\nThis corresponds to "
                           "position 1 in the graph.");
    Parameters.Add_Keyed_RGBA(303, "Color", "Positionally keyed color of the particle");
}

vrMKPPositionalColorModifier::vrMKPPositionalColorModifier()
{
    Add_Axis_And_Distances(Parameters, "Distance from the center of the group at which the color change starts.",
                           "Distance from the center of the group at which the color change ends.");
    Parameters.Add_RGBA(303, "Start Color", CLEAR_BLACK, START_COLOR_TEXT);
    Parameters.Add_RGBA(304, "End Color", WHITE, END_COLOR_TEXT);
}

vrMKPNearAndFarColorModifier::vrMKPNearAndFarColorModifier()
{
    Parameters.Add_Float(300, "Near Distance", 10.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the group at which the color change starts.");
    Parameters.Add_Float(301, "Far Distance", -10.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the group at which the color change ends.");
    Add_Near_And_Far_Color(Parameters);
}

vrMKPDepthColorModifier::vrMKPDepthColorModifier()
{
    Parameters.Add_Float(300, "Near Depth", 10.0f, 0.0f, 10000.0f,
                         "Distance from the camera at which the color change starts.");
    Parameters.Add_Float(301, "Far Depth", 1200.0f, 0.0f, 10000.0f,
                         "Distance from the camera at which the color change ends.");
    Add_Near_And_Far_Color(Parameters);
}

vrMKPCylindricalColorModifier::vrMKPCylindricalColorModifier()
{
    Add_Lit_Surface(Parameters, 3);
}

vrMKPSphericalColorModifier::vrMKPSphericalColorModifier()
{
    Add_Lit_Surface(Parameters, 7);
}

vrMKPRadialColorModifier::vrMKPRadialColorModifier()
{
    Parameters.Add_RGBA(0, "Start Color", RGBA_From_Bytes(128, 128, 128, 255), "Color near the centroid.");
    Parameters.Add_RGBA(1, "End Color", WHITE, "Color far from the centroid.");
    Parameters.Add_Float(2, "Start Radius", 0.0f, 0.0f, 1000.0f, "Start distance of the color (nearer the centroid).");
    Parameters.Add_Float(3, "End Radius", 10.0f, 0.0f, 1000.0f,
                         "End distance of the color (farthest from the centroid)");
    Add_Particle_Count(Parameters, 5);
}
