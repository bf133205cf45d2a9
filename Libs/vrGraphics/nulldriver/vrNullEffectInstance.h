#pragma once

#include "vrGraphics/drivercommon/vrEffectInstance.h"
#include "vrGraphics/drivercommon/vrEffectManager.h"

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
class vrNullEffectInstance final : public vrEffectInstance
{
public:
    MK_RUN_TIME_TYPE

    /// What instances made from then on are like; on until it is set.
    static void Set_Pure_Null_Run(bool pure) { PureNullRun = pure; }
    static bool Is_Pure_Null_Run() { return PureNullRun; }

    /// The effect comes from `effects`, which a pure null run doesn't ask.
    vrNullEffectInstance(std::string_view name, vrEffectManager<vrNullEffect> &effects);

    vrShaderInstance *Clone() const override { return new vrNullEffectInstance(*this); }
    int Begin(const vrRenderContext *, uint32_t, int) override { return 0; }
    void Begin_Pass(int) override {}
    void End_Pass() override {}
    void End() override {}
    void Commit() override {}

    int Get_Parameter_Index(std::string_view name) const override;

private:
    vrNullEffectInstance(const vrNullEffectInstance &other);

    static bool PureNullRun;

    const bool IsPure;
    SmartPtr<vrNullEffect> Effect; ///< null in a pure null run
};
