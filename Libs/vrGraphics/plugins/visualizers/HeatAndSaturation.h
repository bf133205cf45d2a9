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

    // None of the setters checks the range.
    float Get_Distance_Cutoff() const { return DistanceCutoff->Get_Value(); } ///< world units, 0.0001 to 10000
    void Set_Distance_Cutoff(float distance) { DistanceCutoff->Set_Value(distance); }
    float Get_Distortion_Scale() const { return DistortionScale->Get_Value(); } ///< 0 to 2
    void Set_Distortion_Scale(float scale) { DistortionScale->Set_Value(scale); }
    float Get_Saturation_Scale() const { return SaturationScale->Get_Value(); } ///< -2 to 2
    void Set_Saturation_Scale(float scale) { SaturationScale->Set_Value(scale); }

private:
    RangedFloatParameter *DistanceCutoff;
    RangedFloatParameter *DistortionScale;
    RangedFloatParameter *SaturationScale;
};
