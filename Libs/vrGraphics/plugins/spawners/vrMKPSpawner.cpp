#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>

namespace
{

MKDebug::Logger ParticleLog("ParticleLog");

std::atomic<int> GlobalLOD = vrMKPSpawner::MAX_GLOBAL_LOD;

constexpr const char *RANDOM_SEED_SOURCES[] = {"This Particle", "Parent Group"};
constexpr const char *PPS_LOOPING[] = {"Looped", "Ping-Pong"};

/// Toward zero, and to the nearest end for what an int can't hold, since a file's float may be anything.
int Truncate(float value)
{
    if (std::isnan(value)) return 0;
    if (value >= static_cast<float>(INT_MAX)) return INT_MAX;
    if (value <= static_cast<float>(INT_MIN)) return INT_MIN;
    return static_cast<int>(value);
}

} // namespace

vrMKPSpawner::vrMKPSpawner()
{
    GlobalLODLevel =
        Parameters.Add_Int(4, "Global LOD", 0, 0, MAX_GLOBAL_LOD, "0 - always draw. 4 - draw only on high end");
    Parameters.Add_Float(6, "PreSimulateSeconds", 0.0f, 0.0f, 10.0f,
                         "Number of seconds to pre-simulate particle effect before playing.");
    AutoUpdatePositions =
        Parameters.Add_Bool(7, "Auto-Update Positions", true, "Automatically update positions based on velocity.");
    MinDynamicLOD = Parameters.Add_Float(8, "Min D-LOD", 1.0f, 0.0f, 1.0f,
                                         "Minimum percentage of particles to draw based on Dynamic LOD");
    DynamicLODNear = Parameters.Add_Float(9, "D-LOD Near Distance", 450.0f, 0.0f, 10000.0f,
                                          "Distance at which dynamic lod will begin lower particle counts.");
    DynamicLODFar = Parameters.Add_Float(10, "D-LOD Far Distance", 2000.0f, 0.0f, 10000.0f,
                                         "Distance at which dynamic lod will be the minimum number drawn.");
    Parameters.Add_Enum(15, "Random Seed Source", RANDOM_SEED_SOURCES, 0, "Where to pull the random seed from.");
    Parameters.Add_Int(12, "Random Seed", 0, -1073741824, 1073741823,
                       "Random seed to use for generating random particles.\nSetting two particle systems to the same "
                       "random seed should yield identical results for random attributes.");
    Parameters.Add_Mask(13, "Alt Indices", 0,
                        "Alternate indices allow the creation of several different variations\nby only showing "
                        "certain particles when a certain index is chosen.");
    Parameters.Add_Float(14, "Probability", 1.0f, 0.0f, 1.0f,
                         "Probability that this layer is displayed.  Re-evaluated each time the effect starts.");
    Parameters.Add_Bool(16, "Distance As Time", false,
                        "Causes the group's world position delta to be interpereted as seconds.");
    Parameters.Add_Float(17, "Max Dist. As Time", 10.0f, 0.0f, 1000.0f,
                         "Speed past which distance as time emission is capped.");
    Parameters.Add_Bool(18, "Terrain Snap", false, "Snaps the particle Z to the terrain");
    Parameters.Add_Float(19, "Terrain Offset", 0.0f, -1000.0f, 1000.0f, "Offset from the terrain.");
    Parameters.Add_Float(20, "Terrain Offset Variation", 0.0f, 0.0f, 100.0f,
                         "Variation to randomize the terrain offset.");
    Parameters.Add_Bool(21, "Contribute To Lighting", true,
                        "Lights that depend on particle count will include this layer's count.");
}

void vrMKPSpawner::Set_Global_LOD(float quality)
{
    const double level = std::ceil(quality * 4.0);
    if (!(level > 0.0)) return Set_Global_LOD_Level(0); // also for what is not a number
    Set_Global_LOD_Level(level < MAX_GLOBAL_LOD ? static_cast<int>(level) : MAX_GLOBAL_LOD);
}

void vrMKPSpawner::Set_Global_LOD_Level(int level)
{
    GlobalLOD.store(std::clamp(level, 0, MAX_GLOBAL_LOD), std::memory_order_relaxed);
}

int vrMKPSpawner::Get_Global_LOD()
{
    return GlobalLOD.load(std::memory_order_relaxed);
}

int vrMKPSpawner::Get_LOD() const
{
    return GlobalLODLevel->Get_Value();
}
void vrMKPSpawner::Set_LOD(int level)
{
    GlobalLODLevel->Set_Value(level);
}
float vrMKPSpawner::Get_Min_Dynamic_LOD() const
{
    return MinDynamicLOD->Get_Value();
}
void vrMKPSpawner::Set_Min_Dynamic_LOD(float fraction)
{
    MinDynamicLOD->Set_Value(fraction);
}
float vrMKPSpawner::Get_Dynamic_LOD_Near() const
{
    return DynamicLODNear->Get_Value();
}
void vrMKPSpawner::Set_Dynamic_LOD_Near(float distance)
{
    DynamicLODNear->Set_Value(distance);
}
float vrMKPSpawner::Get_Dynamic_LOD_Far() const
{
    return DynamicLODFar->Get_Value();
}
void vrMKPSpawner::Set_Dynamic_LOD_Far(float distance)
{
    DynamicLODFar->Set_Value(distance);
}
bool vrMKPSpawner::Get_Auto_Update_Positions() const
{
    return AutoUpdatePositions->Get_Value();
}

vrMKPEnhancedSpawner::vrMKPEnhancedSpawner()
{
    ParticlesPerInterval =
        Parameters.Add_Float(100, "Particles / Interval", 30.0f, 0.0f, 500.0f, "Particles per spawn interval");
    SpawnInterval = Parameters.Add_Float(101, "Spawn Interval", 1.0f, 0.01f, 120.0f, "Spawn interval in seconds");
    EnableBursting = Parameters.Add_Bool(102, "Enable Bursting", false, "Enables bursting (deprecated)");
    ParticlesPerInterval->Set_Save_Excluded(true);
    SpawnInterval->Set_Save_Excluded(true);
    EnableBursting->Set_Save_Excluded(true);

    Parameters.Add_Float(103, "Start Delay", 0.0f, 0.0f, 60.0f, "Delays the given time in seconds before spawning.");
    StopTime = Parameters.Add_Float(
        104, "Stop Time", 0.0f, 0.0f, 120.0f,
        "The spawner stops producing particles after the given number of seconds (0 = Spawn Forever).\nIt will "
        "continue spawning for this time even if the emitter is hidden or removed, unless set to 0, or the stop time "
        "is overriden.");
    Parameters.Add_Bool(109, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    Parameters.Add_Bool(110, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    Parameters.Add_Float(111, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    Parameters.Add_Float(112, "Max Inherit Speed", 1000.0f, 0.0f, 1000.0f, SpawnerText::MAX_INHERIT_SPEED);
    Parameters.Add_Bool(113, "Hi-Res Rotate", false,
                        "Interpolate group rotation in determining initial spawn velocity (World Transform Only)");
    Parameters.Add_Bool(114, "Burst On Shown", true, "Burst when the emitter is un-hidden in the scene");
    ClusterSize = Parameters.Add_Int(
        115, "Cluster Size", 1, 1, 1000,
        "Number of particles to accumulate before spawning them all at once.\nThis is not for use with Enhanced "
        "Trails, which use ClusteringAmount instead.");
    ParticlesPerSecond = Parameters.Add_Float(116, "Particles / Second", 30.0f, 0.0f, 10000.0f, "Particles per second");
    HideTrumpsStopTime = Parameters.Add_Bool(
        117, "Hide Trumps Stop Time", false,
        "When true, hiding the emitter causes spawning to cease, even if the stop time indicates it has some life "
        "left.");
    Parameters.Add_Bool(118, "Use PPS Envelope", false, "Enable the PPS envelope.");
    Parameters.Add_Float(119, "Envelope Duration", 1.0f, 0.01f, 120.0f, "Duration over which the envelope applies.");
    KeyedFloatParameterClass *envelope =
        Parameters.Add_Keyed_Float(120, "PPS Envelope", "Multiply the overall spawn rate by a keyframe curve.");
    envelope->Add_Key(0.0f, 1.0f);
    envelope->Add_Key(1.0f, 1.0f);
    Parameters.Add_Enum(121, "PPS Looping", PPS_LOOPING, 0, "How to loop the PPS envelope.");
    Parameters.Add_Bool(122, "Energy Effects Velocity", true,
                        "When true, velocity is multiplied by energy and the PPS envelope value.");
}

bool vrMKPEnhancedSpawner::Post_Load()
{
    if (!ParticlesPerInterval->Was_Loaded() && !SpawnInterval->Was_Loaded() && !EnableBursting->Was_Loaded())
        return true;

    if (EnableBursting->Get_Value()) ClusterSize->Set_Value(Truncate(ParticlesPerInterval->Get_Value()));
    const float rate = ParticlesPerInterval->Get_Value() / SpawnInterval->Get_Value();
    if (std::isfinite(rate)) {
        ParticlesPerSecond->Set_Value(rate);
    } else {
        MK_LOG(ParticleLog, MKDebug::LogLevel::Warning,
               "%g particles in a spawn interval of %g seconds give no rate: kept %g particles a second",
               static_cast<double>(ParticlesPerInterval->Get_Value()), static_cast<double>(SpawnInterval->Get_Value()),
               static_cast<double>(ParticlesPerSecond->Get_Value()));
    }

    ParticlesPerInterval->Clear_Loaded();
    SpawnInterval->Clear_Loaded();
    EnableBursting->Clear_Loaded();
    return true;
}

float vrMKPEnhancedSpawner::Get_Stop_Time() const
{
    return StopTime->Get_Value() == 0.0f ? -1.0f : StopTime->Get_Value();
}

bool vrMKPEnhancedSpawner::Get_Hide_Trumps_Stop_Time() const
{
    return HideTrumpsStopTime->Get_Value();
}

int vrMKPEnhancedSpawner::Get_Duration_Flags() const
{
    return StopTime->Get_Value() > 0.0f ? DURATION_HAS_END : DURATION_ENDLESS;
}
