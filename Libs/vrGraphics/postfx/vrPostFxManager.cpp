#include "vrGraphics/postfx/vrPostFxManager.h"

#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"

#include <cmath>

namespace
{

MKDebug::Logger VorenLog("VorenLog");

constexpr const char *STRETCH_RECT_EFFECT = "PostFxStretchRect";

bool Is_HDR(vrPostFxInputMode mode)
{
    return mode >= FROM_MAIN_HDR_RT;
}

bool Is_HDR(vrPostFxOutputMode mode)
{
    return mode >= TO_MAIN_HDR_RT;
}

/// Marks what goes on while it lives, for debuggers.
class Marker
{
public:
    Marker(vrGraphicsDriver &driver, const char *name) : Driver(driver) { Driver.Begin_Event(name, VR_WHITE); }
    Marker(const Marker &) = delete;
    Marker &operator=(const Marker &) = delete;
    ~Marker() { Driver.End_Event(); }

private:
    vrGraphicsDriver &Driver;
};

vrViewport Part_Of(const vrViewport &whole, const Vector4 &rectangle)
{
    const auto at = [](int start, int size, float part) {
        return start + static_cast<int>(std::lround(static_cast<float>(size) * part));
    };
    vrViewport part;
    part.X = at(whole.X, whole.Width, rectangle.x);
    part.Y = at(whole.Y, whole.Height, rectangle.y);
    part.Width = at(whole.X, whole.Width, rectangle.z) - part.X;
    part.Height = at(whole.Y, whole.Height, rectangle.w) - part.Y;
    return part;
}

/// From the camera through a point of the screen to the far end; u to the right and v down, 0 to 1.
Vector3 Ray_At(const vrCamera *camera, float u, float v)
{
    if (!camera) return {0.0f, 0.0f, 1.0f};
    const Vector3 left = camera->Get_Corner_Ray(0) * (1.0f - v) + camera->Get_Corner_Ray(1) * v;
    const Vector3 right = camera->Get_Corner_Ray(3) * (1.0f - v) + camera->Get_Corner_Ray(2) * v;
    return left * (1.0f - u) + right * u;
}

} // namespace

vrFullScreenRTEnum vrPostFxPingPong::Get_Source(vrPostFxInputMode mode) const
{
    switch (mode) {
    case FROM_MAIN_RT:
    case FROM_MAIN_HDR_RT: return WasMainWritten ? Get_Written() : SceneImage_RT;
    case FROM_IRT0:
    case FROM_HDR_IRT0: return PostFxIRT0_RT;
    case FROM_IRT1:
    case FROM_HDR_IRT1: return PostFxIRT1_RT;
    case FROM_ORIGINAL_SCENE: break;
    }
    return SceneImage_RT;
}

vrFullScreenRTEnum vrPostFxPingPong::Get_Target(vrPostFxOutputMode mode) const
{
    switch (mode) {
    case TO_MAIN_RT:
    case TO_MAIN_HDR_RT: return Index == 0 ? PostFxMain0_RT : PostFxMain1_RT;
    case TO_IRT0:
    case TO_HDR_IRT0: return PostFxIRT0_RT;
    case TO_IRT1:
    case TO_HDR_IRT1: return PostFxIRT1_RT;
    case TO_SCENE_IMAGE: break;
    }
    return SceneImage_RT;
}

void vrPostFxPingPong::Turn(vrPostFxOutputMode mode)
{
    if (mode != TO_MAIN_RT && mode != TO_MAIN_HDR_RT) return;
    Index = 1 - Index;
    WasMainWritten = true;
}

bool vrPostFxManager::Init()
{
    m_stretchRectShader = Driver.Create_Shader_Instance(STRETCH_RECT_EFFECT);
    m_isInitialized = true;
    return true;
}

bool vrPostFxManager::Load_Chain(const char *fileName)
{
    Chosen.clear();
    const bool isWhole = Chain.Load_Template(fileName, Driver);
    if (!Chain.Get_Effects().empty() && !Can_Display())
        MK_LOG(VorenLog, MKDebug::LogLevel::Warning, "PostFx: the effects of %s stay off, since there is no shader %s",
               fileName, STRETCH_RECT_EFFECT);
    return isWhole;
}

void vrPostFxManager::Choose_Effects(const vrRenderContext &context)
{
    const vrPostFxConditions conditions{Driver.Get_Renderer_Type(), vrGraphicsDriver::Get_PostFx_Permissions(),
                                        context.PostFxMask, vrGraphicsDriver::Get_Quality()};
    Chosen.clear();
    for (const std::unique_ptr<vrPostFx> &effect : Chain.Get_Effects())
        if (effect->Should_Run(conditions)) Chosen.push_back(effect.get());
}

void vrPostFxManager::Execute(vrRenderContext &context, vrTexture *input)
{
    if (!MK_VERIFY(m_isInitialized, "m_isInitialized && \"PostFxsManager has not been initialized. Call Brem.\""))
        return;
    const Marker marker(Driver, "Render Post-processing Effects");
    Input = input ? input : Driver.Get_Full_Screen_Target(SceneImage_RT);
    Choose_Effects(context);
    if ((context.PostFxMask & VR_POSTFX_HEAT_DISTORTION) != 0 || !Chosen.empty()) Execute_Chain(context);
    Input = nullptr;
}

void vrPostFxManager::Execute_Chain(vrRenderContext &context)
{
    const Saved saved{Driver.Get_Render_Mode(), Driver.Get_Viewport(), Driver.Get_Render_Target()};
    Driver.Set_Render_Mode(VR_RENDER_MODE_FULL_SCREEN, nullptr);
    {
        const Marker marker(Driver, "Execute PostFx Chain");
        PingPong.Reset();
        Driver.Set_Depth_Buffer(nullptr);
        QuadRectangle = {0.0f, 0.0f, 1.0f, 1.0f};
        FullViewport = {0, 0, Driver.Get_Width(), Driver.Get_Height()};
        // A result that can't be shown isn't worth making: the picture then stays as the scene drew it.
        if (Can_Display())
            for (vrPostFx *effect : Chosen) Execute_Effect(effect, context);
        Display_Final_Image(saved, context);
    }
    Driver.Set_PostFx_Input(nullptr);
    Driver.Set_Render_Mode(saved.Mode, nullptr);
}

void vrPostFxManager::Execute_Effect(vrPostFx *effect, vrRenderContext &context)
{
    if (!MK_VERIFY(effect, "post_fx && \"PostFx pointer is NULL. Call Brem.\"") || !effect->Enabled) return;
    for (vrPostFxStep &step : effect->Steps) Execute_Step(&step, context);
}

void vrPostFxManager::Execute_Step(vrPostFxStep *step, vrRenderContext &context)
{
    if (!MK_VERIFY(step, "post_fx_step && \"PostFxStep pointer is NULL. Call Brem.\"")) return;
    vrTexture *source = Set_Input(step->InputMode);
    vrRenderTarget *target = source ? Set_Output(step->OutputMode) : nullptr;
    if (!target) return;
    // No device reads what it writes.
    if (source == target) Driver.Set_PostFx_Input(nullptr);
    Driver.Set_Viewport(Part_Of(FullViewport, QuadRectangle));
    step->Set_Params();
    Draw_Quad(*step->Shader, step->QuadMaxX, step->QuadMaxY, context);
    Driver.Set_Viewport(FullViewport);
    Driver.Resolve_Render_Target(target);
}

vrTexture *vrPostFxManager::Set_Input(vrPostFxInputMode mode)
{
    const vrFullScreenRTEnum source = PingPong.Get_Source(mode);
    vrTexture *texture = source == SceneImage_RT ? Input
                         : Is_HDR(mode)          ? Driver.Get_Full_Screen_HDR_Target(source)
                                                 : Driver.Get_Full_Screen_Target(source);
    Driver.Set_PostFx_Input(texture);
    return texture;
}

vrRenderTarget *vrPostFxManager::Set_Output(vrPostFxOutputMode mode)
{
    const vrFullScreenRTEnum place = PingPong.Get_Target(mode);
    vrRenderTarget *target =
        Is_HDR(mode) ? Driver.Get_Full_Screen_HDR_Target(place) : Driver.Get_Full_Screen_Target(place);
    if (!target) return nullptr;
    PingPong.Turn(mode);
    Driver.Set_Render_Target(0, target, 0);
    return target;
}

void vrPostFxManager::Draw_Quad(vrShaderInstance &shader, float quadMaxX, float quadMaxY, vrRenderContext &context)
{
    const struct
    {
        float U, V;
    } corners[] = {{0.0f, 0.0f}, {0.0f, quadMaxY}, {quadMaxX, quadMaxY}, {quadMaxX, 0.0f}};

    const int passes = shader.Begin(&context, 0, 1);
    for (int pass = 0; pass < passes; ++pass) {
        shader.Begin_Pass(pass);
        vrLitVertex *pverts = nullptr;
        Driver.Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &pverts);
        if (MK_VERIFY(pverts, "pverts && \"Prim buffer is NULL. Call Brem.\"")) {
            for (const auto &[u, v] : corners)
                *pverts++ = {{u * 2.0f - 1.0f, 1.0f - v * 2.0f, 0.0f}, Ray_At(context.Camera, u, v), {u, v}, VR_WHITE};
        }
        Driver.End_Lit_Vertices();
        shader.End_Pass();
    }
    shader.End();
}

bool vrPostFxManager::Can_Display()
{
    // The effects' folders may have come after the driver.
    if (!m_stretchRectShader || m_stretchRectShader->Is_Missing_Effect())
        m_stretchRectShader = Driver.Create_Shader_Instance(STRETCH_RECT_EFFECT);
    return MK_VERIFY(m_stretchRectShader, "m_stretchRectShader && \"Final display shader is NULL. Call Brem.\"") &&
           !m_stretchRectShader->Is_Missing_Effect();
}

void vrPostFxManager::Display_Final_Image(const Saved &saved, vrRenderContext &context)
{
    const Marker marker(Driver, "Display Final Image");
    if (saved.Target)
        Driver.Set_Render_Target(0, saved.Target.Get(), 0);
    else
        Driver.Reset_Render_Target();
    if (PingPong.Was_Main_Written()) {
        Driver.Set_PostFx_Input(Driver.Get_Full_Screen_Target(PingPong.Get_Written()));
        Driver.Set_Viewport(FullViewport);
        const RGBAClass black{0.0f, 0.0f, 0.0f, 1.0f};
        Driver.Clear(true, false, false, &black, nullptr, 1.0f, 0);
        Draw_Quad(*m_stretchRectShader, 1.0f, 1.0f, context);
    }
    Driver.Set_Viewport(saved.Viewport);
    Driver.Reset_Depth_Buffer();
}
