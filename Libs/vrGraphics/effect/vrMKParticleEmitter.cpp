#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"
#include "vrGraphics/scene/vrScene.h"

MK_DEFINE_RUN_TIME_TYPE(vrMKParticleEmitter, vrParticleInterface)

namespace
{

MKDebug::Logger VorenLog("VorenLog");

constexpr int MANY_INSTANCES = 5000;

} // namespace

class vrMKParticleEmitter::InstanceCounterClass final : public RefCountClass
{
};

vrMKParticleEmitter::vrMKParticleEmitter() : Pool(new vrMKPRenderablePool), InstanceCounter(new InstanceCounterClass)
{
}

vrMKParticleEmitter::vrMKParticleEmitter(const vrMKParticleEmitter &other, vrCloneType type)
    : vrParticleInterface(other), Name(other.Name), Pool(other.Pool), InstanceCounter(other.InstanceCounter),
      ScaleEnabled(other.ScaleEnabled), IsInstanceClone(other.IsInstanceClone), EmitterFlags(other.EmitterFlags),
      ScaleAndOffset(other.ScaleAndOffset)
{
    if (MK_VERIFY(static_cast<bool>(InstanceCounter), "InstanceCounter != NULL") &&
        Get_Instance_Count() > MANY_INSTANCES) {
        MK_LOG(VorenLog, MKDebug::LogLevel::Warning,
               "WARNING: Extremely large number of instances of particle emitter: %s created (%d)", Get_Name().c_str(),
               Get_Instance_Count());
    }
    if (type == VR_CLONE_INSTANCE) {
        IsInstanceClone = true;
        Take_Projectile_From(other);
    } else {
        Copy_Renderables_From(&other);
    }
}

vrMKParticleEmitter::~vrMKParticleEmitter()
{
    for (const auto &renderable : MKPRenderables)
        if (renderable->Get_Emitter() == this) Release_Renderable(*renderable, KeepRenderables);
}

vrMKParticleEmitter *vrMKParticleEmitter::Clone(vrCloneType type) const
{
    return new vrMKParticleEmitter(*this, type);
}

/// An instance clone has no renderables, and flies by what moves those of its source.
void vrMKParticleEmitter::Take_Projectile_From(const vrMKParticleEmitter &other)
{
    const auto clonePhysics = [](const vrMKPRenderablePhysics &physics) {
        return SmartPtr<vrMKPRenderablePhysics>(static_cast<vrMKPRenderablePhysics *>(physics.Clone()));
    };
    if (other.SharedPhysics) {
        SharedPhysics = clonePhysics(*other.SharedPhysics);
        return;
    }
    if (other.SharedProjectile) {
        SharedProjectile = other.SharedProjectile;
        return;
    }
    for (const auto &renderable : other.MKPRenderables) {
        if (renderable->Get_Physics() && renderable->Get_Physics()->Is_Shared_Physics()) {
            SharedPhysics = clonePhysics(*renderable->Get_Physics());
            return;
        }
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get());
        if (!group || !group->Get_Projectile_Modifier()) continue;
        SharedProjectile = group->Get_Projectile_Modifier();
        return;
    }
}

void vrMKParticleEmitter::Set_Name(std::string_view name)
{
    Name = NameTableRef(name);
    for (const auto &renderable : MKPRenderables) renderable->Set_Parent_Name(Name);
}

SmartPtr<vrMKPRenderable> vrMKParticleEmitter::Get_Particle_Renderable(int index) const
{
    if (index < 0 || index >= Get_Particle_Renderable_Count()) return nullptr;
    return MKPRenderables[static_cast<size_t>(index)];
}

vrMKPRenderable *vrMKParticleEmitter::Peek_Particle_Renderable(int index) const
{
    if (index < 0 || index >= Get_Particle_Renderable_Count()) return nullptr;
    return MKPRenderables[static_cast<size_t>(index)].Get();
}

int vrMKParticleEmitter::Get_Renderable_Index(const vrMKPRenderable *renderable) const
{
    int index = Get_Particle_Renderable_Count() - 1;
    while (index >= 0 && MKPRenderables[static_cast<size_t>(index)] != renderable) --index;
    return index;
}

bool vrMKParticleEmitter::Add_Renderable(vrMKPRenderable *renderable)
{
    return Insert_Renderable(renderable, Get_Particle_Renderable_Count());
}

bool vrMKParticleEmitter::Insert_Renderable(vrMKPRenderable *renderable, int index)
{
    if (!MK_VERIFY(renderable != nullptr, "pg != NULL")) return false;
    if (renderable->Get_Emitter() || renderable->Get_Scene()) return false; // it plays elsewhere, or here
    if (index < 0 || index > Get_Particle_Renderable_Count()) index = Get_Particle_Renderable_Count();
    renderable->Reset();
    if (!vrMKPContext::InEditor) renderable->Set_Pool(Pool.Get());
    renderable->Set_Scale_Enabled(ScaleEnabled);
    renderable->Set_Emitter(this);
    MKPRenderables.emplace(MKPRenderables.begin() + index, renderable);
    if (Get_Scene()) Get_Scene()->Enter(*renderable);
    Set_Flag(EMITTER_ALWAYS_SIMULATES, renderable->Get_Always_Simulate());
    return true;
}

bool vrMKParticleEmitter::Remove_Renderable(const vrMKPRenderable *renderable)
{
    const int index = Get_Renderable_Index(renderable);
    if (index < 0) return false;
    if (Get_Scene()) Get_Scene()->Leave(*MKPRenderables[static_cast<size_t>(index)]);
    Release_Renderable(*MKPRenderables[static_cast<size_t>(index)], false);
    MKPRenderables.erase(MKPRenderables.begin() + index);
    return true;
}

/// A renderable that leaves goes to the pool, unless it plays in a scene, is to be kept or is one that is edited.
void vrMKParticleEmitter::Release_Renderable(vrMKPRenderable &renderable, bool isKept)
{
    if (!isKept && !vrMKPContext::InEditor && Pool && !renderable.Is_In_Scene())
        Pool->Give(&renderable);
    else
        renderable.Set_Emitter(nullptr);
}

bool vrMKParticleEmitter::Copy_Renderables_From(const vrMKParticleEmitter *other)
{
    if (!MK_VERIFY(other != nullptr, "other != NULL") ||
        !MK_VERIFY(MKPRenderables.empty(), "MKPRenderables.size() == 0"))
        return false;
    MKPRenderables.reserve(other->MKPRenderables.size());
    for (const auto &source : other->MKPRenderables) {
        SmartPtr<vrMKPRenderable> copy;
        if (!vrMKPContext::InEditor && Pool) copy = Pool->Take(*source);
        if (copy)
            copy->Begin_Instance(*source);
        else
            copy = source->Clone(VR_CLONE_COPY);
        Add_Renderable(copy.Get());
    }
    return true;
}

void vrMKParticleEmitter::Set_Flag(EmitterFlagsStruct flag, bool on)
{
    EmitterFlags = static_cast<uint8_t>(on ? EmitterFlags | flag : EmitterFlags & ~flag);
}

int vrMKParticleEmitter::Get_Instance_Count() const
{
    return InstanceCounter ? InstanceCounter->Get_Ref_Count() : 0;
}

size_t vrMKParticleEmitter::Get_Memory_Usage(bool includePlugins) const
{
    size_t bytes = sizeof(*this) + MKPRenderables.capacity() * sizeof(MKPRenderables[0]);
    for (const auto &renderable : MKPRenderables) bytes += renderable->Get_Memory_Usage(includePlugins);
    return bytes;
}
