#include "vrGraphics/plugins/visualizers/HeatAndSaturation.h"

namespace
{

constexpr const char *DISTANCE_CUTOFF = "DistanceCutoff";
constexpr const char *DISTORTION_SCALE = "DistortionScale";
constexpr const char *SATURATION_SCALE = "SaturationScale";

} // namespace

vrMKPHeatAndSaturationVisualizer::vrMKPHeatAndSaturationVisualizer()
{
    Set_Texture_Name("p_particle_heat_master.tga");
    Set_Shader_Name("ParticleBillboardHeat.mks");
    DistanceCutoff = Parameters.Add_Float(200, "Distance Cutoff", 10000.0f, 0.0001f, 10000.0f,
                                          "Distance away from camera to fade and cutoff the distortion effect");
    DistortionScale =
        Parameters.Add_Float(201, "Distortion Scale", 1.0f, 0.0f, 2.0f, "Scale factor for heat distortion.");
    SaturationScale =
        Parameters.Add_Float(202, "Saturation Scale", 1.0f, -2.0f, 2.0f, "Scale factor for saturation effects.");
}

void vrMKPHeatAndSaturationVisualizer::Set_Shader_Parameters()
{
    vrMKPBillboardVisualizer::Set_Shader_Parameters();
    Set_Shader_Float(DISTANCE_CUTOFF, Get_Distance_Cutoff());
    Set_Shader_Float(DISTORTION_SCALE, Get_Distortion_Scale());
    Set_Shader_Float(SATURATION_SCALE, Get_Saturation_Scale());
}

void vrMKPHeatAndSaturationVisualizer::Set_Distance_Cutoff(float distance)
{
    Set_Value(*DistanceCutoff, DISTANCE_CUTOFF, distance);
}

void vrMKPHeatAndSaturationVisualizer::Set_Distortion_Scale(float scale)
{
    Set_Value(*DistortionScale, DISTORTION_SCALE, scale);
}

void vrMKPHeatAndSaturationVisualizer::Set_Saturation_Scale(float scale)
{
    Set_Value(*SaturationScale, SATURATION_SCALE, scale);
}

void vrMKPHeatAndSaturationVisualizer::Set_Value(RangedFloatParameter &parameter, const char *shaderName, float value)
{
    parameter.Set_Value(value);
    if (Get_Shader()) Set_Shader_Float(shaderName, value);
}
