#pragma once

#include "MKLib/MKString.h"
#include "vrGraphics/drivercommon/vrEffectSource.h"
#include "vrGraphics/drivercommon/vrTexture.h"

#include <array>
#include <vector>

/// What the instances of all drivers have in common: the values of an effect's parameters, by what its file says.
class vrEffectInstance : public vrShaderInstance
{
public:
    const char *Get_Name() const override { return Name.c_str(); }
    bool Is_Missing_Effect() const override { return IsMissing; }
    int Get_Parameter_Count() const override { return static_cast<int>(Values.size()); }
    vrShaderParamType Get_Parameter_Type(int index) const override;
    /// Null for an index that isn't there.
    const char *Get_Parameter_Name(int index) const override;

    void Set_Bool(int index, bool value) override;
    void Set_Float(int index, float value) override { Set_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1); }
    void Set_Vector2(int index, const float *value) override { Set_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2); }
    void Set_Vector3(int index, const float *value) override { Set_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3); }
    void Set_Vector4(int index, const float *value) override { Set_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4); }
    void Set_Texture(int index, vrTexture *texture) override;
    bool Get_Bool(int index, bool &value) const override;
    bool Get_Float(int index, float &value) const override
    {
        return Get_Numbers(index, SHADER_PARAMS_FLOAT, &value, 1);
    }
    bool Get_Vector2(int index, float *value) const override
    {
        return Get_Numbers(index, SHADER_PARAMS_VECTOR2, value, 2);
    }
    bool Get_Vector3(int index, float *value) const override
    {
        return Get_Numbers(index, SHADER_PARAMS_VECTOR3, value, 3);
    }
    bool Get_Vector4(int index, float *value) const override
    {
        return Get_Numbers(index, SHADER_PARAMS_VECTOR4, value, 4);
    }
    vrTexture *Get_Texture(int index) const override;

protected:
    struct ValueType
    {
        std::array<float, 4> Numbers{}; ///< a bool is 0 or 1
        SmartPtr<vrTexture> Texture;
    };

    explicit vrEffectInstance(std::string_view name) : Name(name) {}
    /// Takes over phase and parameters, with their defaults. `source` is borrowed for the instance's life.
    void Take_Source(const vrEffectSource &source, bool isMissing);
    const std::vector<ValueType> &Get_Values() const { return Values; } ///< one for each parameter

private:
    const ValueType *Find(int index, vrShaderParamType type) const;
    ValueType *Find(int index, vrShaderParamType type)
    {
        return const_cast<ValueType *>(static_cast<const vrEffectInstance *>(this)->Find(index, type));
    }
    void Set_Numbers(int index, vrShaderParamType type, const float *numbers, size_t count);
    bool Get_Numbers(int index, vrShaderParamType type, float *numbers, size_t count) const;

    MK::String Name;
    const vrEffectSource *Source = nullptr;
    bool IsMissing = false;
    std::vector<ValueType> Values;
};
