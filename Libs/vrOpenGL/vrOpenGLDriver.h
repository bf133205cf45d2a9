#pragma once

/// The driver that draws with OpenGL 3.3 core, forward. A surface gives it a context; it draws into a back buffer of
/// its own, which is shown on the surface at the end and may be read back. So a picture doesn't depend on whose surface
/// it is, and a surface may come, go and change its size.
///
/// What is drawn with (textures, targets, programs) is made when it is first used in a context. When the context is
/// lost, everything is made anew in the next one; targets have then lost what they showed.
///
/// Targets have the top row first, as pictures do. All is the main thread's.

#include "vrGraphics/drivercommon/vrEffectManager.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrOpenGL/EngineParameters.h"
#include "vrOpenGL/GLDevice.h"
#include "vrOpenGL/GLProgram.h"
#include "vrOpenGL/GLVertexStream.h"
#include "vrOpenGL/vrOpenGLEffect.h"
#include "vrOpenGL/vrOpenGLTexture.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class vrSurface;

class vrOpenGLDriver final : public vrGraphicsDriver
{
public:
    static constexpr int MAX_TARGETS = 4; ///< that one draw goes into

    /// Starts the driver, without a device. Asserts that there is no driver yet. False, with no driver, when it can't
    /// start.
    static bool Init();
    /// Ends the driver; nothing when it isn't there.
    static void Shutdown();
    /// The driver while it is one of these.
    static vrOpenGLDriver *Get_Instance() { return Instance; }

    // The device.
    /// Takes a surface, which is borrowed until another one or null is. False, with the reason, when it gives no
    /// device.
    bool Set_Surface(vrSurface *surface, std::string &error);
    /// Whether a frame can be drawn now. A device that was lost is made anew here, as soon as the surface lets it.
    bool Check_Device();
    /// -1 takes the surface's own size. A side of 0 keeps the picture as it is, and nothing is drawn until it grows.
    void Resize_Back_Buffer(int width, int height);
    /// What draws: "llvmpipe (...)"; empty without a device.
    const std::string &Get_Renderer_Name() const { return Device->Renderer; }
    /// The picture as it was drawn, rows from the top, red, green, blue, alpha. False without a device.
    bool Read_Back_Buffer(std::vector<uint8_t> &rgba);

    // For the objects of this driver.
    const std::shared_ptr<GLDevice> &Get_Device() const { return Device; }
    /// Makes the context current, for what is made outside of a frame. False without a device.
    bool Take_Context();
    bool Is_Drawing() const { return IsReady; }
    void Use_Program(GLProgram &program);
    void Use_No_Program() { Program = nullptr; }
    /// The generic texture where there is none. `target` is OpenGL's kind.
    void Bind_Texture(int unit, unsigned target, vrTexture *texture, vrSamplerType sampler, bool isColor);
    EngineParameterSource Get_Parameter_Source(const vrRenderContext *context);

    void Page_Flip(bool present) override;
    void Set_Renderer_Type(vrRendererTypeEnum type, bool force) override;
    vrRendererTypeEnum Get_Renderer_Type() const override { return RendererType; }
    bool Is_Renderer_Supported(vrRendererTypeEnum type) const override;
    void Set_Render_Mode(vrRenderModeType mode, vrRenderContext *context) override;
    vrRenderModeType Get_Render_Mode() const override { return RenderMode; }
    void Render_Tasks(vrRenderContext &context) override;
    vrDriverType Get_Driver_Type() const override { return VR_DRIVER_OPENGL; }
    void Begin_Event(const char *name, vrColor color) override;
    void End_Event() override;

    void Clear(bool color, bool depth, bool stencil, const RGBAClass *value, const RGBAClass *second, float depthValue,
               int stencilValue) override;
    void Flush_State() override;
    void Set_Render_Target(int index, vrRenderTarget *target, int face) override;
    void Reset_Render_Target() override;
    vrRenderTarget *Get_Render_Target() const override { return Targets[0].Get(); }
    SmartPtr<vrRenderTarget> Create_Render_Target(const char *name, int width, int height, int format, int usage,
                                                  int flag) override;
    void Set_Depth_Buffer(vrDepthBuffer *buffer) override;
    void Reset_Depth_Buffer() override;
    SmartPtr<vrDepthBuffer> Create_Depth_Buffer(int width, int height, int type, int format, int flag) override;
    vrRenderTarget *Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum target) override;
    vrDepthBuffer *Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum buffer) override;
    vrRenderTarget *Get_Full_Screen_Target(vrFullScreenRTEnum target) override;
    void Set_PostFx_Input(vrTexture *texture) override { View.PostFxInput = texture; }
    void Copy_Target_To(vrRenderTarget *target) override;
    void Set_Viewport(const vrViewport &viewport) override { View.Viewport = viewport; }
    vrViewport Get_Viewport() const override { return View.Viewport; }
    int Get_Width() const override { return Width; }
    int Get_Height() const override { return Height; }

    void Set_Camera(vrCamera *camera) override;
    void Set_World_Transform(const Mat3DClass *transform) override;
    void Set_Texture(int stage, vrTexture *texture, vrSamplerType sampler) override;
    void Flush_Register_Textures() override;

    void Begin_Primitive_State(int cull, int blend, int depth) override;
    void End_Primitive_State() override;

    /// Any thread may ask: away from the main one, compiling waits until the first use.
    SmartPtr<vrShaderInstance> Create_Shader_Instance(std::string_view name) override;
    /// Loads every effect of a folder, or of all folders for an empty path. Answers how many were found.
    int Load_All_Effects(std::string_view path, vrEffectCallback callback, void *context);
    SmartPtr<vrOpenGLEffect> Get_Missing_Effect();

protected:
    SmartPtr<vrTexture> Make_Texture(std::string_view name, const vrPicture2D &picture, std::string &error) override;
    SmartPtr<vrTexture> Make_Cube_Texture(std::string_view name, const std::array<vrPicture2D, 6> &faces,
                                          std::string &error) override;
    void *Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int vcount, int icount, uint16_t **indices) override;
    void End_Draw(vrPrimVertexType type) override;
    void Apply_Render_State_Block(const vrRenderStateBlock &block) override;
    bool Begin_Device_Frame() override;
    void End_Device_Frame() override;
    void Before_Phase(vrRenderContext &context) override;
    void After_Tasks(vrRenderContext &context) override;

private:
    /// A framebuffer for what is bound together, by serial numbers.
    struct FramebufferType
    {
        std::array<unsigned, MAX_TARGETS + 1> Serials{}; ///< the depth's last; 0 for none
        GLObject Framebuffer;
        bool IsComplete = false;
    };

    struct StageType
    {
        SmartPtr<vrTexture> Texture;
        vrSamplerType Sampler = VR_SAMPLER_PLAIN;
    };

    vrOpenGLDriver();
    ~vrOpenGLDriver() override;
    bool Start();

    // The device.
    bool Start_Device(std::string &error);
    void Lose_Device();
    void Forget_Device();
    bool Recover_Device();
    void Set_Back_Buffer_Size(int width, int height);
    void Present();

    // Targets.
    vrOpenGLRenderTarget *Get_Color_Target(int index) const;
    vrOpenGLDepthBuffer *Get_Depth_Target() const;
    const FramebufferType &Get_Framebuffer(const std::array<vrOpenGLRenderTarget *, MAX_TARGETS> &colors,
                                           vrOpenGLDepthBuffer *depth);
    unsigned Get_Framebuffer_Of(vrOpenGLRenderTarget *target);
    /// Copies between targets, the whole of each.
    void Copy(vrOpenGLRenderTarget *from, vrOpenGLRenderTarget *to);
    /// Brings the device to the targets and the viewport that were set; false when they can't be drawn into.
    bool Apply_Targets();
    void Take_Target_Size();

    // Draws.
    bool Build_Primitive_Program();
    void Send_Primitive_Values();

    // The forward renderer.
    bool Draws_Heat(const vrRenderContext &context) const;
    void Prepare_Heat(vrRenderContext &context);
    void End_Heat(vrRenderContext &context);
    void Draw_Neutral_Heat();
    void Run_PostFx(vrRenderContext &context);

    static vrOpenGLDriver *Instance;

    std::shared_ptr<GLDevice> Device;
    GLVertexStream Stream;
    std::mutex EffectsLock;
    vrEffectManager<vrOpenGLEffect> Effects;

    vrSurface *Surface = nullptr;
    unsigned Generation = 0;      ///< of the surface's context that the device is in
    bool IsReady = false;         ///< the context is there and current
    bool HasSystemBuffer = false; ///< the surface has a framebuffer of the system's to show the picture in
    bool HasToldOfGamma = false;
    bool HasSize = false;
    int EventDepth = 0;

    int Width = 1;
    int Height = 1;
    SmartPtr<vrOpenGLRenderTarget> BackBuffer;
    SmartPtr<vrOpenGLDepthBuffer> BackDepth;
    std::array<SmartPtr<vrOpenGLRenderTarget>, FULL_SCREEN_RT_COUNT> FullScreenTargets;
    std::array<SmartPtr<vrOpenGLRenderTarget>, 3> AuxiliaryTargets;
    std::array<SmartPtr<vrOpenGLDepthBuffer>, 3> AuxiliaryDepths;
    std::vector<FramebufferType> Framebuffers;

    std::array<SmartPtr<vrRenderTarget>, MAX_TARGETS> Targets; ///< null for the default one
    SmartPtr<vrDepthBuffer> Depth;
    bool HasDefaultDepth = true;

    vrRendererTypeEnum RendererType = VR_RENDERER_FORWARD;
    vrRenderModeType RenderMode = VR_RENDER_MODE_NORMAL;
    EngineView View;
    GLProgram *Program = nullptr; ///< that draws go through; null for none
    GLProgram PrimitiveProgram;
    bool IsPrimitiveProgramBroken = false;
    StageType PrimitiveStage;
    bool HasSceneImage = false; ///< of this render
    bool WritesData = false;    ///< what is drawn are displacements, whatever gamma says
};
