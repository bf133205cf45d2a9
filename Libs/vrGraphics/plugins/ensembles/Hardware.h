#pragma once

/// Particles that are simulated apart from their layer: the spawner holds the whole life of a particle in its
/// parameters, the visualizer its colour and size keys, and neither positions nor ages come to the layer's buffer.

#include "vrGraphics/plugins/ensembles/vrHWParticleLook.h"
#include "vrGraphics/plugins/ensembles/vrHWParticles.h"
#include "vrGraphics/plugins/spawners/ShapeSource.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

/// Hands its values over to a companion of the buffer, its timing included: to the layer it is a spawner without an
/// end, whose buffer stays empty.
class vrMKPHardwareSpawner final : public vrMKPSpawner
{
public:
    vrMKPHardwareSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Post_Load() override;
    vrHWParticleBuffer *Get_Buffer_Companion(vrMKPBuffer &buffer) const override;
    /// Starts the spawning over.
    void On_Shown(vrMKPBuffer *buffer) const override;

    vrHWSpawnRules Get_Rules() const;
    vrHWForces Get_Forces() const;
    vrMKPShapeSource Get_Shapes() const;

private:
    RangedFloatParameter *ParticleCount;
    RangedFloatParameter *ParticleLifetime;
    BoolParameter *EnableBursting;
    RangedFloatParameter *StartDelay;
    RangedFloatParameter *StopTime;
    ShapeParameterClass *Position;
    BoolParameter *HollowPosition;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
    BoolParameter *EvenDistribution;
    Vector3Parameter *Acceleration;
    RangedFloatParameter *AttractAcceleration;
    Vector3Parameter *VortexAxis;
    RangedFloatParameter *VortexRotation;
    RangedFloatParameter *VortexAttraction;
};

/// Holds no shader: the companion draws with one of its own.
class vrMKPHardwareBillboardVisualizer final : public vrMKPSimpleVisualizer
{
public:
    vrMKPHardwareBillboardVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// A box of a fixed size about the origin: nobody asks where the particles are.
    void Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const override;
    bool Has_Plain_Bounds() const override { return false; }
    /// A box of that size about the renderable.
    vrBounds Get_Cull_Box(const vrMKPBuffer &buffer, const vrBounds &bounds) const override;
    void Select_Visible_Particles(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const override {}
    /// The texture alone.
    void Load_Assets(bool force, const vrMKPVisualizer *shared) override;

    vrHWParticleLook Get_Look() const;

protected:
    void Do_Visualize(vrMKPBuffer &buffer, vrRenderContext &context) const override;

private:
    EnumParameterClass *RenderMode;
    EnumParameterClass *GeometryMode;
    EnumParameterClass *AnchorPoint;
    RangedFloatParameter *AspectRatio;
    EnumParameterClass *TextureRotation;
    UVParameter *TexCoords;
    RGBAParameter *StartColor;
    RGBAParameter *MidColor;
    RGBAParameter *EndColor;
    RangedFloatParameter *MidColorKeyTime;
    RangedFloatParameter *StartSize;
    RangedFloatParameter *MidSize;
    RangedFloatParameter *EndSize;
    RangedFloatParameter *MidSizeKeyTime;
};

/// Does nothing: hardware particles end by themselves.
class vrMKPHWStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Init_New_Particles(vrMKPBuffer & /*buffer*/) const override {}
    bool Begin_Age(vrMKPBuffer & /*buffer*/) const override { return false; }
    bool Has_Condition() const override { return false; }
};
