#pragma once

/// Projectiles: the modifier flies each particle from its origin to the target, and the stomper gives it the time of
/// the flight to live.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

class vrMKPBulletModifier final : public vrMKPModifier
{
public:
    vrMKPBulletModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPBulletStomper final : public vrMKPStomper
{
public:
    vrMKPBulletStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
