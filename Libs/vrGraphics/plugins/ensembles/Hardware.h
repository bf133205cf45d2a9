#pragma once

/// Particles that live on the graphics card: the spawner holds the whole life of a particle in its parameters, the
/// visualizer its colour and size keys, and neither positions nor ages come back to main memory.

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

/// Hands its values over to the device, its timing included: to the layer it is a spawner without an end, whose buffer
/// stays empty. Without a device that simulates particles the layer shows nothing.
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
    /// A box of a fixed size about the origin: nobody knows where the particles are.
    void Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const override;
    bool Has_Plain_Bounds() const override { return false; }
    void Select_Visible_Particles(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const override {}
};

/// Does nothing: the device ends its own particles.
class vrMKPHWStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Init_New_Particles(vrMKPBuffer & /*buffer*/) const override {}
    bool Begin_Age(vrMKPBuffer & /*buffer*/) const override { return false; }
    bool Has_Condition() const override { return false; }
};
