#include "vrOpenGL/vrOpenGLDriver.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"

namespace
{

constexpr vrColor NEUTRAL_HEAT = Pack_Color(128, 128, 128, 255); ///< no displacement

bool Is_Normal(vrRenderModeType mode)
{
    return mode == VR_RENDER_MODE_NORMAL || mode == VR_RENDER_MODE_FULL_SCREEN;
}

} // namespace

void vrOpenGLDriver::Render_Tasks(vrRenderContext &context)
{
    if (IsReady && RendererType == VR_RENDERER_FORWARD) {
        HasSceneImage = false;
        context.Sort_Tasks();
        context.Pre_Render_Tasks();
        Set_Camera(context.Camera);
        Render_Phases(context);
        if (Is_Normal(context.Mode)) Run_PostFx(context);
    }
    context.Clear_Tasks();
    vrGraphicsStats::Renders.fetch_add(1, std::memory_order_relaxed);
}

void vrOpenGLDriver::Before_Phase(vrRenderContext &context)
{
    if (Draws_Heat(context)) Prepare_Heat(context);
}

void vrOpenGLDriver::After_Tasks(vrRenderContext &context)
{
    if (Draws_Heat(context)) End_Heat(context);
}

bool vrOpenGLDriver::Draws_Heat(const vrRenderContext &context) const
{
    return context.Phase == vrRenderPhaseEnum::Heat && Is_Normal(context.Mode) &&
           !context.Get_Tasks(vrRenderPhaseEnum::Heat).empty();
}

void vrOpenGLDriver::Prepare_Heat(vrRenderContext &context)
{
    Copy_Target_To(Get_Full_Screen_Target(SceneImage_RT));
    HasSceneImage = true;
    WritesData = true;
    if ((context.PostFxMask & VR_POSTFX_HEAT_DISTORTION) == 0) return;
    Begin_Event("Prepare Heat-Distortion Rendering", VR_WHITE);
    const vrRenderTarget *m_distortionRT = Get_Full_Screen_Target(HeatDistortion_RT);
    if (MK_VERIFY(m_distortionRT && m_distortionRT->Is_Valid(), "m_distortionRT && m_distortionRT->Is_Valid()")) {
        Set_Camera(context.Camera);
        Set_World_Transform(nullptr);
        Set_Viewport({0, 0, View.TargetWidth, View.TargetHeight});
        Draw_Neutral_Heat();
    }
    End_Event();
}

void vrOpenGLDriver::Draw_Neutral_Heat()
{
    const bool wasScreenSpace = Is_Screen_Space();
    Set_Screen_Space(true);
    Set_Texture(0, GenericTexture.Get(), VR_SAMPLER_PLAIN);
    Begin_Primitive_State(0, 0, 0);
    vrPrimVertex *vertices = nullptr;
    if (Begin_Prim_Vertices(VR_PRIMITIVE_QUADS, 4, &vertices)) {
        const Vector2 corners[] = {{0.0f, 0.0f}, {0.0f, 1.0f}, {1.0f, 1.0f}, {1.0f, 0.0f}};
        for (const Vector2 &uv : corners)
            *vertices++ = {{uv.x * 2.0f - 1.0f, 1.0f - uv.y * 2.0f, 0.0f}, uv, NEUTRAL_HEAT};
        End_Prim_Vertices();
    }
    End_Primitive_State();
    Set_Screen_Space(wasScreenSpace);
}

void vrOpenGLDriver::End_Heat(vrRenderContext &context)
{
    WritesData = false;
    vrOpenGLRenderTarget *target = Get_Color_Target(0);
    auto *sceneImage = static_cast<vrOpenGLRenderTarget *>(Get_Full_Screen_Target(SceneImage_RT));
    if ((context.PostFxMask & VR_POSTFX_HEAT_DISTORTION) != 0) {
        Begin_Event("End Heat-Distortion Rendering", VR_WHITE);
        Copy_Target_To(Get_Full_Screen_Target(HeatDistortion_RT));
        End_Event();
    }
    // Whether or not an effect makes something of the heat: what it was drawn as is nothing to look at.
    if (target) Copy(sceneImage, target);
}

void vrOpenGLDriver::Run_PostFx(vrRenderContext &context)
{
    vrPostFxRunner *postFx = Get_PostFx();
    const uint32_t mask = context.PostFxMask;
    if (!postFx || (Get_PostFx_Permissions() & mask & VR_POSTFX_ALL) == 0) return;
    if (!HasSceneImage) Copy_Target_To(Get_Full_Screen_Target(SceneImage_RT));
    const bool wasUntextured = Is_Untextured();
    Set_Untextured(false);
    if (context.Get_Tasks(vrRenderPhaseEnum::Heat).empty()) context.PostFxMask &= ~VR_POSTFX_HEAT_DISTORTION;
    postFx->Execute(context, nullptr);
    context.PostFxMask = mask;
    Set_Untextured(wasUntextured);
}
