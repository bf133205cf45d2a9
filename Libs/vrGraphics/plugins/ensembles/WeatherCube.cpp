#include "vrGraphics/plugins/ensembles/WeatherCube.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
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
    const uint32_t isBelow = coordinate < -half ? ~0u : 0u;
    const float raised = Particle::Select_Bits(isBelow, half - Reduce<Near>(-half - coordinate, size), coordinate);
    const uint32_t isAbove = raised > half ? ~0u : 0u;
    return Particle::Select_Bits(isAbove, -half + Reduce<Near>(raised - half, size), raised);
}

/// Whether a coordinate lies beyond `limit`, which isn't negative.
MK_SIMD bool Any_Beyond(const float *__restrict values, int count, float limit)
{
    uint32_t outside = 0;
    for (int at = 0; at < count; ++at) outside |= std::fabs(values[at]) > limit ? ~0u : 0u;
    return outside != 0;
}

MK_SIMD bool Any_Outside(const float *__restrict values, int count, float half)
{
    int outside = 0;
    for (int at = 0; at < count; ++at) outside |= (values[at] < -half ? 1 : 0) | (values[at] > half ? 1 : 0);
    return outside != 0;
}

/// Wraps `count` coordinates, and shifts the previous ones along.
template <bool Near>
MK_SIMD void Wrap_All(float *__restrict positions, float *__restrict previous, int count, float size, float half)
{
    for (int at = 0; at < count; ++at) {
        const float old = positions[at];
        const float wrapped = Wrap<Near>(old, size, half);
        previous[at] = wrapped - (old - previous[at]);
        positions[at] = wrapped;
    }
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

MK_SIMD void Place(float *__restrict to, const float *__restrict from, int count, const Lattice &lattice)
{
    const Vector3 center = lattice.Center;
    const Vector3 phase = lattice.Phase;
    const float half = lattice.Half;
    for (int at = 0; at < count; ++at) {
        to[at * 3] = center.x + Fold(from[at * 3] - phase.x, half);
        to[at * 3 + 1] = center.y + Fold(from[at * 3 + 1] - phase.y, half);
        to[at * 3 + 2] = center.z + Fold(from[at * 3 + 2] - phase.z, half);
    }
}

/// Time by the place along an axis of the cube.
MK_SIMD void Emulate_Time(float *__restrict time, const float *__restrict from, int count, const Lattice &lattice,
                          int axis, bool isInverted)
{
    const float *coordinates = from + axis;
    const float phase = lattice.Phase[axis];
    const float half = lattice.Half;
    const float inverse = lattice.InverseSize;
    for (int at = 0; at < count; ++at) {
        const float share = Particle::Clamp_01(Fold(coordinates[at * 3] - phase, half) * inverse + 0.5f);
        time[at] = isInverted ? 1.0f - share : share;
    }
}

MK_SIMD void Add_To_All(float *__restrict values, int count, float add)
{
    for (int at = 0; at < count; ++at) values[at] += add;
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
        buffer.PreviousPosition[slot] = buffer.Position[slot] = position;
        buffer.Velocity[slot] = Velocity->Sample(random, isHollow, false, nullptr, Vector3(0.0f));
        buffer.Rotation[slot] = 0;
        buffer.Age[slot] = 0.0f;
        buffer.Time[slot] = 0.0f;
        buffer.MaxAge[slot] = -1.0f;
        const uint32_t high = random.Get_Byte();
        buffer.ID[slot] = high << 8 | random.Get_Byte();
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
    constexpr int BLOCK = 256;
    const float size = CubeSize->Get_Value();
    const float half = size / 2.0f;
    bool hasWrapped = false;
    const auto isOutside = [half, &buffer](int slot) { return Any_Outside(&buffer.Position[slot].x, 3, half); };
    const auto isStopped = [&buffer](int slot) {
        return buffer.MayHaveStopped && (buffer.Flags[slot] & PARTICLE_STOPPED);
    };
    const auto wrap = [&](int first, int count) {
        float *positions = &buffer.Position[first].x;
        // Within the cube and its neighbours the ways past a face are shorter than it.
        const bool isNear = half > 0.0f && !Any_Beyond(positions, count * 3, half * 2.5f);
        const auto wrapAll = isNear ? Wrap_All<true> : Wrap_All<false>;
        wrapAll(positions, &buffer.PreviousPosition[first].x, count * 3, size, half);
    };
    for (const vrMKPSpan span : buffer.Live_Spans()) {
        const int end = span.First + span.Count;
        for (int first = span.First; first < end; first += BLOCK) {
            const int blockEnd = std::min(first + BLOCK, end);
            if (!hasWrapped && !Any_Outside(&buffer.Position[first].x, (blockEnd - first) * 3, half)) continue;
            int slot = first;
            while (!hasWrapped && slot < blockEnd) {
                hasWrapped = !isStopped(slot) && isOutside(slot);
                if (!hasWrapped) ++slot;
            }
            if (!buffer.MayHaveStopped) {
                wrap(slot, blockEnd - slot);
                continue;
            }
            for (; slot < blockEnd; ++slot)
                if (!isStopped(slot)) wrap(slot, 1);
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
    Lattice lattice;
    // The camera looks down the negative of its third axis, so that this is ahead of it.
    lattice.Center = camera->Get_Translation() - Particle::Unit(camera->Get_Axis(2)) * CameraOffset->Get_Value();
    lattice.InverseSize = 1.0f / size;
    lattice.Half = size / 2.0f;
    for (int axis = 0; axis < 3; ++axis) {
        const float cubes = lattice.Center[axis] * lattice.InverseSize;
        lattice.Phase[axis] = (cubes - std::floor(cubes)) * size;
    }
    for (const vrMKPSpan span : buffer->Live_Spans()) {
        const float *positions = &buffer->Position[span.First].x;
        Place(&buffer->WorldPosition[span.First].x, positions, span.Count, lattice);
        Emulate_Time(buffer->Time + span.First, positions, span.Count, lattice, emulation % 3, emulation >= 3);
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
    Add_To_All(buffer.Age + span.First, span.Count, buffer.State->FrameTime);
}

void vrMKPWeatherCubeStomper::Stomp(vrMKPBuffer &buffer, bool) const
{
    if (!MK_VERIFY(buffer.State, "!buffer->Context")) return;
    const float thinned = static_cast<float>(buffer.ActiveCount) * buffer.State->Energy;
    const int count = buffer.State->Is_Showing() ? std::clamp(Particle::Truncate(thinned), 0, buffer.ActiveCount) : 0;
    Show_Particles(buffer, count);
}
