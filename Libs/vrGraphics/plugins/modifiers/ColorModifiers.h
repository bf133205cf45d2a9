#pragma once

/// The modifiers that write a colour by time, and the one that varies it between particles.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPLinearColorModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPConstantColorModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedColorModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Adds an amount of each channel that a particle draws once.
class vrMKPColorVarianceModifier final : public vrMKPModifier
{
public:
    vrMKPColorVarianceModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
