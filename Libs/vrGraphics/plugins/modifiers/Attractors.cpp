#include "vrGraphics/plugins/modifiers/Attractors.h"

namespace
{

constexpr const char *CONSTANT_TEXT = "Constant attraction factor";
constexpr const char *LINEAR_TEXT = "Linear attraction constant";
constexpr const char *INVERSE_TEXT = "Inverse linear attraction constant";

/// Ids in a row. Negative values attract.
void Add_Attraction(ParameterListClass &parameters, int32_t firstId)
{
    parameters.Add_Float(firstId, "Constant Attraction", 0.0f, -1000.0f, 1000.0f, CONSTANT_TEXT);
    parameters.Add_Float(firstId + 1, "Linear Attraction", 0.0f, -100.0f, 0.0f, LINEAR_TEXT);
    parameters.Add_Float(firstId + 2, "Inv. Linear Attraction", 0.0f, -1000.0f, 1000.0f, INVERSE_TEXT);
}

/// Ids in a row.
void Add_Cutoffs(ParameterListClass &parameters, int32_t firstId)
{
    parameters.Add_Float(firstId, "Inner Cutoff Dist.", 5.0f, 0.0f, 10000.0f,
                         "Inner distance that the attractor has no influence");
    parameters.Add_Float(firstId + 1, "Outer Cutoff Dist.", 10000.0f, 0.0f, 10000.0f,
                         "Outer distance after which the attractor has no influence");
}

void Add_Axis(ParameterListClass &parameters)
{
    parameters.Add_Vector3(200, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis of rotational acceleration.");
}

} // namespace

vrMKPAttractAccelerationModifier::vrMKPAttractAccelerationModifier()
{
    Parameters.Add_Float(200, "Attract", -1.0f, -1000.0f, 1000.0f,
                         "Acceleration in units per second second, positive for repulsion");
}

vrMKPAttractorModifier::vrMKPAttractorModifier()
{
    Add_Attraction(Parameters, 200);
    Add_Cutoffs(Parameters, 203);
    Parameters.Add_Bool(205, "Swim", false,
                        "Causes particles to maintain speed while only velocity direction is altered by the "
                        "attractor");
}

vrMKPAxisAttractorModifier::vrMKPAxisAttractorModifier()
{
    Add_Axis(Parameters);
    Add_Attraction(Parameters, 201);
    Add_Cutoffs(Parameters, 204);
}

vrMKPTorqueModifier::vrMKPTorqueModifier()
{
    Add_Axis(Parameters);
    Parameters.Add_Float(201, "Constant Acceleration", 0.0f, -1000.0f, 1000.0f, "Constant Acceleration factor");
    Parameters.Add_Float(202, "Linear Acceleration", 0.0f, -2.0f, 2.0f, "Linear Acceleration constant");
    Parameters.Add_Float(203, "Inv. Linear Acceleration", 0.0f, -1000.0f, 1000.0f,
                         "Inverse linear Acceleration constant");
    Add_Cutoffs(Parameters, 204);
}

vrMKPTargetAccelerationFieldModifier::vrMKPTargetAccelerationFieldModifier()
{
    Parameters.Add_Float(200, "Constant Acceleration", 0.0f, 0.0f, 1000.0f, CONSTANT_TEXT);
    Parameters.Add_Float(201, "Linear Acceleration", 0.0f, 0.0f, 100.0f, LINEAR_TEXT);
    Parameters.Add_Float(202, "Inv. Linear Acceleration", 0.0f, 0.0f, 1000.0f, INVERSE_TEXT);
    Add_Cutoffs(Parameters, 203);
    Parameters.Add_Float(205, "Distance Offset", 0.0f, -500.0f, 500.0f,
                         "Amount to offset calculated distance by to create different speed effects.");
}
