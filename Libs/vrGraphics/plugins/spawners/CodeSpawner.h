#pragma once

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

/// Spawns what game code asks for, at the moment it asks.
class vrMKPCodeSpawner final : public vrMKPSpawner
{
public:
    vrMKPCodeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
