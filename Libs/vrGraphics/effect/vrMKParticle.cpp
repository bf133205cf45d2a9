#include "vrGraphics/effect/vrMKParticle.h"

#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

#include <algorithm>
#include <utility>

vrMKParticle::vrMKParticle() = default;

vrMKParticle::~vrMKParticle() = default;

vrMKParticle *vrMKParticle::Clone() const
{
    const bool isDeep = vrMKPContext::InEditor;
    auto *clone = new vrMKParticle;
    clone->Name = Name;
    clone->Spawner = PluginSlots::Copy(Spawner, isDeep);
    clone->Transformer = PluginSlots::Copy(Transformer, isDeep);
    clone->Stomper = PluginSlots::Copy(Stomper, isDeep);
    clone->Visualizer = PluginSlots::Copy(Visualizer, isDeep);
    clone->Modifiers.reserve(Modifiers.size());
    for (const auto &modifier : Modifiers) clone->Add_Modifier(PluginSlots::Copy(modifier, isDeep).Get());
    if (isDeep) clone->Post_Load(true, Visualizer.Get());
    clone->HiddenBySpawner = HiddenBySpawner;
    clone->HiddenByGroup = HiddenByGroup;
    clone->Group = Group; // nothing more: the group may be playing, and the clone goes to another
    return clone;
}

void vrMKParticle::Post_Load(bool loadAssets, const vrMKPVisualizer *shared)
{
    if (Spawner) Spawner->Post_Load();
    if (Stomper) Stomper->Post_Load();
    if (!Visualizer) return;
    Visualizer->Post_Load();
    if (loadAssets) Visualizer->Load_Assets(false, shared);
}

void vrMKParticle::Reset_Definition()
{
    Group = nullptr;
    Buffer = nullptr;
    Spawner = nullptr;
    Transformer = nullptr;
    Stomper = nullptr;
    Visualizer = nullptr;
    Modifiers.clear();
    HasSlaveModifier = false;
    BulletModifier = nullptr;
    Bounds = {};
    PreSimulated = false;
    RefusedBuffer = false;
    HiddenBySpawner = false;
}

void vrMKParticle::Begin_Instance(const vrMKParticle &definition)
{
    Restart();
    Buffer = nullptr;
    HiddenBySpawner = definition.HiddenBySpawner;
    HiddenByGroup = definition.HiddenByGroup;
    HiddenByLOD = false;
}

void vrMKParticle::Restart()
{
    if (Buffer) {
        Buffer->Active = false;
        Buffer->Reset();
    }
    Bounds = {};
    PreSimulated = false;
    RefusedBuffer = false;
}

void vrMKParticle::Set_Group(vrMKParticleGroup *group)
{
    if (Buffer && group != Group) Buffer->Clear_Death_Listeners();
    Group = group;
    if (!Group) return;
    for (const auto &modifier : Modifiers) modifier->Modifier_Post_Load(Group->Get_State());
    if (Is_View_Dependent()) Group->Set_Group_State(vrMKParticleGroup::GROUP_STATE_NEEDS_CAMERA, true);
}

vrMKPModifier *vrMKParticle::Get_Modifier(int index) const
{
    if (index < 0 || index >= Get_Modifier_Count()) return nullptr;
    return Modifiers[static_cast<size_t>(index)].Get();
}

int vrMKParticle::Get_Modifier_Index(const vrMKPModifier *modifier) const
{
    for (int index = 0; index < Get_Modifier_Count(); ++index)
        if (Get_Modifier(index) == modifier) return index;
    return -1;
}

void vrMKParticle::Add_Modifier(vrMKPModifier *modifier)
{
    if (!MK_VERIFY(modifier != nullptr, "modifier == NULL")) return;
    Modifiers.emplace_back(modifier);
    if (Buffer && Buffer->State) Buffer->ModifierData.emplace_back(modifier->Create_Buffer_Data(*Buffer->State));
    if (Group) modifier->Modifier_Post_Load(Group->Get_State());
    if (!BulletModifier && modifier->Get_Plugin_Class() == kvrMKPBulletModifier)
        BulletModifier = static_cast<vrMKPBulletModifier *>(modifier);
    Find_Slave_Modifier();
}

bool vrMKParticle::Remove_Modifier(int index)
{
    if (!Get_Modifier(index)) return false;
    Modifiers.erase(Modifiers.begin() + index);
    if (Buffer && index < static_cast<int>(Buffer->ModifierData.size()))
        Buffer->ModifierData.erase(Buffer->ModifierData.begin() + index);
    Find_Bullet_Modifier();
    Find_Slave_Modifier();
    return true;
}

void vrMKParticle::Find_Slave_Modifier()
{
    HasSlaveModifier =
        std::any_of(Modifiers.begin(), Modifiers.end(), [](const auto &modifier) { return modifier->Copies_Slots(); });
}

bool vrMKParticle::Swap_Modifiers(int a, int b)
{
    if (!Get_Modifier(a) || !Get_Modifier(b)) return false;
    std::swap(Modifiers[static_cast<size_t>(a)], Modifiers[static_cast<size_t>(b)]);
    if (Buffer && static_cast<size_t>(std::max(a, b)) < Buffer->ModifierData.size())
        std::swap(Buffer->ModifierData[static_cast<size_t>(a)], Buffer->ModifierData[static_cast<size_t>(b)]);
    Find_Bullet_Modifier();
    return true;
}

void vrMKParticle::Find_Bullet_Modifier()
{
    BulletModifier = nullptr;
    for (const auto &modifier : Modifiers) {
        if (modifier->Get_Plugin_Class() != kvrMKPBulletModifier) continue;
        BulletModifier = static_cast<vrMKPBulletModifier *>(modifier.Get());
        return;
    }
}

void vrMKParticle::Push_LOD()
{
    if (!Buffer || !Spawner) return;
    Buffer->GlobalLOD = Spawner->Get_LOD();
    Buffer->MinDynamicLOD = Spawner->Get_Min_Dynamic_LOD();
    Buffer->DynamicLODNear = Spawner->Get_Dynamic_LOD_Near();
    Buffer->DynamicLODFar = Spawner->Get_Dynamic_LOD_Far();
}

size_t vrMKParticle::Get_Memory_Usage(bool includePlugins) const
{
    size_t bytes = sizeof(*this) + Modifiers.capacity() * sizeof(Modifiers[0]);
    if (Buffer) bytes += sizeof(*Buffer) + Buffer->Get_Memory_Usage();
    if (!includePlugins) return bytes;
    for (const vrMKPPlugin *plugin :
         {static_cast<vrMKPPlugin *>(Spawner.Get()), static_cast<vrMKPPlugin *>(Transformer.Get()),
          static_cast<vrMKPPlugin *>(Stomper.Get()), static_cast<vrMKPPlugin *>(Visualizer.Get())})
        bytes += PluginSlots::Get_Memory_Usage(plugin);
    for (const auto &modifier : Modifiers) bytes += PluginSlots::Get_Memory_Usage(modifier.Get());
    return bytes;
}

bool vrMKParticle::Is_Same_Definition(const vrMKParticle &other) const
{
    return Name == other.Name && Spawner == other.Spawner && Transformer == other.Transformer &&
           Stomper == other.Stomper && Visualizer == other.Visualizer && Modifiers == other.Modifiers;
}
