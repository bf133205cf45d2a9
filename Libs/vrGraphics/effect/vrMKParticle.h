#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/NameTable.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <vector>

class vrMKParticleGroup;
class vrMKPBulletModifier;

/// One layer of an effect: a name, four slots with one plugin each, a list of modifiers that run in its order, and the
/// live buffer of one instance. The plugins are the definition. Definition is changed on the main thread or the loader,
/// between frames.
class vrMKParticle final : public RefCountClass
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

    const MK::String &Get_Name() const { return Name.Get_String(); }
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
    vrMKPBuffer *Get_Buffer() const { return Buffer.Get(); }
    void Set_Buffer(vrMKPBuffer *buffer) { Buffer = buffer; }

    // A layer is suspended while any of the three is set.
    void Set_Hidden_By_Spawner(bool hidden) { HiddenBySpawner = hidden; }
    void Set_Hidden_By_Group(bool hidden) { HiddenByGroup = hidden; }
    void Set_Hidden_By_LOD(bool hidden) { HiddenByLOD = hidden; }
    bool Is_Suspended() const { return HiddenBySpawner || HiddenByGroup || HiddenByLOD; }

    /// Bytes of the layer and what it allocated; with `includePlugins`, of its plugins and their parameters too.
    size_t Get_Memory_Usage(bool includePlugins) const;
    size_t Get_Object_Size() const { return sizeof(*this); }
    /// Whether both have the same name and the very same plugins.
    bool Is_Same_Definition(const vrMKParticle &other) const;

private:
    struct BoundsStruct
    {
        Vector3 Minimum{0.0f};
        Vector3 Maximum{0.0f};
    };

    bool Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, uint32_t id);
    bool Load_Visualizer(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Modifier(ChunkFile::ChunkFileReaderClass &reader);
    /// `shared` has the assets to take over, when the layer is a clone; null after a load.
    void Post_Load(bool loadAssets, const vrMKPVisualizer *shared);
    void Find_Bullet_Modifier();

    vrMKParticleGroup *Group = nullptr;
    BoundsStruct Bounds;
    NameTableRef Name;
    bool PreSimulated = false;
    bool HiddenBySpawner = false;
    bool HiddenByGroup = false;
    bool HiddenByLOD = false;
    SmartPtr<vrMKPBuffer> Buffer; ///< the one piece that is the instance's own
    SmartPtr<vrMKPSpawner> Spawner;
    SmartPtr<vrMKPTransformer> Transformer;
    SmartPtr<vrMKPStomper> Stomper;
    SmartPtr<vrMKPVisualizer> Visualizer;
    std::vector<SmartPtr<vrMKPModifier>> Modifiers;
    SmartPtr<vrMKPBulletModifier> BulletModifier; ///< also among `Modifiers`
};
