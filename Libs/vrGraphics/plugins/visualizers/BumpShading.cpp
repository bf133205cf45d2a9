#include "vrGraphics/plugins/visualizers/BumpShading.h"

#include "MKLib/Parameters/ParameterList.h"

RangedFloatParameter *Add_Curvature(ParameterListClass &parameters, const vrMKPBumpShading &shading)
{
    return parameters.Add_Float(200, "Curvature", shading.Curvature, 0.0f, 1.0f, shading.CurvatureText);
}
