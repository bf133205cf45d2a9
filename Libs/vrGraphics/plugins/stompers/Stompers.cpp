#include "vrGraphics/plugins/stompers/Stompers.h"

namespace
{

// Indices into these are a file format.
constexpr const char *TARGET_POSITIONS[] = {"Emitter", "Bone", "Target", "Projectile Target Start",
                                            "Projectile Target Current (For Homing)"};
constexpr const char *STOMP_AXES[] = {"X", "Y", "Z"};
constexpr const char *COMPARISONS[] = {"Greater Than", "Less Than"};
constexpr const char *DYNAMIC_RADIUS_TEXT = "Use the dynamic target radius value passed in from XML.";

} // namespace

vrMKPRadiusStomper::vrMKPRadiusStomper()
{
    Parameters.Add_Float(100, "Stomp Radius", 100.0f, 0.0f, 1000.0f, "Distance beyond which to stomp particles");
    Parameters.Add_Bool(101, "Use Target Radius", false, DYNAMIC_RADIUS_TEXT);
}

vrMKPTerrainStomper::vrMKPTerrainStomper()
{
    Parameters.Add_Vector3(100, "Intersection Offset", Vector3(0.0f),
                           "The offset from the particle center to use for collision.");
}

vrMKPTargetStomper::vrMKPTargetStomper()
{
    Parameters.Add_Enum(100, "Target Position", TARGET_POSITIONS, 0, "Point within the particle system to target.");
    Parameters.Add_String(101, "Bone Name", "",
                          "Name of the bone to attract to. (Only active if Attractor Position is set to 'Bone')");
    Parameters.Add_Float(102, "Target Radius", 1.0f, 0.5f, 100.0f,
                         "Radius around the target that will kill particles.");
    Parameters.Add_Bool(103, "Use Dynamic Radius", false, DYNAMIC_RADIUS_TEXT);
}

vrMKPAxisStomper::vrMKPAxisStomper()
{
    Parameters.Add_Enum(100, "Stomp Axis", STOMP_AXES, 2, "Axis on which to stomp particles.");
    Parameters.Add_Enum(101, "Kill if Value is", COMPARISONS, 1,
                        "Determines if particles are killed on a X, Y, or Z value that is greater or less than the "
                        "Value parameter.");
    Parameters.Add_Float(102, "Stomp Value", 0.0f, -1000.0f, 1000.0f,
                         "The X, Y, or Z value at which to kill particles.");
}
