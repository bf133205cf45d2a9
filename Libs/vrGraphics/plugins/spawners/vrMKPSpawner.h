#pragma once

/// The spawner family: the plugins of a layer that create its particles. A spawner carries the layer's level of detail
/// too: its "Global LOD" is the least quality at which the layer runs, and the dynamic values tell how the drawing is
/// thinned with distance. Level of detail never changes how many particles a running spawner creates.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

class vrMKPFilling;
class vrMKPStomper;
struct vrMKPFillRules;

/// The base of all spawners, with the parameters that each of them has.
class vrMKPSpawner : public vrMKPPlugin
{
public:
    /// What `Get_Duration_Flags` answers.
    enum DurationFlags : int
    {
        DURATION_ENDLESS = 2,
        DURATION_HAS_END = 4
    };

    static constexpr int MAX_GLOBAL_LOD = 4;

    /// The quality level of the whole process, 0 (lowest) to 4, 4 at the start. A layer runs when its "Global LOD"
    /// isn't above it. Set on the user interface's thread and read by frames: a stale read costs one frame. `quality`
    /// is 0 to 1; the level is its fourfold, rounded up.
    static void Set_Global_LOD(float quality);
    /// Clamps to 0..4.
    static void Set_Global_LOD_Level(int level);
    static int Get_Global_LOD();

    /// Called when the plugin's parameters were loaded or cloned, to fold what old files hold into today's values.
    virtual bool Post_Load() { return true; }
    /// Seconds after the start delay at which spawning ends; negative means never.
    virtual float Get_Stop_Time() const { return -1.0f; }
    /// Whether hiding the emitter ends the spawning ahead of its stop time.
    virtual bool Get_Hide_Trumps_Stop_Time() const { return false; }
    virtual int Get_Duration_Flags() const { return DURATION_ENDLESS; }

    // Each reads or writes one parameter, with no range check; a running effect keeps its values until they are pushed.
    int Get_LOD() const;
    void Set_LOD(int level);
    float Get_Min_Dynamic_LOD() const; ///< least fraction of the particles that is drawn, 0 to 1
    void Set_Min_Dynamic_LOD(float fraction);
    float Get_Dynamic_LOD_Near() const; ///< world units
    void Set_Dynamic_LOD_Near(float distance);
    float Get_Dynamic_LOD_Far() const; ///< world units
    void Set_Dynamic_LOD_Far(float distance);
    /// Whether the frame moves the particles by their velocities.
    virtual bool Get_Auto_Update_Positions() const;
    float Get_Pre_Simulate_Seconds() const;
    bool Get_Contribute_To_Lighting() const;
    /// The chance of the layer to be shown, drawn anew each time that the effect starts, 0 to 1.
    float Get_Probability() const;
    /// Whether the layer shows in a group of an alternate index; -1 is none, which shows all.
    bool Passes_Alt_Index(int index) const;
    /// The seed of a new run of a buffer: the layer's own, the group's or, for 0, the next of a process-wide counter.
    uint32_t Get_Run_Seed(const vrMKPRenderState &state) const;

    /// Readies what the spawner keeps for a new buffer in `data`, which may hold it from an earlier run. False when the
    /// buffer must not be made. Null asserts where a spawner keeps something.
    virtual bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const;
    /// The spawning step of one frame.
    virtual void Spawn(vrMKPBuffer & /*buffer*/) const {}
    /// A request of game code for particles.
    virtual void Spawn_Code_Particle(vrMKPBuffer & /*buffer*/, int /*count*/) const {}
    /// A particle of `parent`, the buffer of the layer that this one spawns from, has died, `overshoot` seconds past its
    /// greatest age.
    virtual void On_Parent_Particle_Death(vrMKPBuffer & /*buffer*/, const vrMKPBuffer & /*parent*/,
                                          const Vector3 & /*position*/, const Vector3 & /*velocity*/,
                                          float /*overshoot*/) const
    {
    }
    /// A run begins, and all layers of the group have their buffers: where to find the one that this one follows.
    virtual void Find_Parent(vrMKPBuffer & /*buffer*/) const {}
    /// Whether it knows of births that wait for its next step.
    virtual bool Has_Pending_Births(const vrMKPBuffer & /*buffer*/) const { return false; }
    // Particles a second: at full strength, at this moment ahead of the envelope, and the highest, which sizes the
    // buffer.
    virtual float Get_Base_Rate(const vrMKPRenderState & /*state*/, const vrMKPBufferPluginData * /*data*/) const
    {
        return 0.0f;
    }
    virtual float Get_Spawn_Rate(const vrMKPRenderState & /*state*/, const vrMKPBufferPluginData * /*data*/) const
    {
        return 0.0f;
    }
    virtual float Get_Peak_Rate(const vrMKPRenderState & /*state*/, const vrMKPBufferPluginData * /*data*/) const
    {
        return 0.0f;
    }
    virtual int Get_Min_Capacity(const vrMKPBufferPluginData * /*data*/) const { return 1; }
    /// The capacity of a buffer; `stomper` may be null. Beyond what a buffer takes where the parameters say so.
    virtual int Get_Max_Particles(const vrMKPRenderState &state, const vrMKPBufferPluginData *data,
                                  const vrMKPStomper *stomper) const;
    /// Whether the layer's buffer (or null) lets it go on spawning, hidden and removed emitters included.
    bool Can_Spawn(const vrMKPBuffer *buffer, const vrMKPRenderState &state, const vrMKPStomper *stomper) const;
    /// Seconds after the effect's start at which spawning begins.
    virtual float Get_Start_Time(const vrMKPRenderState &state) const;
    /// Whether particles die in the order of their births.
    virtual bool Has_Hard_Lifetime() const { return true; }
    virtual bool Uses_Scaled_Transform_Data() const { return true; }
    /// Whether the spawner says which slots live, in place of granting new ones: slots that didn't live in the last frame
    /// may be back with what they held.
    virtual bool Sets_Live_Slots() const { return false; }
    /// Whether all particles come from those of another layer: without that one's the layer is at its end.
    virtual bool Follows_Parent() const { return false; }
    // The layer was suspended, and goes on. Null when it has no buffer.
    virtual void On_Hidden(vrMKPBuffer * /*buffer*/) const {}
    virtual void On_Shown(vrMKPBuffer * /*buffer*/) const {}
    /// An object with a count of 0 that simulates the layer beside the buffer, or null.
    virtual vrHWParticleBuffer *Get_Buffer_Companion(vrMKPBuffer & /*buffer*/) const { return nullptr; }

protected:
    vrMKPSpawner();
    /// `Create_Spawn_Data` of the spawners that keep something: what `Create_Buffer_Data` makes, unless `data` holds it
    /// already.
    bool Keep_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const;
    /// The rules that every spawner has parameters for.
    vrMKPFillRules Get_Common_Fill_Rules() const;

    // "Distance As Time": the way of the emitter, in world units, stands for seconds, up to a speed.
    BoolParameter *DistanceAsTime;
    RangedFloatParameter *MaxDistanceAsTime;

private:
    RangedIntParameter *GlobalLODLevel;
    RangedFloatParameter *PreSimulateSeconds;
    BoolParameter *AutoUpdatePositions;
    RangedFloatParameter *MinDynamicLOD;
    RangedFloatParameter *DynamicLODNear;
    RangedFloatParameter *DynamicLODFar;
    EnumParameterClass *RandomSeedSource;
    RangedIntParameter *RandomSeed;
    MaskParameter *AltIndices;
    RangedFloatParameter *Probability;
    BoolParameter *TerrainSnap;
    RangedFloatParameter *TerrainOffset;
    RangedFloatParameter *TerrainOffsetVariation;
    BoolParameter *ContributeToLighting;
};

/// The base of the spawners that create particles at a rate: timing, clusters, envelope and inherited velocity. Where a
/// particle starts, and how fast, is left to the derived classes.
class vrMKPEnhancedSpawner : public vrMKPSpawner
{
public:
    // Where and how fast a particle starts is asked of the derived class without a virtual call for each particle: see
    // ParticleFilling.h.
    void Spawn(vrMKPBuffer &buffer) const override;
    /// Grants and fills the particles of one frame: `rate` a second for `span` seconds from `nextTime` on, the time of
    /// the first of them on the spawner's own clock, which is `lead` seconds into the frame. `envelope` scales speeds.
    virtual void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                                 float span) const = 0;
    /// How many particles are born at one time.
    virtual int Get_Cluster_Size(const vrMKPBufferPluginData *data) const;

    /// Old files give a rate as particles per interval, with bursting by its own switch. Where one of these was loaded,
    /// "Particles / Second" and "Cluster Size" take its place. Always true.
    bool Post_Load() override;
    /// "Stop Time", where 0 means never.
    float Get_Stop_Time() const override;
    bool Get_Hide_Trumps_Stop_Time() const override;
    int Get_Duration_Flags() const override;
    /// Both "Particles / Second".
    float Get_Base_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    float Get_Spawn_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    /// The base rate, times the greatest speed where distance stands for time.
    float Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    float Get_Start_Time(const vrMKPRenderState &state) const override;
    /// Starts the spawning over where "Burst On Shown" is on.
    void On_Shown(vrMKPBuffer *buffer) const override;

protected:
    vrMKPEnhancedSpawner();
    /// Grants the slots of whole clusters and tells how to fill them, from the arguments of `Spawn_Particles`. False
    /// when there is nothing to fill.
    bool Begin_Filling(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead, float span,
                       vrMKPFilling &filling) const;
    vrMKPFillRules Get_Fill_Rules(float envelope) const;
    /// Seconds by which the spawner's clock advances in this frame.
    float Get_Step(const vrMKPRenderState &state) const;
    /// The strength of the emitter at a time of the spawner's own clock.
    float Get_Envelope(const vrMKPRenderState &state, float time) const;

private:
    /// The step of a frame past the start delay, from one age to the next on the spawner's own clock. False when the
    /// first spawn is still to come.
    bool Spawn_Step(vrMKPBuffer &buffer, float age, float previousAge) const;

    RangedFloatParameter *ParticlesPerInterval; ///< of old files, never saved, like the next two
    RangedFloatParameter *SpawnInterval;
    BoolParameter *EnableBursting;
    RangedFloatParameter *StartDelay;
    RangedFloatParameter *StopTime;
    BoolParameter *VelocityInLocalSpace;
    BoolParameter *InheritVelocity;
    RangedFloatParameter *InheritedVelocityScale;
    RangedFloatParameter *MaxInheritSpeed;
    BoolParameter *HiResRotate;
    BoolParameter *BurstOnShown;
    RangedIntParameter *ClusterSize;
    RangedFloatParameter *ParticlesPerSecond;
    BoolParameter *HideTrumpsStopTime;
    BoolParameter *UseEnvelope;
    RangedFloatParameter *EnvelopeDuration;
    KeyedFloatParameterClass *Envelope;
    EnumParameterClass *EnvelopeLooping;
    BoolParameter *EnergyEffectsVelocity;
};
