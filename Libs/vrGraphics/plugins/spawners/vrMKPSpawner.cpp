#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/spawners/ParticleFilling.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/Parameters/EnumParameter.h"
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

enum RandomSeedSources : int32_t
{
    SEED_OF_THIS_PARTICLE,
    SEED_OF_PARENT_GROUP
};

enum EnvelopeLoopings : int32_t
{
    LOOPED,
    PING_PONG
};

std::atomic<uint32_t> NextLayerSeed = 0xdecafbad;

/// Seconds of room that let the deaths and births of one frame overlap.
constexpr float CAPACITY_SLACK = 0.1f;

/// Toward zero, and to the nearest end for what an int can't hold, since a file's float may be anything.
template <typename Float>
int Truncate(Float value)
{
    if (std::isnan(value)) return 0;
    if (value >= static_cast<Float>(INT_MAX)) return INT_MAX;
    if (value <= static_cast<Float>(INT_MIN)) return INT_MIN;
    return static_cast<int>(value);
}

/// The particles of `rate` that live at one time when each counts for `seconds` and the slack. Extended precision up to
/// the truncation: other widths give other counts.
int Count_With_Slack(float rate, float seconds)
{
    using Extended = long double;
    return Truncate(static_cast<Extended>(rate) *
                    (static_cast<Extended>(seconds) + static_cast<Extended>(CAPACITY_SLACK)));
}

float Distance(const Vector3 &from, const Vector3 &to)
{
    const Vector3 way = to - from;
    return std::sqrt(way.x * way.x + way.y * way.y + way.z * way.z);
}

} // namespace

vrMKPSpawner::vrMKPSpawner()
{
    GlobalLODLevel =
        Parameters.Add_Int(4, "Global LOD", 0, 0, MAX_GLOBAL_LOD, "0 - always draw. 4 - draw only on high end");
    PreSimulateSeconds = Parameters.Add_Float(6, "PreSimulateSeconds", 0.0f, 0.0f, 10.0f,
                                              "Number of seconds to pre-simulate particle effect before playing.");
    AutoUpdatePositions =
        Parameters.Add_Bool(7, "Auto-Update Positions", true, "Automatically update positions based on velocity.");
    MinDynamicLOD = Parameters.Add_Float(8, "Min D-LOD", 1.0f, 0.0f, 1.0f,
                                         "Minimum percentage of particles to draw based on Dynamic LOD");
    DynamicLODNear = Parameters.Add_Float(9, "D-LOD Near Distance", 450.0f, 0.0f, 10000.0f,
                                          "Distance at which dynamic lod will begin lower particle counts.");
    DynamicLODFar = Parameters.Add_Float(10, "D-LOD Far Distance", 2000.0f, 0.0f, 10000.0f,
                                         "Distance at which dynamic lod will be the minimum number drawn.");
    RandomSeedSource =
        Parameters.Add_Enum(15, "Random Seed Source", RANDOM_SEED_SOURCES, 0, "Where to pull the random seed from.");
    RandomSeed = Parameters.Add_Int(
        12, "Random Seed", 0, -1073741824, 1073741823,
        "Random seed to use for generating random particles.\nSetting two particle systems to the same "
        "random seed should yield identical results for random attributes.");
    AltIndices =
        Parameters.Add_Mask(13, "Alt Indices", 0,
                            "Alternate indices allow the creation of several different variations\nby only showing "
                            "certain particles when a certain index is chosen.");
    Probability =
        Parameters.Add_Float(14, "Probability", 1.0f, 0.0f, 1.0f,
                             "Probability that this layer is displayed.  Re-evaluated each time the effect starts.");
    DistanceAsTime = Parameters.Add_Bool(16, "Distance As Time", false,
                                         "Causes the group's world position delta to be interpereted as seconds.");
    MaxDistanceAsTime = Parameters.Add_Float(17, "Max Dist. As Time", 10.0f, 0.0f, 1000.0f,
                                             "Speed past which distance as time emission is capped.");
    TerrainSnap = Parameters.Add_Bool(18, "Terrain Snap", false, "Snaps the particle Z to the terrain");
    TerrainOffset = Parameters.Add_Float(19, "Terrain Offset", 0.0f, -1000.0f, 1000.0f, "Offset from the terrain.");
    TerrainOffsetVariation = Parameters.Add_Float(20, "Terrain Offset Variation", 0.0f, 0.0f, 100.0f,
                                                  "Variation to randomize the terrain offset.");
    ContributeToLighting = Parameters.Add_Bool(21, "Contribute To Lighting", true,
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
float vrMKPSpawner::Get_Pre_Simulate_Seconds() const
{
    return PreSimulateSeconds->Get_Value();
}
bool vrMKPSpawner::Get_Contribute_To_Lighting() const
{
    return ContributeToLighting->Get_Value();
}
float vrMKPSpawner::Get_Probability() const
{
    return Probability->Get_Value();
}

bool vrMKPSpawner::Passes_Alt_Index(int index) const
{
    const uint32_t mask = AltIndices->Get_Value();
    return index < 0 || mask == 0 || (index < 32 && (mask >> index & 1u) != 0);
}

uint32_t vrMKPSpawner::Get_Run_Seed(const vrMKPRenderState &state) const
{
    if (RandomSeedSource->Get_Value() == SEED_OF_PARENT_GROUP) return static_cast<uint32_t>(state.Seed);
    const int32_t seed = RandomSeed->Get_Value();
    return seed != 0 ? static_cast<uint32_t>(seed) : NextLayerSeed.fetch_add(1, std::memory_order_relaxed);
}

bool vrMKPSpawner::Create_Spawn_Data(const vrMKPRenderState &, SmartPtr<vrMKPBufferPluginData> *) const
{
    return true;
}

bool vrMKPSpawner::Keep_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const
{
    if (!MK_VERIFY(data != nullptr, "plugin_data == NULL")) return false;
    if (!*data) *data = Create_Buffer_Data(state);
    return true;
}

vrMKPFillRules vrMKPSpawner::Get_Common_Fill_Rules() const
{
    vrMKPFillRules rules;
    rules.DistanceAsTime = DistanceAsTime->Get_Value();
    rules.TerrainSnap = TerrainSnap->Get_Value();
    rules.TerrainOffset = TerrainOffset->Get_Value();
    rules.TerrainOffsetVariation = TerrainOffsetVariation->Get_Value();
    return rules;
}

int vrMKPSpawner::Get_Max_Particles(const vrMKPRenderState &state, const vrMKPBufferPluginData *data,
                                    const vrMKPStomper *stomper) const
{
    const float stop = Get_Stop_Time();
    const float life = stomper ? stomper->Get_Max_Life(state) : 0.0f;
    const float rate = Get_Peak_Rate(state, data);
    if (stop < 0.0f || stop > life) return std::max(Count_With_Slack(rate, life), Get_Min_Capacity(data));
    // What outlives the stop time needs room for what is made until then, and no more.
    return std::max(stop == 0.0f ? Truncate(rate) : Count_With_Slack(rate, stop), 1);
}

bool vrMKPSpawner::Can_Spawn(const vrMKPBuffer *buffer, const vrMKPRenderState &state,
                             const vrMKPStomper *stomper) const
{
    if (buffer && buffer->SpawnerState == SPAWNER_STOPPED) return false;
    if (state.Is_Showing()) return true;
    if (stomper && stomper->Get_Kill_On_Removal()) return false;
    return (Get_Duration_Flags() & DURATION_HAS_END) != 0 && !Get_Hide_Trumps_Stop_Time();
}

float vrMKPSpawner::Get_Start_Time(const vrMKPRenderState &state) const
{
    return state.StartTimeOffset;
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

    StartDelay = Parameters.Add_Float(103, "Start Delay", 0.0f, 0.0f, 60.0f,
                                      "Delays the given time in seconds before spawning.");
    StopTime = Parameters.Add_Float(
        104, "Stop Time", 0.0f, 0.0f, 120.0f,
        "The spawner stops producing particles after the given number of seconds (0 = Spawn Forever).\nIt will "
        "continue spawning for this time even if the emitter is hidden or removed, unless set to 0, or the stop time "
        "is overriden.");
    VelocityInLocalSpace =
        Parameters.Add_Bool(109, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    InheritVelocity = Parameters.Add_Bool(110, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    InheritedVelocityScale =
        Parameters.Add_Float(111, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    MaxInheritSpeed =
        Parameters.Add_Float(112, "Max Inherit Speed", 1000.0f, 0.0f, 1000.0f, SpawnerText::MAX_INHERIT_SPEED);
    HiResRotate =
        Parameters.Add_Bool(113, "Hi-Res Rotate", false,
                            "Interpolate group rotation in determining initial spawn velocity (World Transform Only)");
    BurstOnShown = Parameters.Add_Bool(114, "Burst On Shown", true, "Burst when the emitter is un-hidden in the scene");
    ClusterSize = Parameters.Add_Int(
        115, "Cluster Size", 1, 1, 1000,
        "Number of particles to accumulate before spawning them all at once.\nThis is not for use with Enhanced "
        "Trails, which use ClusteringAmount instead.");
    ParticlesPerSecond = Parameters.Add_Float(116, "Particles / Second", 30.0f, 0.0f, 10000.0f, "Particles per second");
    HideTrumpsStopTime = Parameters.Add_Bool(
        117, "Hide Trumps Stop Time", false,
        "When true, hiding the emitter causes spawning to cease, even if the stop time indicates it has some life "
        "left.");
    UseEnvelope = Parameters.Add_Bool(118, "Use PPS Envelope", false, "Enable the PPS envelope.");
    EnvelopeDuration = Parameters.Add_Float(119, "Envelope Duration", 1.0f, 0.01f, 120.0f,
                                            "Duration over which the envelope applies.");
    Envelope = Parameters.Add_Keyed_Float(120, "PPS Envelope", "Multiply the overall spawn rate by a keyframe curve.");
    Envelope->Add_Key(0.0f, 1.0f);
    Envelope->Add_Key(1.0f, 1.0f);
    EnvelopeLooping = Parameters.Add_Enum(121, "PPS Looping", PPS_LOOPING, 0, "How to loop the PPS envelope.");
    EnergyEffectsVelocity =
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

float vrMKPEnhancedSpawner::Get_Base_Rate(const vrMKPRenderState &, const vrMKPBufferPluginData *) const
{
    return ParticlesPerSecond->Get_Value();
}

float vrMKPEnhancedSpawner::Get_Spawn_Rate(const vrMKPRenderState &, const vrMKPBufferPluginData *) const
{
    return ParticlesPerSecond->Get_Value();
}

float vrMKPEnhancedSpawner::Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const
{
    const float rate = Get_Base_Rate(state, data);
    return DistanceAsTime->Get_Value() ? rate * MaxDistanceAsTime->Get_Value() : rate;
}

float vrMKPEnhancedSpawner::Get_Start_Time(const vrMKPRenderState &state) const
{
    return StartDelay->Get_Value() + vrMKPSpawner::Get_Start_Time(state);
}

int vrMKPEnhancedSpawner::Get_Cluster_Size(const vrMKPBufferPluginData *) const
{
    return ClusterSize->Get_Value();
}

void vrMKPEnhancedSpawner::On_Shown(vrMKPBuffer *buffer) const
{
    if (!buffer || !BurstOnShown->Get_Value()) return;
    buffer->SpawnClock = 0.0f;
    buffer->FirstSpawn = true;
    buffer->SpawnerState = SPAWNER_WAITING;
    buffer->LastSpawnTime = 0.0f;
}

float vrMKPEnhancedSpawner::Get_Step(const vrMKPRenderState &state) const
{
    const float frame = state.FrameTime;
    if (!DistanceAsTime->Get_Value()) return frame;
    if (!(frame > 0.0f)) return 0.0f;
    const float distance = Distance(state.Get_Previous_Position(), state.Get_Position());
    const float fastest = MaxDistanceAsTime->Get_Value();
    return distance / frame > fastest ? fastest * frame : distance;
}

float vrMKPEnhancedSpawner::Get_Envelope(const vrMKPRenderState &state, float time) const
{
    if (!UseEnvelope->Get_Value()) return state.Energy;
    const float turns = time / EnvelopeDuration->Get_Value();
    const float fraction = std::fmod(turns, 1.0f);
    const bool isReturning = EnvelopeLooping->Get_Value() == PING_PONG && std::fmod(turns, 2.0f) >= 1.0f;
    float strength = 0.0f;
    Envelope->Evaluate(isReturning ? 1.0f - fraction : fraction, false, strength);
    return state.Energy * strength;
}

void vrMKPEnhancedSpawner::Spawn(vrMKPBuffer &buffer) const
{
    const float step = Get_Step(*buffer.State);
    buffer.SpawnClock += step;
    const float start = Get_Start_Time(*buffer.State);
    if (buffer.SpawnClock < start) return;
    const float age = buffer.SpawnClock - start;
    if (Spawn_Step(buffer, age, std::max(age - step, 0.0f))) buffer.FirstSpawn = false;
}

bool vrMKPEnhancedSpawner::Spawn_Step(vrMKPBuffer &buffer, float age, float previousAge) const
{
    const float stop = StopTime->Get_Value();
    const bool isPastStop = stop > 0.0f && age > stop;
    buffer.SpawnerState = isPastStop ? SPAWNER_STOPPED : SPAWNER_SPAWNING;
    if (isPastStop && !(stop > previousAge)) return true;

    const vrMKPBufferPluginData *data = buffer.SpawnerData.Get();
    const float envelope = Get_Envelope(*buffer.State, isPastStop ? stop : age);
    const float rate = Get_Spawn_Rate(*buffer.State, data) * envelope;
    if (!(rate > 0.0f)) return true;
    const int cluster = std::max(Get_Cluster_Size(data), 1);
    float next = buffer.FirstSpawn ? 0.0f : buffer.LastSpawnTime + static_cast<float>(cluster) * (1.0f / rate);
    // Time that wasn't spent, for want of room or rate, isn't made up later.
    if (previousAge > next) next = previousAge;
    if (stop > 0.0f && next > stop) {
        buffer.SpawnerState = SPAWNER_STOPPED;
        return false;
    }
    // Up to the age, not to the stop: the last frame may spawn a little past it.
    const float span = age - next;
    if (span > 0.0f) Spawn_Particles(buffer, rate, envelope, next, next - previousAge, span);
    return true;
}

vrMKPFillRules vrMKPEnhancedSpawner::Get_Fill_Rules(float envelope) const
{
    vrMKPFillRules rules = Get_Common_Fill_Rules();
    rules.VelocityFactor = EnergyEffectsVelocity->Get_Value() ? envelope : 1.0f;
    rules.VelocityInLocalSpace = VelocityInLocalSpace->Get_Value();
    rules.InheritVelocity = InheritVelocity->Get_Value();
    rules.InheritedVelocityScale = InheritedVelocityScale->Get_Value();
    rules.MaxInheritSpeed = MaxInheritSpeed->Get_Value();
    rules.HiResRotate = HiResRotate->Get_Value();
    return rules;
}

bool vrMKPEnhancedSpawner::Begin_Filling(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                                         float span, vrMKPFilling &filling) const
{
    const int cluster = std::max(Get_Cluster_Size(buffer.SpawnerData.Get()), 1);
    // The product of two floats is exact as a double, so what ought to fall short of a whole particle does.
    const int due = Truncate(static_cast<double>(rate) * static_cast<double>(span));
    int64_t count = int64_t(due) + cluster;
    count -= count % cluster;
    filling.Count = buffer.Grant_Slots(static_cast<int>(std::min<int64_t>(count, INT_MAX)), filling.First);
    if (filling.Count == 0) return false;
    filling.Births.ClusterSize = cluster;
    filling.Births.ClusterStep = static_cast<float>(cluster) / rate;
    filling.Births.FirstTime = nextTime;
    filling.Births.Lead = lead;
    filling.Births.Span = span;
    filling.Rules = Get_Fill_Rules(envelope);
    return true;
}
