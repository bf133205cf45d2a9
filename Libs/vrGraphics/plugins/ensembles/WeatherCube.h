#pragma once

/// A cube of weather that follows the camera: all particles are made at the start, and the modifier, the transformer
/// and the stomper keep the same ones alive within the cube. Each has a "Cube Size" of its own, which the artist keeps
/// equal.

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

/// Fills the cube once; from then on it only shows and hides what is there.
class vrMKPWeatherCubeSpawner final : public vrMKPSpawner
{
public:
    vrMKPWeatherCubeSpawner();
    bool Sets_Live_Slots() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Post_Load() override;
    void Spawn(vrMKPBuffer &buffer) const override;
    int Get_Min_Capacity(const vrMKPBufferPluginData *data) const override;

private:
    void Fill(vrMKPBuffer &buffer, int count) const;

    RangedIntParameter *ParticleCount;
    RangedFloatParameter *CubeSize;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
};

/// Brings particles that leave the cube on one side back in on the other.
class vrMKPWeatherCubeModifier final : public vrMKPModifier
{
public:
    vrMKPWeatherCubeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// From the first particle that comes back, all that follow get a previous position of their own way.
    WalkType Get_Walk() const override { return WALK_WHOLE; }
    void Modify(vrMKPBuffer &buffer, int index) const override;

private:
    RangedFloatParameter *CubeSize;
};

/// Places the cube ahead of the camera, and its particles at the points of a lattice that stays put in the world.
class vrMKPWeatherCubeTransformer final : public vrMKPTransformer
{
public:
    vrMKPWeatherCubeTransformer();
    bool Needs_Camera() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Transform_For_View(vrMKPBuffer *buffer, const Mat3DClass *camera, vrBounds &bounds) const override;

private:
    RangedFloatParameter *CubeSize;
    RangedFloatParameter *CameraOffset;
    EnumParameterClass *TimeEmulation;
};

/// Kills nobody: how many particles there are follows the renderable's energy, and is none while it is hidden.
class vrMKPWeatherCubeStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Begin_Age(vrMKPBuffer &buffer) const override;
    void Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const override;
    float Get_Max_Life(const vrMKPRenderState & /*state*/) const override { return 1.0f; }

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;
};
