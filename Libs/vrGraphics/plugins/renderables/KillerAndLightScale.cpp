#include "vrGraphics/plugins/renderables/KillerAndLightScale.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"

namespace
{

/// What an instance drew of its lifetime's variation.
class KillerDataClass final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override { IsDrawn = false; }

    float Variation = 0.0f; ///< -1 to 1
    bool IsDrawn = false;
};
MK_DEFINE_RUN_TIME_TYPE(KillerDataClass, vrMKPBufferPluginData)

} // namespace

vrMKPRenderableKillerModifier::vrMKPRenderableKillerModifier()
    : Lifetime(Parameters.Add_Float(100, "Lifetime", 0.0f, 0.0f, 300.0f,
                                    "Time in seconds after its start at which the renderable is removed (0 = Never).")),
      LifetimeVariation(Parameters.Add_Float(101, "Lifetime Variation", 0.0f, 0.0f, 100.0f,
                                             "Variation of the lifetime, in per cent of it.")),
      FadeOutTime(Parameters.Add_Float(102, "Fade Out Time", 0.0f, 0.0f, 60.0f,
                                       "Time in seconds over which the renderable fades out before it is removed.")),
      KillWithProjectile(Parameters.Add_Bool(103, "Kill With Projectile", false,
                                             "Remove the renderable as the projectile hits its target."))
{
}

vrMKPBufferPluginData *vrMKPRenderableKillerModifier::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new KillerDataClass;
}

float vrMKPRenderableKillerModifier::Get_Instance_Lifetime(const vrMKPRenderableModifierContext &context) const
{
    const float width = Lifetime->Get_Value() * LifetimeVariation->Get_Value() * 0.01f;
    auto *const data = MK_Dynamic_Cast<KillerDataClass>(context.Data);
    if (!data || width == 0.0f) return Lifetime->Get_Value();
    if (!data->IsDrawn) {
        data->IsDrawn = true;
        data->Variation = context.Random.Get_Float(-1.0f, 1.0f);
    }
    return Lifetime->Get_Value() + width * data->Variation;
}

void vrMKPRenderableKillerModifier::Update(vrMKPRenderableOutcome &outcome,
                                           const vrMKPRenderableModifierContext &context) const
{
    if (KillWithProjectile->Get_Value() && context.ProjectileHit) outcome.Killed = true;
    if (!(Lifetime->Get_Value() > 0.0f)) return;
    const float left = Get_Instance_Lifetime(context) - context.RunningTime;
    if (left <= 0.0f) outcome.Killed = true;
    const float fadeTime = FadeOutTime->Get_Value();
    if (fadeTime > 0.0f && left < fadeTime) outcome.Fade *= Particle::Clamp_01(left / fadeTime);
}

vrMKPKeyedLightScaleRenderableModifier::vrMKPKeyedLightScaleRenderableModifier()
    : Timing(Add_Keyframe_Timing(Parameters, 100)),
      ScaleR(Add_Constant_Curve(Parameters, 102, "Light Scale R", 1.0f, "Factor for the red part of the light.")),
      ScaleG(Add_Constant_Curve(Parameters, 103, "Light Scale G", 1.0f, "Factor for the green part of the light.")),
      ScaleB(Add_Constant_Curve(Parameters, 104, "Light Scale B", 1.0f, "Factor for the blue part of the light."))
{
}

void vrMKPKeyedLightScaleRenderableModifier::Update(vrMKPRenderableOutcome &outcome,
                                                    const vrMKPRenderableModifierContext &context) const
{
    const float keyTime = Timing.Get_Key_Time(context.RunningTime);
    outcome.LightScale *=
        Vector3(Evaluate_Curve(*ScaleR, keyTime), Evaluate_Curve(*ScaleG, keyTime), Evaluate_Curve(*ScaleB, keyTime));
}
