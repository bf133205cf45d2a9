#include "vrGraphics/plugins/ensembles/WeatherCube.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

namespace
{

// Indices into this are a file format.
constexpr const char *TIME_EMULATIONS[] = {"Time increases with +X", "Time increases with +Y",
                                           "Time increases with +Z", "Time increases with -X",
                                           "Time increases with -Y", "Time increases with -Z"};
constexpr int TIME_INCREASES_DOWNWARD = 5;

void Add_Cube_Size(ParameterListClass &parameters, int id)
{
    parameters.Add_Float(id, "Cube Size", 500.0f, 1.0f, 2000.0f, "Size of weather cube.");
}

} // namespace

vrMKPWeatherCubeSpawner::vrMKPWeatherCubeSpawner()
{
    Parameters.Add_Int(200, "Particle Count", 50, 0, 5000, "Total weather particles to spawn.");
    Add_Cube_Size(Parameters, 201);
    Parameters.Add_Shape(202, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    Parameters.Add_Bool(203, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
}

vrMKPWeatherCubeModifier::vrMKPWeatherCubeModifier()
{
    Add_Cube_Size(Parameters, 200);
}

vrMKPWeatherCubeTransformer::vrMKPWeatherCubeTransformer()
{
    Add_Cube_Size(Parameters, 200);
    Parameters.Add_Float(201, "Camera Offset", 100.0f, 1.0f, 2000.0f,
                         "Offset of weather cube from camera along camera's z-axis.");
    Parameters.Add_Enum(202, "Time Emulation", TIME_EMULATIONS, TIME_INCREASES_DOWNWARD,
                        "Choose how to emulate time with weather particles.");
}
