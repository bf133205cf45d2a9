#include "vrGraphics/nulldriver/vrNullEffectInstance.h"

#include "vrGraphics/drivercommon/vrTexture.h"

#include <algorithm>

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
    : Name(name), IsPure(PureNullRun)
{
    if (IsPure) return;
    Effect = effects.Get_Effect(name);
    if (!Effect) return;
    const vrEffectSource &source = Effect->Get_Source();
    IsMissing = effects.Is_Missing_Effect(Effect.Get());
    RenderPhase = source.Get_Render_Phase();
    VertexProc = source.Get_Vertex_Proc();
    VertexType = source.Get_Vertex_Type();
    for (const vrEffectParameter &parameter : source.Get_Parameters()) Values.push_back({parameter.Default, nullptr});
}

vrNullEffectInstance::vrNullEffectInstance(const vrNullEffectInstance &) = default;

vrShaderParamType vrNullEffectInstance::Get_Parameter_Type(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return SHADER_PARAMS_NONE;
    return Effect->Get_Source().Get_Parameters()[static_cast<size_t>(index)].Type;
}

const char *vrNullEffectInstance::Get_Parameter_Name(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return nullptr;
    return Effect->Get_Source().Get_Parameters()[static_cast<size_t>(index)].Name.c_str();
}

int vrNullEffectInstance::Get_Parameter_Index(std::string_view name) const
{
    return IsPure ? 0 : vrShaderInstance::Get_Parameter_Index(name);
}

const vrNullEffectInstance::Value *vrNullEffectInstance::Find(int index, vrShaderParamType type) const
{
    return type == Get_Parameter_Type(index) ? &Values[static_cast<size_t>(index)] : nullptr;
}

void vrNullEffectInstance::Set_Numbers(int index, vrShaderParamType type, const float *numbers, int count)
{
    if (Find(index, type)) std::copy_n(numbers, count, Values[static_cast<size_t>(index)].Numbers.begin());
}

bool vrNullEffectInstance::Get_Numbers(int index, vrShaderParamType type, float *numbers, int count) const
{
    const Value *value = Find(index, type);
    if (value)
        std::copy_n(value->Numbers.begin(), count, numbers);
    else
        std::fill_n(numbers, count, 0.0f);
    return value != nullptr;
}

void vrNullEffectInstance::Set_Bool(int index, bool value)
{
    const float number = value ? 1.0f : 0.0f;
    Set_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
}

void vrNullEffectInstance::Set_Float(int index, float value)
{
    Set_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1);
}

void vrNullEffectInstance::Set_Vector2(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2);
}

void vrNullEffectInstance::Set_Vector3(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3);
}

void vrNullEffectInstance::Set_Vector4(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4);
}

void vrNullEffectInstance::Set_Texture(int index, vrTexture *texture)
{
    if (Find(index, SHADER_PARAMS_TEXTURE)) Values[static_cast<size_t>(index)].Texture = texture;
}

bool vrNullEffectInstance::Get_Bool(int index, bool &value) const
{
    float number = 0.0f;
    const bool isThere = Get_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
    value = number != 0.0f;
    return isThere;
}

bool vrNullEffectInstance::Get_Float(int index, float &value) const
{
    return Get_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1);
}

bool vrNullEffectInstance::Get_Vector2(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2);
}

bool vrNullEffectInstance::Get_Vector3(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3);
}

bool vrNullEffectInstance::Get_Vector4(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4);
}

vrTexture *vrNullEffectInstance::Get_Texture(int index) const
{
    const Value *value = Find(index, SHADER_PARAMS_TEXTURE);
    return value ? value->Texture.Get() : nullptr;
}
