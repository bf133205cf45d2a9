#pragma once

#include "vrGraphics/drivercommon/vrEffectManager.h"

#include <array>
#include <vector>

/// An effect without a device: what its file says about phase and parameters.
class vrNullEffect final : public RefCountClass
{
public:
    vrNullEffect(std::string_view name, vrEffectSource &&source);

    /// As `vrEffectManager` wants it; never fails.
    static SmartPtr<vrNullEffect> Compile_Shader(std::string_view name, vrEffectSource &&source, std::string &errors);
    const MK::String &Get_Name() const { return Name; }
    const vrEffectSource &Get_Source() const { return Source; }

private:
    MK::String Name;
    vrEffectSource Source;
};

/// A shader instance that draws nothing: it begins with no passes, and whoever draws all the same comes to no harm.
///
/// In a pure null run, where no device will ever come, it reads no file: it has no parameters, each name has index 0,
/// values that are set are gone, and those that are asked for are zero. Otherwise it has the effect's phase and
/// parameters, and keeps values as any instance does.
class vrNullEffectInstance final : public vrShaderInstance
{
public:
    MK_RUN_TIME_TYPE

    /// What instances made from then on are like; on until it is set.
    static void Set_Pure_Null_Run(bool pure) { PureNullRun = pure; }
    static bool Is_Pure_Null_Run() { return PureNullRun; }

    /// The effect comes from `effects`, which a pure null run doesn't ask.
    vrNullEffectInstance(std::string_view name, vrEffectManager<vrNullEffect> &effects);

    vrShaderInstance *Clone() const override { return new vrNullEffectInstance(*this); }
    const char *Get_Name() const override { return Name.c_str(); }
    bool Is_Missing_Effect() const override { return IsMissing; }
    int Begin(const vrRenderContext *, uint32_t, int) override { return 0; }
    void Begin_Pass(int) override {}
    void End_Pass() override {}
    void End() override {}
    void Commit() override {}

    int Get_Parameter_Count() const override { return static_cast<int>(Values.size()); }
    vrShaderParamType Get_Parameter_Type(int index) const override;
    const char *Get_Parameter_Name(int index) const override;
    int Get_Parameter_Index(std::string_view name) const override;

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
    struct Value
    {
        std::array<float, 4> Numbers{}; ///< a bool is 0 or 1
        SmartPtr<vrTexture> Texture;
    };

    vrNullEffectInstance(const vrNullEffectInstance &other);
    /// Null for an index that isn't there, or whose parameter is of another type.
    const Value *Find(int index, vrShaderParamType type) const;
    void Set_Numbers(int index, vrShaderParamType type, const float *numbers, int count);
    bool Get_Numbers(int index, vrShaderParamType type, float *numbers, int count) const;

    static bool PureNullRun;

    MK::String Name;
    const bool IsPure;
    bool IsMissing = false;
    SmartPtr<vrNullEffect> Effect; ///< null in a pure null run
    std::vector<Value> Values;     ///< one each parameter of the effect
};
