#pragma once

/// The spawners that take their particles from those of another layer of the group, which they find by its name.

#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

/// Lays particles along the paths of the parent's.
class vrMKPEnhancedTrailSpawner final : public vrMKPShapeSpawner
{
public:
    vrMKPEnhancedTrailSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Bursts where a particle of the parent dies.
class vrMKPDeathSpawner final : public vrMKPSpawner
{
public:
    vrMKPDeathSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
