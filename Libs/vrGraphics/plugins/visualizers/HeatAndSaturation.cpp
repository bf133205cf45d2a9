#include "vrGraphics/plugins/visualizers/HeatAndSaturation.h"

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
