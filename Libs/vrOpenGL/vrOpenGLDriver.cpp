#include "vrOpenGL/vrOpenGLDriver.h"

#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrDevice.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/postfx/vrPostFxManager.h"
#include "vrOpenGL/vrOpenGLShaderInstance.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MKMath/Mat3D.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <utility>

static MKDebug::Logger VorenLog("VorenLog");

using MKDebug::LogLevel;

vrOpenGLDriver *vrOpenGLDriver::Instance = nullptr;

vrOpenGLDriver::vrOpenGLDriver() : Device(std::make_shared<GLDevice>()), Stream(Device)
{
    BackBuffer = new vrOpenGLRenderTarget(Device, "back buffer", Width, Height, vrOpenGLRenderTarget::FORMAT_RGBA8);
    BackDepth = new vrOpenGLDepthBuffer(Device, "back buffer", Width, Height);
    View.World = View.View = View.ViewInverse = View.Projection = View.ViewProjection =
        vrMatrix44::From_Transform(Mat3DClass());
}

vrOpenGLDriver::~vrOpenGLDriver() = default;

bool vrOpenGLDriver::Init()
{
    if (!MK_VERIFY(TheGraphicsDriver == nullptr, "TheGraphicsDriver == NULL")) return false;
    Instance = new vrOpenGLDriver;
    TheGraphicsDriver = Instance;
    if (Instance->Start()) return true;
    Shutdown();
    return false;
}

bool vrOpenGLDriver::Start()
{
    vrPicture2D white;
    white.Levels.push_back({1, 1, {255, 255, 255, 255}});
    std::string error;
    GenericTexture = Make_Texture("generic white", white, error);
    return GenericTexture && Start_Shared(std::make_unique<vrPostFxManager>(*this));
}

void vrOpenGLDriver::Shutdown()
{
    if (!Instance) return;
    vrOpenGLDriver *driver = Instance;
    std::string error;
    driver->Shut_Down_Shared();
    driver->Effects.Clear();
    driver->Set_Surface(nullptr, error);
    Instance = nullptr;
    TheGraphicsDriver = nullptr;
    delete driver;
}

bool vrOpenGLDriver::Set_Surface(vrSurface *surface, std::string &error)
{
    if (Surface && IsReady && Surface->Make_Current()) {
        // Others may still hold textures: what they give up from here on goes with the context.
        Stream.Stop();
        Framebuffers.clear();
        PrimitiveProgram = GLProgram();
        BackBuffer->Forget();
        BackDepth->Forget();
        for (auto &target : FullScreenTargets) target = nullptr;
        for (auto &target : AuxiliaryTargets) target = nullptr;
        for (auto &depth : AuxiliaryDepths) depth = nullptr;
        Device->Life->Delete_Given_Up();
        Device->End();
        Surface->Release_Current();
    }
    Forget_Device();
    Surface = surface;
    if (!Surface) return true;
    if (!Surface->Make_Current()) {
        error = Surface->Describe() + ": the context can't be made current";
        return false;
    }
    if (!Start_Device(error)) {
        Surface->Release_Current();
        return false;
    }
    MK_LOG(VorenLog, LogLevel::Info, "Drawing with %s (%s)", Device->Renderer.c_str(), Surface->Describe().c_str());
    return true;
}

bool vrOpenGLDriver::Start_Device(std::string &error)
{
    if (!Device->Begin(error)) return false;
    Generation = Surface->Get_Generation();
    Stream.Start();
    Device->State.Bind_Framebuffer(0);
    HasSystemBuffer = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    IsReady = true;
    IsPrimitiveProgramBroken = false;
    EventDepth = 0;
    Flush_State();
    Resize_Back_Buffer(-1, -1);
    return true;
}

void vrOpenGLDriver::Lose_Device()
{
    if (!Device->Is_Alive()) return;
    MK_LOG(VorenLog, LogLevel::Warning, "The graphics device %s is lost", Device->Renderer.c_str());
    Forget_Device();
}

void vrOpenGLDriver::Forget_Device()
{
    IsReady = false;
    Program = nullptr;
    Device->End();
    Stream.Stop();
    Framebuffers.clear();
}

bool vrOpenGLDriver::Recover_Device()
{
    Lose_Device();
    if (!Surface->Make_Current() && !(Surface->Recreate_Context() && Surface->Make_Current())) return false;
    std::string error;
    if (Start_Device(error)) {
        MK_LOG(VorenLog, LogLevel::Info, "The graphics device is back: %s", Device->Renderer.c_str());
        return true;
    }
    MK_LOG(VorenLog, LogLevel::Error, "The graphics device can't be made anew: %s", error.c_str());
    return false;
}

bool vrOpenGLDriver::Check_Device()
{
    if (!Surface) return false;
    const bool isCurrent = Surface->Make_Current();
    if (!isCurrent || !Device->Is_Alive() || Surface->Get_Generation() != Generation) {
        if (!Recover_Device()) return false;
    } else if (Device->Capabilities.HasResetStatus && glGetGraphicsResetStatus() != GL_NO_ERROR) {
        // Nothing more can be done in a context that was reset.
        if (!Surface->Recreate_Context() || !Recover_Device()) {
            Lose_Device();
            return false;
        }
    }
    IsReady = true;
    return HasSize;
}

bool vrOpenGLDriver::Take_Context()
{
    if (!Surface || !Device->Is_Alive()) return false;
    if (Is_Inside_Frame() && IsReady) return true;
    IsReady = false;
    if (!Surface->Make_Current() || Surface->Get_Generation() != Generation) return false;
    // Who had it in between may have changed anything.
    Flush_State();
    IsReady = true;
    return true;
}

void vrOpenGLDriver::Resize_Back_Buffer(int width, int height)
{
    if (Surface && width < 0) width = Surface->Get_Width();
    if (Surface && height < 0) height = Surface->Get_Height();
    HasSize = width > 0 && height > 0;
    if (!HasSize) return;
    const int limit = Device->Is_Alive() ? Device->Capabilities.MaxTextureSize : std::max(width, height);
    Set_Back_Buffer_Size(std::min(width, limit), std::min(height, limit));
}

void vrOpenGLDriver::Set_Back_Buffer_Size(int width, int height)
{
    Width = width;
    Height = height;
    BackBuffer->Resize(width, height);
    BackDepth->Resize(width, height);
    for (auto &target : FullScreenTargets)
        if (target) target->Resize(width, height);
    for (const int at : {Reflection_RT, Refraction_RT}) {
        if (auto &target = AuxiliaryTargets[static_cast<size_t>(at)]) target->Resize(width, height);
        if (auto &depth = AuxiliaryDepths[static_cast<size_t>(at)]) depth->Resize(width, height);
    }
    Take_Target_Size();
}

bool vrOpenGLDriver::Begin_Device_Frame()
{
    if (!Check_Device()) return false;
    Device->Life->Delete_Given_Up();
    if (Uses_Gamma() && !Device->Capabilities.HasColorSpaces && !std::exchange(HasToldOfGamma, true))
        MK_LOG(VorenLog, LogLevel::Warning, "%s can't work in linear light: it doesn't decode sRGB textures",
               Device->Renderer.c_str());
    Flush_State();
    GLVertexStream::Set_Constant_Attributes();
    return true;
}

void vrOpenGLDriver::End_Device_Frame()
{
    Stream.Abandon();
    Program = nullptr;
    while (EventDepth > 0) End_Event();
}

void vrOpenGLDriver::Page_Flip(bool present)
{
    Count_Page_Flip();
    if (!present || !Take_Context()) return;
    if (HasSystemBuffer || Surface->Get_Framebuffer() != 0) Present();
    Surface->Swap();
}

void vrOpenGLDriver::Set_Renderer_Type(vrRendererTypeEnum type, bool)
{
    MK_ASSERT(Is_Main_Thread() || !RenderThread::InParallelSection,
              "(Is_Main_Thread() || !RenderThread::InParallelSection) && \"Attempting to call a function from an "
              "unsafe section of code.\"");
    if (Is_Renderer_Supported(type))
        RendererType = type;
    else
        MK_LOG(VorenLog, LogLevel::Warning, "The renderer %d isn't there; %d stays", static_cast<int>(type),
               static_cast<int>(RendererType));
}

bool vrOpenGLDriver::Is_Renderer_Supported(vrRendererTypeEnum type) const
{
    // The light pre-pass earns its place with many lights on opaque surfaces, which a scene of particles doesn't have.
    return type == VR_RENDERER_NULL || type == VR_RENDERER_FORWARD;
}

void vrOpenGLDriver::Set_Render_Mode(vrRenderModeType mode, vrRenderContext *context)
{
    RenderMode = mode;
    if (context) context->Mode = mode;
}

void vrOpenGLDriver::Begin_Event(const char *name, vrColor)
{
    if (!IsReady || !Device->Capabilities.HasMarkers) return;
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 0, -1, name ? name : "");
    ++EventDepth;
}

void vrOpenGLDriver::End_Event()
{
    if (EventDepth == 0) return;
    --EventDepth;
    if (IsReady) glPopDebugGroup();
}

void vrOpenGLDriver::Flush_State()
{
    Device->State.Forget();
    Forget_Render_State_Block();
}

void vrOpenGLDriver::Apply_Render_State_Block(const vrRenderStateBlock &block)
{
    if (IsReady) Device->State.Set_Block(block);
}

void vrOpenGLDriver::Set_Camera(vrCamera *camera)
{
    if (!camera) return;
    View.View = camera->Get_View();
    View.ViewInverse = vrMatrix44::From_Transform(camera->Get_Transform());
    View.Projection = camera->Get_Projection();
    View.ViewProjection = camera->Get_View_Projection();
    View.EyePosition = camera->Get_Position();
    View.Near = camera->Get_Near();
    View.Far = camera->Get_Far();
    View.FadeStart = camera->Get_Object_Fade_Depth();
    View.FadeEnd = camera->Get_Object_Fade_End();
}

void vrOpenGLDriver::Set_World_Transform(const Mat3DClass *transform)
{
    View.World = vrMatrix44::From_Transform(transform ? *transform : Mat3DClass());
}

SmartPtr<vrTexture> vrOpenGLDriver::Make_Texture(std::string_view name, const vrPicture2D &picture, std::string &error)
{
    return vrOpenGLTexture::Make(Device, name, {picture}, error);
}

SmartPtr<vrTexture> vrOpenGLDriver::Make_Cube_Texture(std::string_view name, const std::array<vrPicture2D, 6> &faces,
                                                      std::string &error)
{
    return vrOpenGLTexture::Make(Device, name, {faces.begin(), faces.end()}, error);
}

SmartPtr<vrShaderInstance> vrOpenGLDriver::Create_Shader_Instance(std::string_view name)
{
    SmartPtr<vrOpenGLEffect> effect;
    bool isMissing = false;
    {
        const std::lock_guard lock(EffectsLock);
        effect = Effects.Get_Effect(name);
        isMissing = Effects.Is_Missing_Effect(effect.Get());
    }
    return SmartPtr<vrShaderInstance>(new vrOpenGLShaderInstance(name, effect, isMissing));
}

int vrOpenGLDriver::Load_All_Effects(std::string_view path, vrEffectCallback callback, void *context)
{
    const std::lock_guard lock(EffectsLock);
    return Effects.Load_All_Effects(path, callback, context);
}

SmartPtr<vrOpenGLEffect> vrOpenGLDriver::Get_Missing_Effect()
{
    const std::lock_guard lock(EffectsLock);
    return Effects.Get_Missing_Effect();
}

EngineParameterSource vrOpenGLDriver::Get_Parameter_Source(const vrRenderContext *context)
{
    return {*this, View, Environment, context};
}
