#include "vrGraphics/plugins/ensembles/WeatherCube.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "vrGraphics/plugins/transformers/Transformers.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace
{

// Indices into this are a file format.
constexpr const char *TIME_EMULATIONS[] = {"Time increases with +X", "Time increases with +Y",
                                           "Time increases with +Z", "Time increases with -X",
                                           "Time increases with -Y", "Time increases with -Z"};
constexpr int TIME_INCREASES_DOWNWARD = 5;

/// Coordinates that are looked at and then changed: few enough to be in the first cache still.
constexpr int BLOCK = 512;

RangedFloatParameter *Add_Cube_Size(ParameterListClass &parameters, int id)
{
    return parameters.Add_Float(id, "Cube Size", 500.0f, 1.0f, 2000.0f, "Size of weather cube.");
}

/// The cube's particles are the first of the ring, so that a count tells all about them.
void Show_Particles(vrMKPBuffer &buffer, int count)
{
    buffer.ActiveCount = count;
    buffer.Head = count > 0 ? 0 : -1;
    buffer.Tail = count - 1;
}

/// Floats without a fraction stay.
MK_INLINE float Whole_Part(float value)
{
    constexpr float FIRST_WHOLE = 8388608.0f;
    const auto whole = static_cast<float>(Particle::Truncate(value));
    return value < FIRST_WHOLE ? whole : value;
}

/// What is left of the way past a face. The whole cubes go off as a number, not as a length: effects are tuned to it.
/// `Near` is for ways that are shorter than the cube.
template <bool Near>
MK_INLINE float Reduce(float excess, float size)
{
    return !Near && excess >= size ? excess - Whole_Part(excess / size) : excess;
}

template <bool Near>
MK_INLINE float Wrap(float coordinate, float size, float half)
{
    const float raised = coordinate < -half ? half - Reduce<Near>(-half - coordinate, size) : coordinate;
    return raised > half ? -half + Reduce<Near>(raised - half, size) : raised;
}

template <bool Near>
MK_INLINE void Wrap_With_Previous(float &coordinate, float &previous, float size, float half)
{
    const float wrapped = Wrap<Near>(coordinate, size, half);
    previous = wrapped - (coordinate - previous);
    coordinate = wrapped;
}

/// Whether a coordinate lies beyond `limit`, which isn't negative.
MK_SIMD bool Any_Beyond(const float *__restrict values, int count, float limit)
{
    uint32_t outside = 0;
    Particle::For_Whole_Registers(count,
                                  [&](int i) MK_INLINE_LAMBDA { outside |= std::fabs(values[i]) > limit ? ~0u : 0u; });
    return outside != 0;
}

MK_INLINE uint32_t Is_Outside(float coordinate, float half)
{
    return (coordinate < -half ? ~0u : 0u) | (coordinate > half ? ~0u : 0u);
}
MK_INLINE uint32_t Is_Outside(const Vector3 &position, float half)
{
    return Is_Outside(position.x, half) | Is_Outside(position.y, half) | Is_Outside(position.z, half);
}

MK_SIMD bool Any_Outside(vrMKPConstVectors positions, int count, float half)
{
    uint32_t outside = 0;
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA { outside |= Is_Outside(positions[i], half); });
    return outside != 0;
}

template <bool Near>
MK_SIMD void Wrap_All(float *__restrict coordinates, float *__restrict previous, int count, float size, float half)
{
    for (int at = 0; at < count; ++at) Wrap_With_Previous<Near>(coordinates[at], previous[at], size, half);
}

/// Wraps the coordinates of the slots from `first` to `end`, and shifts the previous ones along.
void Wrap_Run(float *coordinates, float *previous, int first, int end, float size, float half)
{
    for (int slot = first; slot < end;) {
        // All blocks but the first begin where a cache line does.
        const int next = std::min((slot / BLOCK + 1) * BLOCK, end);
        // Within the cube and its neighbours the ways past a face are shorter than it.
        const bool isNear = half > 0.0f && !Any_Beyond(coordinates + slot, next - slot, half * 2.5f);
        (isNear ? Wrap_All<true> : Wrap_All<false>)(coordinates + slot, previous + slot, next - slot, size, half);
        slot = next;
    }
}

bool Is_Stopped(const vrMKPBuffer &buffer, int slot)
{
    return buffer.MayHaveStopped && (buffer.Flags[slot] & PARTICLE_STOPPED);
}

/// The first slot of a run with a particle outside the cube that isn't at rest, or the run's end.
int Find_Outside(const vrMKPBuffer &buffer, vrMKPSpan span, float half)
{
    const int end = span.First + span.Count;
    for (int first = span.First; first < end; first += BLOCK) {
        const int blockEnd = std::min(first + BLOCK, end);
        if (!Any_Outside(buffer.Position + first, blockEnd - first, half)) continue;
        for (int slot = first; slot < blockEnd; ++slot)
            if (Is_Outside(buffer.Position[slot], half) && !Is_Stopped(buffer, slot)) return slot;
    }
    return end;
}

/// Where the cube stands in the lattice of its likes.
struct Lattice
{
    Vector3 Center;
    Vector3 Phase;
    float Half;
    float InverseSize;
};

MK_INLINE float Fold(float value, float half)
{
    const float raised = value < -half ? half - (-half - value) : value;
    return raised > half ? (raised - half) - half : raised;
}

MK_SIMD void Place(vrMKPVectors to, vrMKPConstVectors from, int count, Lattice lattice)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const Vector3 point = Particle::Minus(from[i], lattice.Phase);
        const Vector3 folded(Fold(point.x, lattice.Half), Fold(point.y, lattice.Half), Fold(point.z, lattice.Half));
        to.Put(i, Particle::Plus(lattice.Center, folded));
    });
}

/// Time by the coordinate along an axis of the cube.
template <bool Inverted>
MK_SIMD void Emulate_Time(float *__restrict time, const float *__restrict coordinates, int count, float phase,
                          float half, float inverseSize)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const float share = Particle::Clamp_01(Fold(coordinates[i] - phase, half) * inverseSize + 0.5f);
        time[i] = Inverted ? 1.0f - share : share;
    });
}

} // namespace

vrMKPWeatherCubeSpawner::vrMKPWeatherCubeSpawner()
{
    ParticleCount = Parameters.Add_Int(200, "Particle Count", 50, 0, 5000, "Total weather particles to spawn.");
    CubeSize = Add_Cube_Size(Parameters, 201);
    Velocity = Parameters.Add_Shape(202, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    HollowVelocity = Parameters.Add_Bool(203, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
}

bool vrMKPWeatherCubeSpawner::Post_Load()
{
    if (HollowVelocity->Get_Value()) Velocity->Prepare_Surface_Table();
    return vrMKPSpawner::Post_Load();
}

int vrMKPWeatherCubeSpawner::Get_Min_Capacity(const vrMKPBufferPluginData *) const
{
    return std::max(ParticleCount->Get_Value(), 1);
}

void vrMKPWeatherCubeSpawner::Spawn(vrMKPBuffer &buffer) const
{
    const int total = ParticleCount->Get_Value();
    if (!MK_VERIFY(buffer.Capacity >= total, "buffer->Allocated < ParticleCount->Get_Value()")) return;
    const int64_t wanted = static_cast<int64_t>(total) + buffer.PendingCount;
    const int count = static_cast<int>(std::clamp<int64_t>(wanted, 0, buffer.Capacity));
    buffer.PendingCount = 0;
    if (buffer.SpawnerState != SPAWNER_WAITING) {
        Show_Particles(buffer, buffer.State->Is_Showing() ? count : 0);
        return;
    }
    Show_Particles(buffer, count);
    buffer.FirstNew = 0;
    buffer.SpawnedThisFrame = count;
    Fill(buffer, count);
    buffer.SpawnerState = SPAWNER_SPAWNING;
}

void vrMKPWeatherCubeSpawner::Fill(vrMKPBuffer &buffer, int count) const
{
    const float half = std::abs(CubeSize->Get_Value() * 0.5f);
    const bool isHollow = HollowVelocity->Get_Value();
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 camera = state.Camera.Get_Translation();
    const Vector3 way = camera - state.Get_Position();
    const float squaredDistance = glm::dot(way, way);
    RandomClass &random = buffer.Random;
    for (int slot = 0; slot < count; ++slot) {
        Vector3 position;
        for (int axis = 0; axis < 3; ++axis) position[axis] = random.Get_Float(-half, half);
        buffer.Position.Put(slot, position);
        buffer.PreviousPosition.Put(slot, position);
        buffer.Velocity.Put(slot, Velocity->Sample(random, isHollow, false, nullptr, Vector3(0.0f)));
        buffer.Rotation[slot] = 0;
        buffer.Age[slot] = 0.0f;
        buffer.Time[slot] = 0.0f;
        buffer.MaxAge[slot] = -1.0f;
        buffer.ID[slot] = random.Get_Word();
        buffer.Size[slot] = {1.0f, 1.0f};
        buffer.Color[slot] = VR_WHITE;
        buffer.Flags[slot] = 0;
        const Vector3 toCamera = camera - position;
        buffer.SortingRelativeToGroup[slot] = squaredDistance - glm::dot(toCamera, toCamera);
        buffer.Number[slot] = buffer.NextSerial++;
    }
}

vrMKPWeatherCubeModifier::vrMKPWeatherCubeModifier()
{
    CubeSize = Add_Cube_Size(Parameters, 200);
}

void vrMKPWeatherCubeModifier::Modify(vrMKPBuffer &buffer, int) const
{
    const float size = CubeSize->Get_Value();
    const float half = size / 2.0f;
    const vrMKPVectors &positions = buffer.Position;
    const vrMKPVectors &previous = buffer.PreviousPosition;
    bool hasWrapped = false;
    for (const vrMKPSpan span : buffer.Live_Spans()) {
        const int end = span.First + span.Count;
        const int first = hasWrapped ? span.First : Find_Outside(buffer, span, half);
        hasWrapped = hasWrapped || first < end;
        if (!buffer.MayHaveStopped) {
            Wrap_Run(positions.X, previous.X, first, end, size, half);
            Wrap_Run(positions.Y, previous.Y, first, end, size, half);
            Wrap_Run(positions.Z, previous.Z, first, end, size, half);
            continue;
        }
        for (int slot = first; slot < end; ++slot) {
            if (Is_Stopped(buffer, slot)) continue;
            Wrap_With_Previous<false>(positions.X[slot], previous.X[slot], size, half);
            Wrap_With_Previous<false>(positions.Y[slot], previous.Y[slot], size, half);
            Wrap_With_Previous<false>(positions.Z[slot], previous.Z[slot], size, half);
        }
    }
}

vrMKPWeatherCubeTransformer::vrMKPWeatherCubeTransformer()
{
    CubeSize = Add_Cube_Size(Parameters, 200);
    CameraOffset = Parameters.Add_Float(201, "Camera Offset", 100.0f, 1.0f, 2000.0f,
                                        "Offset of weather cube from camera along camera's z-axis.");
    TimeEmulation = Parameters.Add_Enum(202, "Time Emulation", TIME_EMULATIONS, TIME_INCREASES_DOWNWARD,
                                        "Choose how to emulate time with weather particles.");
}

void vrMKPWeatherCubeTransformer::Transform_For_View(vrMKPBuffer *buffer, const Mat3DClass *camera,
                                                     vrBounds &bounds) const
{
    if (!MK_VERIFY(buffer && camera, "buffer == NULL || camera == NULL")) return;
    const float size = CubeSize->Get_Value();
    const int emulation = TimeEmulation->Get_Value();
    const int axis = emulation % 3;
    const auto emulate = emulation >= 3 ? Emulate_Time<true> : Emulate_Time<false>;
    const float *const coordinates[] = {buffer->Position.X, buffer->Position.Y, buffer->Position.Z};
    Lattice lattice;
    // The camera looks down the negative of its third axis, so that this is ahead of it.
    lattice.Center = camera->Get_Translation() - Particle::Unit(camera->Get_Axis(2)) * CameraOffset->Get_Value();
    lattice.InverseSize = 1.0f / size;
    lattice.Half = size / 2.0f;
    for (int i = 0; i < 3; ++i) {
        const float cubes = lattice.Center[i] * lattice.InverseSize;
        lattice.Phase[i] = (cubes - std::floor(cubes)) * size;
    }
    for (const vrMKPSpan span : buffer->Live_Spans()) {
        Place(buffer->WorldPosition + span.First, buffer->Position + span.First, span.Count, lattice);
        emulate(buffer->Time + span.First, coordinates[axis] + span.First, span.Count, lattice.Phase[axis],
                lattice.Half, lattice.InverseSize);
    }
    bounds.Center = lattice.Center;
    bounds.Extent = Vector3(VIEW_BOUNDS_EXTENT);
}

bool vrMKPWeatherCubeStomper::Begin_Age(vrMKPBuffer &buffer) const
{
    if (!MK_VERIFY(buffer.State, "!buffer->Context")) return false;
    if (!buffer.State->Is_Showing()) Show_Particles(buffer, 0);
    return buffer.ActiveCount > 0;
}

void vrMKPWeatherCubeStomper::Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    Particle::Add_Float(buffer.Age + span.First, span.Count, buffer.State->FrameTime);
}

void vrMKPWeatherCubeStomper::Stomp(vrMKPBuffer &buffer, bool) const
{
    if (!MK_VERIFY(buffer.State, "!buffer->Context")) return;
    const float thinned = static_cast<float>(buffer.ActiveCount) * buffer.State->Energy;
    const int count = buffer.State->Is_Showing() ? std::clamp(Particle::Truncate(thinned), 0, buffer.ActiveCount) : 0;
    Show_Particles(buffer, count);
}
