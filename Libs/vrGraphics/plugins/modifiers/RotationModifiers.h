#pragma once

/// The modifiers that write the rotation about the line of sight, in turns.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPLinearRotationModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPConstantRotationModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedRotationModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Does nothing, and stands for old files alone.
class vrMKPLinearRotationRateModifier final : public vrMKPLinearModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Does nothing, and stands for old files alone.
class vrMKPKeyedRotationRateModifier final : public vrMKPKeyedModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Spins particles by where they stand on a dome that is seen from the side: the rim fast, the middle not at all.
class vrMKPMushroomRotationModifier final : public vrMKPModifier
{
public:
    vrMKPMushroomRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Turns each particle along its motion on the screen.
class vrMKPScreenVelocityAlignedRotationModifier final : public vrMKPModifier
{
public:
    vrMKPScreenVelocityAlignedRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
