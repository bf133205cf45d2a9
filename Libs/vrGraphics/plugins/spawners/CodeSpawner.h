#pragma once

#include "vrGraphics/plugins/spawners/ParticleFilling.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

/// Spawns what game code asks for, in the next step after it asked. "#Code Particles" is the most that live at once,
/// and the most that one request can ask for.
class vrMKPCodeSpawner final : public vrMKPSpawner
{
public:
    vrMKPCodeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Post_Load() override;
    void Spawn(vrMKPBuffer &buffer) const override;
    /// Replaces an earlier request of the same frame.
    void Spawn_Code_Particle(vrMKPBuffer &buffer, int count) const override;
    int Get_Min_Capacity(const vrMKPBufferPluginData *data) const override;

private:
    vrMKPFillRules Get_Fill_Rules() const;

    RangedFloatParameter *ParticleLimit;
    BoolParameter *VelocityInLocalSpace;
    BoolParameter *InheritVelocity;
    RangedFloatParameter *InheritedVelocityScale;
    RangedFloatParameter *MaxInheritSpeed;
    ShapeParameterClass *Position;
    BoolParameter *HollowPosition;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
    BoolParameter *EvenDistribution;
};
