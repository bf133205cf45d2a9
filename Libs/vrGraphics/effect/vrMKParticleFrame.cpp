#include "vrGraphics/effect/vrMKParticle.h"

#include "MKLib/MKDebug/AssertScope.h"
#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrHWParticleBuffer.h"
#include "vrGraphics/plugins/visualizers/vrMKPBoundsSum.h"
#include "vrGraphics/scene/vrScene.h"

#include <algorithm>
#include <climits>
#include <cmath>

static MKDebug::Logger ParticleLog("ParticleLog");

namespace
{

/// Slots that all behaviours work on before the next ones: their channels stay in the second cache meanwhile, and are
/// long enough for loops and prefetching to come up to speed. Blocks end at multiples of it, so that all but the first
/// of a run begin where a cache line does, in each channel.
constexpr int BLOCK = 4096;
constexpr float PRE_SIMULATION_STEP = 0.033f;
constexpr double PRE_SIMULATION_RATE = 30.30303; ///< steps a second
/// What a file may ask for at most: ten times the greatest value of the parameter, and a second or two of work.
constexpr int MAX_PRE_SIMULATION_STEPS = 3030;
constexpr int64_t MAX_PRE_SIMULATED_PARTICLES = 1 << 26; ///< in all steps together, were the ring full

/// Frames ahead of the start are charged too, which comes to more than an int holds.
void Count(int &total, int count)
{
    total = count > INT_MAX - total ? INT_MAX : total + count;
}

template <typename Work>
void For_Blocks(vrMKPSpans spans, Work &&work)
{
    for (const vrMKPSpan span : spans) {
        const int end = span.First + span.Count;
        for (int first = span.First; first < end;) {
            const int next = std::min((first / BLOCK + 1) * BLOCK, end);
            work(vrMKPSpan{first, next - first});
            first = next;
        }
    }
}

} // namespace

bool vrMKParticle::Prepare_Buffer(vrMKParticleGroup &group)
{
    if (!Spawner || !Stomper || RefusedBuffer) return false;
    vrMKPRenderState &state = group.Get_State();
    if (Kinds != Get_Kinds()) Buffer = nullptr; // what it keeps is for plugins of other kinds
    Kinds = Get_Kinds();
    SmartPtr<vrMKPBufferPluginData> data = Buffer ? Buffer->SpawnerData : nullptr;
    if (!Spawner->Create_Spawn_Data(state, &data)) return false;
    Stomper->Mark_Dirty();
    Stomper->Update_Life();
    const int capacity = Spawner->Get_Max_Particles(state, data.Get(), Stomper.Get());
    if (!Make_Buffer(state, std::move(data), capacity)) {
        RefusedBuffer = true;
        return false;
    }
    Buffer->Active = true;
    Buffer->State = &state;
    Buffer->Random.Seed(Spawner->Get_Run_Seed(state));
    Buffer->Companion = Spawner->Get_Buffer_Companion(*Buffer); // which goes by the seed
    Buffer->Owner = this;
    Buffer->Layer = this;
    Ready_Visualizer(group);
    return true;
}

/// A layer may have been loaded without its assets, or ahead of the driver.
void vrMKParticle::Ready_Visualizer(vrMKParticleGroup &group)
{
    if (!Visualizer) return;
    if (TheGraphicsDriver) Visualizer->Load_Assets(false, nullptr);
    if (group.Get_Emitter()) Visualizer->Bind_To_Emitter(*group.Get_Emitter());
}

vrMKParticle::PreparedKinds vrMKParticle::Get_Kinds() const
{
    const auto kind = [](const vrMKPPlugin *plugin) { return plugin ? plugin->Get_Plugin_Class() : VRMKP_PLUGIN_NONE; };
    return {kind(Spawner.Get()), kind(Stomper.Get()), kind(Visualizer.Get())};
}

bool vrMKParticle::Make_Buffer(vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> spawnData, int capacity)
{
    if (Buffer) {
        Buffer->InverseMaxAge = 1.0f / Stomper->Get_Max_Life(state);
        return Buffer->Capacity == capacity || Buffer->Resize(capacity, Get_Name());
    }
    Buffer = vrMKPBuffer::Create(capacity, Get_Name());
    if (!Buffer) return false;
    Buffer->State = &state;
    Buffer->SpawnerData = std::move(spawnData);
    Buffer->HardLifetime = Spawner->Has_Hard_Lifetime();
    Buffer->InverseMaxAge = 1.0f / Stomper->Get_Max_Life(state);
    Push_LOD();
    Buffer->StomperData = Stomper->Create_Buffer_Data(state);
    Buffer->ModifierData.reserve(Modifiers.size());
    for (const auto &modifier : Modifiers) Buffer->ModifierData.emplace_back(modifier->Create_Buffer_Data(state));
    if (Visualizer) Buffer->VisualizerData = Visualizer->Create_Buffer_Data(state);
    return true;
}

void vrMKParticle::Update(float dt, vrMKParticleGroup &group)
{
    if (Is_Suspended() || Is_Hardware() || !Buffer || !Buffer->Active) return;
    vrMKPRenderState &state = group.Get_State();
    if (Transformer) {
        Buffer->TransformType = Transformer->Get_Transform_Type();
        // A slave has its parent's world positions, whatever its own transformer does.
        Buffer->Share_World_Positions(Transformer->Keeps_Positions() && Spawner &&
                                      Spawner->Get_Plugin_Class() != kvrMKPSlaveSpawner);
    }
    Pre_Simulate(group);
    state.FrameTime = dt;
    if (Spawner && Stomper)
        Step_Particles();
    else
        Measure(nullptr);

    Count(state.ParticleCount, Buffer->ActiveCount);
    if (Spawner && Spawner->Get_Contribute_To_Lighting()) Count(state.LightingParticleCount, Buffer->ActiveCount);
    Buffer->SpawnedThisFrame = 0;
}

void vrMKParticle::Pre_Simulate(vrMKParticleGroup &group)
{
    if (PreSimulated) return;
    PreSimulated = true;
    const float seconds = Spawner ? Spawner->Get_Pre_Simulate_Seconds() : 0.0f;
    if (!(seconds > 0.0f)) return;
    // In double precision and by this decimal: 0.99 seconds are 29 steps.
    const double steps = std::trunc(static_cast<double>(seconds) * PRE_SIMULATION_RATE);
    int done = 0;
    int64_t particles = 0; // counted as it goes: the ring of a slave takes its parent's size
    for (; done < steps && done < MAX_PRE_SIMULATION_STEPS && particles < MAX_PRE_SIMULATED_PARTICLES; ++done) {
        Update(PRE_SIMULATION_STEP, group);
        particles += Buffer->Capacity;
    }
    if (done < steps)
        MK_LOG(ParticleLog, MKDebug::LogLevel::Warning, "Layer \"%s\" asks for %g seconds ahead of its start, gets %g",
               Get_Name().c_str(), static_cast<double>(seconds),
               static_cast<double>(static_cast<float>(done) * PRE_SIMULATION_STEP));
}

/// Everything that happens to a particle in a frame but for its birth and the stomper's condition happens to one block
/// of particles after the other, as long as they are in the cache, where the plugins allow it: `Fuses_Blocks`.
void vrMKParticle::Step_Particles()
{
    const MKDebug::AssertScope onceAStep;
    vrMKPBuffer &buffer = *Buffer;
    buffer.ScaleType = buffer.State->IsProjectile && Spawner->Uses_Scaled_Transform_Data() && Transformer
                           ? Transformer->Get_Scale_Type()
                           : PARTICLE_SCALE_NONE;
    const bool ages = Stomper->Begin_Age(buffer);
    buffer.OthersMayReturn = Spawner->Sets_Live_Slots();
    buffer.OthersAreSeen = buffer.State->AreAllSlotsSeen;
    buffer.Begin_Move(Spawner->Get_Auto_Update_Positions());
    const bool fuses = Fuses_Blocks();
    const bool hasOld = buffer.ActiveCount > 0;
    const bool hasPlainBounds = fuses && Visualizer && Visualizer->Has_Plain_Bounds() && !Stomper->Has_Condition();
    vrMKPBoundsSum sum = Visualizer ? Visualizer->Begin_Bounds(buffer) : vrMKPBoundsSum(1.0f);
    vrMKPBoundsSum *const inBlocks = hasPlainBounds ? &sum : nullptr;

    if (fuses && hasOld) Prepare_Modifiers(0, Modifiers.size());
    bool isValid = true;
    For_Blocks(fuses ? buffer.Live_Spans() : buffer.Wide_Spans(), [&](vrMKPSpan block) {
        const vrMKPSpan wide = fuses ? buffer.Widen(block) : block;
        if (ages) Stomper->Age_Span(buffer, wide);
        // Others in the run have no say.
        isValid &= buffer.Move_Span(wide) || !(fuses ? Particle::Has_Invalid(buffer.Position + block.First, block.Count)
                                                     : buffer.Is_Any_Invalid(buffer.Position));
        if (fuses) Finish_Block({.Live = block, .Wide = wide, .New = {}}, 0, Modifiers.size(), true, inBlocks);
    });
    MK_ASSERT(isValid, "Position[where].Is_Valid()");

    if (Should_Spawn() || Spawner->Get_Plugin_Class() == kvrMKPSlaveSpawner) {
        Spawner->Spawn(buffer);
        if (buffer.SpawnedThisFrame > 0) Stomper->Init_New_Particles(buffer);
    }
    if (buffer.ActiveCount < 1) {
        if (buffer.Companion && Transformer && !Is_View_Dependent()) Transformer->Transform(buffer);
    } else if (fuses) {
        if (!hasOld) Prepare_Modifiers(0, Modifiers.size());
        For_Blocks(buffer.New_Spans(), [&](vrMKPSpan block) {
            Finish_Block({.Live = block, .Wide = block, .New = block}, 0, Modifiers.size(), true, inBlocks);
        });
        if (Transformer && !Is_View_Dependent()) Transformer->Transform_Companion(buffer);
        Stomper->Kill_Particles(buffer);
    } else {
        Modify_And_Transform();
        Stomper->Kill_Particles(buffer);
    }
    Measure(inBlocks);
}

/// Whether the particles of the last frame are modified and placed before this frame's are born. What a modifier does
/// to one particle must not depend on the others, and it must draw nothing. A small layer stays in the cache as it is,
/// and has fewer calls without.
bool vrMKParticle::Fuses_Blocks() const
{
    return Buffer->ActiveCount > BLOCK && !Spawner->Sets_Live_Slots() &&
           std::none_of(Modifiers.begin(), Modifiers.end(), [](const auto &modifier) {
               return modifier->Get_Walk() == vrMKPModifier::WALK_WHOLE || modifier->Depends_On_Count() ||
                      modifier->Needs_Serial_Frame();
           });
}

void vrMKParticle::Prepare_Modifiers(size_t first, size_t last)
{
    for (size_t index = first; index < last; ++index) Modifiers[index]->Prepare_Frame(*Buffer, static_cast<int>(index));
}

/// Runs modifiers `first` to `last` on a block, and then places and measures it.
void vrMKParticle::Finish_Block(const vrMKPWalkSlots<vrMKPSpan> &block, size_t first, size_t last, bool transforms,
                                vrMKPBoundsSum *sum)
{
    vrMKPBuffer &buffer = *Buffer;
    for (size_t index = first; index < last; ++index) {
        const vrMKPSpan span = block.Get(Modifiers[index]->Get_Walk());
        if (span.Count > 0) Modifiers[index]->Apply(buffer, static_cast<int>(index), span);
    }
    if (transforms && Transformer && !Is_View_Dependent()) Transformer->Transform_Span(buffer, block.Live);
    if (sum) sum->Add_Span(buffer, block.Live);
}

void vrMKParticle::Modify_And_Transform()
{
    if (Buffer->ActiveCount <= BLOCK)
        Modify_Small();
    else
        Modify_By_Blocks();
    if (Transformer && !Is_View_Dependent()) Transformer->Transform(*Buffer);
}

/// One modifier after the other on the whole ring.
void vrMKParticle::Modify_Small()
{
    vrMKPWalkSlots<vrMKPSpans> runs = Find_Walk_Runs(*Buffer);
    for (size_t index = 0; index < Modifiers.size(); ++index) {
        const vrMKPModifier &modifier = *Modifiers[index];
        if (modifier.Get_Walk() != vrMKPModifier::WALK_WHOLE) {
            modifier.Modify_Runs(*Buffer, static_cast<int>(index), runs);
            continue;
        }
        modifier.Modify(*Buffer, static_cast<int>(index));
        runs = Find_Walk_Runs(*Buffer); // it may have made the ring another one
    }
}

void vrMKParticle::Modify_By_Blocks()
{
    size_t first = 0;
    while (first < Modifiers.size()) {
        size_t last = first;
        while (last < Modifiers.size() && Modifiers[last]->Get_Walk() != vrMKPModifier::WALK_WHOLE) ++last;
        Run_Modifiers(first, last);
        if (last < Modifiers.size()) Modifiers[last]->Modify(*Buffer, static_cast<int>(last));
        first = last + 1;
    }
}

/// Modifiers between two that walk the whole ring share blocks.
void vrMKParticle::Run_Modifiers(size_t first, size_t last)
{
    if (first == last) return;
    Prepare_Modifiers(first, last);
    int untilNew = std::max(Buffer->ActiveCount - Buffer->SpawnedThisFrame, 0); // the new ones are the last of the ring
    For_Blocks(Buffer->Live_Spans(), [&](vrMKPSpan block) {
        const int old = std::min(untilNew, block.Count);
        untilNew -= old;
        const vrMKPSpan born{block.First + old, block.Count - old};
        Finish_Block({.Live = block, .Wide = Buffer->Widen(block), .New = born}, first, last, false, nullptr);
    });
}

/// The bounds of the frame, with what was summed up by blocks where that is all of it.
void vrMKParticle::Measure(const vrMKPBoundsSum *sum)
{
    if (!Visualizer || !Transformer || Is_View_Dependent()) return;
    if (sum)
        Visualizer->End_Bounds(*Buffer, *sum, &Bounds);
    else
        Visualizer->Compute_Bounds(*Buffer, &Bounds);
}

bool vrMKParticle::Should_Spawn() const
{
    return Spawner && Buffer && Buffer->State && Has_Quality() &&
           Spawner->Can_Spawn(Buffer.Get(), *Buffer->State, Stomper.Get());
}

void vrMKParticle::Update_Hardware(float dt, vrMKParticleGroup &group)
{
    if (Is_Suspended() || dt == 0.0f) return;
    Bounds = {};
    if (!Buffer || !Buffer->Active || !Buffer->Companion) return;
    vrMKPRenderState &state = group.Get_State();
    const vrBounds box = group.Get_Bounds();
    if (Buffer->Companion->Update(dt, box.Center - box.Extent, box.Center + box.Extent)) ++state.HardwareCycles;
    if (!state.Is_Showing()) Buffer->Companion->Stop_Spawning();
    if (Buffer->Companion->Is_Finished()) Buffer->SpawnerState = SPAWNER_STOPPED;
}

void vrMKParticle::Pre_Render_Transform(const Mat3DClass &camera)
{
    if (!Buffer || !Buffer->Active || !Visualizer || Is_Suspended() || !Is_View_Dependent()) return;
    Transformer->Transform_For_View(Buffer.Get(), &camera, Bounds);
}

void vrMKParticle::Select_Visible_Particles(const vrPreRenderContext &context)
{
    if (!Buffer || !Buffer->Active || !Visualizer || Is_Suspended()) return;
    Visualizer->Select_Visible_Particles(*Buffer, context);
}

bool vrMKParticle::Get_Cull_Box(vrBounds &box) const
{
    box = Visualizer ? Visualizer->Get_Cull_Box(*Buffer, Bounds) : Bounds;
    return !Is_View_Dependent();
}

bool vrMKParticle::Take_Part(const vrRenderContext &context)
{
    TakesPart = Buffer && Buffer->Active && Visualizer && !Is_Suspended() &&
                (Buffer->ActiveCount > 0 || Buffer->Companion) && Visualizer->Is_Enabled() &&
                Visualizer->Is_Render_Mode_Enabled(context.Mode) && context.Has_Phase(Visualizer->Get_Render_Phase());
    return TakesPart;
}

void vrMKParticle::Pre_Render(const vrPreRenderContext &context)
{
    if (!TakesPart || (vrGraphicsDriver::Get_Particle_Passes() & vrGraphicsDriver::PASS_PRE_RENDER) == 0) return;
    if (Is_View_Dependent())
        Pre_Render_Transform(context.Camera);
    else if (Transformer && vrScene::Has_To_Catch_Up())
        Transformer->Transform(*Buffer);
    Visualizer->Select_Visible_Particles(*Buffer, context);
    Visualizer->Pre_Visualize(*Buffer, context);
}

void vrMKParticle::Render(vrRenderContext &context)
{
    if (!TakesPart || (vrGraphicsDriver::Get_Particle_Passes() & vrGraphicsDriver::PASS_RENDER) == 0) return;
    vrGraphicsStats::ParticlesRendered.fetch_add(Buffer->VisibleCount, std::memory_order_relaxed);
    Visualizer->Visualize(*Buffer, context);
}

/// Whether the layer has a part in what keeps its emitter in the scene: it has particles, or may get some in this run.
/// A hidden layer only pauses, and without an end it waits for a better quality too.
bool vrMKParticle::Has_Work() const
{
    if (Is_Suspended() || !Buffer || !Buffer->Active) return false;
    if (Buffer->ActiveCount > 0) return true;
    if (!Spawner) return false;
    if (Spawner->Follows_Parent()) return Spawner->Has_Pending_Births(*Buffer);
    if (Buffer->SpawnerState == SPAWNER_STOPPED) return false;
    const bool hasEnd = (Spawner->Get_Duration_Flags() & vrMKPSpawner::DURATION_HAS_END) != 0;
    return !hasEnd || Has_Quality();
}

bool vrMKParticle::Has_Quality() const
{
    int level = vrMKPSpawner::Get_Global_LOD();
    if (Spawner->Get_Duration_Flags() & vrMKPSpawner::DURATION_HAS_END)
        level = std::min(level, Buffer->State->QualitySnapshot);
    return Spawner->Get_LOD() <= level;
}

bool vrMKParticle::Needs_Serial_Frame() const
{
    if (Is_Suspended() || !Buffer || !Buffer->Active || (Buffer->ActiveCount == 0 && !Should_Spawn())) return false;
    return std::any_of(Modifiers.begin(), Modifiers.end(),
                       [](const auto &modifier) { return modifier->Needs_Serial_Frame(); });
}

float vrMKParticle::Get_Lifetime() const
{
    if (!Spawner || !Stomper || !Group) return 0.0f;
    const vrMKPRenderState &state = Group->Get_State();
    return Spawner->Get_Start_Time(state) + Spawner->Get_Stop_Time() + Stomper->Get_Max_Life(state);
}

void vrMKParticle::On_Parent_Particle_Death(const vrMKPBuffer &parent, const Vector3 &position, const Vector3 &velocity,
                                            float overshoot)
{
    if (Group) Group->On_Parent_Particle_Death(this, position, velocity, overshoot, &parent);
}

void vrMKParticle::Draw_Probability()
{
    if (Spawner && Group)
        Set_Hidden_By_LOD(!(Spawner->Get_Probability() > Group->Get_State().Random.Get_Float(0.0f, 1.0f)));
}

void vrMKParticle::Set_Alt_Index(int index)
{
    if (Spawner) Set_Hidden_By_Group(!Spawner->Passes_Alt_Index(index));
}

void vrMKParticle::Set_Hidden_Flag(bool &flag, bool hidden)
{
    const bool wasSuspended = Is_Suspended();
    flag = hidden;
    if (!Spawner || Is_Suspended() == wasSuspended) return;
    if (!wasSuspended)
        Spawner->On_Hidden(Buffer.Get());
    else if (!Group || !Group->Is_Group_Hidden())
        Spawner->On_Shown(Buffer.Get());
}

void vrMKParticle::On_Group_Hidden(bool hidden)
{
    if (!Spawner || Is_Suspended()) return;
    if (hidden)
        Spawner->On_Hidden(Buffer.Get());
    else
        Spawner->On_Shown(Buffer.Get());
}
