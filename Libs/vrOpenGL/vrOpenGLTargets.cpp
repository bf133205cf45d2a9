#include "vrOpenGL/vrOpenGLDriver.h"

#include "vrGraphics/drivercommon/vrDevice.h"
#include "vrGraphics/drivercommon/vrPicture.h"

#include "MKLib/MKDebug/Logger.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <utility>

static MKDebug::Logger VorenLog("VorenLog");

using MKDebug::LogLevel;

namespace
{

constexpr size_t MAX_FRAMEBUFFERS = 64; ///< kept; a frame needs some ten
constexpr int SHADOW_MAP_SIZE = 2048;   ///< texels along a side of the shared one

constexpr const char *FULL_SCREEN_NAMES[FULL_SCREEN_RT_COUNT] = {
    "VRD3DRENDERER_FULLSCREEN_RT",
    "HEAT_DISTORTION_RT",
    "POSTFX_MAIN0_RT",
    "POSTFX_MAIN1_RT",
    "POSTFX_IRT0_RT",
    "POSTFX_IRT1_RT",
};
constexpr const char *AUXILIARY_NAMES[] = {"REFLECTION", "REFRACTION", "SHADOWMAP"};

bool Is_Size_Sane(int width, int height, int limit)
{
    return width > 0 && height > 0 && width <= limit && height <= limit;
}

} // namespace

vrOpenGLRenderTarget *vrOpenGLDriver::Get_Color_Target(int index) const
{
    vrRenderTarget *target = Targets[static_cast<size_t>(index)].Get();
    if (!target) return index == 0 ? BackBuffer.Get() : nullptr;
    return dynamic_cast<vrOpenGLRenderTarget *>(target);
}

vrOpenGLDepthBuffer *vrOpenGLDriver::Get_Depth_Target() const
{
    if (HasDefaultDepth) return BackDepth.Get();
    return dynamic_cast<vrOpenGLDepthBuffer *>(Depth.Get());
}

const vrOpenGLDriver::FramebufferType &
vrOpenGLDriver::Get_Framebuffer(const std::array<vrOpenGLRenderTarget *, MAX_TARGETS> &colors,
                                vrOpenGLDepthBuffer *depth)
{
    FramebufferType made;
    std::array<unsigned, MAX_TARGETS> textures{};
    for (size_t i = 0; i < MAX_TARGETS; ++i) {
        if (!colors[i]) continue;
        textures[i] = colors[i]->Get_GL_Texture();
        made.Serials[i] = colors[i]->Get_Serial();
    }
    const unsigned depthTexture = depth ? depth->Get_GL_Texture() : 0;
    made.Serials[MAX_TARGETS] = depth ? depth->Get_Serial() : 0;
    const auto known = std::find_if(Framebuffers.begin(), Framebuffers.end(),
                                    [&](const FramebufferType &entry) { return entry.Serials == made.Serials; });
    if (known != Framebuffers.end()) return *known;

    // Those of targets that are gone would pile up.
    if (Framebuffers.size() >= MAX_FRAMEBUFFERS) Framebuffers.clear();
    made.Framebuffer = GLObject(Device->Life, GLObjectKind::Framebuffer);
    Device->State.Bind_Framebuffer(made.Framebuffer.Get());
    std::array<GLenum, MAX_TARGETS> buffers{};
    for (size_t i = 0; i < MAX_TARGETS; ++i) {
        const GLenum attachment = GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(i);
        buffers[i] = textures[i] ? attachment : GL_NONE;
        if (textures[i]) glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, attachment, GL_TEXTURE_2D, textures[i], 0);
    }
    if (depthTexture)
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, depthTexture, 0);
    glDrawBuffers(MAX_TARGETS, buffers.data());
    made.IsComplete = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    if (!made.IsComplete)
        MK_LOG(VorenLog, LogLevel::Error, "The device can't draw into the target %s of %dx%d",
               colors[0] ? colors[0]->Get_Name().c_str() : "without colour", colors[0] ? colors[0]->Get_Width() : 0,
               colors[0] ? colors[0]->Get_Height() : 0);
    return Framebuffers.emplace_back(std::move(made));
}

unsigned vrOpenGLDriver::Get_Framebuffer_Of(vrOpenGLRenderTarget *target)
{
    const FramebufferType &framebuffer = Get_Framebuffer({target}, nullptr);
    return framebuffer.IsComplete ? framebuffer.Framebuffer.Get() : 0;
}

bool vrOpenGLDriver::Apply_Targets()
{
    if (!IsReady) return false;
    std::array<vrOpenGLRenderTarget *, MAX_TARGETS> colors{};
    for (int i = 0; i < MAX_TARGETS; ++i) colors[static_cast<size_t>(i)] = Get_Color_Target(i);
    const FramebufferType &framebuffer = Get_Framebuffer(colors, Get_Depth_Target());
    if (!framebuffer.IsComplete) return false;
    Device->State.Bind_Framebuffer(framebuffer.Framebuffer.Get());
    Device->State.Set_Viewport(View.Viewport);
    Device->State.Set_Encoding(Uses_Gamma() && !WritesData && Device->Capabilities.HasColorSpaces);
    return true;
}

void vrOpenGLDriver::Take_Target_Size()
{
    const vrOpenGLRenderTarget *target = Get_Color_Target(0);
    View.TargetWidth = target ? std::max(1, target->Get_Width()) : 1;
    View.TargetHeight = target ? std::max(1, target->Get_Height()) : 1;
    View.Viewport = {0, 0, View.TargetWidth, View.TargetHeight};
}

void vrOpenGLDriver::Clear(bool color, bool depth, bool stencil, const RGBAClass *value, const RGBAClass *,
                           float depthValue, int stencilValue)
{
    if (!Apply_Targets()) return;
    // What depth states don't write, a clear doesn't write either.
    vrRenderStateBlock block;
    block.m_depthStencilState = VR_DEPTH_TEST_WRITE;
    Device->State.Set_Block(block);
    Forget_Render_State_Block();
    Device->State.Set_Encoding(false);
    GLbitfield mask = 0;
    if (color) {
        const RGBAClass shown = value ? *value : RGBAClass{0.0f, 0.0f, 0.0f, 0.0f};
        glClearColor(shown.R, shown.G, shown.B, shown.A);
        mask |= GL_COLOR_BUFFER_BIT;
    }
    if (depth) {
        glClearDepth(depthValue);
        mask |= GL_DEPTH_BUFFER_BIT;
    }
    if (stencil) {
        glClearStencil(stencilValue);
        mask |= GL_STENCIL_BUFFER_BIT;
    }
    glClear(mask);
}

void vrOpenGLDriver::Set_Render_Target(int index, vrRenderTarget *target, int)
{
    if (index < 0 || index >= MAX_TARGETS) {
        MK_LOG(VorenLog, LogLevel::Warning, "There is no render target %d: a draw goes into %d at the most", index,
               MAX_TARGETS);
        return;
    }
    Targets[static_cast<size_t>(index)] = target;
    if (index == 0) Take_Target_Size();
}

void vrOpenGLDriver::Reset_Render_Target()
{
    for (auto &target : Targets) target = nullptr;
    Take_Target_Size();
}

SmartPtr<vrRenderTarget> vrOpenGLDriver::Create_Render_Target(const char *name, int width, int height, int format, int,
                                                              int flag)
{
    const char *known = name ? name : "";
    const int limit = Device->Is_Alive() ? Device->Capabilities.MaxTextureSize : static_cast<int>(vrPicture::MAX_SIDE);
    const int kind = flag != 0 ? static_cast<int>(vrOpenGLRenderTarget::FORMAT_DEPTH) : format;
    if (!Is_Size_Sane(width, height, limit) || kind < 0 || kind >= vrOpenGLRenderTarget::FORMAT_COUNT) {
        MK_LOG(VorenLog, LogLevel::Error,
               "The render target %s of %dx%d in format %d can't be made: 1 to %d texels, formats 0 to %d", known,
               width, height, format, limit, vrOpenGLRenderTarget::FORMAT_COUNT - 1);
        return nullptr;
    }
    SmartPtr<vrOpenGLRenderTarget> target(
        new vrOpenGLRenderTarget(Device, known, width, height, static_cast<vrOpenGLRenderTarget::FormatType>(kind)));
    if (Take_Context() && Get_Framebuffer_Of(target.Get()) == 0) return nullptr;
    return target;
}

void vrOpenGLDriver::Set_Depth_Buffer(vrDepthBuffer *buffer)
{
    Depth = buffer;
    HasDefaultDepth = false;
}

void vrOpenGLDriver::Reset_Depth_Buffer()
{
    Depth = nullptr;
    HasDefaultDepth = true;
}

SmartPtr<vrDepthBuffer> vrOpenGLDriver::Create_Depth_Buffer(int width, int height, int, int, int)
{
    const int limit = Device->Is_Alive() ? Device->Capabilities.MaxTextureSize : static_cast<int>(vrPicture::MAX_SIDE);
    if (!Is_Size_Sane(width, height, limit)) {
        MK_LOG(VorenLog, LogLevel::Error, "A depth buffer of %dx%d can't be made: 1 to %d texels", width, height,
               limit);
        return nullptr;
    }
    SmartPtr<vrOpenGLDepthBuffer> buffer(new vrOpenGLDepthBuffer(Device, "depth buffer", width, height));
    if (Take_Context() && buffer->Get_GL_Texture() == 0) return nullptr;
    return buffer;
}

vrRenderTarget *vrOpenGLDriver::Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum target)
{
    if (target < 0 || target > ShadowmapColor_RT) return nullptr;
    auto &kept = AuxiliaryTargets[static_cast<size_t>(target)];
    const bool isShadow = target == ShadowmapColor_RT;
    if (!kept)
        kept = new vrOpenGLRenderTarget(
            Device, AUXILIARY_NAMES[target], isShadow ? SHADOW_MAP_SIZE : Width, isShadow ? SHADOW_MAP_SIZE : Height,
            isShadow ? vrOpenGLRenderTarget::FORMAT_DEPTH : vrOpenGLRenderTarget::FORMAT_RGBA8);
    return kept.Get();
}

vrDepthBuffer *vrOpenGLDriver::Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum buffer)
{
    if (buffer < 0 || buffer > ShadowmapHW_DB) return nullptr;
    auto &kept = AuxiliaryDepths[static_cast<size_t>(buffer)];
    const bool isShadow = buffer == ShadowmapHW_DB;
    if (!kept)
        kept = new vrOpenGLDepthBuffer(Device, AUXILIARY_NAMES[buffer], isShadow ? SHADOW_MAP_SIZE : Width,
                                       isShadow ? SHADOW_MAP_SIZE : Height);
    return kept.Get();
}

vrRenderTarget *vrOpenGLDriver::Get_Full_Screen_Target(vrFullScreenRTEnum target)
{
    if (target < 0 || target >= FULL_SCREEN_RT_COUNT) return nullptr;
    auto &kept = FullScreenTargets[static_cast<size_t>(target)];
    if (!kept)
        kept = new vrOpenGLRenderTarget(Device, FULL_SCREEN_NAMES[target], Width, Height,
                                        vrOpenGLRenderTarget::FORMAT_RGBA8);
    if (IsReady) kept->Get_GL_Texture();
    return kept.Get();
}

void vrOpenGLDriver::Copy_Target_To(vrRenderTarget *target)
{
    auto *to = dynamic_cast<vrOpenGLRenderTarget *>(target);
    vrOpenGLRenderTarget *from = Get_Color_Target(0);
    if (IsReady && from && to && from != to) Copy(from, to);
}

void vrOpenGLDriver::Copy(vrOpenGLRenderTarget *from, vrOpenGLRenderTarget *to)
{
    const unsigned source = Get_Framebuffer_Of(from);
    const unsigned target = Get_Framebuffer_Of(to);
    if (!source || !target) return;
    // Bytes are copied as they are, whatever they mean.
    Device->State.Set_Encoding(false);
    Device->State.Bind_Framebuffer(target);
    Device->State.Bind_Read_Framebuffer(source);
    const bool isSameSize = from->Get_Width() == to->Get_Width() && from->Get_Height() == to->Get_Height();
    glBlitFramebuffer(0, 0, from->Get_Width(), from->Get_Height(), 0, 0, to->Get_Width(), to->Get_Height(),
                      GL_COLOR_BUFFER_BIT, isSameSize ? GL_NEAREST : GL_LINEAR);
}

void vrOpenGLDriver::Present()
{
    const unsigned source = Get_Framebuffer_Of(BackBuffer.Get());
    const int width = Surface->Get_Width(), height = Surface->Get_Height();
    if (!source || width <= 0 || height <= 0) return;
    Device->State.Set_Encoding(false);
    Device->State.Bind_Framebuffer(Surface->Get_Framebuffer());
    Device->State.Bind_Read_Framebuffer(source);
    // The surface's first row is the bottom one.
    glBlitFramebuffer(0, 0, Width, Height, 0, height, width, 0, GL_COLOR_BUFFER_BIT,
                      width == Width && height == Height ? GL_NEAREST : GL_LINEAR);
}

bool vrOpenGLDriver::Read_Back_Buffer(std::vector<uint8_t> &rgba)
{
    if (!Take_Context()) return false;
    const unsigned source = Get_Framebuffer_Of(BackBuffer.Get());
    if (!source) return false;
    rgba.resize(static_cast<size_t>(Width) * static_cast<size_t>(Height) * 4);
    Device->State.Bind_Read_Framebuffer(source);
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glReadPixels(0, 0, Width, Height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return true;
}
