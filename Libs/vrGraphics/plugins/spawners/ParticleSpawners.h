#pragma once

/// The spawners that take their particles from those of another layer of the group, which they find by its name. The
/// parent has to stand ahead of the child in the group for the child to see what it does in the same frame. Without a
/// parent they spawn nothing.

#include "vrGraphics/plugins/spawners/ParticleFilling.h"
#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

class vrMKPDeathSpawnerPluginData;

/// Lays particles along the paths of the parent's, as if each of these were an emitter.
///
/// "Particles / Second" is the rate of each particle of the parent, so that a trail is as dense behind one as behind a
/// hundred. Clusters take the parent's particles in turn, oldest first, and go on where the last one ended. "Clustering
/// Amount" is the share of the parent's particles that drop one at the same moment: with 1 all do, and a trail has a
/// beat; with 0 one does, and the moments of all are spread evenly. Nothing of this draws from a generator.
///
/// A particle starts where its parent was at that moment, between the parent's place ahead of this frame, or at its
/// birth, and that of now. The shapes are turned as the emitter, or along the parent's motion where that is asked for.
/// The velocity to inherit is the parent's.
class vrMKPEnhancedTrailSpawner final : public vrMKPShapeSpawner
{
public:
    /// A trail gets room for all particles that its parent has room for, as long as that doesn't come to more than
    /// this. Beyond it there is room for one particle's trail at least, and what doesn't fit isn't born.
    static constexpr int MAX_ROOM = 1 << 17;

    vrMKPEnhancedTrailSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    void Spawn(vrMKPBuffer &buffer) const override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;
    int Get_Cluster_Size(const vrMKPBufferPluginData *data) const override;
    float Get_Spawn_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    float Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    /// One cluster fits.
    int Get_Min_Capacity(const vrMKPBufferPluginData *data) const override;
    int Get_Max_Particles(const vrMKPRenderState &state, const vrMKPBufferPluginData *data,
                          const vrMKPStomper *stomper) const override;
    bool Follows_Parent() const override { return true; }

private:
    int Get_Cluster_Size_For(int parents) const;

    StringParameterClass *ParentName;
    EnumParameterClass *PositionAlignment;
    EnumParameterClass *VelocityAlignment;
    RangedFloatParameter *ClusteringAmount;
};

/// Bursts where a particle of the parent dies, provided that the parent's stomper tells about it. The dead particle
/// stands for the emitter: the shapes lie where it was, and its velocity is the one to inherit and to be aligned to. As
/// many deaths wait for the next step as the layer has slots; those beyond would find no room.
class vrMKPDeathSpawner final : public vrMKPSpawner
{
public:
    vrMKPDeathSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Post_Load() override;
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    /// The chance of "Probability" is drawn once for all deaths of a frame.
    void Spawn(vrMKPBuffer &buffer) const override;
    void On_Parent_Particle_Death(vrMKPBuffer &buffer, const vrMKPBuffer &parent, const Vector3 &position,
                                  const Vector3 &velocity, float overshoot) const override;
    void Find_Parent(vrMKPBuffer &buffer) const override;
    bool Has_Pending_Births(const vrMKPBuffer &buffer) const override;
    /// Deaths that nobody saw are forgotten.
    void On_Shown(vrMKPBuffer *buffer) const override;
    /// What a second of the most deaths takes.
    float Get_Base_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    float Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    /// Deaths of one frame come in the order of the parent's ring, at different moments.
    bool Has_Hard_Lifetime() const override { return false; }
    bool Follows_Parent() const override { return true; }

private:
    void Burst(vrMKPBuffer &buffer, const vrMKPDeathSpawnerPluginData &data) const;
    vrMKPFillRules Get_Fill_Rules() const;

    RangedFloatParameter *ParticlesPerDeath;
    ShapeParameterClass *Position;
    BoolParameter *HollowPosition;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
    BoolParameter *EvenDistribution;
    BoolParameter *VelocityInLocalSpace;
    BoolParameter *InheritVelocity;
    RangedFloatParameter *InheritedVelocityScale;
    RangedFloatParameter *MaxInheritSpeed;
    StringParameterClass *ParentName;
    EnumParameterClass *PositionAlignment;
    EnumParameterClass *VelocityAlignment;
    RangedFloatParameter *MaxDeathsPerSecond;
    RangedFloatParameter *BurstProbability;
};
