#pragma once

/// The modifiers that change how fast a particle moves and keep its direction.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPSpeedLimitModifier final : public vrMKPModifier
{
public:
    vrMKPSpeedLimitModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPLinearSpeedModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearSpeedModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedFrictionModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedFrictionModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
