#pragma once

#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"

class vrMKPAttachedModelParameters;

/// The renderable that holds particle layers and lights. Layers run in list order, which matters where one is the
/// parent of another.
class vrMKParticleGroup final : public vrMKPRenderable
{
public:
    MK_RUN_TIME_TYPE

    /// Bits of the group's states.
    enum ParticleGroupStateFlags : uint8_t
    {
        GROUP_STATE_TELLS_EMITTER = 0x1, ///< behind the last model, a load of the emitter notes it in its flags
        GROUP_STATE_NEEDS_CAMERA = 0x4   ///< some layer is placed anew for each view
    };

    vrMKParticleGroup() = default;
    ~vrMKParticleGroup() override;

    vrMKParticleGroup *Clone(vrCloneType type) const override;
    /// An attached model of an old file becomes a model of its own, which the emitter gets ahead of the group. Expects
    /// to be in its emitter already; without an emitter the attached model is lost.
    bool Load(ChunkFile::ChunkFileReaderClass *reader) override;
    bool Save(ChunkFile::ChunkFileWriterClass *writer) override;
    /// Reads a chunk of the time when an emitter's layers stood in it directly.
    bool Load_Legacy_Layers(ChunkFile::ChunkFileReaderClass *reader);
    /// Reads a whole group of the time before plugins lit and moved it.
    bool Load_Legacy_Group(ChunkFile::ChunkFileReaderClass *reader);
    /// Restarts each layer too.
    void Reset() override;

    /// Process-wide, true at the start: whether a load of a layer readies the visualizer's textures and shader.
    static void Enable_Forced_Additional_Asset_Loading(bool enabled) { ForceAdditionalAssetLoading = enabled; }
    static bool Is_Additional_Asset_Loading_Forced() { return ForceAdditionalAssetLoading; }

    int Particle_Count() const { return static_cast<int>(Particles.size()); }
    /// Null for an index out of range.
    vrMKParticle *Get_Particle(int index) const;
    void Add_Particle(vrMKParticle *particle);
    int Light_Count() const { return static_cast<int>(Lights.size()); }
    vrMKPLightSourceController *Get_Light(int index) const;
    void Add_Light(vrMKPLightSourceController *light);
    /// The first layer's that has a "Bullet" modifier, or null: what the flight of the whole group goes by.
    vrMKPBulletModifier *Get_Projectile_Modifier() const;

    uint8_t Get_Group_States() const { return ParticleGroupStates; }
    void Set_Group_State(uint8_t bits, bool on);

    size_t Get_Object_Size() const override { return sizeof(*this); }
    size_t Get_Memory_Usage(bool includePlugins) const override;
    bool Is_Same_Definition(const vrMKPRenderable &other) const override;

private:
    using AttachedModels = std::vector<SmartPtr<vrMKPAttachedModelParameters>>;

    vrMKParticleGroup(const vrMKParticleGroup &other);
    bool Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, AttachedModels &attached, bool &isKnown);
    bool Load_Layer(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Lights(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Legacy_Chunk(ChunkFile::ChunkFileReaderClass &reader, bool &isKnown);
    void Load_Legacy_Variables(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Legacy_Lights(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Legacy_Physics(ChunkFile::ChunkFileReaderClass &reader);
    bool Split_Off_Model(vrMKPAttachedModelParameters *parameters);

    static bool ForceAdditionalAssetLoading;

    std::vector<SmartPtr<vrMKParticle>> Particles;
    std::vector<SmartPtr<vrMKPLightSourceController>> Lights;
    uint8_t ParticleGroupStates = 0;
};
