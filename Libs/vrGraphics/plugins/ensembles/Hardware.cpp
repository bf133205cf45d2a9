#include "vrGraphics/plugins/ensembles/Hardware.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "vrGraphics/plugins/visualizers/ParticleDraw.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

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
    ParticleCount = Parameters.Add_Float(6000, "Particle Count", 100.0f, 1.0f, 10000.0f,
                                         "Number of particles in the burst or number of particles spawned per second.");
    ParticleLifetime = Parameters.Add_Float(6001, "Particle Lifetime", 2.0f, 0.0f, 100.0f,
                                            "Time in seconds that each particle lives.");
    EnableBursting = Parameters.Add_Bool(6002, "Enable Bursting", false,
                                         "Spawns all particles at once instead of spreading them over time.");
    StartDelay = Parameters.Add_Float(6012, "Start Delay", 0.0f, 0.0f, 60.0f,
                                      "Delays the given time in seconds before spawning.");
    StopTime = Parameters.Add_Float(
        6013, "Stop Time", 0.0f, 0.0f, 120.0f,
        "The spawner stops producing particles after the given number of seconds (0 = Spawn Forever).");
    Position = Parameters.Add_Shape(6003, "Position", SHAPE_POINT, "Initial Position");
    HollowPosition = Parameters.Add_Bool(6004, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Velocity = Parameters.Add_Shape(6005, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    HollowVelocity = Parameters.Add_Bool(6006, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    EvenDistribution = Parameters.Add_Bool(6014, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    Acceleration = Parameters.Add_Vector3(6007, "Acceleration", Vector3(0.0f, 0.0f, -1.0f),
                                          "Acceleration in units per second second");
    AttractAcceleration = Parameters.Add_Float(6008, "Attract acceleration", 0.0f, -1000.0f, 1000.0f,
                                               "Acceleration in units per second second, positive for repulsion");
    VortexAxis = Parameters.Add_Vector3(6009, "Vortex Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis to spin around");
    VortexRotation =
        Parameters.Add_Float(6010, "Vortex Rotation", 0.0f, -100.0f, 100.0f, "Speed to spin around the vortex axis at");
    VortexAttraction =
        Parameters.Add_Float(6011, "Vortex Attraction", 0.0f, -1000.0f, 1000.0f,
                             "Acceleration away from the vortex axis, negative to pull particles towards it");
}

bool vrMKPHardwareSpawner::Post_Load()
{
    // Whether or not they are hollow, so that an editor can make them so.
    Position->Prepare_Surface_Table();
    Velocity->Prepare_Surface_Table();
    return vrMKPSpawner::Post_Load();
}

vrHWParticleBuffer *vrMKPHardwareSpawner::Get_Buffer_Companion(vrMKPBuffer &buffer) const
{
    return vrHWParticles::Create(*this, buffer);
}

void vrMKPHardwareSpawner::On_Shown(vrMKPBuffer *buffer) const
{
    if (!buffer || !buffer->Companion) return;
    buffer->Companion->Start_Spawning();
    buffer->SpawnerState = SPAWNER_WAITING;
}

vrHWSpawnRules vrMKPHardwareSpawner::Get_Rules() const
{
    return {ParticleCount->Get_Value(), ParticleLifetime->Get_Value(), EnableBursting->Get_Value(),
            StartDelay->Get_Value(), StopTime->Get_Value()};
}

vrHWForces vrMKPHardwareSpawner::Get_Forces() const
{
    vrHWForces forces{Acceleration->Get_Value(), AttractAcceleration->Get_Value(),
                      Particle::Unit(VortexAxis->Get_Value())};
    if (forces.Axis == Vector3(0.0f)) return forces; // nothing to turn about
    forces.Rotation = VortexRotation->Get_Value();
    forces.Repulsion = VortexAttraction->Get_Value();
    return forces;
}

vrMKPShapeSource vrMKPHardwareSpawner::Get_Shapes() const
{
    return {*Position, *Velocity, HollowPosition->Get_Value(), HollowVelocity->Get_Value(),
            EvenDistribution->Get_Value()};
}

vrMKPHardwareBillboardVisualizer::vrMKPHardwareBillboardVisualizer() : vrMKPSimpleVisualizer(false)
{
    Add_Texture_Name(6400, "p_particle_master.tga");
    Add_Shader_Name(6401, "HWParticleBillboard.mks");
    RenderMode = Parameters.Add_Enum(6415, "Render Mode", RENDER_MODES, 0, "Render Mode");
    GeometryMode = Parameters.Add_Enum(6416, "Geometry Mode", GEOMETRY_MODES, 0, "Geometry Mode");
    AnchorPoint = Add_Anchor_Point(6402);
    AspectRatio = Parameters.Add_Float(6404, "Aspect Ratio", 1.0f, 0.01f, 100.0f,
                                       "Aspect ratio for the particle (0..1)=tall (1..10)=wide .");
    TextureRotation = Add_Texture_Rotation(6405);
    TexCoords =
        Parameters.Add_UV(6406, "TexCoords", Vector4(0.0f, 0.0f, 1.0f, 1.0f), "Texture coordinates of particle");
    StartColor = Parameters.Add_RGBA(6407, "Start Color", OPAQUE_WHITE, "Starting color");
    MidColor = Parameters.Add_RGBA(6408, "Mid Color", OPAQUE_WHITE, "Mid color key");
    EndColor = Parameters.Add_RGBA(6409, "End Color", CLEAR_WHITE, "End color key");
    MidColorKeyTime =
        Parameters.Add_Float(6410, "Mid Color Key Time", 0.5f, 0.0f, 1.0f, "Time (0..1) for the mid color key.");
    StartSize = Parameters.Add_Float(6411, "Start Size", 1.0f, 0.0f, 200.0f, "Starting size");
    MidSize = Parameters.Add_Float(6412, "Mid Size", 1.0f, 0.0f, 200.0f, "Middle size");
    EndSize = Parameters.Add_Float(6413, "End Size", 1.0f, 0.0f, 200.0f, "End size");
    MidSizeKeyTime =
        Parameters.Add_Float(6414, "Mid Size Key Time", 0.5f, 0.0f, 1.0f, "Time (0..1) for the mid size key.");
}

void vrMKPHardwareBillboardVisualizer::Compute_Bounds(vrMKPBuffer & /*buffer*/, vrBounds *bounds) const
{
    if (bounds) *bounds = {Vector3(0.0f), Vector3(HALF_EXTENT)};
}

vrBounds vrMKPHardwareBillboardVisualizer::Get_Cull_Box(const vrMKPBuffer &buffer, const vrBounds & /*bounds*/) const
{
    return vrMKPSimpleVisualizer::Get_Cull_Box(buffer, {buffer.State->Get_Position(), Vector3(HALF_EXTENT)});
}

void vrMKPHardwareBillboardVisualizer::Load_Assets(bool force, const vrMKPVisualizer *shared)
{
    const auto *from = dynamic_cast<const vrMKPHardwareBillboardVisualizer *>(shared);
    if (!force && from && from->Get_Base_Texture())
        Share_Assets(*from);
    else if (TheGraphicsDriver)
        Load_Textures(force);
}

vrHWParticleLook vrMKPHardwareBillboardVisualizer::Get_Look() const
{
    vrHWParticleLook look;
    look.ShaderName = Get_Shader_Name();
    look.Texture = Get_Base_Texture();
    look.RenderMode = static_cast<vrHWParticleRenderMode>(RenderMode->Get_Value());
    look.GeometryMode = static_cast<vrHWParticleGeometryMode>(GeometryMode->Get_Value());
    look.IgnoresDepth = Ignores_Depth();
    look.AnchorPoint = AnchorPoint->Get_Value();
    look.AspectRatio = AspectRatio->Get_Value();
    look.TextureRotation = TextureRotation->Get_Value();
    look.TexCoords = TexCoords->Get_Value();
    look.Color = {StartColor->Get_Value(), MidColor->Get_Value(), EndColor->Get_Value(), MidColorKeyTime->Get_Value()};
    look.Size = {StartSize->Get_Value(), MidSize->Get_Value(), EndSize->Get_Value(), MidSizeKeyTime->Get_Value()};
    return look;
}

void vrMKPHardwareBillboardVisualizer::Do_Visualize(vrMKPBuffer &buffer, vrRenderContext &context) const
{
    if (!buffer.Companion || !TheGraphicsDriver) return;
    auto *data = MK_Dynamic_Cast<vrMKPSimpleVisualizerData>(buffer.VisualizerData.Get());
    if (!MK_VERIFY(data != nullptr, "data != NULL")) return;
    const vrMKPDepthOffsetScope offset(context.Camera, *data, Get_Depth_Offset());
    TheGraphicsDriver->Set_World_Transform(&buffer.State->Transform);
    buffer.Companion->Render(context, Get_Look());
}
