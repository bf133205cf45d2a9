#pragma once

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

/// Half of the size, along each axis, of the bounds of layers that are everywhere about the camera.
constexpr float VIEW_BOUNDS_EXTENT = 10000.0f;

/// Particles ride with their group.
class vrMKPLocalTransformer final : public vrMKPTransformer
{
public:
    vrParticleScaleType Get_Scale_Type() const override { return PARTICLE_SCALE_AT_DRAW; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Transform_Span(vrMKPBuffer &buffer, vrMKPSpan span) const override;
    void Transform_Companion(vrMKPBuffer &buffer) const override;
};

/// Particles stay behind when their group moves.
class vrMKPWorldTransformer final : public vrMKPTransformer
{
public:
    bool Keeps_Positions() const override { return true; }
    vrMKPTransformType Get_Transform_Type() const override { return MKP_TRANSFORM_WORLD; }
    vrParticleScaleType Get_Scale_Type() const override { return PARTICLE_SCALE_AT_SPAWN; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Transform_Span(vrMKPBuffer &buffer, vrMKPSpan span) const override;
    void Transform_Companion(vrMKPBuffer &buffer) const override;
};

/// Particles are pinned to the camera, and tile a rectangle in front of it.
class vrMKPScreenTransformer final : public vrMKPTransformer
{
public:
    vrMKPScreenTransformer();
    vrMKPTransformType Get_Transform_Type() const override { return MKP_TRANSFORM_SCREEN; }
    bool Needs_Camera() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Transform_For_View(vrMKPBuffer *buffer, const Mat3DClass *camera, vrBounds &bounds) const override;

private:
    RangedFloatParameter *Width;
    RangedFloatParameter *Height;
    BoolParameter *EnableZClamp;
    RangedFloatParameter *ZOffset;
};
