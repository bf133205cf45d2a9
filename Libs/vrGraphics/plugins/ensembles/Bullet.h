#pragma once

/// Projectiles: the modifier flies each particle from its origin to the target, and the stomper gives it the time of
/// the flight to live.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

/// Places each particle between its origin and its target by its time, whatever its velocity; past a time of 1 it stays
/// at the target. Particles spread about the way by their IDs.
class vrMKPBulletModifier final : public vrMKPModifier
{
public:
    /// The entries of "Trajectory Types", by the number that a file stores.
    enum TrajectoryType : int
    {
        TRAJECTORY_LINEAR,
        TRAJECTORY_ARC,   ///< up and down under gravity
        TRAJECTORY_GROUND ///< along the terrain
    };
    /// Likewise those of "Track Mode".
    enum TrackMode : int
    {
        TRACK_NORMAL, ///< each particle flies to where the target was at its birth
        TRACK_HOMING  ///< all follow the target
    };

    vrMKPBulletModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Modifier_Post_Load(vrMKPRenderState &state) const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    struct Flight;

    Flight Get_Flight(const vrMKPBuffer &buffer) const;
    void Evaluate_Spreads(const vrMKPBuffer &buffer, const float *times, int count, float *spreads) const;

    EnumParameterClass *Trajectory;
    EnumParameterClass *Track;
    RangedFloatParameter *Spread;
    KeyedFloatParameterClass *KeyedSpread;
    KeyedFloatParameterClass *Blend;
    RangedFloatParameter *Gravity;
    RangedFloatParameter *HoverHeight;
    BoolParameter *UseKeyedSpread;
    BoolParameter *SpreadFromTargetRadius;
    BoolParameter *UseXYSpread;
};

class vrMKPBulletStomper final : public vrMKPStomper
{
public:
    vrMKPBulletStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Init_New_Particles(vrMKPBuffer &buffer) const override;
    bool Begin_Age(vrMKPBuffer &buffer) const override;
    void Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const override;
    float Get_Max_Life(const vrMKPRenderState &state) const override;
    void Update_Life() const override;

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    RangedFloatParameter *SpeedMultiplier;
};
