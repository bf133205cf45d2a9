#pragma once

#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"
#include "vrGraphics/scene/vrParticleLight.h"

class vrMKPAttachedModelParameters;

/// The renderable that holds particle layers and lights. Layers run in list order, which matters where one is the
/// parent of another.
class vrMKParticleGroup final : public vrMKPRenderable, public vrMKPLayerList
{
public:
    MK_RUN_TIME_TYPE

    /// Bits of the group's states.
    enum ParticleGroupStateFlags : uint8_t
    {
        GROUP_STATE_TELLS_EMITTER = 0x1, ///< behind the last model, a load of the emitter notes it in its flags
        GROUP_STATE_NEEDS_CAMERA = 0x4   ///< some layer is placed anew for each view
    };

    vrMKParticleGroup();
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
    void Start() override;
    void Begin_Instance(const vrMKPRenderable &definition) override;
    void Set_Hidden(bool hidden) override;
    /// Whether the group or its emitter is hidden.
    bool Is_Group_Hidden() const;
    /// The emitter was hidden or shown.
    void On_Emitter_Hidden(bool hidden);
    /// Of the variants of an effect the layers of one index show; -1 shows all.
    void Set_Alt_Index(int index);
    /// A request of game code to the layers that take them.
    void Spawn_Code_Particles(int count);

    void Pre_Think(float dt) override;
    bool Wants_Particle_Think() const override { return Is_Started() && !Is_Ended(); }
    bool Needs_Serial_Frame() const override;
    void Fetch_Particles() const override;
    int Think_Particles(float dt) override;
    /// Whether nothing lives, and nothing more will by itself.
    bool Is_Depleted() const { return LiveParticles == 0 && WaitingLayers == 0; }
    /// The box around all layers, of the last frame.
    vrBounds Get_Bounds() const;
    bool Get_Cull_Box(vrBounds &box) const override;
    /// One task for each phase that layers draw in.
    void Collect(vrRenderContext &context) override;
    void Pre_Render(const vrPreRenderContext &context) override;
    void Render(vrRenderContext &context) override;
    vrMKPLayer *Find_Layer(std::string_view name) const override;
    /// Hands the death of a particle of `buffer` to the spawner of one of the group's layers.
    void On_Parent_Particle_Death(vrMKParticle *particle, const Vector3 &position, const Vector3 &velocity,
                                  float overshoot, const vrMKPBuffer *buffer);
    /// As it shines in this frame, off before the start; expects an index of a light.
    const vrParticleLight &Get_Light_State(int index) const;

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

protected:
    /// A group that is killed ends at once, its lights too.
    void Update_Modifiers(vrMKPRenderableModifierContext context) override;

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
    template <typename Get>
    vrBounds Merge_Boxes(Get &&get) const;
    void Count_Work();
    void Update_Lights();

    static bool ForceAdditionalAssetLoading;

    std::vector<SmartPtr<vrMKParticle>> Particles;
    std::vector<SmartPtr<vrMKPLightSourceController>> Lights;
    std::vector<SmartPtr<vrMKPBufferPluginData>> LightData; ///< one for each light
    std::vector<vrParticleLight> LightStates;
    int LiveParticles = 0; ///< of the last frame, like the next
    int WaitingLayers = 0; ///< that may spawn by themselves
    int AltIndex = -1;
    uint8_t ParticleGroupStates = 0;
};
