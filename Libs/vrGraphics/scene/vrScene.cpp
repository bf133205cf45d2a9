#include "vrGraphics/scene/vrScene.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrWorld.h"

#include <algorithm>
#include <cmath>

MK_DEFINE_RUN_TIME_TYPE(vrScene, vrRenderable)
MK_DEFINE_RUN_TIME_TYPE(vrNullScene, vrScene)

void (*vrScene::FrameCall)(float dt) = nullptr;

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

/// Few enough that neighbours stay with one thread, enough that all threads end at about the same time.
constexpr int RANGES_A_THREAD = 8;
constexpr int LEAST_GROUPS = 16; ///< think together: a group takes less than another thread's waking up

/// Sets a flag for as long as it lives, whatever ends it.
template <typename Bool>
struct FlagScope
{
    explicit FlagScope(Bool &flag) : Flag(flag) { Flag = true; }
    ~FlagScope() { Flag = false; }

    Bool &Flag;
};

} // namespace

vrScene::vrScene() : LightContext(new vrLightContext)
{
}

/// The driver keeps the lights of the last render.
vrScene::~vrScene()
{
    if (TheGraphicsDriver && TheGraphicsDriver->Get_Light_Context() == LightContext.Get())
        TheGraphicsDriver->Set_Light_Context(nullptr);
}

vrRenderable *vrScene::Clone(vrCloneType) const
{
    MK_ASSERT(false, "false && \"Cloning is not allowed on scene.\"");
    return nullptr;
}

void vrScene::Update(float dt)
{
    if (!MK_VERIFY(std::isfinite(dt), "std::isfinite(dt)")) return;
    if (SceneOwner) SceneOwner->Update(dt);
    if (FrameCall) FrameCall(dt);
    vrGraphicsStats::Updates.fetch_add(1, std::memory_order_relaxed);
    ++FrameCount;
    Time += dt;
    if (Time > TIME_WRAP) Time -= TIME_WRAP;
    FrameTime = dt;
    ElapsedTime += dt;
    if (vrGraphicsDriver::Is_Enabled(vrGraphicsDriver::STATE_THINK)) {
        const FlagScope inUpdate(InUpdate);
        Process_Think_List(dt);
    }
    for (const auto &renderable : ReleaseList) Remove_Renderable(renderable.Get());
    ReleaseList.clear();
    Update_Effects(dt);
}

/// By index: an effect may add others.
void vrScene::Update_Effects(float dt)
{
    for (size_t index = 0; index < Effects.size();) {
        const SmartPtr<vrSceneEffect> effect = Effects[index];
        effect->Update(dt);
        if (effect->Is_Finished())
            Effects.erase(Effects.begin() + static_cast<std::ptrdiff_t>(index));
        else
            ++index;
    }
}

void vrScene::Add_Effect(vrSceneEffect *effect)
{
    if (MK_VERIFY(effect != nullptr, "effect != NULL")) Effects.emplace_back(effect);
}

void vrScene::Set_Sun_Direction(const Vector3 &direction)
{
    if (vrDirectionalLight *sun = LightContext->Get_Sun_Light()) {
        sun->Set_Direction(direction);
    } else if (direction != Vector3(0.0f)) {
        const SmartPtr<vrDirectionalLight> fresh(new vrDirectionalLight);
        fresh->Set_Direction(direction);
        LightContext->Set_Sun_Light(fresh.Get());
    }
}

Vector3 vrScene::Get_Sun_Direction() const
{
    const vrDirectionalLight *sun = LightContext->Get_Sun_Light();
    return sun ? sun->Get_Direction() : Vector3(0.0f);
}

void vrScene::Add_Simple_Task(vrRenderContext &context, vrRenderable &renderable, vrRenderPhaseEnum phase,
                              const vrBounds &bounds, float sortBias)
{
    vrSimpleRenderTask &task = Tasks.Take();
    task.Set(renderable, bounds, sortBias);
    context.Add_Task(phase, &task);
}

bool vrScene::Has_To_Catch_Up()
{
    return !vrGraphicsDriver::Is_Enabled(vrGraphicsDriver::STATE_THINK);
}

void vrScene::Refresh_Light_Field()
{
    if (!LightField) LightField.emplace();
    LightField->Bounds = {};
    if (UseLightFieldSceneBounds) {
        LightField->Bounds = LightFieldSceneBounds;
    } else {
        LightContext->Get_Bounds(LightField->Bounds);
        const vrHeightRange heights = Terrain ? Terrain->Get_Height_Range() : vrHeightRange{};
        if (Terrain && std::isfinite(heights.Least) && std::isfinite(heights.Greatest)) {
            LightField->Bounds.Center.z = (heights.Least + heights.Greatest) * 0.5f;
            LightField->Bounds.Extent.z = (heights.Greatest - heights.Least) * 0.5f;
        }
    }
    LightContext->Get_Light_Field_Lights(LightField->Lights);
    std::sort(LightField->Lights.begin(), LightField->Lights.end(),
              [](const vrLightSource *left, const vrLightSource *right) {
                  return left->Get_Intensity() > right->Get_Intensity();
              });
    if (TheGraphicsDriver) TheGraphicsDriver->Update_Light_Field(*LightField, LightField->Lights, LightField->Bounds);
}

void vrScene::Process_Think_List(float dt)
{
    for (vrRenderable *renderable : ThinkList) renderable->Pre_Think(dt);
    Group_By_Owner();
    Think_Groups(dt);
    Think_Particles_Of_All(dt);
    for (vrRenderable *renderable : ThinkList) renderable->Post_Think(dt);
}

void vrScene::Group_By_Owner()
{
    ParticleList.clear();
    ThinkGroupCount = 0;
    for (vrRenderable *renderable : ThinkList) renderable->Get_Top_Owner().ThinkGroup = -1;
    for (vrRenderable *renderable : ThinkList) {
        vrRenderable &owner = renderable->Get_Top_Owner();
        if (owner.ThinkGroup < 0) {
            owner.ThinkGroup = ThinkGroupCount++;
            if (ThinkGroupCount > static_cast<int>(ThinkGroups.size())) ThinkGroups.emplace_back();
            RenderThinkGroup &fresh = ThinkGroups[static_cast<size_t>(owner.ThinkGroup)];
            fresh.Owner = nullptr;
            fresh.Count = 0;
        }
        RenderThinkGroup &group = ThinkGroups[static_cast<size_t>(owner.ThinkGroup)];
        if (renderable == &owner) {
            MK_ASSERT(group.Owner == nullptr, "group.Owner == NULL");
            group.Owner = renderable;
        } else if (group.Count < MAX_THINK_GROUP_SIZE) {
            group.Entries[group.Count++] = renderable;
        } else {
            if (!owner.HasToldOfParts)
                MK_LOG(VorenLog, MKDebug::LogLevel::Error, "Renderable=%s has too many sub-renderables",
                       owner.Get_Think_Name());
            owner.HasToldOfParts = true;
            continue;
        }
        if (renderable->Wants_Particle_Think()) ParticleList.push_back(renderable);
    }
}

void vrScene::Think_Groups(float dt)
{
    const FlagScope section(RenderThread::InParallelSection);
    ThreadPool::Parallel_For(0, ThinkGroupCount, LEAST_GROUPS, [&](int first, int last) {
        for (int index = first; index < last; ++index) {
            const RenderThinkGroup &group = ThinkGroups[static_cast<size_t>(index)];
            if (group.Owner) group.Owner->Think(dt);
            for (int entry = 0; entry < group.Count; ++entry) group.Entries[entry]->Think(dt);
        }
    });
}

void vrScene::Think_Particles_Of_All(float dt)
{
    const int count = static_cast<int>(ParticleList.size());
    const auto think = [&](int first, int last) {
        uint32_t simulated = 0;
        for (int index = first; index < last; ++index) {
            if (index + 1 < last) ParticleList[static_cast<size_t>(index + 1)]->Fetch_Particles();
            simulated += static_cast<uint32_t>(ParticleList[static_cast<size_t>(index)]->Think_Particles(dt));
        }
        // Not for each: it would wait until all that was written is in the cache.
        vrGraphicsStats::ParticlesSimulated.fetch_add(static_cast<int>(simulated), std::memory_order_relaxed);
    };
    const bool isSerial = std::any_of(ParticleList.begin(), ParticleList.end(),
                                      [](const vrRenderable *renderable) { return renderable->Needs_Serial_Frame(); });
    const FlagScope section(RenderThread::InParallelSection);
    if (isSerial)
        think(0, count);
    else
        ThreadPool::Parallel_For(0, count, std::max(count / (ThreadPool::Get_Thread_Count() * RANGES_A_THREAD), 1),
                                 think);
}

void vrScene::Remove_Object(vrRenderable &renderable, int)
{
    if (InUpdate)
        ReleaseList.emplace_back(&renderable);
    else
        Remove_Renderable(&renderable);
}

void vrScene::Enter(vrRenderable &renderable)
{
    renderable.Set_Scene(this);
    ThinkList.push_back(&renderable);
    ReleaseList.reserve(ThinkList.capacity()); // so that a removal within a frame doesn't allocate
    renderable.On_Added(*this);
}

void vrScene::Leave(vrRenderable &renderable)
{
    renderable.On_Removed(*this);
    std::erase(ThinkList, &renderable);
    renderable.Set_Scene(nullptr);
}
