#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

namespace
{

// Indices into these are a file format.
constexpr const char *ALIGNMENT_DIRECTIONS[] = {"Towards", "Away"};
constexpr const char *POSITION_ALIGNMENTS[] = {"Default", "Bone", "Target"};
constexpr const char *VELOCITY_ALIGNMENTS[] = {"Default", "Position", "Bone", "Target"};
constexpr const char *AOE_SHAPES[] = {"Cylinder", "Sphere", "Flat Circle"};
constexpr const char *ALIGNMENT_DIRECTION_TEXT = "Direction towards or away from aligned vector.";

} // namespace

vrMKPShapeSpawner::vrMKPShapeSpawner()
{
    Parameters.Add_Shape(105, "Position", SHAPE_POINT, SpawnerText::POSITION_SHAPE);
    Parameters.Add_Bool(106, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Parameters.Add_Shape(107, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    Parameters.Add_Bool(108, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    Parameters.Add_Bool(200, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
}

vrMKPOutwardVelocityShapeSpawner::vrMKPOutwardVelocityShapeSpawner()
{
    Parameters.Add_Float(300, "Outward Speed", 0.0f, -10000.0f, 10000.0f, "Speed of the outward velocity.");
}

vrMKPAlignedShapeSpawner::vrMKPAlignedShapeSpawner()
{
    Parameters.Add_Enum(300, "Pos. Alignment Direction", ALIGNMENT_DIRECTIONS, 0, ALIGNMENT_DIRECTION_TEXT);
    Parameters.Add_Enum(301, "Position Alignment", POSITION_ALIGNMENTS, 0, "Object/Point to align position to.");
    Parameters.Add_Enum(302, "Vel. Alignment Direction", ALIGNMENT_DIRECTIONS, 0, ALIGNMENT_DIRECTION_TEXT);
    Parameters.Add_Enum(303, "Velocity Alignment", VELOCITY_ALIGNMENTS, 0, "Object/Point to align velocity to.");
    Parameters.Add_String(304, "Bone Name", "", "Bone to align towards. (Only used if a alignment is set to 'bone')");
}

vrMKPAreaOfEffectSpawner::vrMKPAreaOfEffectSpawner()
{
    Parameters.Add_Enum(200, "AOE Shape", AOE_SHAPES, 2, SpawnerText::POSITION_SHAPE);
    Parameters.Add_Shape(201, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    Parameters.Add_Bool(202, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    Parameters.Add_Float(203, "Cylinder Min Height", -10.0f, -1000.0f, 1000.0f,
                         "Minimum height when the AOE shape is a cylinder.");
    Parameters.Add_Float(204, "Cylinder Max Height", 10.0f, -1000.0f, 1000.0f,
                         "Maximum height when the AOE shape is a cylinder.");
    Parameters.Add_Float(205, "Max Spawn Per Second", 10.0f, 0.0f, 10000.0f,
                         "Use to limit the amount we can spawn in a second.  KEEP IT SMALL.");
}
