#pragma once

/// The spawners that draw positions and velocities from shapes.

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

class vrMKPShapeSpawner : public vrMKPEnhancedSpawner
{
public:
    vrMKPShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Adds a velocity away from the centre of the position's shape.
class vrMKPOutwardVelocityShapeSpawner final : public vrMKPShapeSpawner
{
public:
    vrMKPOutwardVelocityShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Turns its shapes towards, or away from, a bone or a target.
class vrMKPAlignedShapeSpawner final : public vrMKPShapeSpawner
{
public:
    vrMKPAlignedShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Fills an area whose radius comes from game logic, at a rate that is a density: per thousand units of area or volume.
class vrMKPAreaOfEffectSpawner final : public vrMKPEnhancedSpawner
{
public:
    vrMKPAreaOfEffectSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
