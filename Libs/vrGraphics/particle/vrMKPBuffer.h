#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/Random.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/particle/MKPAttributes.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/drivercommon/vrColor.h"
#include "vrGraphics/particle/vrMKPBufferPluginData.h"
#include "vrGraphics/particle/vrMKPTransformType.h"

#include <memory>
#include <vector>

class vrHWParticleBuffer;
class vrMKPLayer;
class vrMKParticle;
struct vrMKPRenderState;

/// Bits of the channel "Flags".
enum vrMKPParticleFlags : uint32_t
{
    PARTICLE_STOPPED = 2 ///< at rest on the terrain: neither integrated nor moved by modifiers
};

/// Where the spawner of a buffer stands.
enum vrMKPSpawnerState : int32_t
{
    SPAWNER_WAITING = 0,  ///< nothing spawned yet
    SPAWNER_SPAWNING = 1, ///< past the start delay, within the stop time
    SPAWNER_STOPPED = 2   ///< past the stop time, until a reset
};

/// A contiguous run of slots.
struct vrMKPSpan
{
    int First = 0;
    int Count = 0;
};

/// A part of the ring: at most two runs of slots, the second of which begins at slot 0. Empty runs don't come up. Small
/// enough to be passed in registers: memory would have it wait for what loops have just written.
class vrMKPSpans
{
public:
    class End
    {
    };
    class Iterator
    {
    public:
        Iterator(vrMKPSpan run, int nextCount) : Run(run), NextCount(nextCount) {}
        vrMKPSpan operator*() const { return Run; }
        Iterator &operator++()
        {
            Run = {0, NextCount};
            NextCount = 0;
            return *this;
        }
        bool operator!=(End) const { return Run.Count != 0; }

    private:
        vrMKPSpan Run;
        int NextCount;
    };

    /// One run and another from slot 0 on, where that isn't empty.
    explicit vrMKPSpans(vrMKPSpan run, int secondCount = 0) : Run(run), SecondCount(secondCount) {}
    /// `count` slots from `first` on, in a ring of `capacity`.
    vrMKPSpans(int first, int count, int capacity)
    {
        if (count <= 0) return;
        const int untilEnd = capacity - first;
        Run = {first, count < untilEnd ? count : untilEnd};
        SecondCount = count - Run.Count;
    }
    Iterator begin() const { return {Run, SecondCount}; }
    End end() const { return {}; }

private:
    vrMKPSpan Run;
    int SecondCount = 0;
};

/// All particles of one layer of one instance: a ring of slots with an array for each attribute, one for each component
/// of a vector, and the only thing about a layer that isn't shared by all instances. Live slots are one run of the ring
/// from `Head` to `Tail`, in the order of birth; there are no holes. The capacity is fixed when the buffer is made: a
/// full one grants no more slots, and a frame never allocates. One thread at a time.
///
/// The values of the level of detail are copies of the spawner's parameters. A running layer heeds these, so that an
/// edit shows when the layer pushes it and not in the middle of a frame.
class vrMKPBuffer final : public RefCountClass
{
public:
    /// The most slots of one layer, and the most bytes that all buffers of the process take together.
    static constexpr int MAX_CAPACITY = 1 << 21;
    static constexpr size_t MAX_TOTAL_BYTES = size_t(4) << 30;
    static constexpr int REMOVAL_BLOCK = 512;
    /// Slots that the widest loops take at once. Arrays have room for whole ones.
    static constexpr int WIDTH = 32;
    static constexpr int Round_Down(int slot) { return slot & -WIDTH; }
    static constexpr int Round_Up(int slot) { return Round_Down(slot + WIDTH - 1); }

    /// A buffer with a count of 0; null when the capacity is out of range or the memory can't be had, which is logged
    /// with `layerName`.
    static vrMKPBuffer *Create(int capacity, std::string_view layerName);
    ~vrMKPBuffer() override;
    vrMKPBuffer(const vrMKPBuffer &) = delete;
    vrMKPBuffer &operator=(const vrMKPBuffer &) = delete;

    /// Changes the ring's size; all particles are lost. False, with a log line and the old ring, as `Create`.
    bool Resize(int capacity, std::string_view layerName);
    /// Ends all particles and starts the spawning over, plugin data included. The channels keep their contents.
    void Reset();
    /// No particles; nothing else changes.
    void Clear_Particles();

    // All but "Render".
    void Copy_Particle(int from, int to) { Copy_Particle_From(from, to, *this); }
    void Copy_Particle_From(int from, int to, const vrMKPBuffer &other);

    int Next_Slot(int slot) const { return slot + 1 < Capacity ? slot + 1 : 0; }
    /// The live particles in ring order.
    vrMKPSpans Live_Spans() const { return {Head < 0 ? 0 : Head, ActiveCount, Capacity}; }
    /// The live particles, in runs that begin and end at multiples of `WIDTH`, and other slots among them: at most
    /// `WIDTH` at each end, or some more where that makes one run of two. For work that is nothing to a slot that isn't
    /// live: what it changes is set again at birth, or is written whole by the same work. The live slots alone where
    /// others must be spared.
    vrMKPSpans Wide_Spans() const;
    /// The same for a part of the live slots that begins and ends with a run or at such multiples. As it is where the
    /// ends of a nearly full ring would meet, too.
    vrMKPSpan Widen(vrMKPSpan span) const;
    /// Those that were granted since the last frame step, which end at `Tail`.
    vrMKPSpans New_Spans() const { return {FirstNew < 0 ? 0 : FirstNew, SpawnedThisFrame, Capacity}; }

    /// Grants up to `count` slots at the end of the ring and answers how many. `firstGranted` is the first of them.
    int Grant_Slots(int count, int &firstGranted);
    /// Removes the `count` oldest.
    void Remove_Oldest(int count);
    /// Moves survivors together, in their order, and removes the rest: `dies(slot)` is asked once for each live slot in
    /// ring order.
    template <typename Dies>
    void Remove_If(Dies &&dies);
    /// The same for loops over runs of slots: `mark(span, dead)` gets the live slots in ring order, at most
    /// `REMOVAL_BLOCK` at a time, writes 1 (dead) or 0 for each, and answers how many are dead. Nothing moves before
    /// the last call.
    template <typename Mark>
    void Remove_Marked(Mark &&mark);

    /// The frame's move: "PreviousPosition" takes "Position", and where the spawner wants it, particles that aren't at
    /// rest are integrated: position += velocity * step. Begun once, and then done for each run of the live slots,
    /// which may be a wide one.
    void Begin_Move(bool integrates);
    /// False when a position in the run is infinite or no number.
    bool Move_Span(vrMKPSpan span);
    /// Whether a live particle has a vector in the channel that is infinite or no number; of all, or of those that
    /// aren't at rest.
    bool Is_Any_Invalid(const vrMKPConstVectors &channel) const;
    bool Is_Any_Moving_Invalid(const vrMKPConstVectors &channel) const;
    /// Moves world-space particles with their owner.
    void Offset_Positions(const Vector3 &delta);

    /// A hint that a frame comes: fetches what its births write, a line in each channel. Loops over whole channels have
    /// the processor's own prefetching.
    void Fetch() const;

    bool Is_World() const { return TransformType == MKP_TRANSFORM_WORLD; }
    /// Tells the layers that spawn from this one's deaths.
    void Notify_Death(int slot, float overshoot) const;
    /// Once each. Listeners are borrowed for a run: a reset lets go of them.
    void Add_Death_Listener(vrMKPLayer &listener);
    void Clear_Death_Listeners() { DeathListeners.clear(); }
    bool Has_Death_Listeners() const { return !DeathListeners.empty(); }

    size_t Get_Memory_Usage() const;
    size_t Get_Object_Size() const { return sizeof(*this); }
    /// Bytes of one particle over all channels.
    static size_t Get_Particle_Size();
    /// Writes the element that a slot has in a channel: `Get_Element_Size` bytes, a vector's components in turn.
    void Copy_Element(MKPAttribTypes channel, int slot, void *element) const;
    static size_t Get_Element_Size(MKPAttribTypes channel);
    /// Lets "WorldPosition" be the very arrays of "Position", for layers that are simulated in the world: nothing
    /// writes positions between the end of one frame and the move of the next, so nobody sees a difference.
    void Share_World_Positions(bool shared);
    bool Shares_World_Positions() const { return WorldPosition.X == Position.X; }

    bool Active = false;
    const vrMKPRenderState *State = nullptr; ///< the facts of the renderable's frame; set while the buffer is active
    vrMKParticle *Owner = nullptr;
    vrMKPLayer *Layer = nullptr; ///< the owner, as plugins know it
    RandomClass Random;
    int Capacity = 0;
    int ActiveCount = 0;
    int Head = -1; ///< the oldest live particle's slot; -1 before the first spawn
    int Tail = -1; ///< the youngest's
    int FirstNew = -1;
    int SpawnedThisFrame = 0;
    vrMKPTransformType TransformType = MKP_TRANSFORM_LOCAL;
    bool HardLifetime = false;   ///< all particles die in the order of their births
    bool MayHaveStopped = false; ///< whether a particle may have PARTICLE_STOPPED
    bool KillOnRemoval = false;
    // What becomes of slots that aren't live. Loops spare them where either holds.
    bool OthersMayReturn = false; ///< they may live again with what they held
    bool OthersAreSeen = false;   ///< another layer may copy and show them
    float InverseMaxAge = 1.0f;
    float TimeSinceDeath = 0.0f;    ///< seconds since the last particle died
    Vector3 Centroid{0.0f};         ///< mean position of the live particles
    Vector3 SmoothedCentroid{0.0f}; ///< the same as it lags behind
    vrMKPSpawnerState SpawnerState = SPAWNER_WAITING;
    float SpawnClock = 0.0f; ///< seconds since spawning began, start delay included
    bool FirstSpawn = true;
    float LastSpawnTime = 0.0f; ///< on the spawner's own clock, of the last particle written
    float SpawnInterval = 0.0f; ///< from one birth to the next at the last spawn, on that clock; 0 when there's none
    int ClusterSize = 1;        ///< how many were born together at each of these
    int PendingCount = 0;       ///< particles still to spawn, of spawners without a clock
    uint32_t NextSerial = 0;
    int GlobalLOD = 0;               ///< least global quality at which the layer runs, 0 to 4
    float MinDynamicLOD = 1.0f;      ///< least fraction of the particles that is drawn
    float DynamicLODNear = 10000.0f; ///< world units, where thinning starts
    float DynamicLODFar = 10000.0f;  ///< world units, where the least fraction is reached
    int VisibleCount = 0;            ///< entries of "Render" that are valid this frame
    vrParticleScaleType ScaleType = PARTICLE_SCALE_NONE;
    SmartPtr<vrHWParticleBuffer> Companion;
    SmartPtr<vrMKPBufferPluginData> SpawnerData;
    SmartPtr<vrMKPBufferPluginData> StomperData;
    SmartPtr<vrMKPBufferPluginData> VisualizerData;
    std::vector<SmartPtr<vrMKPBufferPluginData>> ModifierData; ///< one for each modifier of the layer; may be null

    // The channels, each array 64-byte aligned. Named as in MKPAttribTypes.
    vrMKPVectors ProjectileStartingPosition;
    vrMKPVectors PreviousPosition;
    vrMKPVectors Position;
    vrMKPVectors ProjectileTargetPosition;
    vrMKPVectors Velocity;
    float *Age = nullptr;
    float *MaxAge = nullptr;
    float *Time = nullptr;
    float *ProjectileFlightDuration = nullptr;
    uint32_t *Flags = nullptr;
    uint32_t *ID = nullptr;
    uint32_t *Number = nullptr;
    Vector2 *UV = nullptr;
    Vector2 *DUV = nullptr;
    vrColor *Color = nullptr;
    Vector2 *Size = nullptr;
    uint32_t *Rotation = nullptr;
    vrMKPVectors WorldPosition;
    uint32_t *Render = nullptr;
    float *SortingRelativeToGroup = nullptr;

private:
    bool Spares_Others() const { return OthersMayReturn || OthersAreSeen; }

    struct FreeMemory
    {
        size_t Bytes;
        void operator()(void *memory) const;
    };
    using Memory = std::unique_ptr<void, FreeMemory>;

    vrMKPBuffer();
    static Memory Allocate(int capacity, std::string_view layerName);
    void Take_Memory(Memory memory, int capacity);
    /// The array of a channel that isn't one of vectors, else null.
    const void *Get_Array(MKPAttribTypes channel) const;
    /// The arrays of a channel of vectors.
    vrMKPConstVectors Get_Vectors(MKPAttribTypes channel) const;
    /// Keeps for `Move_Survivors` which of a run live on: it begins with the group of that number of the live slots, a
    /// group being 8 of a run or its rest. Fills `dead` up with 1 to whole groups.
    void Note_Survivors(int firstGroup, int count, uint8_t *dead);
    /// Moves together what was noted; all is, from `firstGroup` on, and nobody dies ahead of it.
    void Move_Survivors(int firstGroup, int survivors);

    /// How many of the live slots lie past the end of the ring, at its beginning.
    int Get_Wrapped_Count() const
    {
        const int end = Head + ActiveCount;
        return end > Capacity ? end - Capacity : 0;
    }

    /// What `Move_Span` does in this frame.
    enum MoveType : uint8_t
    {
        MOVE_NOTHING,  ///< copies
        MOVE_IN_PLACE, ///< copies, and integrates those that aren't at rest
        MOVE_ACROSS    ///< the two channels have changed places: integrates from the one into the other
    };

    Memory Block;
    MoveType Move = MOVE_NOTHING;
    vrMKPVectors OwnWorldPosition; ///< the channel's own arrays, shared or not
    uint8_t *StayBits = nullptr;   ///< scratch of a removal, in the block
    std::vector<vrMKPLayer *> DeathListeners;
};

inline vrMKPSpan vrMKPBuffer::Widen(vrMKPSpan span) const
{
    const int first = Round_Down(span.First);
    if (Spares_Others() || Round_Up(Get_Wrapped_Count()) > Round_Down(Head)) return span;
    return {first, Round_Up(span.First + span.Count) - first};
}

inline vrMKPSpans vrMKPBuffer::Wide_Spans() const
{
    constexpr int MOST_OTHERS = 4 * WIDTH; // what a second run costs in loops of their kind
    if (Spares_Others() || ActiveCount == 0) return Live_Spans();
    const int wrapped = Get_Wrapped_Count();
    const int first = Round_Down(Head);
    if (wrapped == 0) return vrMKPSpans({first, Round_Up(Head + ActiveCount) - first});
    const int end = Round_Up(Capacity);
    if (Capacity - ActiveCount <= MOST_OTHERS) return vrMKPSpans({0, end});
    return vrMKPSpans({first, end - first}, Round_Up(wrapped));
}

template <typename Mark>
void vrMKPBuffer::Remove_Marked(Mark &&mark)
{
    uint8_t dead[REMOVAL_BLOCK];
    int group = 0;
    int firstGroup = 0;
    int deaths = 0;
    for (const vrMKPSpan run : Live_Spans()) {
        for (int done = 0; done < run.Count; done += REMOVAL_BLOCK) {
            const int left = run.Count - done;
            const int count = left < REMOVAL_BLOCK ? left : REMOVAL_BLOCK;
            const int died = mark(vrMKPSpan{run.First + done, count}, dead);
            if (deaths == 0) firstGroup = group;
            deaths += died;
            if (deaths > 0) Note_Survivors(group, count, dead);
            group += (count + 7) / 8;
        }
    }
    if (deaths > 0) Move_Survivors(firstGroup, ActiveCount - deaths);
}

template <typename Dies>
void vrMKPBuffer::Remove_If(Dies &&dies)
{
    Remove_Marked([&dies](vrMKPSpan span, uint8_t *dead) {
        int deaths = 0;
        for (int at = 0; at < span.Count; ++at) {
            dead[at] = dies(span.First + at) ? 1 : 0;
            deaths += dead[at];
        }
        return deaths;
    });
}
