#pragma once

/// The modifiers that spin particles around an axis of the group.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// A push along the tangent, which leaves the particle free.
class vrMKPVortexModifier final : public vrMKPModifier
{
public:
    vrMKPVortexModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Holds particles on a cone between two heights.
class vrMKPFunnelModifier final : public vrMKPModifier
{
public:
    vrMKPFunnelModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Holds particles on a tube about a ring.
class vrMKPTorusModifier final : public vrMKPModifier
{
public:
    vrMKPTorusModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
