#include "vrOpenGL/vrOpenGLShaderInstance.h"

#include "vrOpenGL/vrOpenGLDriver.h"

#include <algorithm>
#include <utility>

MK_DEFINE_RUN_TIME_TYPE(vrOpenGLShaderInstance, vrShaderInstance)

vrOpenGLShaderInstance::vrOpenGLShaderInstance(std::string_view name, SmartPtr<vrOpenGLEffect> effect, bool isMissing)
    : Name(name), Effect(std::move(effect)), IsMissing(isMissing)
{
    if (!Effect) return;
    const vrEffectSource &source = Effect->Get_Source();
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

vrOpenGLShaderInstance::vrOpenGLShaderInstance(const vrOpenGLShaderInstance &other)
    : vrShaderInstance(other), Name(other.Name), Effect(other.Effect), IsMissing(other.IsMissing), Values(other.Values)
{
}

vrOpenGLDriver *vrOpenGLShaderInstance::Get_Driver() const
{
    return vrOpenGLDriver::Get_Instance();
}

int vrOpenGLShaderInstance::Begin(const vrRenderContext *context, uint32_t, int)
{
    Context = context;
    Pass = nullptr;
    Technique = -1;
    vrOpenGLDriver *driver = Get_Driver();
    if (!driver || !driver->Is_Drawing()) return 0;
    Active = Choose_Effect(*driver);
    if (!Active) return 0;
    Technique = Active->Get_Source().Choose_Technique(vrGraphicsDriver::Get_Quality());
    if (Technique < 0) return 0;
    return static_cast<int>(Active->Get_Source().Get_Techniques()[static_cast<size_t>(Technique)].Passes.size());
}

SmartPtr<vrOpenGLEffect> vrOpenGLShaderInstance::Choose_Effect(vrOpenGLDriver &driver) const
{
    if (Effect && Effect->Is_Ready()) return Effect;
    SmartPtr<vrOpenGLEffect> missing = driver.Get_Missing_Effect();
    return missing && missing->Is_Ready() ? missing : nullptr;
}

void vrOpenGLShaderInstance::Begin_Pass(int pass)
{
    if (Technique < 0) return;
    const std::vector<vrEffectPass> &passes =
        Active->Get_Source().Get_Techniques()[static_cast<size_t>(Technique)].Passes;
    if (pass < 0 || static_cast<size_t>(pass) >= passes.size()) return;
    Pass = &Active->Get_Pass(Technique, pass);
    vrOpenGLDriver *driver = Get_Driver();
    driver->Set_Render_State_Block(passes[static_cast<size_t>(pass)].State);
    driver->Use_Program(Pass->Program);
    Send_Values();
    Bind_Textures(*driver);
}

void vrOpenGLShaderInstance::End_Pass()
{
    Pass = nullptr;
    if (vrOpenGLDriver *driver = Get_Driver(); driver && Technique >= 0) driver->Use_No_Program();
}

void vrOpenGLShaderInstance::End()
{
    Technique = -1;
    Context = nullptr;
    Active = nullptr;
}

void vrOpenGLShaderInstance::Commit()
{
    if (!Pass) return;
    Send_Values();
    Bind_Textures(*Get_Driver());
}

void vrOpenGLShaderInstance::Send_Values()
{
    const EngineParameterSource source = Get_Driver()->Get_Parameter_Source(Context);
    for (const vrOpenGLEffectPass::ValueType &value : Pass->Values) {
        if (value.UserIndex >= 0) {
            const auto at = static_cast<size_t>(value.UserIndex);
            Pass->Program.Set(
                value.Uniform,
                (Active == Effect ? Values[at].Numbers : Active->Get_Source().Get_Parameters()[at].Default).data());
            continue;
        }
        float numbers[16];
        Fill_Engine_Parameter(*value.Engine, source, numbers);
        Pass->Program.Set(value.Uniform, numbers);
    }
}

void vrOpenGLShaderInstance::Bind_Textures(vrOpenGLDriver &driver)
{
    const EngineParameterSource source = driver.Get_Parameter_Source(Context);
    for (const vrOpenGLEffectPass::TextureType &texture : Pass->Textures) {
        vrTexture *from = texture.Engine     ? texture.Engine->Get(source)
                          : Active == Effect ? Values[static_cast<size_t>(texture.UserIndex)].Texture.Get()
                                             : nullptr;
        driver.Bind_Texture(texture.Unit, texture.Target, from, texture.Sampler, texture.IsColor);
    }
}

vrShaderParamType vrOpenGLShaderInstance::Get_Parameter_Type(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return SHADER_PARAMS_NONE;
    return Effect->Get_Source().Get_Parameters()[static_cast<size_t>(index)].Type;
}

const char *vrOpenGLShaderInstance::Get_Parameter_Name(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return "";
    return Effect->Get_Source().Get_Parameters()[static_cast<size_t>(index)].Name.c_str();
}

void vrOpenGLShaderInstance::Set_Numbers(int index, vrShaderParamType type, const float *numbers, size_t count)
{
    if (numbers && Is_Type(index, type))
        std::copy_n(numbers, count, Values[static_cast<size_t>(index)].Numbers.begin());
}

bool vrOpenGLShaderInstance::Get_Numbers(int index, vrShaderParamType type, float *numbers, size_t count) const
{
    const bool isThere = Is_Type(index, type);
    if (isThere)
        std::copy_n(Values[static_cast<size_t>(index)].Numbers.begin(), count, numbers);
    else
        std::fill_n(numbers, count, 0.0f);
    return isThere;
}

void vrOpenGLShaderInstance::Set_Bool(int index, bool value)
{
    const float number = value ? 1.0f : 0.0f;
    Set_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
}

void vrOpenGLShaderInstance::Set_Float(int index, float value)
{
    Set_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1);
}

void vrOpenGLShaderInstance::Set_Vector2(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2);
}

void vrOpenGLShaderInstance::Set_Vector3(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3);
}

void vrOpenGLShaderInstance::Set_Vector4(int index, const float *value)
{
    Set_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4);
}

void vrOpenGLShaderInstance::Set_Texture(int index, vrTexture *texture)
{
    if (Is_Type(index, SHADER_PARAMS_TEXTURE)) Values[static_cast<size_t>(index)].Texture = texture;
}

bool vrOpenGLShaderInstance::Get_Bool(int index, bool &value) const
{
    float number = 0.0f;
    const bool isThere = Get_Numbers(index, SHADER_PARAMS_BOOL, &number, 1);
    value = number != 0.0f;
    return isThere;
}

bool vrOpenGLShaderInstance::Get_Float(int index, float &value) const
{
    return Get_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1);
}

bool vrOpenGLShaderInstance::Get_Vector2(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2);
}

bool vrOpenGLShaderInstance::Get_Vector3(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3);
}

bool vrOpenGLShaderInstance::Get_Vector4(int index, float *value) const
{
    return Get_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4);
}

vrTexture *vrOpenGLShaderInstance::Get_Texture(int index) const
{
    return Is_Type(index, SHADER_PARAMS_TEXTURE) ? Values[static_cast<size_t>(index)].Texture.Get() : nullptr;
}
