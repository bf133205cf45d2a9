#pragma once

/// Accelerations of all particles alike, and the wind.

#include "vrGraphics/plugins/modifiers/Interpolating.h"
#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

class vrMKPAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedAccelerationModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// An acceleration too, under which new particles are thrown onto a random point of a circle about the target.
class vrMKPCircleTargetAccelerationModifier final : public vrMKPTargetModifier
{
public:
    vrMKPCircleTargetAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPWindAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPWindAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Moves the particles and leaves their velocities alone.
class vrMKPWindVelocityModifier final : public vrMKPModifier
{
public:
    vrMKPWindVelocityModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
