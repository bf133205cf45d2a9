#pragma once

#include "vrGraphics/drivercommon/vrEffectInstance.h"
#include "vrOpenGL/vrOpenGLEffect.h"

class vrOpenGLDriver;

/// An instance of an effect on an OpenGL device. Values go to the device when a pass begins, and only those that differ
/// from what the program has.
class vrOpenGLShaderInstance final : public vrEffectInstance
{
public:
    MK_RUN_TIME_TYPE

    vrOpenGLShaderInstance(std::string_view name, SmartPtr<vrOpenGLEffect> effect, bool isMissing);

    vrShaderInstance *Clone() const override { return new vrOpenGLShaderInstance(*this); }
    int Begin(const vrRenderContext *context, uint32_t flags, int passesWanted) override;
    void Begin_Pass(int pass) override;
    void End_Pass() override;
    void End() override;
    void Commit() override;

private:
    vrOpenGLShaderInstance(const vrOpenGLShaderInstance &other);
    vrOpenGLDriver *Get_Driver() const;
    void Send_Values();
    void Bind_Textures(vrOpenGLDriver &driver);
    /// What draws: the effect, or the one for missing effects where it turned out not to compile.
    SmartPtr<vrOpenGLEffect> Choose_Effect(vrOpenGLDriver &driver) const;

    SmartPtr<vrOpenGLEffect> Effect;
    // While it is begun.
    const vrRenderContext *Context = nullptr;
    SmartPtr<vrOpenGLEffect> Active;
    int Technique = -1;
    vrOpenGLEffectPass *Pass = nullptr;
};
