#pragma once

#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

/// Particles ride with their group.
class vrMKPLocalTransformer final : public vrMKPTransformer
{
public:
    vrParticleScaleType Get_Scale_Type() const override { return PARTICLE_SCALE_AT_DRAW; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Particles stay behind when their group moves.
class vrMKPWorldTransformer final : public vrMKPTransformer
{
public:
    vrMKPTransformType Get_Transform_Type() const override { return MKP_TRANSFORM_WORLD; }
    vrParticleScaleType Get_Scale_Type() const override { return PARTICLE_SCALE_AT_SPAWN; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Particles are pinned to the camera, and tile a rectangle in front of it.
class vrMKPScreenTransformer final : public vrMKPTransformer
{
public:
    vrMKPScreenTransformer();
    vrMKPTransformType Get_Transform_Type() const override { return MKP_TRANSFORM_SCREEN; }
    bool Needs_Camera() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
