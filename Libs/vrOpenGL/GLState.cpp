#include "vrOpenGL/GLState.h"

#include "vrGraphics/drivercommon/vrGraphicsStats.h"

#include <epoxy/gl.h>

namespace
{

/// How a code of a blend state mixes what is drawn with what is there. The alpha of a target is its coverage: what adds
/// or multiplies light leaves it.
struct BlendRow
{
    int Code;
    GLenum Equation;
    GLenum Source, Target;
    GLenum SourceAlpha, TargetAlpha;
};

constexpr BlendRow BLENDS[] = {
    {VR_BLEND_ALPHA, GL_FUNC_ADD, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA},
    {VR_BLEND_ADDITIVE, GL_FUNC_ADD, GL_SRC_ALPHA, GL_ONE, GL_ZERO, GL_ONE},
    {VR_BLEND_MODULATE, GL_FUNC_ADD, GL_DST_COLOR, GL_ZERO, GL_ZERO, GL_ONE},
    {VR_BLEND_MODULATE_2X, GL_FUNC_ADD, GL_DST_COLOR, GL_SRC_COLOR, GL_ZERO, GL_ONE},
    {VR_BLEND_PREMULTIPLIED, GL_FUNC_ADD, GL_ONE, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA},
    {VR_BLEND_ADD_ONE, GL_FUNC_ADD, GL_ONE, GL_ONE, GL_ZERO, GL_ONE},
    {VR_BLEND_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_SRC_ALPHA, GL_ONE, GL_ZERO, GL_ONE},
};

constexpr int CODE_UNKNOWN = -1;

} // namespace

void GLState::Forget()
{
    Program = VertexArray = Framebuffer = ReadFramebuffer = ArrayBuffer = ActiveUnit = UNKNOWN;
    CulledFace = PolygonMode = BlendEquation = BlendFactors = DepthFunction = DepthMask = UNKNOWN;
    Units.fill({UNKNOWN, UNKNOWN});
    Viewport = {0, 0, -1, -1};
    Encoding = Culling = Blending = DepthTesting = SWITCH_UNKNOWN;
    RasterizeCode = BlendCode = DepthCode = CODE_UNKNOWN;
}

void GLState::Count()
{
    vrGraphicsStats::StateChanges.fetch_add(1, std::memory_order_relaxed);
}

bool GLState::Changes(unsigned &known, unsigned wanted)
{
    if (known == wanted) return false;
    known = wanted;
    Count();
    return true;
}

void GLState::Set_Switch(SwitchType &known, unsigned capability, bool on)
{
    const SwitchType wanted = on ? SWITCH_ON : SWITCH_OFF;
    if (known == wanted) return;
    known = wanted;
    if (on)
        glEnable(capability);
    else
        glDisable(capability);
    Count();
}

void GLState::Use_Program(unsigned program)
{
    if (Changes(Program, program)) glUseProgram(program);
}

void GLState::Bind_Vertex_Array(unsigned array)
{
    if (Changes(VertexArray, array)) glBindVertexArray(array);
}

void GLState::Bind_Framebuffer(unsigned framebuffer)
{
    if (Changes(Framebuffer, framebuffer)) glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
}

void GLState::Bind_Read_Framebuffer(unsigned framebuffer)
{
    if (Changes(ReadFramebuffer, framebuffer)) glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
}

void GLState::Bind_Array_Buffer(unsigned buffer)
{
    if (Changes(ArrayBuffer, buffer)) glBindBuffer(GL_ARRAY_BUFFER, buffer);
}

void GLState::Set_Unit(int unit)
{
    if (ActiveUnit == static_cast<unsigned>(unit)) return;
    ActiveUnit = static_cast<unsigned>(unit);
    glActiveTexture(GL_TEXTURE0 + ActiveUnit);
}

void GLState::Bind_Texture(int unit, unsigned target, unsigned texture, unsigned sampler)
{
    if (unit < 0 || unit >= MAX_UNITS) return;
    UnitType &known = Units[static_cast<size_t>(unit)];
    if (known.Texture != texture) {
        known.Texture = texture;
        Set_Unit(unit);
        glBindTexture(target, texture);
        Count();
    }
    if (known.Sampler != sampler) {
        known.Sampler = sampler;
        glBindSampler(static_cast<GLuint>(unit), sampler);
        Count();
    }
}

void GLState::Bind_Texture_To_Change(unsigned target, unsigned texture)
{
    Bind_Texture(MAX_UNITS - 1, target, texture, 0);
    Set_Unit(MAX_UNITS - 1);
}

void GLState::Set_Viewport(const vrViewport &viewport)
{
    if (Viewport == viewport) return;
    Viewport = viewport;
    glViewport(viewport.X, viewport.Y, viewport.Width, viewport.Height);
    Count();
}

void GLState::Set_Encoding(bool encodes)
{
    Set_Switch(Encoding, GL_FRAMEBUFFER_SRGB, encodes);
}

void GLState::Set_Block(const vrRenderStateBlock &block)
{
    Set_Rasterize(block.m_rasterizeState);
    Set_Blend(block.m_blendState);
    Set_Depth(block.m_depthStencilState);
}

void GLState::Set_Rasterize(int code)
{
    if (RasterizeCode == code) return;
    if (RasterizeCode == CODE_UNKNOWN) {
        // Pictures are drawn top row first, which turns the way round of every triangle.
        glFrontFace(GL_CW);
        glDisable(GL_SCISSOR_TEST);
        glDisable(GL_STENCIL_TEST);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }
    RasterizeCode = code;
    const GLenum mode = code == VR_RASTERIZE_WIREFRAME ? GL_LINE : GL_FILL;
    if (Changes(PolygonMode, mode)) glPolygonMode(GL_FRONT_AND_BACK, mode);
    const bool culls = code == VR_RASTERIZE_CULL_BACK || code == VR_RASTERIZE_CULL_FRONT;
    Set_Switch(Culling, GL_CULL_FACE, culls);
    const GLenum face = code == VR_RASTERIZE_CULL_BACK ? GL_BACK : GL_FRONT;
    if (culls && Changes(CulledFace, face)) glCullFace(face);
}

void GLState::Set_Blend(int code)
{
    if (BlendCode == code) return;
    BlendCode = code;
    for (const BlendRow &row : BLENDS) {
        if (row.Code != code) continue;
        Set_Switch(Blending, GL_BLEND, true);
        if (Changes(BlendEquation, row.Equation)) glBlendEquationSeparate(row.Equation, GL_FUNC_ADD);
        if (Changes(BlendFactors, static_cast<unsigned>(code)))
            glBlendFuncSeparate(row.Source, row.Target, row.SourceAlpha, row.TargetAlpha);
        return;
    }
    Set_Switch(Blending, GL_BLEND, false);
}

void GLState::Set_Depth(int code)
{
    if (DepthCode == code) return;
    DepthCode = code;
    const bool tests = code == VR_DEPTH_TEST_WRITE || code == VR_DEPTH_TEST;
    const bool writes = code == VR_DEPTH_TEST_WRITE || code == VR_DEPTH_WRITE;
    // Depth is written only where the test is on.
    Set_Switch(DepthTesting, GL_DEPTH_TEST, tests || writes);
    const GLenum function = tests ? GL_LEQUAL : GL_ALWAYS;
    if ((tests || writes) && Changes(DepthFunction, function)) glDepthFunc(function);
    const GLboolean mask = writes ? GL_TRUE : GL_FALSE;
    if (Changes(DepthMask, mask)) glDepthMask(mask);
}
