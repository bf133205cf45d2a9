#include "vrGraphics/plugins/spawners/ParticleSpawners.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

namespace
{

constexpr const char *PARENT_ALIGNMENTS[] = {"None", "Forward Motion", "Reverse Motion"};

} // namespace

vrMKPEnhancedTrailSpawner::vrMKPEnhancedTrailSpawner()
{
    Parameters.Add_String(300, "Parent Name", "", SpawnerText::PARENT_NAME);
    Parameters.Add_Enum(301, "Position Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    Parameters.Add_Enum(302, "Velocity Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    Parameters.Add_Float(303, "Clustering Amount", 1.0f, 0.0f, 1.0f,
                         "Determines how much trailing particles emit in discrete clusters versus individually.");
}

vrMKPDeathSpawner::vrMKPDeathSpawner()
{
    Parameters.Add_Float(100, "Particles / Death", 30.0f, 0.0f, 500.0f, "Particles per death");
    Parameters.Add_Shape(101, "Position", SHAPE_POINT, "Initial Position");
    Parameters.Add_Bool(102, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Parameters.Add_Shape(103, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    Parameters.Add_Bool(104, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    Parameters.Add_Bool(114, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    Parameters.Add_Bool(105, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    Parameters.Add_Bool(106, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    Parameters.Add_Float(107, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    Parameters.Add_Float(108, "Max Inherit Speed", 10000.0f, 0.0f, 10000.0f, SpawnerText::MAX_INHERIT_SPEED);
    Parameters.Add_String(109, "Parent Name", "", SpawnerText::PARENT_NAME);
    Parameters.Add_Enum(110, "Position Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    Parameters.Add_Enum(111, "Velocity Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    Parameters.Add_Float(112, "Max Deaths / Second", 10.0f, 1.0f, 100.0f,
                         "Maximum number of deaths allowed per second.\nKEEP IT SMALL.  Room is made for this many "
                         "bursts of Particles / Death each second, whether or not they happen.");
    // The second parameter of that name: the base has the layer's own. A look-up by name finds the base's.
    Parameters.Add_Float(113, "Probability", 1.0f, 0.0f, 1.0f,
                         "Probability that a given death will result in a burst of particles.\nIf you set this to "
                         "less than 1, make sure you decrease Max Deaths / Second correspondingly.");
}
