#pragma once

#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "MKLib/Parameters/SimpleParameters.h"

/// A billboard that draws no colour of its own: its shader writes distortion and saturation, which a post-effect then
/// applies to the finished frame.
class vrMKPHeatAndSaturationVisualizer final : public vrMKPBillboardVisualizer
{
public:
    vrMKPHeatAndSaturationVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

    // The setters check no range, and tell the shader too where there is one.
    float Get_Distance_Cutoff() const { return DistanceCutoff->Get_Value(); } ///< world units, 0.0001 to 10000
    void Set_Distance_Cutoff(float distance);
    float Get_Distortion_Scale() const { return DistortionScale->Get_Value(); } ///< 0 to 2
    void Set_Distortion_Scale(float scale);
    float Get_Saturation_Scale() const { return SaturationScale->Get_Value(); } ///< -2 to 2
    void Set_Saturation_Scale(float scale);

protected:
    void Set_Shader_Parameters() override;

private:
    void Set_Value(RangedFloatParameter &parameter, const char *shaderName, float value);

    RangedFloatParameter *DistanceCutoff;
    RangedFloatParameter *DistortionScale;
    RangedFloatParameter *SaturationScale;
};
