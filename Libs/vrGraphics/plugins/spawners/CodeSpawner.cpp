#include "vrGraphics/plugins/spawners/CodeSpawner.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

vrMKPCodeSpawner::vrMKPCodeSpawner()
{
    Parameters.Add_Float(109, "#Code Particles", 10.0f, 1.0f, 10000.0f,
                         "Max# of code particles that can be alive at once.");
    Parameters.Add_Bool(100, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    Parameters.Add_Bool(101, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    Parameters.Add_Float(102, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    Parameters.Add_Float(103, "Max Inherit Speed", 1000.0f, 0.0f, 1000.0f, SpawnerText::MAX_INHERIT_SPEED);
    Parameters.Add_Shape(104, "Position", SHAPE_POINT, SpawnerText::POSITION_SHAPE);
    Parameters.Add_Bool(105, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Parameters.Add_Shape(106, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    Parameters.Add_Bool(107, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    Parameters.Add_Bool(108, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
}
