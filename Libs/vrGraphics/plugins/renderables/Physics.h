#pragma once

#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

#include <string_view>

/// Moves nothing: the physics of a renderable that has no other.
class vrMKPRenderableNullPhysicsModifier final : public vrMKPRenderablePhysics
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Swings along the three axes and turns about them.
class vrMKPWaveAndSpinRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPWaveAndSpinRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Flies from the source of the emitter's projectile to its target.
class vrMKPSimpleProjectileRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPSimpleProjectileRenderablePhysics();
    bool Is_Shared_Physics() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Winds away from the source for a time, and then speeds up toward the target.
class vrMKPSpiralAndSeekProjectileRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPSpiralAndSeekProjectileRenderablePhysics();
    bool Is_Shared_Physics() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Runs translation, rotation and scale through keyframes.
class vrMKPKeyedTransformRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPKeyedTransformRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Takes the transform of another renderable of the emitter, one that stands ahead of it.
class vrMKPFollowRenderablePhysics final : public vrMKPRenderablePhysics
{
public:
    vrMKPFollowRenderablePhysics();
    size_t Get_Object_Size() const override { return sizeof(*this); }

    /// The name of the renderable to follow; empty for none.
    std::string_view Get_Parent_Name() const;
    void Set_Parent_Name(std::string_view name);

private:
    StringParameterClass *ParentName;
};
