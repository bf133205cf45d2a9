#pragma once

#include "vrGraphics/plugins/renderables/KeyframeTiming.h"
#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

#include <string_view>

/// Moves nothing: the physics of a renderable that has no other.
class vrMKPRenderableNullPhysicsModifier final : public vrMKPRenderablePhysics
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Swings along the three axes and turns about them, in the frame where the renderable stands.
class vrMKPWaveAndSpinRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPWaveAndSpinRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    Mat3DClass Get_Motion(const vrMKPMotionContext &context) const override;

private:
    /// Waves by which this instance is ahead of the others, 0 to 1. One draw: an axis is ahead by as much as the next.
    float Get_Instance_Phase(const vrMKPMotionContext &context) const;

    EnumParameterClass *Waveform;
    Vector3Parameter *WaveAmplitude;
    Vector3Parameter *WaveFrequency;
    Vector3Parameter *WavePhase;
    BoolParameter *RandomPhase;
    Vector3Parameter *SpinRate;
    Vector3Parameter *StartRotation;
};

/// Runs translation, rotation and scale through keyframes, in the frame where the renderable stands.
class vrMKPKeyedTransformRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPKeyedTransformRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    Mat3DClass Get_Motion(const vrMKPMotionContext &context) const override;

private:
    KeyframeTiming Timing;
    KeyedFloatParameterClass *Translate[3];
    KeyedFloatParameterClass *Rotate[3];
    KeyedFloatParameterClass *Scale;
};

/// Takes the transform of another renderable of the emitter, one that stands ahead of it, in place of its own. Without
/// such a renderable it moves nothing.
class vrMKPFollowRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPFollowRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    Mat3DClass Get_Motion(const vrMKPMotionContext &context) const override;

    /// The name of the renderable to follow; empty for none.
    std::string_view Get_Parent_Name() const;
    void Set_Parent_Name(std::string_view name);

private:
    StringParameterClass *ParentName;
    BoolParameter *FollowRotation;
    BoolParameter *FollowScale;
};
