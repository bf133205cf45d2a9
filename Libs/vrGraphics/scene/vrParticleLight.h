#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/NameTable.h"

/// A light source that an effect carries, as it shines in one frame. A renderable owns one for each of its light
/// controllers, which write it each frame; scenes and visualizers read it.
struct vrParticleLight
{
    NameTableRef Name;        ///< by which bump mapped particles ask for it, ignoring case
    Vector3 Position{0.0f};   ///< in the world
    RGBAClass Color;          ///< alpha has no meaning
    float Intensity = 0.0f;   ///< multiplies the colour
    float InnerRadius = 0.0f; ///< world units, up to which the light is at its strongest
    float OuterRadius = 0.0f; ///< world units, where it ends; not below the inner one
    bool LightsScene = true;  ///< models and terrain too; otherwise particles alone
    bool IsOn = false;
};
