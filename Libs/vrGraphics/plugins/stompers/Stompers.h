#pragma once

/// The stompers that stand by themselves: each kills by age, and all but the first by a condition too.

#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

class vrMKPSimpleStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Kills beyond a distance from the layer's centre.
class vrMKPRadiusStomper final : public vrMKPStomper
{
public:
    vrMKPRadiusStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Kills below the terrain.
class vrMKPTerrainStomper final : public vrMKPStomper
{
public:
    vrMKPTerrainStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Kills within a distance of a target.
class vrMKPTargetStomper final : public vrMKPStomper
{
public:
    vrMKPTargetStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Kills past a value on one axis of the world.
class vrMKPAxisStomper final : public vrMKPStomper
{
public:
    vrMKPAxisStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
