#pragma once

/// The spawner family: the plugins of a layer that create its particles. A spawner carries the layer's level of detail
/// too: its "Global LOD" is the least quality at which the layer runs, and the dynamic values tell how the drawing is
/// thinned with distance. Level of detail never changes how many particles a running spawner creates.

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

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
    bool Get_Auto_Update_Positions() const;

protected:
    vrMKPSpawner();

private:
    RangedIntParameter *GlobalLODLevel;
    BoolParameter *AutoUpdatePositions;
    RangedFloatParameter *MinDynamicLOD;
    RangedFloatParameter *DynamicLODNear;
    RangedFloatParameter *DynamicLODFar;
};

/// The base of the spawners that create particles at a rate: timing, clusters, envelope and inherited velocity. Where a
/// particle starts, and how fast, is left to the derived classes.
class vrMKPEnhancedSpawner : public vrMKPSpawner
{
public:
    /// Old files give a rate as particles per interval, with bursting by its own switch. Where one of these was loaded,
    /// "Particles / Second" and "Cluster Size" take its place. Always true.
    bool Post_Load() override;
    /// "Stop Time", where 0 means never.
    float Get_Stop_Time() const override;
    bool Get_Hide_Trumps_Stop_Time() const override;
    int Get_Duration_Flags() const override;

protected:
    vrMKPEnhancedSpawner();

private:
    RangedFloatParameter *ParticlesPerInterval; ///< of old files, never saved, like the next two
    RangedFloatParameter *SpawnInterval;
    BoolParameter *EnableBursting;
    RangedFloatParameter *StopTime;
    RangedIntParameter *ClusterSize;
    RangedFloatParameter *ParticlesPerSecond;
    BoolParameter *HideTrumpsStopTime;
};
