#include "vrGraphics/plugins/spawners/MeshSpawner.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

namespace
{

constexpr const char *MESH_SPAWN_LOCATIONS[] = {"Random Vertices", "Random Surface Location", "All Vertices",
                                                "In-Order Vertices"};
constexpr const char *EMITTER_MESH_RELATIONSHIPS[] = {"Emitter on mesh's child bone", "Emitter on same bone as mesh"};

} // namespace

vrMKPEnhancedMeshSpawner::vrMKPEnhancedMeshSpawner()
{
    Parameters.Add_Enum(105, "Mesh Spawn Location", MESH_SPAWN_LOCATIONS, 0, "Where to spawn from on the mesh");
    Parameters.Add_Bool(106, "Align Vel. To Norm", true,
                        "Aligns the Z-Axis of the emitter to the surface normal of the mesh for velocity.");
    Parameters.Add_Shape(107, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    Parameters.Add_Bool(108, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    Parameters.Add_Float(200, "Surface Offset", 0.0f, 0.0f, 50.0f,
                         "Distance to offset the initial position away from the surface");
    Parameters.Add_Enum(201, "Relationship to Mesh", EMITTER_MESH_RELATIONSHIPS, 0,
                        "What bone the emitter should go on");
}
