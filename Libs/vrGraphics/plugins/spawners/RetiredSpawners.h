#pragma once

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

/// The spawners of old files that spawn nothing any more: the point, trail, sphere, cube, torus, mesh, terrain and
/// global trajectory ones. They keep the parameters of the base, so that an old layer's level of detail survives a
/// save.
class vrMKPRetiredSpawner final : public vrMKPSpawner
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
