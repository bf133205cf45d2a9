#include "vrGraphics/effect/vrMKParticleGroup.h"

#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

MK_DEFINE_RUN_TIME_TYPE(vrMKParticleGroup, vrMKPRenderable)

bool vrMKParticleGroup::ForceAdditionalAssetLoading = true;

vrMKParticleGroup::vrMKParticleGroup()
{
    Get_State().Layers = this;
}

vrMKParticleGroup::vrMKParticleGroup(const vrMKParticleGroup &other)
    : vrMKPRenderable(other), AltIndex(other.AltIndex), ParticleGroupStates(other.ParticleGroupStates)
{
    Get_State().Layers = this;
    Particles.reserve(other.Particles.size());
    for (const auto &particle : other.Particles) Add_Particle(SmartPtr<vrMKParticle>(particle->Clone()).Get());
    Lights.reserve(other.Lights.size());
    for (const auto &light : other.Lights) Lights.push_back(PluginSlots::Copy(light, vrMKPContext::InEditor));
}

/// Layers may be held by others for longer than the group lives.
vrMKParticleGroup::~vrMKParticleGroup()
{
    for (const auto &particle : Particles)
        if (particle->Get_Group() == this) particle->Set_Group(nullptr);
}

vrMKParticleGroup *vrMKParticleGroup::Clone(vrCloneType) const
{
    return new vrMKParticleGroup(*this);
}

void vrMKParticleGroup::Reset()
{
    vrMKPRenderable::Reset();
    for (const auto &particle : Particles) particle->Restart();
}

vrMKParticle *vrMKParticleGroup::Get_Particle(int index) const
{
    if (index < 0 || index >= Particle_Count()) return nullptr;
    return Particles[static_cast<size_t>(index)].Get();
}

void vrMKParticleGroup::Add_Particle(vrMKParticle *particle)
{
    if (!MK_VERIFY(particle != nullptr, "particle == NULL")) return;
    Particles.emplace_back(particle);
    particle->Set_Group(this);
}

vrMKPLightSourceController *vrMKParticleGroup::Get_Light(int index) const
{
    if (index < 0 || index >= Light_Count()) return nullptr;
    return Lights[static_cast<size_t>(index)].Get();
}

void vrMKParticleGroup::Add_Light(vrMKPLightSourceController *light)
{
    if (MK_VERIFY(light != nullptr, "light == NULL")) Lights.emplace_back(light);
}

vrMKPBulletModifier *vrMKParticleGroup::Get_Projectile_Modifier() const
{
    for (const auto &particle : Particles)
        if (particle->Get_Bullet_Modifier()) return particle->Get_Bullet_Modifier();
    return nullptr;
}

void vrMKParticleGroup::Set_Group_State(uint8_t bits, bool on)
{
    ParticleGroupStates = static_cast<uint8_t>(on ? ParticleGroupStates | bits : ParticleGroupStates & ~bits);
}

size_t vrMKParticleGroup::Get_Memory_Usage(bool includePlugins) const
{
    size_t bytes = vrMKPRenderable::Get_Memory_Usage(includePlugins) + Particles.capacity() * sizeof(Particles[0]) +
                   Lights.capacity() * sizeof(Lights[0]);
    for (const auto &particle : Particles) bytes += particle->Get_Memory_Usage(includePlugins);
    if (!includePlugins) return bytes;
    for (const auto &light : Lights) bytes += PluginSlots::Get_Memory_Usage(light.Get());
    return bytes;
}

bool vrMKParticleGroup::Is_Same_Definition(const vrMKPRenderable &other) const
{
    if (!vrMKPRenderable::Is_Same_Definition(other)) return false;
    const auto &group = static_cast<const vrMKParticleGroup &>(other);
    if (Lights != group.Lights || Particles.size() != group.Particles.size()) return false;
    for (size_t index = 0; index < Particles.size(); ++index)
        if (!Particles[index]->Is_Same_Definition(*group.Particles[index])) return false;
    return true;
}
