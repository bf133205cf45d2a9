#pragma once

/// The modifiers that drive the normalised time of particles, which linear and keyed modifiers behind them follow.
/// The stomper must leave the time alone.

#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

/// Time by the distance from a target.
class vrMKPDistanceKeyTimeModifier final : public vrMKPTargetModifier
{
public:
    vrMKPDistanceKeyTimeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Time by a wave that all particles of the layer share.
class vrMKPClockModifier final : public vrMKPModifier
{
public:
    vrMKPClockModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
