#pragma once

/// The driver that draws nothing: everything above runs on it without a device, and gets well-formed answers.
///
/// Its `Render_Tasks` only empties the lists, unless `Set_Runs_Tasks` asks for more: then tasks are sorted,
/// pre-rendered and run phase by phase as on a device, so that selection, sorting and vertex building do their work.
/// While recording is on, each draw is kept for who wants to look at it.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/nulldriver/vrNullDrawRecord.h"
#include "vrGraphics/nulldriver/vrNullEffectInstance.h"

#include <mutex>

class vrNullDriverMethods final : public vrGraphicsDriver
{
public:
    /// Starts the driver: `TheGraphicsDriver` points to it from then on. Asserts that there is none. `context` is not
    /// looked at; sizes in pixels. False, with no driver, when it can't start.
    static bool Init(void *context, int width, int height);
    /// Ends the driver; nothing when it isn't there.
    static void Shutdown();
    static bool Is_Initialized() { return Initialized; }

    /// Whether `Render_Tasks` runs the tasks; off at first. Stays over a shutdown.
    static void Set_Runs_Tasks(bool runs) { RunsTasks = runs; }
    static bool Runs_Tasks() { return RunsTasks; }
    /// Whether draws are kept; off at first. What was kept goes with each change.
    static void Set_Recording(bool recording);
    static const std::vector<vrNullDrawRecord> &Get_Draws() { return Draws; }
    static void Clear_Draws() { Draws.clear(); }

    void Set_Size(int width, int height);

    void Page_Flip(bool present) override;
    void Set_Renderer_Type(vrRendererTypeEnum type, bool force) override;
    vrRendererTypeEnum Get_Renderer_Type() const override { return VR_RENDERER_NULL; }
    bool Is_Renderer_Supported(vrRendererTypeEnum) const override { return false; }
    /// Nothing, unless tasks run.
    void Set_Render_Mode(vrRenderModeType mode, vrRenderContext *context) override;
    /// The normal one, unless tasks run.
    vrRenderModeType Get_Render_Mode() const override;
    void Render_Tasks(vrRenderContext &context) override;
    vrDriverType Get_Driver_Type() const override { return VR_DRIVER_NULL; }
    void Begin_Event(const char *, vrColor) override {}
    void End_Event() override {}

    void Clear(bool, bool, bool, const RGBAClass *, const RGBAClass *, float, int) override {}
    void Flush_State() override {}
    void Set_Render_Target(int index, vrRenderTarget *target, int face) override;
    void Reset_Render_Target() override { Target = nullptr; }
    vrRenderTarget *Get_Render_Target() const override { return Target.Get(); }
    SmartPtr<vrRenderTarget> Create_Render_Target(const char *name, int width, int height, int format, int usage,
                                                  int flag) override;
    void Set_Depth_Buffer(vrDepthBuffer *) override {}
    void Reset_Depth_Buffer() override {}
    SmartPtr<vrDepthBuffer> Create_Depth_Buffer(int width, int height, int type, int format, int flag) override;
    vrRenderTarget *Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum target) override;
    vrDepthBuffer *Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum buffer) override;
    void Copy_Target_To(vrRenderTarget *) override {}
    void Set_Viewport(const vrViewport &viewport) override { Viewport = viewport; }
    vrViewport Get_Viewport() const override { return Viewport; }
    int Get_Width() const override { return Width; }
    int Get_Height() const override { return Height; }

    void Set_Camera(vrCamera *) override {}
    void Set_World_Transform(const Mat3DClass *transform) override;
    void Set_Texture(int, vrTexture *, vrSamplerType) override {}

    void Begin_Primitive_State(int, int, int) override {}
    void End_Primitive_State() override {}

    SmartPtr<vrShaderInstance> Create_Shader_Instance(std::string_view name) override;

protected:
    SmartPtr<vrTexture> Make_Texture(std::string_view name, const vrPicture2D &picture, std::string &error) override;
    SmartPtr<vrTexture> Make_Cube_Texture(std::string_view name, const std::array<vrPicture2D, 6> &faces,
                                          std::string &error) override;
    void *Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int vcount, int icount, uint16_t **indices) override;
    void End_Draw(vrPrimVertexType type) override;
    void Apply_Render_State_Block(const vrRenderStateBlock &) override {}
    void Before_Phase(vrRenderContext &context) override;

private:
    vrNullDriverMethods(int width, int height);
    ~vrNullDriverMethods() override;

    bool Start();
    void Record_Draw();

    static bool Initialized;
    static bool RunsTasks;
    static bool IsRecording;
    static std::vector<vrNullDrawRecord> Draws;

    int Width;
    int Height;
    vrViewport Viewport;
    vrRenderModeType Mode = VR_RENDER_MODE_NORMAL;
    vrRenderPhaseEnum Phase = vrRenderPhaseEnum::Terrain;
    Mat3DClass World;
    std::mutex EffectsLock; ///< emitters load on a scan's thread too
    vrEffectManager<vrNullEffect> Effects;
    SmartPtr<vrRenderTarget> Target;
    std::array<SmartPtr<vrRenderTarget>, 3> AuxiliaryTargets;
    std::array<SmartPtr<vrDepthBuffer>, 3> AuxiliaryDepthBuffers;
    std::vector<uint8_t> VertexBlock;
    std::vector<uint16_t> IndexBlock;
    // The draw between its begin and its end.
    bool IsDrawOpen = false;
    vrPrimVertexType DrawType = VR_PRIM_VERTEX;
    vrPrimitiveKind DrawKind = VR_PRIMITIVE_TRIANGLES;
    int DrawVertices = 0;
    int DrawIndices = 0;
};
