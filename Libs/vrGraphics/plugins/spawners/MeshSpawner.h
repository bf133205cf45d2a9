#pragma once

#include "vrGraphics/plugins/spawners/MeshPoints.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

/// What the mesh spawner keeps for a buffer: the mesh that it spawns from, and how far it has come on it.
class vrMKPEnhancedMeshSpawnerPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override { Points.Rewind(); }

    vrMKPMeshPoints Points;
};

/// Spawns on the vertices or the surface of the mesh that the emitter is attached to; without a mesh, nothing.
///
/// "Random Vertices" takes each vertex equally often, "Random Surface Location" each part of the surface; "In-Order
/// Vertices" goes round the vertices one by one, and with "All Vertices" a cluster is one particle for every vertex, so
/// that the whole mesh flashes up at once, at the same number of particles a second. "Surface Offset" moves the start
/// away along the normal. "Relationship to Mesh" tells what the mesh's coordinates are: those of the emitter's own
/// frame where the two share a bone, or else those of the mesh's bone, which carries the emitter's.
class vrMKPEnhancedMeshSpawner final : public vrMKPEnhancedSpawner
{
public:
    vrMKPEnhancedMeshSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Post_Load() override;
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    void Spawn(vrMKPBuffer &buffer) const override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;
    int Get_Cluster_Size(const vrMKPBufferPluginData *data) const override;
    /// One cluster fits.
    int Get_Min_Capacity(const vrMKPBufferPluginData *data) const override;

private:
    bool Takes_Surface() const;
    bool Takes_All_Vertices() const;
    /// Takes the mesh of this frame.
    void Update_Mesh(const vrMKPRenderState &state, vrMKPEnhancedMeshSpawnerPluginData &data) const;
    bool Has_Points(const vrMKPMeshPoints &points) const;

    EnumParameterClass *Location;
    BoolParameter *AlignVelocity;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
    RangedFloatParameter *SurfaceOffset;
    EnumParameterClass *Relationship;
};
