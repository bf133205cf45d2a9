#pragma once

#include "MKLib/NameTable.h"
#include "vrGraphics/effect/vrMKPGameState.h"
#include "vrGraphics/particle/vrMKPEmitterFace.h"
#include "vrGraphics/scene/vrRenderable.h"

#include <array>
#include <string_view>
#include <vector>

class vrMKPBulletModifier;
class vrMKPRenderable;
class vrMKPRenderablePhysics;
class vrMKPRenderablePool;
class vrMKParticleGroup;

namespace ChunkFile
{
class ChunkFileReaderClass;
class ChunkFileWriterClass;
} // namespace ChunkFile

/// The root chunk of an emitter file, by which a reader tells it from other assets.
constexpr uint32_t VR_CHUNK_MKPEMITTER = 0x1500;

/// What one emitter file holds: a named list of renderables that appear together in a scene. docs/formats/emitter.md
/// has the file. A load and a clone run on the main or the loader's thread.
class vrMKParticleEmitter final : public vrParticleInterface, public vrMKPEmitterFace
{
public:
    MK_RUN_TIME_TYPE

    /// Bits of the flags.
    enum EmitterFlagsStruct : uint8_t
    {
        EMITTER_HAS_TELLING_RENDERABLE = 0x01, ///< a renderable has STATE_TELLS_EMITTER
        EMITTER_HAS_MARKED_RENDERABLE = 0x02,
        EMITTER_LAST_GROUP_TELLS = 0x04, ///< a group behind the last model has GROUP_STATE_TELLS_EMITTER
        EMITTER_DRIVER_TINTS_ALPHA = 0x10,
        EMITTER_ALWAYS_SIMULATES = 0x20, ///< a renderable does
        EMITTER_HOLDS_REMOVAL_OFF = 0x40
    };

    vrMKParticleEmitter();
    /// Shares name, pool and instance counter; renderables are clones, of which an instance clone has none.
    vrMKParticleEmitter(const vrMKParticleEmitter &other, vrCloneType type);
    ~vrMKParticleEmitter() override;
    vrMKParticleEmitter *Clone(vrCloneType type) const override;

    /// Reads the sub-chunks of the root chunk, which the caller has opened. False when the file is damaged: what a
    /// renderable or a plugin lost doesn't count. The name becomes the base name of the reader's file. A null reader
    /// asserts.
    bool Load(ChunkFile::ChunkFileReaderClass *reader);
    /// Writes the root chunk and all in it. A null writer asserts.
    bool Save(ChunkFile::ChunkFileWriterClass *writer);

    const MK::String &Get_Name() const { return Name.Get_String(); }
    const NameTableRef &Get_Name_Ref() const { return Name; }
    void Set_Name(std::string_view name);
    /// Whether the emitter leaves its scene when all its groups are spent. A load computes it.
    bool Get_Remove_On_Depleted() const { return RemoveOnDepleted; }
    void Set_Remove_On_Depleted(bool remove) { RemoveOnDepleted = remove; }

    int Get_Particle_Renderable_Count() const { return static_cast<int>(MKPRenderables.size()); }
    /// Null for an index out of range.
    SmartPtr<vrMKPRenderable> Get_Particle_Renderable(int index) const;
    /// The same without a share in it, for those that only look.
    vrMKPRenderable *Peek_Particle_Renderable(int index) const;
    /// Index by address, or -1. Searches from the end, where a load is at work.
    int Get_Renderable_Index(const vrMKPRenderable *renderable) const;
    /// False, with an assertion, for null.
    bool Add_Renderable(vrMKPRenderable *renderable);
    /// At `index`, or at the end when there is no such place.
    bool Insert_Renderable(vrMKPRenderable *renderable, int index);
    /// False when it isn't there. Outside the editor a renderable that is in no scene goes to the pool.
    bool Remove_Renderable(const vrMKPRenderable *renderable);
    /// Clones each of other's. Expects this emitter to be empty.
    bool Copy_Renderables_From(const vrMKParticleEmitter *other);

    /// Set while a scene hands the emitter on, so that it isn't taken for a removal.
    void Raise_Scene_Reassign_Hint(bool raised) override { SceneReassignHint = raised; }
    bool Get_Scene_Reassign_Hint() const { return SceneReassignHint; }
    /// While set, the renderables don't go to the pool when the emitter ends.
    void Set_Keep_Renderables(bool keep) { KeepRenderables = keep; }
    void Set_Scale_Enabled(bool enabled) { ScaleEnabled = enabled; }
    uint8_t Get_Emitter_Flags() const { return EmitterFlags; }
    bool Is_Instance_Clone() const { return IsInstanceClone; }
    vrMKPRenderablePool *Get_Pool() const { return Pool.Get(); }
    /// The prototype and all of its clones that live.
    int Get_Instance_Count() const;
    /// Set on instance clones, each by what the source has.
    vrMKPRenderablePhysics *Get_Shared_Physics() const { return SharedPhysics.Get(); }
    vrMKPBulletModifier *Get_Shared_Projectile() const { return SharedProjectile.Get(); }

    // What game code tells the effect; in force from the next frame on.
    const vrMKPGameState &Get_Game_State() const { return Game; }
    void Set_Game_State(const vrMKPGameState &game) { Game = game; }
    void Set_Hidden(bool hidden) override;
    /// Of the variants of the effect the layers of one index show; -1 shows all.
    void Set_Alt_Index(int index);
    /// A request to the layers that code spawns into.
    void Spawn_Code_Particles(int count);
    /// Starts the effect over where it stands.
    void Restart();
    /// The way that the emitter went before this frame's motion.
    const Vector3 &Get_Last_Way() const { return LastWay; }
    /// Process-wide: what the graphics driver multiplies the alpha of effects with that ask for it.
    static void Set_Driver_Tint_Alpha(float alpha) { DriverTintAlpha = alpha; }
    /// Colour and alpha factors for what the effect draws, those of the scene included.
    RGBAClass Get_Tint() const;
    /// Whether nothing lives in any group, and nothing more will by itself.
    bool Is_Depleted() const;

    int Get_Light_Source_Count() const override;
    const vrParticleLight &Get_Light_Source(int index) const override;
    int Find_Light_Source(const char *name) const override;
    /// Raises the flags for it.
    void Keep_Updating() override;
    /// While raised, the emitter doesn't leave its scene for being depleted.
    void Hold_Removal_Off(bool held) { Set_Flag(EMITTER_HOLDS_REMOVAL_OFF, held); }

    /// The box around the groups; none when a group has none.
    bool Get_Cull_Box(vrBounds &box) const override;
    void Collect(vrRenderContext &context) override;

    const char *Get_Think_Name() const override { return Get_Name().c_str(); }
    void Think(float dt) override;
    /// Leaves the scene once it is depleted.
    void Post_Think(float dt) override;

    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// Bytes of the emitter and its renderables; with `includePlugins`, of all plugins and parameters too.
    size_t Get_Memory_Usage(bool includePlugins) const;

protected:
    void On_Added(vrScene &scene) override;
    void On_Removed(vrScene &scene) override;

private:
    class InstanceCounterClass;

    bool Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup *&current);
    vrMKParticleGroup *Add_Group(const ChunkFile::ChunkFileReaderClass &reader);
    void Load_Group(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup *group,
                    bool (vrMKParticleGroup::*load)(ChunkFile::ChunkFileReaderClass *));
    void Load_Model(ChunkFile::ChunkFileReaderClass &reader);
    void Load_Always_Awake(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup &group);
    bool Load_Variables(ChunkFile::ChunkFileReaderClass &reader);
    void Finish_Load();
    bool Save_Variables(ChunkFile::ChunkFileWriterClass &writer) const;
    void Set_Flag(EmitterFlagsStruct flag, bool on);
    void Take_Projectile_From(const vrMKParticleEmitter &other);
    void Release_Renderable(vrMKPRenderable &renderable, bool isKept);
    void Update_Depletion();
    bool Has_Work() const;
    bool Has_Finished() const;
    /// Calls for each group of the emitter.
    template <typename Call>
    void For_Groups(Call &&call) const;

    static float DriverTintAlpha;

    NameTableRef Name;
    std::vector<SmartPtr<vrMKPRenderable>> MKPRenderables; ///< in the order of the file and of the tool's rows
    SmartPtr<vrMKPRenderablePhysics> SharedPhysics;
    SmartPtr<vrMKPBulletModifier> SharedProjectile;
    SmartPtr<vrMKPRenderablePool> Pool;
    SmartPtr<InstanceCounterClass> InstanceCounter; ///< its count is that of the instances
    vrMKPGameState Game;
    Vector3 LastPosition{0.0f};
    Vector3 LastWay{0.0f};
    bool SceneReassignHint = false;
    bool KeepRenderables = false;
    bool ScaleEnabled = false;
    bool IsInstanceClone = false;
    bool RemoveOnDepleted = true;
    uint8_t EmitterFlags = 0;
    std::array<float, 6> ScaleAndOffset{1.0f, 1.0f, 1.0f, 0.0f, 0.0f, 0.0f};
};
