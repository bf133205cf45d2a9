#include "vrGraphics/plugins/modifiers/RotationModifiers.h"

namespace
{

constexpr const char *BASE_VARIATION_TEXT = "Amount of a rotation to vary by from base rotation.";

void Add_Reverse(ParameterListClass &parameters, int32_t id)
{
    parameters.Add_Bool(id, "Reverse", false, "Reverses the rotation randomly based on ID");
}

/// Four parameters with ids in a row.
void Add_Randomness(ParameterListClass &parameters, int32_t firstId)
{
    Add_Reverse(parameters, firstId);
    parameters.Add_Bool(firstId + 1, "Randomize Rotations", false,
                        "If true, sets the initial rotation to a random value");
    parameters.Add_Float(firstId + 2, "Rotation Variation", 1.0f, 0.0f, 1.0f,
                         "If randomize rotations active, the amount to vary rotations by.");
    parameters.Add_Bool(firstId + 3, "Only When Moving", false, "Rotation only occurs while the particle is moving");
}

} // namespace

vrMKPLinearRotationModifier::vrMKPLinearRotationModifier()
{
    Parameters.Add_Float(200, "Start Rotation", 0.0f, -200.0f, 200.0f, "Starting rotation");
    Parameters.Add_Float(201, "End Rotation", 1.0f, -200.0f, 200.0f, "Ending rotation");
    Add_Randomness(Parameters, 202);
}

vrMKPConstantRotationModifier::vrMKPConstantRotationModifier()
{
    Parameters.Add_Float(200, "Rotation", 0.0f, 0.0f, 1.0f, "Rotation of a particle.");
    Parameters.Add_Float(201, "Rotation Variation", 0.0f, 0.0f, 1.0f, BASE_VARIATION_TEXT);
    Add_Reverse(Parameters, 202);
}

vrMKPKeyedRotationModifier::vrMKPKeyedRotationModifier()
{
    Parameters.Add_Keyed_Float(300, "Rotation", "Rotation per second of particle");
    Add_Randomness(Parameters, 301);
}

vrMKPMushroomRotationModifier::vrMKPMushroomRotationModifier()
{
    Parameters.Add_Float(200, "Rotation Rate", 0.0f, -10.0f, 10.0f, "Rotation rate of a particle.");
    Parameters.Add_Float(201, "Rotation Variation", 0.0f, 0.0f, 1.0f, BASE_VARIATION_TEXT);
    Parameters.Add_Keyed_Float(203, "Envelope", "Multiply the overall speed of the rotation by a curve.");
    Parameters.Add_Vector3(202, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis forming the center of the mushroom.");
}

vrMKPScreenVelocityAlignedRotationModifier::vrMKPScreenVelocityAlignedRotationModifier()
{
    Parameters.Add_Float(200, "Base", 0.0f, 0.0f, 1.0f, "Base rotation of all particles.");
    Parameters.Add_Bool(201, "Only WHen Moving", false, "Only apply when moving.");
}
