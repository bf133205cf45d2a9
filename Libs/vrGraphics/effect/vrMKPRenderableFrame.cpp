#include "vrGraphics/effect/vrMKPRenderable.h"

#include "vrGraphics/effect/vrMKPGameState.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/scene/vrScene.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <strings.h>

namespace
{

constexpr float DEGREE = 0.017453292f; ///< in radians
constexpr float LEAST_SCALE = 0.01f;   ///< what stands for a scale that isn't above 0
constexpr float SCALE_TOLERANCE = 0.005f;

/// Large scales make particles grow more slowly than distances.
float Render_Size_Of(float scale)
{
    return scale > 1.0f ? (scale - 1.0f) * 0.75f + 1.0f : scale;
}

/// The renderables of an emitter that stand ahead of one.
class RenderablesAhead final : public vrMKPRenderableFinder
{
public:
    RenderablesAhead(const vrMKParticleEmitter *emitter, const vrMKPRenderable &asking)
        : Emitter(emitter), Asking(asking)
    {
    }

    bool Find_Motion(std::string_view name, Mat3DClass &transform) const override
    {
        const int count = Emitter ? Emitter->Get_Particle_Renderable_Count() : 0;
        for (int index = 0; index < count; ++index) {
            const vrMKPRenderable *candidate = Emitter->Peek_Particle_Renderable(index);
            if (candidate == &Asking) return false;
            const MK::String &candidateName = candidate->Get_Name();
            if (candidateName.size() != name.size() ||
                strncasecmp(candidateName.c_str(), name.data(), name.size()) != 0)
                continue;
            transform = candidate->Get_Motion();
            return true;
        }
        return false;
    }

private:
    const vrMKParticleEmitter *Emitter;
    const vrMKPRenderable &Asking;
};

} // namespace

vrRenderable &vrMKPRenderable::Get_Top_Owner()
{
    if (Emitter) return *Emitter;
    return *this;
}

void vrMKPRenderable::On_Added(vrScene &)
{
    Set_Renderable_State(STATE_IN_SCENE, true);
    Start();
}

void vrMKPRenderable::On_Removed(vrScene &)
{
    Set_Renderable_State(STATE_IN_SCENE, false);
    State.InScene = false;
    State.Terrain = nullptr;
}

void vrMKPRenderable::Start()
{
    Set_Renderable_State(STATE_STARTED, true);
    State.RunningTime = 0.0f;
    State.StartTimeOffset = ActualStartDelay;
    State.Seed = RandomSeed;
    Random.Seed(static_cast<uint32_t>(RandomSeed));
    State.QualitySnapshot = vrMKPSpawner::Get_Global_LOD();
    State.HardwareCycles = 0;
    Outcome = {};
    HasPlace = false;
    Heading = Vector3(1.0f, 0.0f, 0.0f);
    Take_World_Facts();
    State.ProjectileTargetStart = State.TargetPosition;
    Motion = Get_Base_Transform();
    Make_Plugin_Data();
}

void vrMKPRenderable::Begin_Instance(const vrMKPRenderable &definition)
{
    Seed_Instance();
    vrRenderable::Set_Hidden(false);
    Set_Transform(definition.Get_Transform());
    DynamicSettings = vrMKPDynamicSettings::Get_Shared_Default();
    WasGivenHomingTarget = false;
}

void vrMKPRenderable::Make_Plugin_Data()
{
    PhysicsData = Physics ? Physics->Create_Buffer_Data(State) : nullptr;
    ModifierData.clear();
    for (const auto &modifier : Modifiers) ModifierData.emplace_back(modifier->Create_Buffer_Data(State));
}

void vrMKPRenderable::Take_World_Facts()
{
    if (const vrScene *scene = Get_Scene()) {
        State.Camera = scene->Get_Camera();
        State.Terrain = scene->Get_Terrain();
        State.Wind = scene->Get_Wind();
        State.SunDirection = scene->Get_Sun_Direction();
        State.HasSun = State.SunDirection != Vector3(0.0f);
    }
    State.InScene = Is_In_Scene();
    State.Hidden = Is_Hidden() || (Emitter && Emitter->Is_Hidden());
    if (!Emitter) return;
    const vrMKPGameState &game = Emitter->Get_Game_State();
    State.TargetPosition = game.TargetPosition;
    State.ProjectileTarget = game.ProjectileTarget;
    State.HomingTarget = game.HomingTarget;
    State.ProjectileSpeed = game.ProjectileSpeed;
    State.TargetCircleRadius = game.TargetCircleRadius;
    State.Dynamic = game.Dynamic;
    State.Energy = game.Energy;
    State.GlobalDensity = game.GlobalDensity;
    State.Carrier = game.Carrier;
    DynamicSettings->Write_To(State);
}

/// The emitter's place and the renderable's own offsets from it.
Mat3DClass vrMKPRenderable::Get_Base_Transform()
{
    Mat3DClass base = Emitter ? Emitter->Get_Transform() : Get_Transform();
    if (VelocityAligned && Emitter) {
        const Vector3 way = Emitter->Get_Last_Way();
        if (way != Vector3(0.0f)) Heading = Particle::Unit(way);
        // The heading takes the place of the x axis, and what looks along z is turned there.
        const float scale = base.Get_Uniform_Scale();
        const Vector3 position = base.Get_Translation();
        base = (Mat3DClass::Look_Along(Heading) * Mat3DClass::From_Angles({0.0f, -90.0f * DEGREE, 0.0f})).Scaled(scale);
        base.Set_Translation(position);
    }
    if (RotateOffset == Vector3(0.0f) && TranslateOffset == Vector3(0.0f) && ScaleOffset == 1.0f) return base;
    Mat3DClass offset = Mat3DClass::From_Angles(RotateOffset * DEGREE).Scaled(ScaleOffset);
    offset.Set_Translation(TranslateOffset);
    return base * offset;
}

void vrMKPRenderable::Think(float dt)
{
    if (!Is_Started() || Is_Ended()) return;
    State.FrameTime = dt;
    State.RunningTime += dt;
    State.ParticleCount = 0;
    State.LightingParticleCount = 0;
    if (DynamicSettings != vrMKPDynamicSettings::Get_Shared_Default()) DynamicSettings->Update(dt);
    Take_World_Facts();
    Move();
    auto context = Make_Context<vrMKPRenderableModifierContext>(nullptr);
    context.ProjectileHit = Physics && Physics->Has_Hit(PhysicsData.Get());
    Outcome = {};
    Update_Modifiers(context);
    State.ColorMultiplier = Emitter ? Emitter->Get_Tint() : RGBAClass();
    State.TintAlpha = Outcome.Fade;
    State.LightScale = Outcome.LightScale;
}

void vrMKPRenderable::Set_Dynamic_Setting(int setting, const Vector4 &value, float fadeTime)
{
    const bool isSetting = setting >= 0 && setting < EMITTER_DS_COUNT;
    if (isSetting && Is_In_Scene() && !Is_Started()) Start();
    if (vrMKPDynamicSettings::Set(DynamicSettings, setting, value, fadeTime) &&
        setting == vrMKPDynamicSettings::HOMING_TARGET)
        WasGivenHomingTarget = true;
}

void vrMKPRenderable::Move()
{
    const RenderablesAhead ahead(Emitter, *this);
    auto context = Make_Context<vrMKPMotionContext>(PhysicsData.Get());
    context.Base = Get_Base_Transform();
    context.Ahead = &ahead;
    const Mat3DClass motion = Physics ? Physics->Get_Motion(context) : context.Base;
    const bool isValid = Is_Valid(motion);
    MK_ASSERT(isValid, "tm_motion.Row[0].Is_Valid() && tm_motion.Row[1].Is_Valid() && tm_motion.Row[2].Is_Valid()");
    if (HasPlace && motion == Motion) return Stay();
    if (isValid)
        Motion = motion;
    else if (Is_Valid(context.Base))
        Motion = context.Base;

    float scale = Motion.Get_Uniform_Scale();
    if (!(scale > 0.0f) || !std::isfinite(scale)) scale = LEAST_SCALE;
    Take_Scale(scale, Motion.Get_Translation());
    const Mat3DClass unscaled = Motion.Scaled(1.0f / scale);
    if (HasPlace)
        State.Move_To(unscaled);
    else
        State.Place_At(unscaled);
    State.IsInstantMove = !HasPlace;
    HasPlace = true;
    if (Emitter) Set_Transform(Motion); // without one the transform is what the motion starts from
}

/// What hasn't moved needs nothing but to know it.
void vrMKPRenderable::Stay()
{
    State.PreviousTransform = State.Transform;
    State.IsInstantMove = false;
}

void vrMKPRenderable::Take_Scale(float scale, const Vector3 &position)
{
    State.RenderSizeMultiplier = Render_Size_Of(scale);
    const bool isScaled = ScaleEnabled && std::abs(1.0f - scale) > SCALE_TOLERANCE;
    State.PositionScale = isScaled ? scale : 1.0f;
    State.VelocityScale = isScaled ? scale : 1.0f;
    State.PositionOffset = isScaled ? position - position * scale : Vector3(0.0f);
}

void vrMKPRenderable::Update_Modifiers(vrMKPRenderableModifierContext context)
{
    for (size_t index = 0; index < Modifiers.size(); ++index) {
        context.Data = index < ModifierData.size() ? ModifierData[index].Get() : nullptr;
        Modifiers[index]->Update(Outcome, context);
    }
}
