#include "vrGraphics/plugins/visualizers/QuadDraw.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/visualizers/ParticleSort.h"

#include <algorithm>
#include <cmath>

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

constexpr float ASPECT_TOLERANCE = 0.0001f;

/// Whether it changes anything.
bool Is_On(const vrMKPAspect &aspect)
{
    return !(std::fabs(aspect.Minimum - 1.0f) <= ASPECT_TOLERANCE &&
             std::fabs(aspect.Maximum - 1.0f) <= ASPECT_TOLERANCE);
}

// Keys are for back to front: the farthest has the least. The next two write whole entries, whose keys alone would go
// one by one.

MK_SIMD void Put_Keys(vrMKPSortEntry *__restrict entries, const uint32_t *__restrict slots, vrMKPConstVectors positions,
                      int count, Vector3 camera)
{
    for (int at = 0; at < count; ++at) {
        entries[at].Key = -Particle::Distance_Squared(positions[at], camera);
        entries[at].Index = slots[at];
    }
}

/// Where particles stand relative to the emitter, which they note as long as they are young.
struct Places
{
    const float *Noted;
    float *New;
    const float *Ages;
    float MaxAge;
    float Base; ///< the emitter's distance
};

MK_SIMD void Put_Young_Keys(vrMKPSortEntry *__restrict entries, const uint32_t *__restrict slots,
                            vrMKPConstVectors positions, int count, Vector3 camera, Places places)
{
    float *__restrict const noted = places.New;
    for (int at = 0; at < count; ++at) {
        const float key = -Particle::Distance_Squared(positions[at], camera);
        const uint32_t isYoung = Particle::As_Mask(places.Ages[at] < places.MaxAge);
        const float old = places.Noted[at];
        noted[at] = Particle::Select_Bits(isYoung, places.Base + key, old);
        entries[at].Key = Particle::Select_Bits(isYoung, key, old - places.Base);
        entries[at].Index = slots[at];
    }
}

/// Calls `put(run, first)` for blocks of the entries.
template <typename Put>
void For_Runs(const vrMKPSortEntry *entries, int count, Put &&put)
{
    for (int first = 0; first < count; first += vrMKPParticleRun::SIZE)
        put(vrMKPParticleRun(entries + first, std::min(count - first, vrMKPParticleRun::SIZE), false), first);
}

void Key_By_Distance(vrMKPSortEntry *entries, const vrMKPBuffer &buffer, const Vector3 &camera)
{
    Particle::Planes room;
    For_Runs(entries, buffer.VisibleCount, [&](const vrMKPParticleRun &run, int first) {
        Put_Keys(entries + first, buffer.Render + first, run.Fetch(buffer.WorldPosition, room), run.Get_Count(),
                 camera);
    });
}

void Key_Young_By_Distance(vrMKPSortEntry *entries, vrMKPBuffer &buffer, const Vector3 &camera, float maxAge)
{
    const float base = Particle::Distance_Squared(camera, buffer.State->Get_Position());
    Particle::Planes room;
    float ageRoom[vrMKPParticleRun::SIZE];
    float placeRoom[vrMKPParticleRun::SIZE];
    float newPlaces[vrMKPParticleRun::SIZE];
    For_Runs(entries, buffer.VisibleCount, [&](const vrMKPParticleRun &run, int first) {
        const Places places{run.Fetch(buffer.SortingRelativeToGroup, placeRoom), newPlaces,
                            run.Fetch(buffer.Age, ageRoom), maxAge, base};
        Put_Young_Keys(entries + first, buffer.Render + first, run.Fetch(buffer.WorldPosition, room), run.Get_Count(),
                       camera, places);
        const float *from = newPlaces;
        run.For_Slots([&](size_t slot, int count) {
            std::copy_n(from, count, buffer.SortingRelativeToGroup + slot);
            from += count;
        });
    });
}

MK_SIMD void List(vrMKPSortEntry *__restrict entries, const uint32_t *__restrict slots, int count)
{
    for (int at = 0; at < count; ++at) entries[at].Index = slots[at];
}

MK_SIMD void Multiply(float *__restrict values, int count, float factor)
{
    for (int at = 0; at < count; ++at) values[at] *= factor;
}

MK_SIMD void Add(float *__restrict values, const float *__restrict add, int count)
{
    for (int at = 0; at < count; ++at) values[at] += add[at];
}

MK_SIMD void Vary(float *__restrict widths, const uint32_t *__restrict ids, int count, float minimum, float span)
{
    for (int at = 0; at < count; ++at) widths[at] *= Particle::Unit_ID(ids[at]) * span + minimum;
}

} // namespace

float vrMKPQuadDraw::Get_Size_Multiplier(const vrMKPBuffer &buffer)
{
    const vrMKPRenderState &state = *buffer.State;
    return buffer.ScaleType == PARTICLE_SCALE_AT_SPAWN ? state.RenderSizeMultiplier * state.SizeScale
                                                       : state.RenderSizeMultiplier;
}

void vrMKPQuadDraw::Drop_Vertices(vrMKPBuffer &buffer)
{
    if (auto *data = MK_Dynamic_Cast<vrMKPSimpleVisualizerData>(buffer.VisualizerData.Get())) data->Drop_Vertices();
}

bool vrMKPQuadDraw::Begin(vrMKPBuffer &buffer, const vrPreRenderContext &context, bool usesSceneLighting)
{
    Drop_Vertices(buffer);
    return buffer.ActiveCount > 0 && buffer.VisibleCount > 0 && Set_Up(buffer, context, usesSceneLighting);
}

bool vrMKPQuadDraw::Begin_All(vrMKPBuffer &buffer, const vrPreRenderContext &context)
{
    Drop_Vertices(buffer);
    return buffer.ActiveCount > 0 && Set_Up(buffer, context, false);
}

bool vrMKPQuadDraw::Set_Up(vrMKPBuffer &buffer, const vrPreRenderContext &context, bool usesSceneLighting)
{
    auto *data = MK_Dynamic_Cast<vrMKPSimpleVisualizerData>(buffer.VisualizerData.Get());
    if (!MK_VERIFY(data != nullptr, "data != NULL")) return false;
    Buffer = &buffer;
    State = buffer.State;
    Data = data;
    Camera = context.Camera;
    SizeMultiplier = Get_Size_Multiplier(buffer);
    MapsPositions = buffer.ScaleType == PARTICLE_SCALE_AT_DRAW;
    PositionScale = MapsPositions ? State->PositionScale : 1.0f;
    PositionOffset = MapsPositions ? State->PositionOffset : Vector3(0.0f);
    RGBAClass multiplier = State->ColorMultiplier;
    multiplier.A *= State->TintAlpha;
    if (usesSceneLighting) {
        multiplier.R *= context.ParticleDiffuseMultiplier.x;
        multiplier.G *= context.ParticleDiffuseMultiplier.y;
        multiplier.B *= context.ParticleDiffuseMultiplier.z;
    }
    Colors.Begin(multiplier);
    return true;
}

void vrMKPQuadDraw::Sort(const vrMKPSorting &sorting)
{
    const int count = Buffer->VisibleCount;
    auto &entries = Data->SortEntries;
    entries.reserve(static_cast<size_t>(Buffer->Capacity)); // so that no later frame allocates
    entries.resize(static_cast<size_t>(count));
    List(entries.data(), Buffer->Render, count);
    if (!sorting.IsOn) return;
    // One alone notes its place too, for the time when it's old.
    const Vector3 camera = Camera.Get_Translation();
    if (sorting.MaxAge < 0.0f)
        Key_By_Distance(entries.data(), *Buffer, camera);
    else
        Key_Young_By_Distance(entries.data(), *Buffer, camera, sorting.MaxAge);
    IsSorted = count > 1;
    if (IsSorted) Sort_Entries(entries, Data->SortRoom);
}

bool vrMKPQuadDraw::Allocate(int quads, vrPrimVertexType type, const char *className)
{
    Type = type;
    void *const vertices = ParticleScratch::Allocate(4 * quads, type);
    if (!vertices) {
        MK_LOG(VorenLog, MKDebug::LogLevel::Error, "%s::Do_Pre_Visualize: out of particle scratch memory!", className);
        return false;
    }
    Data->Set_Vertices(vertices, 4 * quads, Get_Vertex_Size(type));
    return true;
}

vrMKPParticleRun vrMKPQuadDraw::Get_Run(int first) const
{
    return {Data->SortEntries.data() + first, std::min(Get_Count() - first, vrMKPParticleRun::SIZE), IsSorted};
}

void vrMKPQuadDraw::Fetch(const vrMKPParticleRun &run, const vrMKPAspect &aspect, vrMKPQuadBlock &quads) const
{
    const int count = run.Get_Count();
    quads.Count = count;
    quads.Position = run.Fetch(Buffer->WorldPosition, quads.PositionRoom);
    run.Fetch(Buffer->Size, quads.Width, quads.Height);
    Multiply(quads.Width, count, SizeMultiplier);
    Multiply(quads.Height, count, SizeMultiplier);
    if (Is_On(aspect)) {
        uint32_t room[vrMKPParticleRun::SIZE];
        const uint32_t *ids = run.Fetch(Buffer->ID, room);
        Vary(quads.Width, ids, count, aspect.Minimum, aspect.Maximum - aspect.Minimum);
    }
    run.Fetch(Buffer->UV, quads.U[0], quads.V[0]);
    run.Fetch(Buffer->DUV, quads.U[1], quads.V[1]);
    Add(quads.U[1], quads.U[0], count);
    Add(quads.V[1], quads.V[0], count);
    vrColor room[vrMKPParticleRun::SIZE];
    Colors.Convert(quads.Color, run.Fetch(Buffer->Color, room), count);
}

void vrMKPQuadDraw::Write(const vrMKPQuadBlock &quads, int first) const
{
    if (Is_Bump())
        quads.Write(static_cast<vrLitBumpVertex *>(Data->Vertices) + 4 * first);
    else
        quads.Write(static_cast<vrLitVertex *>(Data->Vertices) + 4 * first);
}
