#pragma once

/// The shader parameters that the engine fills in, by name. A shader that declares one of them as a uniform gets its
/// value at each pass; docs/formats/effect.md lists what they mean. Names that this system has no source for (terrain,
/// wind, stereo) have a neutral value, so that a shader that was written for a world draws here too.

#include "MKLib/MKMath/Vectors.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <string_view>

class vrRenderContext;

/// What a driver has been told about the view that it draws.
struct EngineView
{
    vrMatrix44 World;
    vrMatrix44 View;
    vrMatrix44 ViewInverse;
    vrMatrix44 Projection;
    vrMatrix44 ViewProjection;
    Vector3 EyePosition{0.0f};
    float Near = 1.0f;
    float Far = 2.0f;
    float FadeStart = 0.0f;
    float FadeEnd = 1.0f;
    // Of the target that is drawn into, pixels.
    int TargetWidth = 1;
    int TargetHeight = 1;
    vrViewport Viewport;
    vrTexture *PostFxInput = nullptr;
};

/// What the values of one pass come from.
struct EngineParameterSource
{
    vrGraphicsDriver &Driver;
    const EngineView &View;
    const vrEnvironmentValues &Environment;
    const vrRenderContext *Context; ///< null for a draw outside of a scene's render
};

/// A parameter of numbers, by columns for a matrix.
struct EngineParameter
{
    const char *Name;
    int Count; ///< of floats: 1 to 4, or 16
    /// Asserts a context; without one, the value is zero.
    bool NeedsContext;
    void (*Fill)(const EngineParameterSource &source, float *values);
};

struct EngineTexture
{
    const char *Name;
    vrTexture *(*Get)(const EngineParameterSource &source); ///< null where there is none now
    bool IsColor = true;                                    ///< false for data, whose bytes are never taken for light
};

// Null for a name that isn't the engine's.
const EngineParameter *Find_Engine_Parameter(std::string_view name);
const EngineTexture *Find_Engine_Texture(std::string_view name);
/// Expects room for the count of the parameter.
void Fill_Engine_Parameter(const EngineParameter &parameter, const EngineParameterSource &source, float *values);
