#include "vrGraphics/plugins/modifiers/Speed.h"

vrMKPSpeedLimitModifier::vrMKPSpeedLimitModifier()
{
    Parameters.Add_Float(100, "Min Speed", 0.0f, 0.0f, 1000.0f, "Minimum speed of a particle");
    Parameters.Add_Float(101, "Max Speed", 100.0f, 0.0f, 1000.0f, "Maximum speed of a particle");
}

vrMKPLinearSpeedModifier::vrMKPLinearSpeedModifier()
{
    Parameters.Add_Float(200, "Start Speed", 0.0f, 0.0f, 1000.0f, "Starting speed");
    Parameters.Add_Float(201, "End Speed", 20.0f, 0.0f, 1000.0f, "Ending speed");
}

vrMKPKeyedFrictionModifier::vrMKPKeyedFrictionModifier()
{
    Parameters.Add_Keyed_Float(300, "Friction", "Friction coefficients - higher means more slowdown");
}
