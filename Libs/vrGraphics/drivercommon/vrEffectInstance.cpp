#include "vrGraphics/drivercommon/vrEffectInstance.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <algorithm>

void vrEffectInstance::Take_Source(const vrEffectSource &source, bool isMissing)
{
    Source = &source;
    IsMissing = isMissing;
    RenderPhase = source.Get_Render_Phase();
    VertexProc = source.Get_Vertex_Proc();
    VertexType = source.Get_Vertex_Type();
    for (const vrEffectParameter &parameter : source.Get_Parameters()) {
        ValueType &value = Values.emplace_back();
        value.Numbers = parameter.Default;
        if (!parameter.DefaultTexture.empty() && TheGraphicsDriver)
            value.Texture = TheGraphicsDriver->Load_Texture(parameter.DefaultTexture);
    }
}

vrShaderParamType vrEffectInstance::Get_Parameter_Type(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return SHADER_PARAMS_NONE;
    return Source->Get_Parameters()[static_cast<size_t>(index)].Type;
}

const char *vrEffectInstance::Get_Parameter_Name(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return nullptr;
    return Source->Get_Parameters()[static_cast<size_t>(index)].Name.c_str();
}

/// Null for an index that isn't there, or whose parameter is of another type.
const vrEffectInstance::ValueType *vrEffectInstance::Find(int index, vrShaderParamType type) const
{
    return type == Get_Parameter_Type(index) ? &Values[static_cast<size_t>(index)] : nullptr;
}

void vrEffectInstance::Set_Numbers(int index, vrShaderParamType type, const float *numbers, size_t count)
{
    if (ValueType *value = numbers ? Find(index, type) : nullptr) std::copy_n(numbers, count, value->Numbers.begin());
}

bool vrEffectInstance::Get_Numbers(int index, vrShaderParamType type, float *numbers, size_t count) const
{
    const ValueType *value = Find(index, type);
    if (value)
        std::copy_n(value->Numbers.begin(), count, numbers);
    else
        std::fill_n(numbers, count, 0.0f);
    return value != nullptr;
}

void vrEffectInstance::Set_Bool(int index, bool value)
{
    const float number = value ? 1.0f : 0.0f;
    Set_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
}

bool vrEffectInstance::Get_Bool(int index, bool &value) const
{
    float number = 0.0f;
    const bool isThere = Get_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
    value = number != 0.0f;
    return isThere;
}

void vrEffectInstance::Set_Texture(int index, vrTexture *texture)
{
    if (ValueType *value = Find(index, SHADER_PARAMS_TEXTURE)) value->Texture = texture;
}

vrTexture *vrEffectInstance::Get_Texture(int index) const
{
    const ValueType *value = Find(index, SHADER_PARAMS_TEXTURE);
    return value ? value->Texture.Get() : nullptr;
}
