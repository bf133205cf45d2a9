#include "vrGraphics/postfx/vrPostFx.h"

#include "MKLib/MKDebug/Logger.h"

namespace
{

MKDebug::Logger VorenLog("VorenLog");

/// What the effects of one type need.
struct TypeRule
{
    uint32_t PermissionBit; ///< 0: none
    uint32_t ContextBit;
    bool NeedsLightPrePass;
};

constexpr TypeRule TYPE_RULES[] = {
    {VR_POSTFX_BLOOM, VR_POSTFX_BLOOM, false},
    {0, VR_POSTFX_HEAT_DISTORTION, false},
    {VR_POSTFX_DEPTH_OF_FIELD, VR_POSTFX_DEPTH_OF_FIELD, true},
    {VR_POSTFX_HDR, VR_POSTFX_HDR, false},
    {VR_POSTFX_GAME, VR_POSTFX_GAME, false},
    {VR_POSTFX_GAME, VR_POSTFX_GAME, true},
};

} // namespace

void vrPostFxValue::Set_On(vrShaderInstance &shader, int index) const
{
    if (index < 0) return;
    if (Kind == SHADER_PARAMS_FLOAT) shader.Set_Float(index, Numbers[0]);
    if (Kind == SHADER_PARAMS_VECTOR2) shader.Set_Vector2(index, Numbers.data());
    if (Kind == SHADER_PARAMS_VECTOR3) shader.Set_Vector3(index, Numbers.data());
    if (Kind == SHADER_PARAMS_TEXTURE) shader.Set_Texture(index, Texture.Get());
}

void vrPostFxStep::Set_Params() const
{
    for (const Binding &binding : Params)
        if (binding.Value && Shader) binding.Value->Set_On(*Shader, binding.ShaderIndex);
}

bool vrPostFx::Should_Run(const vrPostFxConditions &conditions) const
{
    if (!Enabled) return false;
    if (Type != VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION && Priority > conditions.Quality) return false;
    const TypeRule &rule = TYPE_RULES[Type];
    if (rule.NeedsLightPrePass && conditions.Renderer != VR_RENDERER_LIGHT_PRE_PASS) return false;
    const bool isPermitted = (conditions.Permissions & rule.PermissionBit) == rule.PermissionBit;
    return isPermitted && (conditions.ContextMask & rule.ContextBit) != 0;
}

void vrPostFx::Add_Param(const std::string &name, vrPostFxValue value)
{
    const bool isNew = Params.try_emplace(name, std::move(value)).second;
    MK_ASSERT(isNew, "false && \"Conflicting param names in a postfx. Call Brem.\"");
}

void vrPostFx::Bind_Params()
{
    for (vrPostFxStep &step : Steps) {
        for (vrPostFxStep::Binding &binding : step.Params) {
            const auto found = Params.find(binding.Name);
            binding.Value = found != Params.end() ? &found->second : nullptr;
            if (!binding.Value)
                MK_LOG(VorenLog, MKDebug::LogLevel::Warning, "PostFx %s has no param %s, which its step %s takes",
                       Name.c_str(), binding.Name.c_str(), step.Name.c_str());
        }
    }
}
