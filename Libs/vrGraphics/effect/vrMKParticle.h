#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/NameTable.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <vector>

class vrMKParticleGroup;
class vrMKPBoundsSum;
class vrMKPBulletModifier;

/// One layer of an effect: a name, four slots with one plugin each, a list of modifiers that run in its order, and the
/// live buffer of one instance. The plugins are the definition. Definition is changed on the main thread or the loader,
/// between frames.
class vrMKParticle final : public RefCountClass, public vrMKPLayer
{
public:
    /// Chunks of a layer in a file.
    enum ParticleChunkEnum : uint32_t
    {
        VR_CHUNK_MKPARTICLE_NAME = 0,
        VR_CHUNK_MKPARTICLE_SPAWNER = 1,
        VR_CHUNK_MKPARTICLE_TRANSFORMER = 2,
        VR_CHUNK_MKPARTICLE_STOMPER = 3,
        VR_CHUNK_MKPARTICLE_VISUALIZER = 4,
        VR_CHUNK_MKPARTICLE_MODIFIER = 5
    };

    vrMKParticle();
    vrMKParticle(const vrMKParticle &) = delete;
    vrMKParticle &operator=(const vrMKParticle &) = delete;
    ~vrMKParticle() override;

    /// A new layer with a count of 0 and no buffer. It shares the plugins; in the editor it gets plugins of its own.
    vrMKParticle *Clone() const;

    /// Reads the current chunk, in place of what the layer had. A chunk whose plugin can't be had, or is of another
    /// family, makes the result false and leaves the slot with a default kind; such a modifier is dropped. A slot whose
    /// chunk is missing stays empty. A null reader asserts.
    bool Load(ChunkFile::ChunkFileReaderClass *reader);
    /// Writes into the current chunk. An empty slot writes nothing. A null writer asserts.
    bool Save(ChunkFile::ChunkFileWriterClass *writer) const;
    /// Empties the layer, but for its name, and takes it off its group.
    void Reset_Definition();
    /// Ends a run and keeps the definition.
    void Restart();

    const MK::String &Get_Name() const override { return Name.Get_String(); }
    void Set_Name(std::string_view name) { Name = NameTableRef(name); }
    vrMKParticleGroup *Get_Group() const { return Group; }
    /// Borrows the group that owns the layer, and tells it whether the layer is placed anew for each view.
    void Set_Group(vrMKParticleGroup *group);

    vrMKPSpawner *Get_Spawner() const { return Spawner.Get(); }
    vrMKPTransformer *Get_Transformer() const { return Transformer.Get(); }
    vrMKPStomper *Get_Stomper() const { return Stomper.Get(); }
    vrMKPVisualizer *Get_Visualizer() const { return Visualizer.Get(); }
    // Plain assignments: null empties the slot.
    void Set_Spawner(vrMKPSpawner *spawner) { Spawner = spawner; }
    void Set_Transformer(vrMKPTransformer *transformer) { Transformer = transformer; }
    void Set_Stomper(vrMKPStomper *stomper) { Stomper = stomper; }
    void Set_Visualizer(vrMKPVisualizer *visualizer) { Visualizer = visualizer; }
    bool Is_Hardware() const { return Spawner && Spawner->Get_Plugin_Class() == kvrMKPHardwareSpawner; }

    int Get_Modifier_Count() const { return static_cast<int>(Modifiers.size()); }
    /// Null for an index out of range.
    vrMKPModifier *Get_Modifier(int index) const;
    /// Index by address, or -1.
    int Get_Modifier_Index(const vrMKPModifier *modifier) const;
    void Add_Modifier(vrMKPModifier *modifier);
    /// False for an index out of range.
    bool Remove_Modifier(int index);
    bool Swap_Modifiers(int a, int b);
    /// The first modifier of the kind "Bullet", or null.
    vrMKPBulletModifier *Get_Bullet_Modifier() const { return BulletModifier.Get(); }

    /// Copies the level of detail of the spawner into a running layer's buffer.
    void Push_LOD();
    vrMKPBuffer *Get_Buffer() const override { return Buffer.Get(); }
    void Set_Buffer(vrMKPBuffer *buffer) { Buffer = buffer; }
    /// The box of the particles as they are drawn, of the last frame.
    const vrBounds &Get_Bounds() const { return Bounds; }

    // A layer is suspended while any of the three is set. The spawner is told when that changes.
    void Set_Hidden_By_Spawner(bool hidden) { Set_Hidden_Flag(HiddenBySpawner, hidden); }
    void Set_Hidden_By_Group(bool hidden) { Set_Hidden_Flag(HiddenByGroup, hidden); }
    void Set_Hidden_By_LOD(bool hidden) { Set_Hidden_Flag(HiddenByLOD, hidden); }
    bool Is_Suspended() const { return HiddenBySpawner || HiddenByGroup || HiddenByLOD; }

    /// Makes the buffer, or readies it for a new run. False when the layer stays without a live one: the spawner
    /// doesn't want it yet, or its capacity is refused, which is logged once a run. Before a frame: it allocates, and
    /// draws from counters of the process.
    bool Prepare_Buffer(vrMKParticleGroup &group);
    /// One frame of `dt` seconds, in the fixed order that makes a particle's life: age and remove the dead, move,
    /// spawn, modifiers in list order, world positions, the stomper's condition, bounds. Does nothing without a live
    /// buffer.
    void Update(float dt, vrMKParticleGroup &group);
    /// The same for a layer that a graphics device simulates.
    void Update_Hardware(float dt, vrMKParticleGroup &group);
    /// Whether the layer may create particles in this frame, by its level of detail and by what its spawner says.
    bool Should_Spawn() const;
    /// Places the particles of a view-dependent layer for a camera.
    void Pre_Render_Transform(const Mat3DClass &camera);
    /// Picks what is drawn in a view.
    void Select_Visible_Particles(const vrPreRenderContext &context);
    /// Whether the layer has something to draw in the render that collects. Until the next one, `Pre_Render` and
    /// `Render` go by the answer.
    bool Take_Part(const vrRenderContext &context);
    bool Takes_Part() const { return TakesPart; }
    vrRenderPhaseEnum Get_Render_Phase() const
    {
        return Visualizer ? Visualizer->Get_Render_Phase() : vrRenderPhaseEnum::Particles;
    }
    /// Places what depends on the view, picks what is drawn, and builds its vertices.
    void Pre_Render(const vrPreRenderContext &context);
    void Render(vrRenderContext &context);
    /// The box around what the layer draws in every view; false where it's placed anew for each. Expects a buffer.
    bool Get_Cull_Box(vrBounds &box) const;
    /// Whether the layer has particles, or may get some without its parent's.
    bool Has_Work() const;
    bool Needs_Serial_Frame() const;
    /// Whether it copies whole rings of other layers, slots that don't live among them.
    bool Copies_Slots() const
    {
        return HasSlaveModifier || (Spawner && Spawner->Get_Plugin_Class() == kvrMKPSlaveSpawner);
    }
    /// Start, stop and life together, in seconds.
    float Get_Lifetime() const;
    void On_Parent_Particle_Death(const vrMKPBuffer &parent, const Vector3 &position, const Vector3 &velocity,
                                  float overshoot) override;
    /// Makes it a layer that never played, hidden as the definition is.
    void Begin_Instance(const vrMKParticle &definition);
    /// Decides by the spawner's chance whether the layer shows in the run that starts.
    void Draw_Probability();
    void Set_Alt_Index(int index);
    /// The group was hidden or shown.
    void On_Group_Hidden(bool hidden);

    /// Bytes of the layer and what it allocated; with `includePlugins`, of its plugins and their parameters too.
    size_t Get_Memory_Usage(bool includePlugins) const;
    size_t Get_Object_Size() const { return sizeof(*this); }
    /// Whether both have the same name and the very same plugins.
    bool Is_Same_Definition(const vrMKParticle &other) const;

private:
    bool Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, uint32_t id);
    bool Load_Visualizer(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Modifier(ChunkFile::ChunkFileReaderClass &reader);
    /// `shared` has the assets to take over, when the layer is a clone; null after a load.
    void Post_Load(bool loadAssets, const vrMKPVisualizer *shared);
    void Find_Bullet_Modifier();
    void Find_Slave_Modifier();
    void Set_Hidden_Flag(bool &flag, bool hidden);
    bool Make_Buffer(vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> spawnData, int capacity);
    void Ready_Visualizer(vrMKParticleGroup &group);
    void Pre_Simulate(vrMKParticleGroup &group);
    void Step_Particles();
    bool Has_Quality() const;
    bool Fuses_Blocks() const;
    void Prepare_Modifiers(size_t first, size_t last);
    void Finish_Block(const vrMKPWalkSlots<vrMKPSpan> &block, size_t first, size_t last, bool transforms,
                      vrMKPBoundsSum *sum);
    void Modify_And_Transform();
    void Modify_Small();
    void Modify_By_Blocks();
    void Run_Modifiers(size_t first, size_t last);
    void Measure(const vrMKPBoundsSum *sum);
    bool Is_View_Dependent() const { return Transformer && Transformer->Needs_Camera(); }

    vrMKParticleGroup *Group = nullptr;
    vrBounds Bounds;
    NameTableRef Name;
    bool PreSimulated = false;
    bool RefusedBuffer = false; ///< in this run
    bool HiddenBySpawner = false;
    bool HiddenByGroup = false;
    bool HiddenByLOD = false;
    bool HasSlaveModifier = false;
    bool TakesPart = false; ///< in the render that was collected last
    /// The kinds that the buffer's data was made for.
    struct PreparedKinds
    {
        vrMKPPluginId Spawner = VRMKP_PLUGIN_NONE;
        vrMKPPluginId Stomper = VRMKP_PLUGIN_NONE;
        vrMKPPluginId Visualizer = VRMKP_PLUGIN_NONE;
        friend bool operator==(const PreparedKinds &, const PreparedKinds &) = default;
    };
    PreparedKinds Get_Kinds() const;

    PreparedKinds Kinds;
    SmartPtr<vrMKPBuffer> Buffer; ///< the one piece that is the instance's own
    SmartPtr<vrMKPSpawner> Spawner;
    SmartPtr<vrMKPTransformer> Transformer;
    SmartPtr<vrMKPStomper> Stomper;
    SmartPtr<vrMKPVisualizer> Visualizer;
    std::vector<SmartPtr<vrMKPModifier>> Modifiers;
    SmartPtr<vrMKPBulletModifier> BulletModifier; ///< also among `Modifiers`
};
