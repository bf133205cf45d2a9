#include "vrGraphics/effect/vrMKPRenderable.h"

#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <atomic>
#include <cmath>

MK_DEFINE_RUN_TIME_TYPE(vrMKPRenderable, vrRenderable)

bool vrMKPContext::InEditor = false;
bool vrMKPRenderable::RemoveWithEmitter = false;

namespace
{

std::atomic<int32_t> nextSeed{1}; // what an instance takes that isn't given a seed

} // namespace

vrMKPRenderable::vrMKPRenderable() : DynamicSettings(vrMKPDynamicSettings::Get_Shared_Default())
{
}

vrMKPRenderable::vrMKPRenderable(const vrMKPRenderable &other)
    : vrRenderable(other), Name(other.Name), ParentName(other.ParentName), TranslateOffset(other.TranslateOffset),
      RotateOffset(other.RotateOffset), ScaleOffset(other.ScaleOffset), SortBias(other.SortBias),
      StartDelay(other.StartDelay), StartDelayVariation(other.StartDelayVariation),
      BaseRandomSeed(other.BaseRandomSeed), Physics(PluginSlots::Copy(other.Physics, vrMKPContext::InEditor)),
      DynamicSettings(vrMKPDynamicSettings::Get_Shared_Default()), RenderableState(other.RenderableState),
      AlwaysSimulate(other.AlwaysSimulate), VelocityAligned(other.VelocityAligned), Marker(other.Marker),
      ScaleEnabled(other.ScaleEnabled)
{
    Set_Renderable_State(STATE_STARTED | STATE_IN_SCENE, false);
    Modifiers.reserve(other.Modifiers.size());
    for (const auto &modifier : other.Modifiers)
        Modifiers.push_back(PluginSlots::Copy(modifier, vrMKPContext::InEditor));
    Seed_Instance();
}

vrMKPRenderable::~vrMKPRenderable() = default;

void vrMKPRenderable::Set_In_Editor(bool inEditor)
{
    vrMKPContext::InEditor = inEditor;
}

void vrMKPRenderable::Complete_Definition()
{
    if (!Physics) Finish_Load();
}

void vrMKPRenderable::Finish_Load()
{
    Seed_Instance();
    if (!Physics) Physics = PluginSlots::Make<vrMKPRenderablePhysics>(kvrMKPRenderableNullPhysicsModifier);
    Reset();
    Set_Always_Simulate(AlwaysSimulate);
    if (Is_In_Scene()) Start();
}

void vrMKPRenderable::Seed_Instance()
{
    RandomSeed = BaseRandomSeed != 0 ? BaseRandomSeed : nextSeed.fetch_add(1, std::memory_order_relaxed);
    Random.Seed(static_cast<uint32_t>(RandomSeed));
    const float width = std::abs(StartDelay * StartDelayVariation * 0.01f);
    ActualStartDelay = StartDelay;
    if (std::isfinite(width)) ActualStartDelay += Random.Get_Float(-width, width, true, true);
}

void vrMKPRenderable::Reset()
{
    Set_Renderable_State(STATE_STARTED, false);
    Outcome = {};
}

void vrMKPRenderable::Set_Always_Simulate(bool always)
{
    AlwaysSimulate = always;
    Set_Update_Mode(always ? UPDATE_ALWAYS : UPDATE_WHEN_VISIBLE);
}

float vrMKPRenderable::Get_File_Sort_Bias() const
{
    return std::copysign(std::sqrt(std::abs(SortBias)), SortBias);
}

void vrMKPRenderable::Set_File_Sort_Bias(float value)
{
    SortBias = std::copysign(value * value, value);
}

vrMKPRenderableModifier *vrMKPRenderable::Get_Modifier(int index) const
{
    if (index < 0 || index >= Get_Modifier_Count()) return nullptr;
    return Modifiers[static_cast<size_t>(index)].Get();
}

void vrMKPRenderable::Add_Modifier(vrMKPRenderableModifier *modifier)
{
    if (!MK_VERIFY(modifier != nullptr, "modifier == NULL")) return;
    Modifiers.emplace_back(modifier);
    if (Is_Started()) ModifierData.emplace_back(modifier->Create_Buffer_Data(State));
}

void vrMKPRenderable::Set_Physics(vrMKPRenderablePhysics *physics)
{
    Physics = physics;
    PhysicsData = Physics && Is_Started() ? Physics->Create_Buffer_Data(State) : nullptr;
}

bool vrMKPRenderable::Remove_Modifier(int index)
{
    if (!Get_Modifier(index)) return false;
    Modifiers.erase(Modifiers.begin() + index);
    if (index < static_cast<int>(ModifierData.size())) ModifierData.erase(ModifierData.begin() + index);
    return true;
}

void vrMKPRenderable::Set_Emitter(vrMKParticleEmitter *emitter)
{
    MK_ASSERT(!Is_In_Scene() || !emitter, "(!RenderableState.Flags.InScene) || !emitter");
    Emitter = emitter;
    State.Emitter = emitter;
    Set_Parent_Name(emitter ? emitter->Get_Name_Ref() : NameTableRef());
}

void vrMKPRenderable::Set_Pool(vrMKPRenderablePool *pool)
{
    Pool = pool;
}

void vrMKPRenderable::Set_Renderable_State(uint8_t bits, bool on)
{
    RenderableState = static_cast<uint8_t>(on ? RenderableState | bits : RenderableState & ~bits);
}

void vrMKPRenderable::Copy_Placement_From(const vrMKPRenderable &other)
{
    Set_Always_Simulate(other.AlwaysSimulate);
    VelocityAligned = other.VelocityAligned;
    SortBias = other.SortBias;
    TranslateOffset = other.TranslateOffset;
    RotateOffset = other.RotateOffset;
    ScaleOffset = other.ScaleOffset;
    StartDelay = other.StartDelay;
    StartDelayVariation = other.StartDelayVariation;
    BaseRandomSeed = other.BaseRandomSeed;
}

size_t vrMKPRenderable::Get_Memory_Usage(bool includePlugins) const
{
    size_t bytes = Get_Object_Size() + sizeof(RandomClass) + Modifiers.capacity() * sizeof(Modifiers[0]);
    if (!includePlugins) return bytes;
    bytes += PluginSlots::Get_Memory_Usage(Physics.Get());
    for (const auto &modifier : Modifiers) bytes += PluginSlots::Get_Memory_Usage(modifier.Get());
    return bytes;
}

bool vrMKPRenderable::Is_Same_Definition(const vrMKPRenderable &other) const
{
    return Get_Run_Time_Type() == other.Get_Run_Time_Type() && Name == other.Name &&
           TranslateOffset == other.TranslateOffset && RotateOffset == other.RotateOffset &&
           ScaleOffset == other.ScaleOffset && SortBias == other.SortBias && StartDelay == other.StartDelay &&
           StartDelayVariation == other.StartDelayVariation && BaseRandomSeed == other.BaseRandomSeed &&
           AlwaysSimulate == other.AlwaysSimulate && VelocityAligned == other.VelocityAligned &&
           ((RenderableState ^ other.RenderableState) & ~(STATE_STARTED | STATE_IN_SCENE)) == 0 &&
           Marker == other.Marker && Physics == other.Physics && Modifiers == other.Modifiers;
}
