#pragma once

/// What the device is set to, so that nothing is set twice and nothing is ever asked of the device. One per driver.
///
/// Whoever else uses the context makes it forget: everything is then set anew when it is next asked for.

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderState.h"

#include <array>

class GLState
{
public:
    static constexpr int MAX_UNITS = 16; ///< what every device of this level has in the fragment stage

    GLState() { Forget(); }

    void Forget();

    void Use_Program(unsigned program);
    void Bind_Vertex_Array(unsigned array);
    /// For drawing into and clearing.
    void Bind_Framebuffer(unsigned framebuffer);
    /// For copying and reading from.
    void Bind_Read_Framebuffer(unsigned framebuffer);
    /// The one that vertices are written to.
    void Bind_Array_Buffer(unsigned buffer);
    /// `target` is OpenGL's kind of texture.
    void Bind_Texture(int unit, unsigned target, unsigned texture, unsigned sampler);
    /// Makes a texture current for changing it, on the unit that draws use last.
    void Bind_Texture_To_Change(unsigned target, unsigned texture);
    void Set_Viewport(const vrViewport &viewport);
    /// Whether what is written to sRGB targets is encoded.
    void Set_Encoding(bool encodes);
    void Set_Block(const vrRenderStateBlock &block);

private:
    static constexpr unsigned UNKNOWN = ~0u;
    enum SwitchType : int
    {
        SWITCH_UNKNOWN,
        SWITCH_OFF,
        SWITCH_ON
    };

    static void Count();
    /// Whether `known` isn't `wanted` yet, which it then is.
    static bool Changes(unsigned &known, unsigned wanted);
    static void Set_Switch(SwitchType &known, unsigned capability, bool on);
    void Set_Rasterize(int code);
    void Set_Blend(int code);
    void Set_Depth(int code);
    void Set_Unit(int unit);

    struct UnitType
    {
        unsigned Texture;
        unsigned Sampler;
    };

    unsigned Program;
    unsigned VertexArray;
    unsigned Framebuffer;
    unsigned ReadFramebuffer;
    unsigned ArrayBuffer;
    unsigned ActiveUnit;
    std::array<UnitType, MAX_UNITS> Units;
    vrViewport Viewport;
    SwitchType Encoding;
    SwitchType Culling;
    SwitchType Blending;
    SwitchType DepthTesting;
    // OpenGL's.
    unsigned CulledFace;
    unsigned PolygonMode;
    unsigned BlendEquation;
    unsigned BlendFactors; ///< the code that they belong to
    unsigned DepthFunction;
    unsigned DepthMask;
    int RasterizeCode;
    int BlendCode;
    int DepthCode;
};
