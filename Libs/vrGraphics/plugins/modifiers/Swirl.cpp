#include "vrGraphics/plugins/modifiers/Swirl.h"

namespace
{

void Add_Axis(ParameterListClass &parameters)
{
    parameters.Add_Vector3(200, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis to spin around");
}

} // namespace

vrMKPVortexModifier::vrMKPVortexModifier()
{
    Add_Axis(Parameters);
    Parameters.Add_Float(201, "Speed", 3.0f, 0.01f, 100.0f, "Speed to spin around axis at");
    Parameters.Add_Bool(202, "Local Space", false, "Is this acceleration local to the group");
}

vrMKPFunnelModifier::vrMKPFunnelModifier()
{
    Add_Axis(Parameters);
    Parameters.Add_Float(210, "Start Distance", 0.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the group at which the funnel starts.\nUntil particles reach "
                         "this position, they will have the speed and position of whatever the Creator gave "
                         "them.\nOnce they reach this distance, they \"snap\" to the funnel shape and begin to spin.");
    Parameters.Add_Float(201, "End Distance", 50.0f, -1000.0f, 1000.0f,
                         "Distance from the center of the gruop at which the effect ends.\nOnce particles reach this "
                         "position, they continue on at a constant velocity.");
    Parameters.Add_Float(203, "Start Speed", 10.0f, -1000.0f, 1000.0f,
                         "Speed to spin around at the base of the funnel");
    Parameters.Add_Float(204, "End Speed", 100.0f, -1000.0f, 1000.0f, "Speed to spin around at the end of the funnel");
    Parameters.Add_Float(207, "Radius Start", 15.0f, 0.01f, 500.0f, "Radius of the base of the funnel.");
    Parameters.Add_Float(208, "Radius End", 45.0f, 0.01f, 500.0f, "Radius of the end of the funnel.");
    Parameters.Add_Float(205, "Thickness", 0.0f, 0.0f, 1.0f,
                         "How thick the outer wall of particles shoudl be.\nSet this to 0 for a thin wall, and 1 to "
                         "have the funnel be completely solid.");
    Parameters.Add_Float(209, "Speed vartion", 0.0f, 0.0f, 1000.0f,
                         "Randomizes the roation speed by +/- this value.\nFor example, a value of 10 will add a "
                         "random value betwen -10 and +10 to the speed of each particle.");
}

vrMKPTorusModifier::vrMKPTorusModifier()
{
    Add_Axis(Parameters);
    Parameters.Add_Float(201, "Inner Speed", 10.0f, -1000.0f, 1000.0f, "Speed at deeper parts of the torus.");
    Parameters.Add_Float(202, "Radius", 10.0f, 0.01f, 500.0f, "Radius of the torus.");
    Parameters.Add_Float(203, "Tube Radius", 5.0f, 0.01f, 500.0f, "Radius of the tube.");
    Parameters.Add_Float(204, "Thickness", 0.0f, 0.0f, 1.0f, "How thoroughly to fill the interior of the torus.");
    Parameters.Add_Float(205, "Speed Variation", 0.0f, 0.0f, 1.0f, "Randomizes the speed.");
    Parameters.Add_Float(206, "Outer Speed", 10.0f, -1000.0f, 1000.0f, "Speed at surface of the torus.");
}
