#pragma once

/// Particles that live on the graphics card: the spawner holds the whole life of a particle in its parameters, the
/// visualizer its colour and size keys, and neither positions nor ages come back to main memory.

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

class vrMKPHardwareSpawner final : public vrMKPSpawner
{
public:
    vrMKPHardwareSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPHardwareBillboardVisualizer final : public vrMKPSimpleVisualizer
{
public:
    vrMKPHardwareBillboardVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPHWStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
