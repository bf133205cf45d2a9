#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

namespace
{

constexpr const char *TARGET_POSITIONS[] = {"Emitter",
                                            "Bone",
                                            "Target",
                                            "Position",
                                            "Keyed Position",
                                            "Projectile Target Start",
                                            "Projectile Target Current (For Homing)"};
constexpr const char *LOOPING_TYPES[] = {"None", "Looped", "Ping-Pong"};

} // namespace

vrMKPTargetModifier::vrMKPTargetModifier()
{
    Parameters.Add_Enum(100, "Target Position", TARGET_POSITIONS, TARGET_POSITION_EMITTER,
                        "Point within the particle system to target.");
    Parameters.Add_String(101, "Bone Name", "",
                          "Name of the bone target. (Only active if Target Position is set to 'Bone')");
    Parameters.Add_Vector3(102, "Position", Vector3(0.0f), "Fixed position of the target.");
    Parameters.Add_Float(103, "Start Time", 0.0f, 0.0f, 100.0f,
                         "For keyed position:  Time at which the animation starts.");
    Parameters.Add_Float(104, "End Time", 1.0f, 0.0f, 100.0f, "For keyed position:  Time at which the animation ends.");
    Parameters.Add_Keyed_Float(105, "Translate X", "Translate X.");
    Parameters.Add_Keyed_Float(106, "Translate Y", "Translate Y.");
    Parameters.Add_Keyed_Float(107, "Translate Z", "Translate Z.");
    Parameters.Add_Enum(108, "Looping", LOOPING_TYPES, LOOPING_NONE, "How to loop the keyed position.");
}
