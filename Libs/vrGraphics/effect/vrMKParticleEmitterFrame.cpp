#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "vrGraphics/drivercommon/vrBoundsUnion.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrScene.h"

#include <algorithm>

float vrMKParticleEmitter::DriverTintAlpha = 1.0f;

template <typename Call>
void vrMKParticleEmitter::For_Groups(Call &&call) const
{
    for (const auto &renderable : MKPRenderables)
        if (auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get())) call(*group);
}

void vrMKParticleEmitter::On_Added(vrScene &scene)
{
    LastPosition = Get_Transform().Get_Translation();
    LastWay = Vector3(0.0f);
    for (const auto &renderable : MKPRenderables) scene.Enter(*renderable);
}

void vrMKParticleEmitter::On_Removed(vrScene &scene)
{
    for (const auto &renderable : MKPRenderables) {
        renderable->Reset();
        scene.Leave(*renderable);
    }
    if (vrMKPContext::InEditor || SceneReassignHint) return;
    while (!MKPRenderables.empty()) {
        Release_Renderable(*MKPRenderables.back(), KeepRenderables);
        MKPRenderables.pop_back();
    }
}

void vrMKParticleEmitter::Set_Hidden(bool hidden)
{
    if (hidden == Is_Hidden()) return;
    vrParticleInterface::Set_Hidden(hidden);
    For_Groups([&](vrMKParticleGroup &group) {
        if (!group.Is_Hidden()) group.On_Emitter_Hidden(hidden);
    });
}

void vrMKParticleEmitter::Set_Alt_Index(int index)
{
    For_Groups([&](vrMKParticleGroup &group) { group.Set_Alt_Index(index); });
}

void vrMKParticleEmitter::Spawn_Code_Particles(int count)
{
    For_Groups([&](vrMKParticleGroup &group) { group.Spawn_Code_Particles(count); });
}

void vrMKParticleEmitter::Restart()
{
    LastPosition = Get_Transform().Get_Translation(); // it starts here; it didn't fly here
    LastWay = Vector3(0.0f);
    for (const auto &renderable : MKPRenderables) {
        renderable->Reset();
        if (Get_Scene()) renderable->Start();
    }
}

RGBAClass vrMKParticleEmitter::Get_Tint() const
{
    RGBAClass tint;
    if (EmitterFlags & EMITTER_DRIVER_TINTS_ALPHA) tint.A *= DriverTintAlpha;
    if (const vrScene *scene = Get_Scene()) {
        const RGBAClass &of = scene->Get_Tint();
        tint = {tint.R * of.R, tint.G * of.G, tint.B * of.B, tint.A * of.A};
    }
    return tint;
}

bool vrMKParticleEmitter::Is_Depleted() const
{
    bool isDepleted = true;
    For_Groups([&](const vrMKParticleGroup &group) { isDepleted &= group.Is_Ended() || group.Is_Depleted(); });
    return isDepleted;
}

int vrMKParticleEmitter::Get_Light_Source_Count() const
{
    int count = 0;
    For_Groups([&](const vrMKParticleGroup &group) { count += group.Light_Count(); });
    return count;
}

const vrParticleLight &vrMKParticleEmitter::Get_Light_Source(int index) const
{
    static const vrParticleLight OFF;
    const vrParticleLight *found = &OFF;
    For_Groups([&](const vrMKParticleGroup &group) {
        if (index >= 0 && index < group.Light_Count()) found = &group.Get_Light_State(index);
        index -= group.Light_Count();
    });
    return *found;
}

int vrMKParticleEmitter::Find_Light_Source(const char *name) const
{
    int found = -1;
    int first = 0;
    For_Groups([&](const vrMKParticleGroup &group) {
        for (int index = 0; index < group.Light_Count() && found < 0; ++index)
            if (MK::Equal_Ignoring_Case(group.Get_Light(index)->Get_Light_Name(), name)) found = first + index;
        first += group.Light_Count();
    });
    return found;
}

void vrMKParticleEmitter::Keep_Updating()
{
    Set_Flag(EMITTER_ALWAYS_SIMULATES, true);
    Hold_Removal_Off(true);
}

bool vrMKParticleEmitter::Get_Cull_Box(vrBounds &box) const
{
    bool hasBox = true;
    vrBoundsUnion all{Get_Transform().Get_Translation(), Get_Transform().Get_Translation()};
    For_Groups([&](const vrMKParticleGroup &group) {
        vrBounds part;
        hasBox &= group.Get_Cull_Box(part);
        all.Add(part);
    });
    box = all.Get();
    return hasBox;
}

void vrMKParticleEmitter::Collect(vrRenderContext &context)
{
    for (const auto &renderable : MKPRenderables) renderable->Collect(context);
}

/// First of its own: its renderables think after it.
void vrMKParticleEmitter::Think(float)
{
    const Vector3 position = Get_Transform().Get_Translation();
    LastWay = position - LastPosition;
    LastPosition = position;
}

void vrMKParticleEmitter::Post_Think(float)
{
    Update_Depletion();
}

void vrMKParticleEmitter::Update_Depletion()
{
    if (!Get_Scene()) return;
    const bool mayRemove = RemoveOnDepleted && !(EmitterFlags & EMITTER_HOLDS_REMOVAL_OFF);
    if ((mayRemove && !Has_Work()) || Has_Finished()) Get_Scene()->Remove_Object(*this, 0);
}

bool vrMKParticleEmitter::Has_Work() const
{
    constexpr uint8_t PLAYING = vrMKPRenderable::STATE_STARTED | vrMKPRenderable::STATE_IN_SCENE;
    bool hasWork = false;
    For_Groups([&](const vrMKParticleGroup &group) {
        hasWork |= !group.Is_Ended() && !group.Is_Depleted() && (group.Get_Renderable_State() & PLAYING) == PLAYING;
    });
    return hasWork;
}

/// What is simulated whether or not anyone sees it leaves when all of it has ended, whatever else holds.
bool vrMKParticleEmitter::Has_Finished() const
{
    return !MKPRenderables.empty() &&
           std::all_of(MKPRenderables.begin(), MKPRenderables.end(), [](const auto &renderable) {
               const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get());
               return renderable->Get_Always_Simulate() && (renderable->Is_Ended() || (group && group->Is_Depleted()));
           });
}
