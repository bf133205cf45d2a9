#pragma once

#include "vrGraphics/drivercommon/vrShaderInstance.h"
#include "vrGraphics/drivercommon/vrTexture.h"
#include "vrOpenGL/vrOpenGLEffect.h"

#include <array>
#include <vector>

class vrOpenGLDriver;

/// An instance of an effect on an OpenGL device. Values go to the device when a pass begins, and only those that differ
/// from what the program has.
class vrOpenGLShaderInstance final : public vrShaderInstance
{
public:
    MK_RUN_TIME_TYPE

    vrOpenGLShaderInstance(std::string_view name, SmartPtr<vrOpenGLEffect> effect, bool isMissing);

    vrShaderInstance *Clone() const override { return new vrOpenGLShaderInstance(*this); }
    const char *Get_Name() const override { return Name.c_str(); }
    bool Is_Missing_Effect() const override { return IsMissing; }
    int Begin(const vrRenderContext *context, uint32_t flags, int passesWanted) override;
    void Begin_Pass(int pass) override;
    void End_Pass() override;
    void End() override;
    void Commit() override;

    int Get_Parameter_Count() const override { return static_cast<int>(Values.size()); }
    vrShaderParamType Get_Parameter_Type(int index) const override;
    const char *Get_Parameter_Name(int index) const override;

    void Set_Bool(int index, bool value) override;
    void Set_Float(int index, float value) override;
    void Set_Vector2(int index, const float *value) override;
    void Set_Vector3(int index, const float *value) override;
    void Set_Vector4(int index, const float *value) override;
    void Set_Texture(int index, vrTexture *texture) override;
    bool Get_Bool(int index, bool &value) const override;
    bool Get_Float(int index, float &value) const override;
    bool Get_Vector2(int index, float *value) const override;
    bool Get_Vector3(int index, float *value) const override;
    bool Get_Vector4(int index, float *value) const override;
    vrTexture *Get_Texture(int index) const override;

private:
    struct ValueType
    {
        std::array<float, 4> Numbers{}; ///< a bool is 0 or 1
        SmartPtr<vrTexture> Texture;
    };

    vrOpenGLShaderInstance(const vrOpenGLShaderInstance &other);
    vrOpenGLDriver *Get_Driver() const;
    bool Is_Type(int index, vrShaderParamType type) const { return Get_Parameter_Type(index) == type; }
    void Set_Numbers(int index, vrShaderParamType type, const float *numbers, size_t count);
    bool Get_Numbers(int index, vrShaderParamType type, float *numbers, size_t count) const;
    void Send_Values();
    void Bind_Textures(vrOpenGLDriver &driver);
    /// What draws: the effect, or the one for missing effects where it turned out not to compile.
    SmartPtr<vrOpenGLEffect> Choose_Effect(vrOpenGLDriver &driver) const;

    MK::String Name;
    SmartPtr<vrOpenGLEffect> Effect;
    bool IsMissing;
    std::vector<ValueType> Values; ///< one for each parameter of the effect
    // While it is begun.
    const vrRenderContext *Context = nullptr;
    SmartPtr<vrOpenGLEffect> Active;
    int Technique = -1;
    vrOpenGLEffectPass *Pass = nullptr;
};
