#include "vrGraphics/effect/vrMKParticleGroup.h"

#include "vrGraphics/drivercommon/vrBoundsUnion.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/scene/vrScene.h"

#include <algorithm>
#include <strings.h>

void vrMKParticleGroup::Start()
{
    vrMKPRenderable::Start();
    for (const auto &particle : Particles) {
        particle->Restart();
        particle->Draw_Probability();
        particle->Set_Alt_Index(AltIndex);
    }
    LightStates.assign(Lights.size(), {});
    LightData.clear();
    for (const auto &light : Lights) LightData.emplace_back(light->Create_Buffer_Data(Get_State()));
    LiveParticles = 0;
    WaitingLayers = Particle_Count(); // until a frame has looked
}

void vrMKParticleGroup::Begin_Instance(const vrMKPRenderable &definition)
{
    vrMKPRenderable::Begin_Instance(definition);
    const auto &group = static_cast<const vrMKParticleGroup &>(definition);
    AltIndex = group.AltIndex;
    for (int index = 0; index < Particle_Count(); ++index)
        if (const vrMKParticle *source = group.Get_Particle(index)) Get_Particle(index)->Begin_Instance(*source);
}

void vrMKParticleGroup::Update_Modifiers(vrMKPRenderableModifierContext context)
{
    vrMKPRenderable::Update_Modifiers(context);
    if (!Is_Ended()) return;
    for (const auto &particle : Particles) particle->Restart();
    for (vrParticleLight &light : LightStates) light.IsOn = false;
    LiveParticles = 0;
    WaitingLayers = 0;
}

void vrMKParticleGroup::Set_Hidden(bool hidden)
{
    const bool wasHidden = Is_Group_Hidden();
    vrMKPRenderable::Set_Hidden(hidden);
    if (Is_Group_Hidden() != wasHidden) On_Emitter_Hidden(hidden);
}

bool vrMKParticleGroup::Is_Group_Hidden() const
{
    return Is_Hidden() || (Get_Emitter() && Get_Emitter()->Is_Hidden());
}

void vrMKParticleGroup::On_Emitter_Hidden(bool hidden)
{
    Get_State().Hidden = hidden;
    for (const auto &particle : Particles) particle->On_Group_Hidden(hidden);
}

void vrMKParticleGroup::Set_Alt_Index(int index)
{
    AltIndex = index;
    for (const auto &particle : Particles) particle->Set_Alt_Index(index);
}

void vrMKParticleGroup::Spawn_Code_Particles(int count)
{
    for (const auto &particle : Particles) {
        vrMKPBuffer *buffer = particle->Get_Buffer();
        if (buffer && buffer->Active && particle->Get_Spawner())
            particle->Get_Spawner()->Spawn_Code_Particle(*buffer, count);
    }
}

void vrMKParticleGroup::Pre_Think(float)
{
    if (!Wants_Particle_Think()) return;
    Get_State().AreAllSlotsSeen =
        std::any_of(Particles.begin(), Particles.end(), [](const auto &particle) { return particle->Copies_Slots(); });
    bool hasNew = false;
    for (const auto &particle : Particles) {
        const vrMKPBuffer *buffer = particle->Get_Buffer();
        if (!particle->Is_Suspended() && (!buffer || !buffer->Active)) hasNew |= particle->Prepare_Buffer(*this);
        // An editor may have changed it, and the threads of the frame only read.
        if (particle->Get_Stomper()) particle->Get_Stomper()->Update_Life();
    }
    if (!hasNew) return;
    // Those that follow another layer can find its buffer only now.
    for (const auto &particle : Particles) {
        vrMKPBuffer *buffer = particle->Get_Buffer();
        if (buffer && buffer->Active && particle->Get_Spawner()) particle->Get_Spawner()->Find_Parent(*buffer);
    }
}

bool vrMKParticleGroup::Needs_Serial_Frame() const
{
    return std::any_of(Particles.begin(), Particles.end(),
                       [](const auto &particle) { return particle->Needs_Serial_Frame(); });
}

void vrMKParticleGroup::Fetch_Particles() const
{
    for (const auto &particle : Particles)
        if (const vrMKPBuffer *buffer = particle->Get_Buffer()) buffer->Fetch();
}

int vrMKParticleGroup::Think_Particles(float dt)
{
    if (Is_Ended()) return 0;
    for (const auto &particle : Particles) {
        if (particle->Is_Hardware())
            particle->Update_Hardware(dt, *this);
        else
            particle->Update(dt, *this);
    }
    Get_State().FrameTime = dt;
    Count_Work();
    Update_Lights();
    return Get_State().ParticleCount;
}

void vrMKParticleGroup::Count_Work()
{
    LiveParticles = 0;
    WaitingLayers = 0;
    for (const auto &particle : Particles) {
        const vrMKPBuffer *buffer = particle->Get_Buffer();
        if (!particle->Has_Work()) continue;
        if (buffer->ActiveCount > 0)
            LiveParticles += buffer->ActiveCount;
        else
            ++WaitingLayers;
    }
}

void vrMKParticleGroup::Update_Lights()
{
    for (size_t index = 0; index < Lights.size() && index < LightStates.size(); ++index) {
        auto context = Make_Context<vrMKPLightContext>(LightData[index].Get());
        context.Transform = Get_Motion();
        context.FirstLayer = Get_Particle(0);
        Lights[index]->Update(LightStates[index], context);
    }
}

/// The box around those that `get` answers for the layers that play.
template <typename Get>
vrBounds vrMKParticleGroup::Merge_Boxes(Get &&get) const
{
    vrBoundsUnion all{Get_State().Get_Position(), Get_State().Get_Position()};
    for (const auto &particle : Particles) {
        const vrMKPBuffer *buffer = particle->Get_Buffer();
        if (!buffer || !buffer->Active || particle->Is_Suspended()) continue;
        all.Add(get(*particle));
    }
    return all.Get();
}

vrBounds vrMKParticleGroup::Get_Bounds() const
{
    return Merge_Boxes([](const vrMKParticle &particle) { return particle.Get_Bounds(); });
}

bool vrMKParticleGroup::Get_Cull_Box(vrBounds &box) const
{
    bool hasBox = true;
    box = Merge_Boxes([&hasBox](const vrMKParticle &particle) {
        vrBounds part;
        hasBox &= particle.Get_Cull_Box(part);
        return part;
    });
    return hasBox;
}

void vrMKParticleGroup::Collect(vrRenderContext &context)
{
    if (!vrGraphicsDriver::Is_Enabled(vrGraphicsDriver::STATE_PARTICLES) || !Wants_Particle_Think() ||
        Is_Group_Hidden() || (Get_Render_Modes() & context.Mode) == 0)
        return;
    uint32_t phases = 0;
    for (const auto &particle : Particles)
        if (particle->Take_Part(context)) phases |= Phase_Bit(particle->Get_Render_Phase());
    if (phases == 0) return;
    const vrBounds bounds = Get_Bounds();
    for (int phase = 0; phase < PHASE_COUNT; ++phase)
        if (phases & (1u << phase))
            context.Scene->Add_Simple_Task(context, *this, static_cast<vrRenderPhaseEnum>(phase), bounds,
                                           Get_Sort_Bias());
}

void vrMKParticleGroup::Pre_Render(const vrPreRenderContext &context)
{
    for (const auto &particle : Particles)
        if (particle->Get_Render_Phase() == context.Phase) particle->Pre_Render(context);
}

void vrMKParticleGroup::Render(vrRenderContext &context)
{
    for (const auto &particle : Particles)
        if (particle->Get_Render_Phase() == context.Phase) particle->Render(context);
}

const vrParticleLight &vrMKParticleGroup::Get_Light_State(int index) const
{
    static const vrParticleLight OFF;
    return static_cast<size_t>(index) < LightStates.size() ? LightStates[static_cast<size_t>(index)] : OFF;
}

vrMKPLayer *vrMKParticleGroup::Find_Layer(std::string_view name) const
{
    for (const auto &particle : Particles) {
        const MK::String &candidate = particle->Get_Name();
        if (candidate.size() == name.size() && strncasecmp(candidate.c_str(), name.data(), name.size()) == 0)
            return particle.Get();
    }
    return nullptr;
}

void vrMKParticleGroup::On_Parent_Particle_Death(vrMKParticle *particle, const Vector3 &position,
                                                 const Vector3 &velocity, float overshoot, const vrMKPBuffer *buffer)
{
    // The texts name the fault.
    if (!MK_VERIFY(particle != nullptr, "particle == NULL")) return;
    const vrMKPSpawner *spawner = particle->Get_Spawner();
    if (!MK_VERIFY(spawner != nullptr, "particle->Get_Spawner() == NULL")) return;
    if (!MK_VERIFY(spawner->Get_Plugin_Class() == kvrMKPDeathSpawner,
                   "particle->Get_Spawner()->Get_Plugin_Class() != vrMKPPlugin::kvrMKPDeathSpawner"))
        return;
    vrMKPBuffer *child = particle->Get_Buffer();
    if (buffer && child && child->Active)
        spawner->On_Parent_Particle_Death(*child, *buffer, position, velocity, overshoot);
}
