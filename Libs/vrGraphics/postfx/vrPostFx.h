#pragma once

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/postfx/vrPostFxModes.h"

#include <array>
#include <map>
#include <string>
#include <vector>

/// A value for a shader, with its kind: float, float2, float3 or texture2d.
struct vrPostFxValue
{
    vrShaderParamType Kind = SHADER_PARAMS_NONE;
    std::array<float, 3> Numbers{};
    SmartPtr<vrTexture> Texture;

    /// Nothing for an index of -1.
    void Set_On(vrShaderInstance &shader, int index) const;
};

/// One draw of a full-screen quad from one picture into another.
struct vrPostFxStep
{
    /// A parameter of the effect that the step's shader takes.
    struct Binding
    {
        std::string Name;
        int ShaderIndex = -1;
        const vrPostFxValue *Value = nullptr; ///< of the effect; null when it has none of that name
    };

    SmartPtr<vrShaderInstance> Shader;
    vrPostFxInputMode InputMode = FROM_MAIN_RT;
    vrPostFxOutputMode OutputMode = TO_MAIN_RT;
    std::string Name; ///< the template's file name
    // How much of the target the quad covers, from its top left; above 0, up to 1.
    float QuadMaxX = 1.0f;
    float QuadMaxY = 1.0f;
    std::vector<Binding> Params;

    /// Hands the effect's values to the shader.
    void Set_Params() const;
};

/// What decides whether an effect runs in a render.
struct vrPostFxConditions
{
    vrRendererTypeEnum Renderer = VR_RENDERER_FORWARD;
    uint32_t Permissions = VR_POSTFX_ALL; ///< the driver's
    uint32_t ContextMask = VR_POSTFX_ALL; ///< the render's
    int Quality = 0;
};

/// One effect of a chain: the steps that it takes, in order.
struct vrPostFx
{
    enum vrPostFxTypeEnum : int
    {
        VR_POSTFX_TYPE_ENGINE_BLOOM = 0,
        VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION = 1,
        VR_POSTFX_TYPE_ENGINE_DOF = 2,
        VR_POSTFX_TYPE_ENGINE_HDR = 3,
        VR_POSTFX_TYPE_GAME = 4,
        VR_POSTFX_TYPE_GAME_LPPR_ONLY = 5
    };

    vrPostFx() = default;
    vrPostFx(const vrPostFx &) = delete;
    vrPostFx &operator=(const vrPostFx &) = delete;

    int Priority = 0; ///< runs when the driver's quality is as high at the least; heat always does
    bool Enabled = true;
    vrPostFxTypeEnum Type = VR_POSTFX_TYPE_GAME;
    std::string Name;
    std::map<std::string, vrPostFxValue, std::less<>> Params;
    std::vector<vrPostFxStep> Steps;

    bool Should_Run(const vrPostFxConditions &conditions) const;
    /// Asserts a name that isn't there yet; the first value stays.
    void Add_Param(const std::string &name, vrPostFxValue value);
    /// Points the steps' bindings at the values; once the effect is read.
    void Bind_Params();
};
