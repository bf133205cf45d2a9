#include "vrOpenGL/vrOpenGLDriver.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MKMath/Mat3D.h"

#include <epoxy/gl.h>

#include <string_view>

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

// What draws of a primitive state go through: a texture times the vertex's colour.
constexpr const char *PRIMITIVE_VERTEX_STAGE = R"(#version 330 core
layout(location = 0) in vec3 inPosition;
layout(location = 2) in vec2 inUV;
layout(location = 5) in vec4 inColor;
uniform mat4 Transform;
uniform float Gamma;
out vec2 UV;
out vec4 Color;
void main()
{
    gl_Position = Transform * vec4(inPosition, 1.0);
    UV = inUV;
    Color = inColor;
    if (Gamma != 1.0) Color.rgb = pow(Color.rgb, vec3(Gamma));
}
)";
constexpr const char *PRIMITIVE_FRAGMENT_STAGE = R"(#version 330 core
in vec2 UV;
in vec4 Color;
uniform sampler2D BaseTexture;
layout(location = 0) out vec4 outColor;
void main()
{
    outColor = texture(BaseTexture, UV) * Color;
}
)";

vrRenderStateBlock Get_Primitive_Block(int cull, int blend, int depth)
{
    // Small numbers are the tool's own; state codes may be given as they are.
    vrRenderStateBlock block;
    block.m_rasterizeState = cull >= VR_DEPTH_NONE ? cull : cull == 0 ? VR_RASTERIZE_CULL_NONE : VR_RASTERIZE_CULL_BACK;
    block.m_blendState = blend >= VR_DEPTH_NONE ? blend : blend == 0 ? VR_BLEND_OPAQUE : VR_BLEND_ALPHA;
    block.m_depthStencilState = depth >= VR_DEPTH_NONE ? depth : depth == 0 ? VR_DEPTH_NONE : VR_DEPTH_TEST_WRITE;
    return block;
}

} // namespace

void vrOpenGLDriver::Use_Program(GLProgram &program)
{
    Program = &program;
    if (IsReady) Device->State.Use_Program(program.Get());
}

void vrOpenGLDriver::Bind_Texture(int unit, unsigned target, vrTexture *texture, vrSamplerType sampler, bool isColor)
{
    if (!IsReady) return;
    // No device reads what it writes.
    const bool isDrawnInto = texture && texture == Targets[0].Get();
    auto *sampled = isDrawnInto ? nullptr : dynamic_cast<GLSampled *>(texture);
    unsigned name = sampled && sampled->Get_GL_Target() == target ? sampled->Get_GL_Texture() : 0;
    if (!name && target == GL_TEXTURE_2D)
        if (auto *generic = dynamic_cast<GLSampled *>(GenericTexture.Get())) name = generic->Get_GL_Texture();
    Device->State.Bind_Texture(unit, target, name, Device->Get_Sampler(sampler, isColor && Uses_Gamma()));
}

void vrOpenGLDriver::Set_Texture(int stage, vrTexture *texture, vrSamplerType sampler)
{
    if (stage == 0) PrimitiveStage = {SmartPtr<vrTexture>(texture), sampler};
    Bind_Texture(stage, GL_TEXTURE_2D, texture, sampler, true);
}

void vrOpenGLDriver::Flush_Register_Textures()
{
    PrimitiveStage = {};
}

bool vrOpenGLDriver::Build_Primitive_Program()
{
    if (PrimitiveProgram) return true;
    if (IsPrimitiveProgramBroken) return false;
    std::string errors;
    if (PrimitiveProgram.Build(*Device, PRIMITIVE_VERTEX_STAGE, PRIMITIVE_FRAGMENT_STAGE, errors)) return true;
    IsPrimitiveProgramBroken = true;
    MK_LOG(VorenLog, MKDebug::LogLevel::Error, " Shader %s failed to compile!\r\nErrors: %s", "of plain primitives",
           errors.c_str());
    return false;
}

void vrOpenGLDriver::Begin_Primitive_State(int cull, int blend, int depth)
{
    if (!IsReady || !Build_Primitive_Program()) return;
    Set_Render_State_Block(Get_Primitive_Block(cull, blend, depth));
    Use_Program(PrimitiveProgram);
    // The sampler reads unit 0, as every uniform of a new program is zero.
    Bind_Texture(0, GL_TEXTURE_2D, PrimitiveStage.Texture.Get(), PrimitiveStage.Sampler, true);
}

void vrOpenGLDriver::End_Primitive_State()
{
    Use_No_Program();
}

void vrOpenGLDriver::Send_Primitive_Values()
{
    const vrMatrix44 transform =
        Is_Screen_Space() ? vrMatrix44::From_Transform(Mat3DClass()) : View.ViewProjection * View.World;
    const float gamma = Device->Capabilities.HasColorSpaces && !WritesData ? Get_Gamma() : 1.0f;
    const std::vector<GLUniform> &uniforms = PrimitiveProgram.Get_Uniforms();
    for (size_t i = 0; i < uniforms.size(); ++i) {
        if (uniforms[i].Name == "Transform") PrimitiveProgram.Set(i, transform.Elements.data());
        if (uniforms[i].Name == "Gamma") PrimitiveProgram.Set(i, &gamma);
    }
}

void *vrOpenGLDriver::Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int vcount, int icount,
                                 uint16_t **indices)
{
    if (!IsReady) return nullptr;
    return indices ? Stream.Begin_Indexed(type, kind, vcount, icount, indices) : Stream.Begin(type, kind, vcount);
}

void vrOpenGLDriver::End_Draw(vrPrimVertexType)
{
    if (!Stream.Is_Open()) return;
    if (!IsReady || !Program || !Apply_Targets()) {
        Stream.Abandon();
        return;
    }
    if (Program == &PrimitiveProgram) Send_Primitive_Values();
    Stream.End();
}
