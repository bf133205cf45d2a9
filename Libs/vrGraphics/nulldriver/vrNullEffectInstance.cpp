#include "vrGraphics/nulldriver/vrNullEffectInstance.h"

MK_DEFINE_RUN_TIME_TYPE(vrNullEffectInstance, vrShaderInstance)

bool vrNullEffectInstance::PureNullRun = true;

vrNullEffect::vrNullEffect(std::string_view name, vrEffectSource &&source) : Name(name), Source(std::move(source))
{
}

SmartPtr<vrNullEffect> vrNullEffect::Compile_Shader(std::string_view name, vrEffectSource &&source, std::string &)
{
    return SmartPtr<vrNullEffect>::Of_Fresh(new vrNullEffect(name, std::move(source)));
}

vrNullEffectInstance::vrNullEffectInstance(std::string_view name, vrEffectManager<vrNullEffect> &effects)
    : vrEffectInstance(name), IsPure(PureNullRun)
{
    if (IsPure) return;
    Effect = effects.Get_Effect(name);
    if (Effect) Take_Source(Effect->Get_Source(), effects.Is_Missing_Effect(Effect.Get()));
}

vrNullEffectInstance::vrNullEffectInstance(const vrNullEffectInstance &) = default;

int vrNullEffectInstance::Get_Parameter_Index(std::string_view name) const
{
    return IsPure ? 0 : vrShaderInstance::Get_Parameter_Index(name);
}
