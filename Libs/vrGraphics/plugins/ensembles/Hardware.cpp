#include "vrGraphics/plugins/ensembles/Hardware.h"

#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/ShapeParameter.h"

namespace
{

// Indices into these are a file format.
constexpr const char *RENDER_MODES[] = {"Alpha Blend", "Additive", "Modulate"};
constexpr const char *GEOMETRY_MODES[] = {"Billboard", "Velocity Aligned"};

constexpr RGBAClass OPAQUE_WHITE{1.0f, 1.0f, 1.0f, 1.0f};
constexpr RGBAClass CLEAR_WHITE{1.0f, 1.0f, 1.0f, 0.0f};

constexpr float HALF_EXTENT = 5000.0f; ///< of the box that hardware particles are culled by, world units

} // namespace

vrMKPHardwareSpawner::vrMKPHardwareSpawner()
{
    Parameters.Add_Float(6000, "Particle Count", 100.0f, 1.0f, 10000.0f,
                         "Number of particles in the burst or number of particles spawned per second.");
    Parameters.Add_Float(6001, "Particle Lifetime", 2.0f, 0.0f, 100.0f, "Time in seconds that each particle lives.");
    Parameters.Add_Bool(6002, "Enable Bursting", false,
                        "Spawns all particles at once instead of spreading them over time.");
    Parameters.Add_Float(6012, "Start Delay", 0.0f, 0.0f, 60.0f, "Delays the given time in seconds before spawning.");
    Parameters.Add_Float(
        6013, "Stop Time", 0.0f, 0.0f, 120.0f,
        "The spawner stops producing particles after the given number of seconds (0 = Spawn Forever).");
    Parameters.Add_Shape(6003, "Position", SHAPE_POINT, "Initial Position");
    Parameters.Add_Bool(6004, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Parameters.Add_Shape(6005, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    Parameters.Add_Bool(6006, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    Parameters.Add_Bool(6014, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    Parameters.Add_Vector3(6007, "Acceleration", Vector3(0.0f, 0.0f, -1.0f), "Acceleration in units per second second");
    Parameters.Add_Float(6008, "Attract acceleration", 0.0f, -1000.0f, 1000.0f,
                         "Acceleration in units per second second, positive for repulsion");
    Parameters.Add_Vector3(6009, "Vortex Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis to spin around");
    Parameters.Add_Float(6010, "Vortex Rotation", 0.0f, -100.0f, 100.0f, "Speed to spin around the vortex axis at");
    Parameters.Add_Float(6011, "Vortex Attraction", 0.0f, -1000.0f, 1000.0f,
                         "Acceleration away from the vortex axis, negative to pull particles towards it");
}

vrMKPHardwareBillboardVisualizer::vrMKPHardwareBillboardVisualizer() : vrMKPSimpleVisualizer(false)
{
    Add_Texture_Name(6400, "p_particle_master.tga");
    Add_Shader_Name(6401, "HWParticleBillboard.mks");
    Parameters.Add_Enum(6415, "Render Mode", RENDER_MODES, 0, "Render Mode");
    Parameters.Add_Enum(6416, "Geometry Mode", GEOMETRY_MODES, 0, "Geometry Mode");
    Add_Anchor_Point(6402);
    Parameters.Add_Float(6404, "Aspect Ratio", 1.0f, 0.01f, 100.0f,
                         "Aspect ratio for the particle (0..1)=tall (1..10)=wide .");
    Add_Texture_Rotation(6405);
    Parameters.Add_UV(6406, "TexCoords", Vector4(0.0f, 0.0f, 1.0f, 1.0f), "Texture coordinates of particle");
    Parameters.Add_RGBA(6407, "Start Color", OPAQUE_WHITE, "Starting color");
    Parameters.Add_RGBA(6408, "Mid Color", OPAQUE_WHITE, "Mid color key");
    Parameters.Add_RGBA(6409, "End Color", CLEAR_WHITE, "End color key");
    Parameters.Add_Float(6410, "Mid Color Key Time", 0.5f, 0.0f, 1.0f, "Time (0..1) for the mid color key.");
    Parameters.Add_Float(6411, "Start Size", 1.0f, 0.0f, 200.0f, "Starting size");
    Parameters.Add_Float(6412, "Mid Size", 1.0f, 0.0f, 200.0f, "Middle size");
    Parameters.Add_Float(6413, "End Size", 1.0f, 0.0f, 200.0f, "End size");
    Parameters.Add_Float(6414, "Mid Size Key Time", 0.5f, 0.0f, 1.0f, "Time (0..1) for the mid size key.");
}

void vrMKPHardwareBillboardVisualizer::Compute_Bounds(vrMKPBuffer & /*buffer*/, vrBounds *bounds) const
{
    if (bounds) *bounds = {Vector3(0.0f), Vector3(HALF_EXTENT)};
}
