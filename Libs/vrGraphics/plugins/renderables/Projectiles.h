#pragma once

/// Renderables that fly. Game code says where to and how fast: the render state's projectile speed, the target as the
/// effect started, which a "Normal" projectile flies to, and the target now, which a "Homing" one does. Without a speed
/// above 0 there is no projectile, and the renderable stays at the source, which is where it stands without physics in
/// the first frame with a speed. One that has hit stays where it hit.

#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

class ProjectileDataClass;

/// What both kinds have in common: the flight's start, its end, and how the renderable turns on the way.
class vrMKPProjectileRenderablePhysics : public vrMKPRenderablePhysics
{
public:
    bool Is_Shared_Physics() const override { return true; }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    /// Moves on by the step of the context.
    Mat3DClass Get_Motion(const vrMKPMotionContext &context) const override;
    bool Has_Hit(const vrMKPBufferPluginData *data) const override;

protected:
    vrMKPProjectileRenderablePhysics();

    /// Draws and notes what the flight needs, as it starts. `data` has the source and the target.
    virtual void Start_Flight(ProjectileDataClass &data, const vrMKPMotionContext &context, float speed) const = 0;
    /// Moves the position on by a step above 0, sets the direction of flight, and tells when it hits. `data` has the
    /// target of this frame and the time with this step.
    virtual void Fly(ProjectileDataClass &data, float step, float speed) const = 0;

private:
    EnumParameterClass *TrackMode;
    RangedFloatParameter *SpeedMultiplier;
    BoolParameter *AlignToMotion;
};

/// Flies from the source of the emitter's projectile to its target.
class vrMKPSimpleProjectileRenderablePhysics final : public vrMKPProjectileRenderablePhysics
{
public:
    vrMKPSimpleProjectileRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Start_Flight(ProjectileDataClass &data, const vrMKPMotionContext &context, float speed) const override;
    void Fly(ProjectileDataClass &data, float step, float speed) const override;

private:
    EnumParameterClass *TrajectoryType;
    RangedFloatParameter *Gravity;
};

/// Winds away from the source for a time, and then speeds up toward the target.
class vrMKPSpiralAndSeekProjectileRenderablePhysics final : public vrMKPProjectileRenderablePhysics
{
public:
    vrMKPSpiralAndSeekProjectileRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Start_Flight(ProjectileDataClass &data, const vrMKPMotionContext &context, float speed) const override;
    void Fly(ProjectileDataClass &data, float step, float speed) const override;

private:
    void Spiral(ProjectileDataClass &data) const;
    void Seek(ProjectileDataClass &data, float step, float speed) const;

    RangedFloatParameter *SpiralTime;
    RangedFloatParameter *SpiralSpeed;
    Vector3Parameter *SpiralAxis;
    RangedFloatParameter *SpiralRadius;
    RangedFloatParameter *SpiralRate;
    BoolParameter *RandomSpiralStart;
    RangedFloatParameter *SeekAcceleration;
    RangedFloatParameter *SeekTurnRate;
};
