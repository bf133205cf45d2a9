#include "vrGraphics/particle/vrMKPBuffer.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Memory.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrHWParticleBuffer.h"
#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <algorithm>
#include <atomic>
#include <cstring>

static MKDebug::Logger ParticleLog("ParticleLog");

MK_DEFINE_RUN_TIME_TYPE_ROOT(vrMKPBufferPluginData)

namespace
{

constexpr size_t ALIGNMENT = 64;

std::atomic<uint32_t> nextSeed{1};
std::atomic<size_t> bytesInUse{0};

constexpr size_t ELEMENT_SIZES[] = {sizeof(Vector3),  sizeof(Vector3),  sizeof(Vector3),  sizeof(Vector3),
                                    sizeof(Vector3),  sizeof(float),    sizeof(float),    sizeof(float),
                                    sizeof(float),    sizeof(uint32_t), sizeof(uint32_t), sizeof(uint32_t),
                                    sizeof(Vector2),  sizeof(Vector2),  sizeof(vrColor),  sizeof(Vector2),
                                    sizeof(uint32_t), sizeof(Vector3),  sizeof(uint32_t), sizeof(float)};
static_assert(std::size(ELEMENT_SIZES) == MKP_ATTRIBUTE_COUNT);

constexpr bool Is_Of_Vectors(uint32_t channel)
{
    return ELEMENT_SIZES[channel] == sizeof(Vector3);
}

size_t Array_Bytes(size_t elementSize, int capacity)
{
    constexpr size_t PAGE = 4096;
    constexpr size_t GAP = 5 * ALIGNMENT;
    static_assert(vrMKPBuffer::WIDTH * sizeof(float) % ALIGNMENT == 0);
    const size_t bytes = elementSize * static_cast<size_t>(vrMKPBuffer::Round_Up(capacity));
    // Arrays that began at the same place of their pages would drive each other out of the first cache.
    return bytes < PAGE ? bytes : bytes + GAP;
}

size_t Channel_Bytes(uint32_t channel, int capacity)
{
    return Is_Of_Vectors(channel) ? 3 * Array_Bytes(sizeof(float), capacity)
                                  : Array_Bytes(ELEMENT_SIZES[channel], capacity);
}

/// Room for a bit for each word of a slot in the arrays of one and two words, by groups of 8 slots; the two runs of a
/// ring may both end in a part of a group.
size_t Stay_Bytes(int capacity)
{
    return (static_cast<size_t>(capacity) / 8 + 2) * (1 + 2);
}

} // namespace

void vrMKPBuffer::FreeMemory::operator()(void *memory) const
{
    Free_Pages(memory, Bytes);
    bytesInUse.fetch_sub(Bytes, std::memory_order_relaxed);
}

vrMKPBuffer::vrMKPBuffer() : Random(nextSeed.fetch_add(1, std::memory_order_relaxed))
{
}

vrMKPBuffer::~vrMKPBuffer() = default;

vrMKPBuffer *vrMKPBuffer::Create(int capacity, std::string_view layerName)
{
    Memory memory = Allocate(capacity, layerName);
    if (!memory) return nullptr;
    auto *buffer = new vrMKPBuffer;
    buffer->Take_Memory(std::move(memory), capacity);
    return buffer;
}

vrMKPBuffer::Memory vrMKPBuffer::Allocate(int capacity, std::string_view layerName)
{
    const auto refuse = [&](const char *reason) {
        MK_LOG(ParticleLog, MKDebug::LogLevel::Error, "Layer \"%.*s\" gets no particles: room for %d, %s",
               static_cast<int>(layerName.size()), layerName.data(), capacity, reason);
        return Memory();
    };
    if (capacity < 0) return refuse("expected a count");
    if (capacity > MAX_CAPACITY) return refuse("and a layer has at most 2097152");
    size_t bytes = ALIGNMENT + Stay_Bytes(capacity);
    for (uint32_t channel = 0; channel < MKP_ATTRIBUTE_COUNT; ++channel) bytes += Channel_Bytes(channel, capacity);
    if (bytesInUse.fetch_add(bytes, std::memory_order_relaxed) + bytes > MAX_TOTAL_BYTES) {
        bytesInUse.fetch_sub(bytes, std::memory_order_relaxed);
        return refuse("and all layers together have more than 4 GiB then");
    }
    // Fresh pages take no memory until they are used, so a ring that never fills costs little.
    void *memory = Allocate_Pages(bytes);
    if (!memory) {
        bytesInUse.fetch_sub(bytes, std::memory_order_relaxed);
        return refuse("out of memory");
    }
    return Memory(memory, FreeMemory{bytes});
}

void vrMKPBuffer::Take_Memory(Memory memory, int capacity)
{
    Block = std::move(memory);
    Capacity = capacity;
    const auto address = reinterpret_cast<uintptr_t>(Block.get());
    auto *at = static_cast<uint8_t *>(Block.get()) + (ALIGNMENT - address % ALIGNMENT) % ALIGNMENT;
    const auto take = [&](auto *&array) {
        array = reinterpret_cast<std::remove_reference_t<decltype(array)>>(at);
        at += Array_Bytes(sizeof(*array), capacity);
    };
    const auto takeVectors = [&](vrMKPVectors &vectors) {
        take(vectors.X);
        take(vectors.Y);
        take(vectors.Z);
    };
    takeVectors(ProjectileStartingPosition);
    takeVectors(PreviousPosition);
    takeVectors(Position);
    takeVectors(ProjectileTargetPosition);
    takeVectors(Velocity);
    take(Age);
    take(MaxAge);
    take(Time);
    take(ProjectileFlightDuration);
    take(Flags);
    take(ID);
    take(Number);
    take(UV);
    take(DUV);
    take(Color);
    take(Size);
    take(Rotation);
    takeVectors(OwnWorldPosition);
    take(Render);
    take(SortingRelativeToGroup);
    StayBits = at;
    WorldPosition = OwnWorldPosition;
}

bool vrMKPBuffer::Resize(int capacity, std::string_view layerName)
{
    if (capacity != Capacity) {
        Memory memory = Allocate(capacity, layerName);
        if (!memory) return false;
        Take_Memory(std::move(memory), capacity);
    }
    Clear_Particles();
    PendingCount = 0;
    return true;
}

void vrMKPBuffer::Clear_Particles()
{
    ActiveCount = 0;
    VisibleCount = 0;
    SpawnedThisFrame = 0;
    Head = -1;
    Tail = -1;
    FirstNew = -1;
}

void vrMKPBuffer::Reset()
{
    Clear_Particles();
    Clear_Death_Listeners();
    MayHaveStopped = false;
    KillOnRemoval = false;
    TimeSinceDeath = 0.0f;
    Centroid = Vector3(0.0f);
    SmoothedCentroid = Vector3(0.0f);
    SpawnerState = SPAWNER_WAITING;
    SpawnClock = 0.0f;
    FirstSpawn = true;
    LastSpawnTime = 0.0f;
    SpawnInterval = 0.0f;
    ClusterSize = 1;
    PendingCount = 0;
    NextSerial = 0;
    if (SpawnerData) SpawnerData->Reset();
    if (StomperData) StomperData->Reset();
    if (VisualizerData) VisualizerData->Reset();
    for (const auto &data : ModifierData)
        if (data) data->Reset();
}

void vrMKPBuffer::Copy_Particle_From(int from, int to, const vrMKPBuffer &other)
{
    ProjectileStartingPosition.Put(to, other.ProjectileStartingPosition[from]);
    PreviousPosition.Put(to, other.PreviousPosition[from]);
    Position.Put(to, other.Position[from]);
    ProjectileTargetPosition.Put(to, other.ProjectileTargetPosition[from]);
    Velocity.Put(to, other.Velocity[from]);
    Age[to] = other.Age[from];
    MaxAge[to] = other.MaxAge[from];
    Time[to] = other.Time[from];
    ProjectileFlightDuration[to] = other.ProjectileFlightDuration[from];
    Flags[to] = other.Flags[from];
    ID[to] = other.ID[from];
    Number[to] = other.Number[from];
    UV[to] = other.UV[from];
    DUV[to] = other.DUV[from];
    Color[to] = other.Color[from];
    Size[to] = other.Size[from];
    Rotation[to] = other.Rotation[from];
    if (!Shares_World_Positions()) WorldPosition.Put(to, other.WorldPosition[from]);
    SortingRelativeToGroup[to] = other.SortingRelativeToGroup[from];
}

int vrMKPBuffer::Grant_Slots(int count, int &firstGranted)
{
    const int granted = std::clamp(count, 0, Capacity - ActiveCount);
    if (granted == 0) return 0;
    if (Head < 0) {
        Head = 0;
        Tail = Capacity - 1;
    }
    firstGranted = Next_Slot(Tail);
    if (ActiveCount == 0) Head = firstGranted;
    if (SpawnedThisFrame == 0) FirstNew = firstGranted;
    Tail = (Tail + granted) % Capacity;
    ActiveCount += granted;
    SpawnedThisFrame += granted;
    return granted;
}

void vrMKPBuffer::Remove_Oldest(int count)
{
    Head = (Head + count) % Capacity;
    ActiveCount -= count;
}

void vrMKPBuffer::Begin_Move(bool integrates)
{
    if (!integrates || ActiveCount == 0) {
        Move = MOVE_NOTHING;
    } else if (MayHaveStopped || OthersMayReturn) {
        Move = MOVE_IN_PLACE;
    } else {
        // All live positions are written anew, so the old ones need no copy.
        Move = MOVE_ACROSS;
        const bool isShared = Shares_World_Positions();
        std::swap(Position, PreviousPosition);
        if (isShared) WorldPosition = Position;
    }
}

bool vrMKPBuffer::Move_Span(vrMKPSpan span)
{
    const vrMKPVectors positions = Position + span.First;
    const vrMKPConstVectors velocities = Velocity + span.First;
    const float step = State->FrameTime;
    if (Move == MOVE_ACROSS)
        return Particle::Integrate(positions, PreviousPosition + span.First, velocities, span.Count, step);
    Particle::Copy(PreviousPosition + span.First, positions, span.Count);
    if (Move == MOVE_IN_PLACE)
        for (int at = 0; at < span.Count; ++at)
            if (!(Flags[span.First + at] & PARTICLE_STOPPED)) positions.Put(at, positions[at] + velocities[at] * step);
    return !Particle::Has_Invalid(positions, span.Count);
}

bool vrMKPBuffer::Is_Any_Invalid(const vrMKPConstVectors &channel) const
{
    for (const vrMKPSpan span : Live_Spans())
        if (Particle::Has_Invalid(channel + span.First, span.Count)) return true;
    return false;
}

bool vrMKPBuffer::Is_Any_Moving_Invalid(const vrMKPConstVectors &channel) const
{
    for (const vrMKPSpan span : Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot)
            if (!(Flags[slot] & PARTICLE_STOPPED) && !Is_Valid(channel[slot])) return true;
    return false;
}

void vrMKPBuffer::Share_World_Positions(bool shared)
{
    WorldPosition = shared ? Position : OwnWorldPosition;
}

void vrMKPBuffer::Fetch() const
{
    constexpr int LARGEST = 4096;
    if (ActiveCount == 0 || Capacity > LARGEST) return;
    const int slot = Next_Slot(Tail);
    const auto fetchSlot = [slot](const auto *array) { __builtin_prefetch(array + slot, 1); };
    const auto fetchVector = [&](const vrMKPVectors &vectors) {
        fetchSlot(vectors.X);
        fetchSlot(vectors.Y);
        fetchSlot(vectors.Z);
    };
    __builtin_prefetch(Age + Head); // tells who dies
    fetchVector(ProjectileStartingPosition);
    fetchVector(PreviousPosition);
    fetchVector(Position);
    fetchVector(ProjectileTargetPosition);
    fetchVector(Velocity);
    fetchSlot(Age);
    fetchSlot(MaxAge);
    fetchSlot(Time);
    fetchSlot(ProjectileFlightDuration);
    fetchSlot(Flags);
    fetchSlot(ID);
    fetchSlot(Number);
    fetchSlot(Size);
    fetchSlot(Rotation);
    fetchSlot(SortingRelativeToGroup);
}

void vrMKPBuffer::Offset_Positions(const Vector3 &delta)
{
    if (!Is_World()) return;
    bool isValid = true;
    for (const vrMKPSpan span : Live_Spans()) {
        for (int slot = span.First; slot < span.First + span.Count; ++slot)
            if (!(Flags[slot] & PARTICLE_STOPPED)) Position.Put(slot, Position[slot] + delta);
        isValid &= !Particle::Has_Invalid(Position + span.First, span.Count);
    }
    MK_ASSERT(isValid, "Position[where].Is_Valid()");
}

void vrMKPBuffer::Notify_Death(int slot, float overshoot) const
{
    for (vrMKPLayer *listener : DeathListeners)
        listener->On_Parent_Particle_Death(*this, Position[slot], Velocity[slot], overshoot);
}

void vrMKPBuffer::Add_Death_Listener(vrMKPLayer &listener)
{
    if (std::find(DeathListeners.begin(), DeathListeners.end(), &listener) == DeathListeners.end())
        DeathListeners.push_back(&listener);
}

size_t vrMKPBuffer::Get_Memory_Usage() const
{
    return Get_Particle_Size() * static_cast<size_t>(Capacity);
}

size_t vrMKPBuffer::Get_Particle_Size()
{
    size_t bytes = 0;
    for (const size_t size : ELEMENT_SIZES) bytes += size;
    return bytes;
}

size_t vrMKPBuffer::Get_Element_Size(MKPAttribTypes channel)
{
    return ELEMENT_SIZES[channel];
}

vrMKPConstVectors vrMKPBuffer::Get_Vectors(MKPAttribTypes channel) const
{
    switch (channel) {
    case MKP_PROJECTILE_STARTING_POSITION: return ProjectileStartingPosition;
    case MKP_PREVIOUS_POSITION: return PreviousPosition;
    case MKP_POSITION: return Position;
    case MKP_PROJECTILE_TARGET_POSITION: return ProjectileTargetPosition;
    case MKP_VELOCITY: return Velocity;
    default: return WorldPosition;
    }
}

const void *vrMKPBuffer::Get_Array(MKPAttribTypes channel) const
{
    switch (channel) {
    case MKP_AGE: return Age;
    case MKP_MAX_AGE: return MaxAge;
    case MKP_TIME: return Time;
    case MKP_PROJECTILE_FLIGHT_DURATION: return ProjectileFlightDuration;
    case MKP_FLAGS: return Flags;
    case MKP_ID: return ID;
    case MKP_NUMBER: return Number;
    case MKP_UV: return UV;
    case MKP_DUV: return DUV;
    case MKP_COLOR: return Color;
    case MKP_SIZE: return Size;
    case MKP_ROTATION: return Rotation;
    case MKP_RENDER: return Render;
    case MKP_SORTING_RELATIVE_TO_GROUP: return SortingRelativeToGroup;
    default: return nullptr;
    }
}

void vrMKPBuffer::Copy_Element(MKPAttribTypes channel, int slot, void *element) const
{
    const size_t size = Get_Element_Size(channel);
    if (Is_Of_Vectors(channel)) {
        const Vector3 vector = Get_Vectors(channel)[slot];
        std::memcpy(element, &vector, size);
    } else {
        std::memcpy(element, static_cast<const char *>(Get_Array(channel)) + size * static_cast<size_t>(slot), size);
    }
}
