#pragma once

#include "MKLib/Parameters/ParametersFwd.h"

/// How a kind of bump billboard bends its normals; today's kinds and those of old files share these.
struct vrMKPBumpShading
{
    /// What normals lean away from.
    enum Center
    {
        CENTROID,
        CENTROID_AXIS, ///< the line through the centroid along z
        PARTICLE
    };

    float Curvature; ///< the default, 0 to 1
    const char *CurvatureText;
    Center From;
    const char *ClassName; ///< of today's kind
};

inline constexpr vrMKPBumpShading SPHERICAL_BUMP_SHADING = {1.0f, "Determines how much to apply the spherical shading.",
                                                            vrMKPBumpShading::CENTROID, "vrMKPSphericalBumpVisualizer"};
inline constexpr vrMKPBumpShading CYLINDRICAL_BUMP_SHADING = {
    1.0f, "Determines how much to apply the cylindrical shading.", vrMKPBumpShading::CENTROID_AXIS,
    "vrMKPCylindricalBumpVisualizer"};
inline constexpr vrMKPBumpShading CENTER_TO_VERT_BUMP_SHADING = {
    0.5f, "Determines how much to apply the exaggerated shading.", vrMKPBumpShading::PARTICLE,
    "vrMKPCenterToVertBumpVisualizer"};

/// Appends "Curvature".
RangedFloatParameter *Add_Curvature(ParameterListClass &parameters, const vrMKPBumpShading &shading);
