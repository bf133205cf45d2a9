#pragma once

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

/// Spawns on the vertices or the surface of the mesh that the emitter is attached to.
class vrMKPEnhancedMeshSpawner final : public vrMKPEnhancedSpawner
{
public:
    vrMKPEnhancedMeshSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
