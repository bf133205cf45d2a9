#pragma once

#include "MKLib/MKMath/Vectors.h"

#include <string_view>

class vrTexture;

/// How hardware particles go over what is behind them.
enum vrHWParticleRenderMode : int
{
    VR_HW_ALPHA_BLEND = 0,
    VR_HW_ADDITIVE = 1,
    VR_HW_MODULATE = 2
};

enum vrHWParticleGeometryMode : int
{
    VR_HW_BILLBOARD = 0,
    VR_HW_VELOCITY_ALIGNED = 1
};

/// A value at birth, at a time between, and at death.
template <typename T>
struct vrHWKeys
{
    T Start{};
    T Mid{};
    T End{};
    float MidTime = 0.5f; ///< 0 to 1, from birth to death
};

/// What hardware particles look like, resolved from a visualizer for one draw. Borrows all that it refers to.
struct vrHWParticleLook
{
    std::string_view ShaderName;
    vrTexture *Texture = nullptr;
    vrHWParticleRenderMode RenderMode = VR_HW_ALPHA_BLEND;
    vrHWParticleGeometryMode GeometryMode = VR_HW_BILLBOARD;
    bool IgnoresDepth = false;
    int AnchorPoint = 0;                       ///< center, bottom, top, or from bottom to top with age
    float AspectRatio = 1.0f;                  ///< width by height
    int TextureRotation = 0;                   ///< quarter turns
    Vector4 TexCoords{0.0f, 0.0f, 1.0f, 1.0f}; ///< left, top, width, height
    vrHWKeys<RGBAClass> Color;
    vrHWKeys<float> Size; ///< half the height, world units
};
