#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

vrMKPStomper::vrMKPStomper()
{
    Parameters.Add_Float(0, "Stomp Time", 5.0f, 0.01f, 100.0f, "Time in seconds to stomp on particle");
    Parameters.Add_Float(1, "Stomp Time Variation", 0.0f, 0.0f, 100.0f, "Stomp Time variation");
    Parameters.Add_Bool(2, "Kill On Removal", false, "Kills all particles upon the emitter's removal from scene");
    Parameters.Add_Bool(3, "Spawn on Age", false,
                        "Stomper will tell death spawners to spawn particles when particles die from age.");
    Parameters.Add_Bool(4, "Spawn on Conditional", false,
                        "Stomper will tell death spawners to spawn particles when particles die from a condition "
                        "being met. (Ignored by Base Stomper).");
    Parameters.Add_Bool(5, "Update Time", true, "Stomper will update the time attribute based on age and max age.");
    Parameters.Add_Bool(6, "Full Range Variation", false,
                        "Causes the range given by Stomp Time Variation to be a full range adding to or subtracting "
                        "from Stomp Time. (Legacy Support)");
}
