#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/NameTable.h"
#include "MKLib/Random.h"
#include "vrGraphics/effect/vrMKPDynamicSettings.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"
#include "vrGraphics/scene/vrRenderable.h"

#include <vector>

class vrMKParticleEmitter;
class vrMKPRenderablePool;
struct vrMKPGameState;

namespace ChunkFile
{
class ChunkFileReaderClass;
class ChunkFileWriterClass;
} // namespace ChunkFile

/// What an emitter holds in its list: a thing in the scene with a start delay, an offset from the emitter, one plugin
/// that moves it and plugins that change it as a whole. A group of layers or a model.
class vrMKPRenderable : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE

    /// Bits of the state.
    enum RenderableStateFlags : uint8_t
    {
        STATE_STARTED = 0x02,
        STATE_ALWAYS_AWAKE = 0x04,
        STATE_IN_SCENE = 0x08,
        STATE_TELLS_EMITTER = 0x10,     ///< a load of the emitter notes in its flags that one of its renderables has it
        STATE_OUTLIVES_DEPLETION = 0x20 ///< keeps the emitter from removing itself when its groups are spent
    };

    ~vrMKPRenderable() override;
    vrMKPRenderable *Clone(vrCloneType type) const override = 0;

    /// Reads the current chunk. False when a plugin in it couldn't be had; the rest is read all the same. A null reader
    /// asserts.
    virtual bool Load(ChunkFile::ChunkFileReaderClass *reader) = 0;
    /// Writes a chunk of its own. A null writer asserts.
    virtual bool Save(ChunkFile::ChunkFileWriterClass *writer) = 0;
    /// Completes what no file told: the default physics, the seed, the start delay. Does nothing to a loaded one.
    void Complete_Definition();
    /// Draws what each instance has for itself: its seed and its actual start delay.
    void Seed_Instance();
    /// Puts the renderable back to the time before its start.
    virtual void Reset();
    /// Begins a run: what each run has for itself is made and drawn anew.
    virtual void Start();
    bool Is_Started() const { return (RenderableState & STATE_STARTED) != 0; }
    /// Whether a plugin has ended it, until it starts again.
    bool Is_Ended() const { return Outcome.Killed; }

    /// The facts of its frame, for its plugins.
    vrMKPRenderState &Get_State() { return State; }
    const vrMKPRenderState &Get_State() const { return State; }
    /// Its place in the world by this frame's motion, scale included.
    const Mat3DClass &Get_Motion() const { return Motion; }
    /// What its modifiers made of this frame: fade, light, end.
    const vrMKPRenderableOutcome &Get_Outcome() const { return Outcome; }
    vrMKPRenderableOutcome &Get_Outcome() { return Outcome; }
    /// Makes a renderable that played in another instance one that never did: it is shown, where and how the definition
    /// has it, and holds no particles.
    virtual void Begin_Instance(const vrMKPRenderable &definition);

    /// Sets one of the values that game code may change while the renderable plays; `fadeTime` in seconds. An index
    /// out of range asserts and does nothing.
    void Set_Dynamic_Setting(int setting, const Vector4 &value, float fadeTime);
    const vrMKPDynamicSettings &Get_Dynamic_Settings() const { return *DynamicSettings; }
    bool Was_Given_Homing_Target() const { return WasGivenHomingTarget; }

    const char *Get_Think_Name() const override { return Get_Name().c_str(); }
    vrRenderable &Get_Top_Owner() override;
    /// Takes the facts of the world and moves.
    void Think(float dt) override;

    /// Process-wide. What happens to renderables when their emitter leaves a scene: with true the scene takes them
    /// over.
    static void Set_Remove_With_Emitter(bool remove) { RemoveWithEmitter = remove; }
    static bool Get_Remove_With_Emitter() { return RemoveWithEmitter; }
    /// Process-wide: `vrMKPContext::InEditor`.
    static void Set_In_Editor(bool inEditor);

    const MK::String &Get_Name() const { return Name.Get_String(); }
    void Set_Name(std::string_view name) { Name = NameTableRef(name); }
    const MK::String &Get_Parent_Name() const { return ParentName.Get_String(); } ///< that of the emitter

    bool Get_Always_Simulate() const { return AlwaysSimulate; }
    /// Simulation goes on while the renderable isn't visible. Sets the update mode too.
    void Set_Always_Simulate(bool always);
    virtual bool Get_Always_Awake() const { return (RenderableState & STATE_ALWAYS_AWAKE) != 0; }
    virtual void Set_Always_Awake(bool always) { Set_Renderable_State(STATE_ALWAYS_AWAKE, always); }
    bool Get_Velocity_Aligned() const { return VelocityAligned; }
    void Set_Velocity_Aligned(bool aligned) { VelocityAligned = aligned; }

    float Get_Sort_Bias() const { return SortBias; }
    void Set_Sort_Bias(float bias) { SortBias = bias; }
    /// The bias as a file has it: the signed square root of the one in memory.
    float Get_File_Sort_Bias() const;
    void Set_File_Sort_Bias(float value);

    const Vector3 &Get_Translate_Offset() const { return TranslateOffset; }
    void Set_Translate_Offset(const Vector3 &offset) { TranslateOffset = offset; }
    const Vector3 &Get_Rotate_Offset() const { return RotateOffset; }
    void Set_Rotate_Offset(const Vector3 &offset) { RotateOffset = offset; }
    float Get_Scale_Offset() const { return ScaleOffset; }
    void Set_Scale_Offset(float scale) { ScaleOffset = scale; }

    float Get_Start_Delay() const { return StartDelay; } ///< seconds
    void Set_Start_Delay(float seconds) { StartDelay = seconds; }
    float Get_Start_Delay_Variation() const { return StartDelayVariation; } ///< per cent of the start delay
    void Set_Start_Delay_Variation(float perCent) { StartDelayVariation = perCent; }
    float Get_Actual_Start_Delay() const { return ActualStartDelay; } ///< seconds; drawn by each load and clone
    /// 0 means that each instance takes a seed of its own.
    int32_t Get_Base_Random_Seed() const { return BaseRandomSeed; }
    void Set_Base_Random_Seed(int32_t seed) { BaseRandomSeed = seed; }
    int32_t Get_Random_Seed() const { return RandomSeed; } ///< the instance's own

    /// Null only until a load, or `Complete_Definition`.
    vrMKPRenderablePhysics *Get_Physics() const { return Physics.Get(); }
    void Set_Physics(vrMKPRenderablePhysics *physics);
    int Get_Modifier_Count() const { return static_cast<int>(Modifiers.size()); }
    /// Null for an index out of range.
    vrMKPRenderableModifier *Get_Modifier(int index) const;
    void Add_Modifier(vrMKPRenderableModifier *modifier);
    /// False for an index out of range.
    bool Remove_Modifier(int index);

    vrMKParticleEmitter *Get_Emitter() const { return Emitter; }
    /// Borrows the emitter that owns it. Expects the renderable not to be in a scene, unless for null.
    void Set_Emitter(vrMKParticleEmitter *emitter);
    void Set_Parent_Name(const NameTableRef &name) { ParentName = name; }
    vrMKPRenderablePool *Get_Pool() const { return Pool.Get(); }
    void Set_Pool(vrMKPRenderablePool *pool);

    uint8_t Get_Renderable_State() const { return RenderableState; }
    void Set_Renderable_State(uint8_t bits, bool on);
    bool Is_In_Scene() const { return (RenderableState & STATE_IN_SCENE) != 0; }
    bool Get_Marker() const { return Marker; }
    void Set_Marker(bool marker) { Marker = marker; }
    bool Get_Scale_Enabled() const { return ScaleEnabled; }
    void Set_Scale_Enabled(bool enabled) { ScaleEnabled = enabled; }

    /// Bytes of the object and what it allocated; with `includePlugins`, of its plugins and their parameters too.
    virtual size_t Get_Memory_Usage(bool includePlugins) const;
    /// Whether both are of one class, have the same values and share their plugins, so that one can stand for the
    /// other.
    virtual bool Is_Same_Definition(const vrMKPRenderable &other) const;

protected:
    vrMKPRenderable();
    /// Shares the plugins; in the editor it gets plugins of its own. Takes a seed and a start delay of its own.
    vrMKPRenderable(const vrMKPRenderable &other);

    bool Load_Block(ChunkFile::ChunkFileReaderClass &reader);
    bool Save_Block(ChunkFile::ChunkFileWriterClass &writer);
    /// Settles what depends on the values that were read: the seed and the start delay, the default physics.
    void Finish_Load();
    /// Takes over what a renderable that splits off has in common with this one.
    void Copy_Placement_From(const vrMKPRenderable &other);
    void On_Added(vrScene &scene) override;
    void On_Removed(vrScene &scene) override;
    /// Lets the modifiers change the outcome of the frame.
    virtual void Update_Modifiers(vrMKPRenderableModifierContext context);
    /// What a plugin of a renderable is told of the frame. A delayed renderable stands still until its delay is over.
    template <typename Context>
    Context Make_Context(vrMKPBufferPluginData *data)
    {
        const float sinceStart =
            State.RunningTime > State.StartTimeOffset ? State.RunningTime - State.StartTimeOffset : 0.0f;
        return {{State, sinceStart, sinceStart < State.FrameTime ? sinceStart : State.FrameTime, Random, data}};
    }

private:
    bool Load_Variables(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Variable(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Plugins(ChunkFile::ChunkFileReaderClass &reader);
    bool Save_Variables(ChunkFile::ChunkFileWriterClass &writer) const;
    bool Save_Plugins(ChunkFile::ChunkFileWriterClass &writer) const;

    void Make_Plugin_Data();
    void Take_World_Facts();
    Mat3DClass Get_Base_Transform();
    void Move();
    void Stay();
    void Take_Scale(float scale, const Vector3 &position);

    static bool RemoveWithEmitter;

    NameTableRef Name;
    NameTableRef ParentName;
    Vector3 TranslateOffset{0.0f};
    Vector3 RotateOffset{0.0f};
    float ScaleOffset = 1.0f;
    float SortBias = 0.0f; ///< signed square of the file's value
    float StartDelay = 0.0f;
    float StartDelayVariation = 0.0f;
    float ActualStartDelay = 0.0f;
    int32_t BaseRandomSeed = 0;
    int32_t RandomSeed = 0;
    RandomGeneratorClass Random;
    SmartPtr<vrMKPRenderablePhysics> Physics;
    std::vector<SmartPtr<vrMKPRenderableModifier>> Modifiers;
    vrMKParticleEmitter *Emitter = nullptr;
    SmartPtr<vrMKPRenderablePool> Pool;
    vrMKPRenderState State;
    Mat3DClass Motion;
    Vector3 Heading{1.0f, 0.0f, 0.0f}; ///< where the emitter went last, for those aligned to its velocity
    SmartPtr<vrMKPDynamicSettings> DynamicSettings;
    SmartPtr<vrMKPBufferPluginData> PhysicsData;
    std::vector<SmartPtr<vrMKPBufferPluginData>> ModifierData; ///< one for each modifier
    vrMKPRenderableOutcome Outcome;
    bool HasPlace = false; ///< moved at least once in this run
    bool WasGivenHomingTarget = false;
    uint8_t RenderableState = 0;
    bool AlwaysSimulate = false;
    bool VelocityAligned = false;
    bool Marker = false;
    bool ScaleEnabled = false;
};
