#include "vrGraphics/plugins/modifiers/Acceleration.h"

namespace
{

/// Ids in a row.
void Add_Acceleration(ParameterListClass &parameters, int32_t firstId)
{
    parameters.Add_Vector3(firstId, "Acceleration", Vector3(0.0f, 0.0f, -1.0f),
                           "Acceleration in units per second second");
    parameters.Add_Bool(firstId + 1, "Local Space", false, "Is this acceleration local to the group");
}

void Add_Wind_Response(ParameterListClass &parameters, float value)
{
    parameters.Add_Float(200, "Wind Response", value, 0.0f, 10.0f,
                         "Responsive factor to scene wind (how much the particle responds to wind).");
}

} // namespace

vrMKPAccelerationModifier::vrMKPAccelerationModifier()
{
    Add_Acceleration(Parameters, 200);
}

vrMKPKeyedAccelerationModifier::vrMKPKeyedAccelerationModifier()
{
    Parameters.Add_Vector3(300, "Direction", Vector3(0.0f, 0.0f, -1.0f), "Direction vector of acceleration.");
    Parameters.Add_Keyed_Float(301, "Acceleration", "Accelerations of particle");
    Parameters.Add_Bool(302, "Local Space", false, "Apply acceleration in particle's local space");
}

vrMKPCircleTargetAccelerationModifier::vrMKPCircleTargetAccelerationModifier()
{
    Add_Acceleration(Parameters, 7000);
}

vrMKPWindAccelerationModifier::vrMKPWindAccelerationModifier()
{
    Add_Wind_Response(Parameters, 0.5f);
}

vrMKPWindVelocityModifier::vrMKPWindVelocityModifier()
{
    Add_Wind_Response(Parameters, 0.25f);
}
