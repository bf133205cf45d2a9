#include "vrOpenGL/vrOpenGLShaderInstance.h"

#include "vrOpenGL/vrOpenGLDriver.h"

#include <utility>

MK_DEFINE_RUN_TIME_TYPE(vrOpenGLShaderInstance, vrShaderInstance)

vrOpenGLShaderInstance::vrOpenGLShaderInstance(std::string_view name, SmartPtr<vrOpenGLEffect> effect, bool isMissing)
    : vrEffectInstance(name), Effect(std::move(effect))
{
    if (Effect) Take_Source(Effect->Get_Source(), isMissing);
}

vrOpenGLShaderInstance::vrOpenGLShaderInstance(const vrOpenGLShaderInstance &other)
    : vrEffectInstance(other), Effect(other.Effect)
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
            Pass->Program.Set(value.Uniform, (Active == Effect ? Get_Values()[at].Numbers
                                                               : Active->Get_Source().Get_Parameters()[at].Default)
                                                 .data());
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
                          : Active == Effect ? Get_Values()[static_cast<size_t>(texture.UserIndex)].Texture.Get()
                                             : nullptr;
        driver.Bind_Texture(texture.Unit, texture.Target, from, texture.Sampler, texture.IsColor);
    }
}
