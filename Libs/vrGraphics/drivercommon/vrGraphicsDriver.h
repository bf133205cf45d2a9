#pragma once

/// What everything above draws through. `TheGraphicsDriver` is the one driver of the process, null until one is
/// started; the static part works without it. It is the main thread's, but for loading: a scan reads emitters on a
/// thread of its own, and they ask for their textures and shaders.
///
/// A draw goes: a shader instance begins and begins a pass; `Begin_..._Vertices` hands out room in a stream, which the
/// caller fills; `End_..._Vertices` draws what was filled in; pass and shader end. Fewer than `MAX_PRIM_VERTICES` are
/// drawn at once: a larger request asserts, and still yields a block of that size at the least.

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKString.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrGammaTable.h"
#include "vrGraphics/drivercommon/vrPostFxRunner.h"
#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrRenderState.h"
#include "vrGraphics/drivercommon/vrSceneEffectsParams.h"
#include "vrGraphics/drivercommon/vrShaderInstance.h"
#include "vrGraphics/drivercommon/vrTexture.h"
#include "vrGraphics/drivercommon/vrVertices.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class vrCamera;
class vrLightContext;
class vrLightSource;
class vrRenderContext;
struct Mat3DClass;
struct vrBounds;
struct vrLightField;
struct vrPicture2D;

enum vrRendererTypeEnum : int
{
    VR_RENDERER_NULL = 0,
    VR_RENDERER_FORWARD = 1,
    VR_RENDERER_LIGHT_PRE_PASS = 2
};

enum vrDriverType : int
{
    VR_DRIVER_D3D9 = 0,
    VR_DRIVER_NULL = 3,
    VR_DRIVER_OPENGL = 4
};

/// How a texture is read between and beyond its texels.
enum vrSamplerType : int
{
    VR_SAMPLER_LINEAR_WRAP = 0,
    VR_SAMPLER_LINEAR_CLAMP = 1,
    VR_SAMPLER_POINT_CLAMP = 2,
    VR_SAMPLER_PLAIN = 7 ///< linear, clamped, without smaller levels
};

/// The targets that the engine shares, by number. See also the driver's own names for some of them.
enum vrAuxiliaryRTEnum : int
{
    Reflection_RT = 0,
    Refraction_RT = 1,
    ShadowmapColor_RT = 2
};

enum vrAuxiliaryDepthBufferEnum : int
{
    Reflection_DB = 0,
    Refraction_DB = 1,
    ShadowmapHW_DB = 2
};

/// Targets of the size of the default one, without depth, which drivers with a picture make and remake with it.
enum vrFullScreenRTEnum : int
{
    SceneImage_RT = 0,     ///< "VRD3DRENDERER_FULLSCREEN_RT": what the phases drew; `SceneImageTexture`
    HeatDistortion_RT = 1, ///< "HEAT_DISTORTION_RT": `HeatDistortionTexture`
    PostFxMain0_RT = 2,    ///< the two that post-effects write in turn
    PostFxMain1_RT = 3,
    PostFxIRT0_RT = 4, ///< `PostFxIRT0Texture`
    PostFxIRT1_RT = 5, ///< `PostFxIRT1Texture`
    FULL_SCREEN_RT_COUNT = 6
};

struct vrViewport
{
    int X = 0; ///< from the left
    int Y = 0; ///< from the top
    int Width = 0;
    int Height = 0;

    friend bool operator==(const vrViewport &, const vrViewport &) = default;
};

/// What a render tells the shaders about the world.
struct vrEnvironmentValues
{
    RGBAClass Ambient{0.0f, 0.0f, 0.0f, 1.0f};
    RGBAClass FogColor;
    float FogNear = 0.0f; ///< world units
    float FogFar = 1.0f;
    float FogDensity = 0.0f; ///< 0 to 1 at the far end
    bool FogEnabled = false;
    float DayNightFactor = 1.0f;
    float Time = 0.0f; ///< the scene's, seconds
};

class vrGraphicsDriver
{
public:
    static constexpr int MAX_SHARED_FULLSCREEN_RTS = 4;
    static constexpr int GAMMA_TABLE_RESOLUTION = ::GAMMA_TABLE_RESOLUTION;
    static constexpr int GAMMA_TABLE_ENTRIES_COUNT = ::GAMMA_TABLE_ENTRIES_COUNT;

    // Bits of the toggleable states that this system reads. The others steer what it doesn't have.
    static constexpr uint64_t STATE_RENDERABLES = 0x1;
    static constexpr uint64_t STATE_TERRAIN = 0x2;
    static constexpr uint64_t STATE_PARTICLES = 0x8;
    static constexpr uint64_t STATE_LIGHT_FIELD = 0x80;
    static constexpr uint64_t STATE_THINK = 0x20000;
    static constexpr uint64_t STATE_HEAT_TARGET =
        0x100000; ///< heat into its own target, with the light pre-pass renderer
    static constexpr uint64_t STATE_FOG = 0x2000000;
    static constexpr uint64_t STATE_REFRACTION = 0x20000000;
    static constexpr uint64_t INITIAL_TOGGLEABLE_STATES = 0xFFFFFFFEE7DBFFFF;
    // Bits of the render passes of particles.
    static constexpr uint32_t PASS_PRE_RENDER = 2;
    static constexpr uint32_t PASS_RENDER = 4;

    virtual ~vrGraphicsDriver();
    vrGraphicsDriver(const vrGraphicsDriver &) = delete;
    vrGraphicsDriver &operator=(const vrGraphicsDriver &) = delete;

    // What works before a driver is there.
    static void Enable(uint64_t mask, bool on);
    static bool Is_Enabled(uint64_t mask) { return (m_toggleableStates & mask) == mask; }
    static uint64_t Get_Toggleable_States() { return m_toggleableStates; }
    static bool Is_Inside_Frame() { return m_bInsideFrame; }
    static uint32_t Get_PostFx_Permissions() { return PostFxPermissions; }
    static void Set_PostFx_Permissions(uint32_t mask) { PostFxPermissions = mask; }
    static uint32_t Get_Particle_Passes() { return ParticlePasses; }
    static void Set_Particle_Passes(uint32_t mask) { ParticlePasses = mask; }
    /// By file name, from the post-effects path; asserts a name. False, with the reason in the log, when it isn't all
    /// there, or there is no driver.
    static bool Load_PostFxs_Chain(const char *file_name);
    // Folders that are searched in the order of adding; engine paths, with or without the separator at the end.
    static void Add_Effects_Path(std::string_view path);
    static void Add_Texture_Path(std::string_view path);
    static void Clear_Effects_Path();
    static void Clear_Texture_Path();
    static void Set_PostFxs_Path(std::string_view path);
    static const std::vector<MK::String> &Get_Effects_Path();
    static const std::vector<MK::String> &Get_Texture_Path();
    static const MK::String &Get_PostFxs_Path();
    // Each takes a share and gives the old one up.
    static void Set_Cloud_Shadow_Texture(vrTexture *texture);
    static void Set_Fog_Of_War_Texture(vrTexture *texture);
    /// Keeps the reciprocal of its size too, which a null texture leaves as it was.
    static void Set_Shadow_Depth_Texture(vrTexture *texture);
    static vrTexture *Get_Cloud_Shadow_Texture();
    static vrTexture *Get_Fog_Of_War_Texture();
    static vrTexture *Get_Shadow_Depth_Texture();
    static Vector2 Get_Shadow_Inverse_Resolution() { return ShadowInverseResolution; }
    /// Debug: everything is drawn with the generic white texture.
    static void Set_Untextured(bool untextured) { Untextured = untextured; }
    static bool Is_Untextured() { return Untextured; }
    /// Table 0 converts the colours of particles and lights, table 1 back; the identity until gamma is set.
    static const vrGammaTable &Get_Gamma_Table(int table);
    /// The exponent that brings colours to linear light; 1 keeps them as they are, for targets that aren't sRGB.
    static void Set_Gamma(float exponent);
    static float Get_Gamma() { return Gamma; }
    /// 0 (lowest) to 4: what post-effects with a priority compare with, and what picks a shader's technique.
    static void Set_Quality(int quality) { Quality = quality; }
    static int Get_Quality() { return Quality; }

    // Frames.
    virtual bool Begin_Frame();
    /// Asserts an open frame.
    virtual void End_Frame();
    /// Counts the frame, and with `present` shows it.
    virtual void Page_Flip(bool present) = 0;
    uint32_t Get_Frame_Count() const { return FrameCount; }
    /// Seconds between the last two page flips; 0 before the second.
    float Get_Frame_Seconds() const { return FrameSeconds; }
    virtual void Set_Renderer_Type(vrRendererTypeEnum type, bool force) = 0;
    virtual vrRendererTypeEnum Get_Renderer_Type() const = 0;
    virtual bool Is_Renderer_Supported(vrRendererTypeEnum type) const = 0;
    /// Kept in the context too, where one is given.
    virtual void Set_Render_Mode(vrRenderModeType mode, vrRenderContext *context) = 0;
    virtual vrRenderModeType Get_Render_Mode() const = 0;
    /// Draws the tasks of a context, phase by phase, runs the post-effects, and empties the lists.
    virtual void Render_Tasks(vrRenderContext &context) = 0;
    virtual void Prepare_For_Scene() {}
    /// Of a normal render with the forward renderer, ahead of its tasks. What is given is the scene's, and stays as it
    /// is until the next one.
    virtual void Update_Light_Field(const vrLightField & /*field*/,
                                    const std::vector<const vrLightSource *> & /*lights*/, const vrBounds & /*bounds*/)
    {
    }
    virtual vrDriverType Get_Driver_Type() const = 0;
    uint64_t Get_Main_Thread_Id() const { return MainThreadId; }
    /// Markers for debuggers around what goes on between.
    virtual void Begin_Event(const char *name, vrColor color) = 0;
    virtual void End_Event() = 0;

    // Targets.
    virtual void Clear(bool color, bool depth, bool stencil, const RGBAClass *value, const RGBAClass *second,
                       float depthValue, int stencilValue) = 0;
    virtual void Flush_State() = 0;
    virtual void Set_Render_Target(int index, vrRenderTarget *target, int face) = 0;
    virtual void Reset_Render_Target() = 0;
    /// The one that was set last; null for the default.
    virtual vrRenderTarget *Get_Render_Target() const = 0;
    /// `format` 0 is eight bits a channel; `isDepth` asks for one that a shadow map can live in. Null when it can't be
    /// made.
    virtual SmartPtr<vrRenderTarget> Create_Render_Target(const char *name, int width, int height, int format,
                                                          int usage, int flag) = 0;
    virtual void Set_Depth_Buffer(vrDepthBuffer *buffer) = 0; ///< null for none
    virtual void Reset_Depth_Buffer() = 0;
    virtual SmartPtr<vrDepthBuffer> Create_Depth_Buffer(int width, int height, int type, int format, int flag) = 0;
    virtual vrRenderTarget *Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum target) = 0;
    virtual vrDepthBuffer *Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum buffer) = 0;
    /// Borrowed; null where there is none, as for a driver without a picture.
    virtual vrRenderTarget *Get_Full_Screen_Target(vrFullScreenRTEnum /*target*/) { return nullptr; }
    /// The same with more than eight bits a channel, which no driver has: asserts.
    virtual vrRenderTarget *Get_Full_Screen_HDR_Target(vrFullScreenRTEnum /*target*/)
    {
        MK_ASSERT(false, "HDR not implemented on dx9!  Are you trying to use an HDR PostFX?");
        return nullptr;
    }
    /// What shaders see as `PostFxInputTexture` from here on; null for none. Borrowed.
    virtual void Set_PostFx_Input(vrTexture * /*texture*/) {}
    /// Makes what was drawn into a target ready to be sampled.
    virtual void Resolve_Render_Target(vrRenderTarget * /*target*/) {}
    /// Copies what the current target shows.
    virtual void Copy_Target_To(vrRenderTarget *target) = 0;
    virtual void Set_Viewport(const vrViewport &viewport) = 0;
    virtual vrViewport Get_Viewport() const = 0;
    virtual int Get_Width() const = 0; ///< of the default target, pixels
    virtual int Get_Height() const = 0;

    // State.
    /// Asserts codes that are valid; the device hears of a block that differs from the last.
    void Set_Render_State_Block(const vrRenderStateBlock &block);
    const vrRenderStateBlock &Get_Render_State_Block() const { return StateBlock; }
    virtual void Set_Camera(vrCamera *camera) = 0; ///< takes over what it sees now; null keeps the last
    virtual void Set_World_Transform(const Mat3DClass *transform) = 0;
    /// For draws of a primitive state: positions are those of the target, -1 to 1 in x and, upwards, in y.
    void Set_Screen_Space(bool on) { ScreenSpace = on; }
    bool Is_Screen_Space() const { return ScreenSpace; }
    void Set_Light_Context(vrLightContext *lights) { LightContext = lights; } ///< borrowed
    vrLightContext *Get_Light_Context() const { return LightContext; }
    void Set_Fog_Enabled(bool enabled) { Environment.FogEnabled = enabled; }
    void Set_Environment(const vrEnvironmentValues &values) { Environment = values; }
    const vrEnvironmentValues &Get_Environment() const { return Environment; }
    virtual void Set_Texture(int stage, vrTexture *texture, vrSamplerType sampler) = 0;
    virtual void Flush_Register_Textures() {}

    // Streams of vertices. `ppv` takes the room; nothing is drawn for a null one.
    /// Draws between these two need no shader: they are textured with stage 0, times the colours of their vertices, in
    /// the world, or on the screen where `Set_Screen_Space` says so. `cull` 0 is none, `blend` 0 opaque and 1 alpha,
    /// `depth` 0 neither tests nor writes and 1 does both.
    virtual void Begin_Primitive_State(int cull, int blend, int depth) = 0;
    virtual void End_Primitive_State() = 0;
    bool Begin_Prim_Vertices(vrPrimitiveKind kind, int vcount, vrPrimVertex **ppv);
    void End_Prim_Vertices() { End_Draw(VR_PRIM_VERTEX); }
    bool Begin_Lit_Vertices(vrPrimitiveKind kind, int vcount, vrLitVertex **ppv);
    void End_Lit_Vertices() { End_Draw(VR_LIT_VERTEX); }
    bool Begin_Lit_Bump_Vertices(vrPrimitiveKind kind, int vcount, vrLitBumpVertex **ppv);
    void End_Lit_Bump_Vertices() { End_Draw(VR_LIT_BUMP_VERTEX); }
    bool Begin_Indexed_Prim_Vertices(vrPrimitiveKind kind, int vcount, vrPrimVertex **ppv, int icount, uint16_t **ppi);
    void End_Indexed_Prim_Vertices() { End_Draw(VR_PRIM_VERTEX); }
    bool Begin_Indexed_Lit_Vertices(vrPrimitiveKind kind, int vcount, vrLitVertex **ppv, int icount, uint16_t **ppi);
    void End_Indexed_Lit_Vertices() { End_Draw(VR_LIT_VERTEX); }
    bool Begin_Indexed_Lit_Bump_Vertices(vrPrimitiveKind kind, int vcount, vrLitBumpVertex **ppv, int icount,
                                         uint16_t **ppi);
    void End_Indexed_Lit_Bump_Vertices() { End_Draw(VR_LIT_BUMP_VERTEX); }

    // Assets.
    /// By file name, from the texture paths. Null, with a line in "VorenMissingTexturesLog", when there is none. The
    /// same name gives the same texture. Any thread may ask, so making one must not touch the device.
    SmartPtr<vrTexture> Load_Texture(std::string_view name);
    /// The same for a cube of six faces, which is a DDS file.
    SmartPtr<vrTexture> Load_Cube_Texture(std::string_view name);
    /// Drops the textures that nobody else holds.
    void Free_Unused_Textures();
    SmartPtr<vrTexture> Get_Generic_Texture() const { return GenericTexture; } ///< white
    /// An instance of the effect of that name, with a file's extension or without; the effect that stands in for a
    /// missing one where there is none, which the log tells once a name.
    virtual SmartPtr<vrShaderInstance> Create_Shader_Instance(std::string_view name) = 0;
    vrPostFxRunner *Get_PostFx() const { return PostFx.get(); }

protected:
    vrGraphicsDriver();

    // What drivers have in common at the start, on top of their own state, and at the end.
    bool Start_Shared(std::unique_ptr<vrPostFxRunner> postFx);
    void Shut_Down_Shared();
    /// Makes the device's texture of a picture; null when the device refuses it, with the reason in `error`.
    virtual SmartPtr<vrTexture> Make_Texture(std::string_view name, const vrPicture2D &picture, std::string &error) = 0;
    /// Faces in the order +x, -x, +y, -y, +z, -z, all of one form and size.
    virtual SmartPtr<vrTexture> Make_Cube_Texture(std::string_view name, const std::array<vrPicture2D, 6> &faces,
                                                  std::string &error);
    /// Room for the vertices of a draw, and for its indices where `indices` isn't null; null when there is none.
    virtual void *Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int vcount, int icount,
                             uint16_t **indices) = 0;
    virtual void End_Draw(vrPrimVertexType type) = 0;
    virtual void Apply_Render_State_Block(const vrRenderStateBlock &block) = 0;
    /// Whether the device has begun a frame.
    virtual bool Begin_Device_Frame() { return true; }
    virtual void End_Device_Frame() {}
    /// Walks the phases of a context, those in its mask, in order, and then its extra passes.
    void Render_Phases(vrRenderContext &context);
    // Around the tasks of a phase; the second is called only when there were some.
    virtual void Before_Phase(vrRenderContext & /*context*/) {}
    virtual void After_Tasks(vrRenderContext & /*context*/) {}
    virtual void After_Phase(vrRenderContext & /*context*/) {}
    void Forget_Render_State_Block() { IsStateBlockKnown = false; }
    void Count_Page_Flip(); ///< for each driver's `Page_Flip`

    static bool m_bInsideFrame;
    static uint64_t m_toggleableStates;

    SmartPtr<vrTexture> GenericTexture;
    vrEnvironmentValues Environment;

private:
    static uint32_t PostFxPermissions;
    static uint32_t ParticlePasses;
    static Vector2 ShadowInverseResolution;
    static bool Untextured;
    static float Gamma;
    static int Quality;

    struct TextureCache;

    SmartPtr<vrTexture> Find_Or_Make_Texture(std::string_view name, bool isCube);

    vrLightContext *LightContext = nullptr;
    bool ScreenSpace = false;
    vrRenderStateBlock StateBlock;
    bool IsStateBlockKnown = false;
    uint64_t MainThreadId = 0;
    uint32_t FrameCount = 0;
    float FrameSeconds = 0.0f;
    double LastFlipSeconds = 0.0;
    std::unique_ptr<vrPostFxRunner> PostFx;
    std::unique_ptr<TextureCache> Textures;
};

extern vrGraphicsDriver *TheGraphicsDriver;
