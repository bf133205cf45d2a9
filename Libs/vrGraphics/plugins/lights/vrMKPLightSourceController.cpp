#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"

vrMKPLightSourceController::vrMKPLightSourceController()
{
    Parameters.Add_String(0, "Name", "Light", "Name by which particles refer to the light.");
    Parameters.Add_Bool(1, "Light Scene", true,
                        "Lights models and terrain. When off, the light is there for particles alone.");
    Parameters.Add_Vector3(2, "Offset", Vector3(0.0f), "Distance from the point that the light sits on.");
    Parameters.Add_Float(3, "Inner Radius", 50.0f, 0.0f, 10000.0f,
                         "Distance up to which the light is at its strongest.");
    Parameters.Add_Float(4, "Outer Radius", 200.0f, 0.0f, 10000.0f, "Distance at which the light ends.");
    Parameters.Add_Bool(5, "Use Particle Count", false,
                        "Scale the intensity with the number of particles of the group's contributing layers.");
    Parameters.Add_Int(6, "Particle Count", 100, 1, 10000,
                       "Number of particles at which the light is at full intensity.");
}
