#include "vrGraphics/plugins/modifiers/Wander.h"

vrMKPRandomWalkModifier::vrMKPRandomWalkModifier()
{
    Parameters.Add_Vector3(200, "Position Scale", Vector3(0.0f), "Size of the variations to apply to the position.");
    Parameters.Add_Vector3(201, "Velocity Scale", Vector3(10.0f), "Size of the variations to apply to the velocity.");
}
