#pragma once

class ParameterListClass;

/// How a kind of bump billboard bends its normals; today's kinds and those of old files share these.
struct vrMKPBumpShading
{
    float Curvature; ///< the default, 0 to 1
    const char *CurvatureText;
};

inline constexpr vrMKPBumpShading SPHERICAL_BUMP_SHADING = {1.0f,
                                                            "Determines how much to apply the spherical shading."};
inline constexpr vrMKPBumpShading CYLINDRICAL_BUMP_SHADING = {1.0f,
                                                              "Determines how much to apply the cylindrical shading."};
inline constexpr vrMKPBumpShading CENTER_TO_VERT_BUMP_SHADING = {
    0.5f, "Determines how much to apply the exaggerated shading."};

/// Appends "Curvature".
void Add_Curvature(ParameterListClass &parameters, const vrMKPBumpShading &shading);
