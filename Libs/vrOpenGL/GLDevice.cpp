#include "vrOpenGL/GLDevice.h"

#include "MKLib/MKDebug/Logger.h"

#include <epoxy/gl.h>

#include <algorithm>

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

constexpr int MESSAGE_LIMIT = 64; ///< of the device's messages in the log, for each context

int MessagesLeft = 0;

void APIENTRY Log_Message(GLenum source, GLenum, GLuint, GLenum severity, GLsizei, const GLchar *message, const void *)
{
    // Who compiles tells of errors with the names of files.
    if (source == GL_DEBUG_SOURCE_SHADER_COMPILER) return;
    if (severity == GL_DEBUG_SEVERITY_NOTIFICATION || severity == GL_DEBUG_SEVERITY_LOW || MessagesLeft <= 0) return;
    --MessagesLeft;
    const auto level = severity == GL_DEBUG_SEVERITY_HIGH ? MKDebug::LogLevel::Error : MKDebug::LogLevel::Warning;
    MK_LOG(VorenLog, level, "OpenGL: %s", message);
}

} // namespace

unsigned GLSampled::Get_GL_Target() const
{
    return GL_TEXTURE_2D;
}

GLDevice::GLDevice() : Life(std::make_shared<GLContextLife>())
{
}

bool GLDevice::Begin(std::string &error)
{
    const int version = epoxy_gl_version();
    if (!epoxy_is_desktop_gl() || version < 33) {
        error = "OpenGL " + std::to_string(version / 10) + "." + std::to_string(version % 10) +
                (epoxy_is_desktop_gl() ? "" : " ES") + ", where 3.3 is needed";
        return false;
    }
    Life->Begin();
    State.Forget();
    const auto *renderer = reinterpret_cast<const char *>(glGetString(GL_RENDERER));
    Renderer = renderer ? renderer : "unnamed renderer";
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &Capabilities.MaxTextureSize);
    Capabilities.HasBlockTextures =
        epoxy_has_gl_extension("GL_EXT_texture_compression_s3tc") && epoxy_has_gl_extension("GL_EXT_texture_sRGB");
    Capabilities.HasColorSpaces = epoxy_has_gl_extension("GL_EXT_texture_sRGB_decode");
    Capabilities.HasMarkers = epoxy_has_gl_extension("GL_KHR_debug");
    Capabilities.HasResetStatus = version >= 45 || epoxy_has_gl_extension("GL_KHR_robustness");
    if (Capabilities.HasMarkers) {
        MessagesLeft = MESSAGE_LIMIT;
        glEnable(GL_DEBUG_OUTPUT);
        glDebugMessageCallback(Log_Message, nullptr);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    return true;
}

void GLDevice::End()
{
    for (GLObject &sampler : Samplers) sampler = GLObject();
    Life->End();
    State.Forget();
}

unsigned GLDevice::Get_Sampler(vrSamplerType type, bool decodes)
{
    const int kind = type == VR_SAMPLER_PLAIN ? 3 : std::clamp(static_cast<int>(type), 0, SAMPLER_KINDS - 2);
    GLObject &sampler = Samplers[static_cast<size_t>(kind * 2 + (decodes ? 1 : 0))];
    if (sampler) return sampler.Get();

    sampler = GLObject(Life, GLObjectKind::Sampler);
    const GLuint name = sampler.Get();
    const bool isPoint = type == VR_SAMPLER_POINT_CLAMP;
    const bool hasLevels = type != VR_SAMPLER_PLAIN && !isPoint;
    const GLint wrap = kind == VR_SAMPLER_LINEAR_WRAP ? GL_REPEAT : GL_CLAMP_TO_EDGE;
    glSamplerParameteri(name, GL_TEXTURE_WRAP_S, wrap);
    glSamplerParameteri(name, GL_TEXTURE_WRAP_T, wrap);
    glSamplerParameteri(name, GL_TEXTURE_MAG_FILTER, isPoint ? GL_NEAREST : GL_LINEAR);
    glSamplerParameteri(name, GL_TEXTURE_MIN_FILTER,
                        isPoint     ? GL_NEAREST
                        : hasLevels ? GL_LINEAR_MIPMAP_LINEAR
                                    : GL_LINEAR);
    if (Capabilities.HasColorSpaces)
        glSamplerParameteri(name, GL_TEXTURE_SRGB_DECODE_EXT, decodes ? GL_DECODE_EXT : GL_SKIP_DECODE_EXT);
    return name;
}
