#include "vro/OffscreenView.h"

#include "vro/RenderOptions.h"

#include "Code/SceneDrawing.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrSimpleScene.h"
#include "vrOpenGL/vrEGLSurface.h"
#include "vrOpenGL/vrOpenGLDevice.h"
#include "vrOpenGL/vrOpenGLDriver.h"

#include "MKLib/MKMath/FloatingPoint.h"

#include <glm/geometric.hpp>

#include <optional>

namespace vro
{

namespace
{

/// Toward the sun: above, to the left, on the side of a camera that nobody moved.
const Vector3 SUN_DIRECTION = glm::normalize(Vector3(-0.5f, -0.45f, 0.75f));

} // namespace

struct OffscreenView::Device
{
    std::unique_ptr<vrEGLSurface> Surface; ///< outlives the driver that draws on it
    std::optional<vrOpenGLDevice> Driver;
};

std::unique_ptr<OffscreenView> OffscreenView::Open(const RenderOptions &options, const std::string &workingDirectory,
                                                   std::string &error)
{
    std::unique_ptr<OffscreenView> view(new OffscreenView(options));
    if (!view->Start(workingDirectory, error)) return nullptr;
    return view;
}

OffscreenView::OffscreenView(const RenderOptions &options)
    : Options(options), Holder(std::make_unique<Device>()), Camera(new vrCamera)
{
    Set_Scene_Lens(*Camera, static_cast<float>(options.Width) / static_cast<float>(options.Height));
    Camera->Set_Transform(Mat3DClass::Look_At(options.Camera, options.LookAt));
}

OffscreenView::~OffscreenView()
{
    Release_Scene_Textures();
}

bool OffscreenView::Start(const std::string &workingDirectory, std::string &error)
{
    Apply_Preview_Paths(Get_Preview_Paths(workingDirectory));
    Init_Floating_Point_Mode();
    vrEGLSurface::Prefer_Exact_Filtering();
    Holder->Surface = vrEGLSurface::Create(Options.Width, Options.Height, error);
    if (!Holder->Surface) {
        error = "no OpenGL device: " + error;
        return false;
    }
    error = "the OpenGL driver can't start";
    Holder->Driver.emplace(*Holder->Surface);
    if (!Holder->Driver->Init() || !Holder->Driver->Create_Device(error)) return false;
    Prepare_Scene_Driver();
    Choose_Scene_Renderer();
    if (Options.PostFxMask != 0) vrGraphicsDriver::Load_PostFxs_Chain("ParticleEditorChain.xml");
    if (Options.BackgroundPicture.empty()) return true;
    Background = TheGraphicsDriver->Load_Texture(Options.BackgroundPicture);
    if (!Background) error = "there is no picture " + Options.BackgroundPicture + " in the texture folders";
    return Background != nullptr;
}

void OffscreenView::Furnish(vrSimpleScene &scene) const
{
    scene.Get_Light_Context()->Clear_All_Lights(false, true);
    scene.Set_Sun_Direction(SUN_DIRECTION);
    scene.Enable_Light_Field(true);
    scene.Set_Use_Light_Field_Scene_Bounds(false);
    vrSceneEffectsParams effects = scene.Get_Scene_Effects_Params();
    effects.Enable_PostFx(VR_POSTFX_ALL, false);
    effects.Enable_PostFx(Options.PostFxMask, true);
    scene.Set_Scene_Effects_Params(effects);
}

void OffscreenView::Begin_Picture()
{
    const auto &[red, green, blue] = Options.Background;
    Begin_Scene_Frame(*Camera, RGBA_From_Bytes(red, green, blue, 255));
    if (Background) Draw_Scene_Background(*Background);
}

bool OffscreenView::Draw(vrSimpleScene &scene, std::vector<uint8_t> &rgba, std::string &error)
{
    error = "the device is lost";
    if (!Holder->Driver->Is_Device_Operational()) return false;
    vrOpenGLDriver &driver = *vrOpenGLDriver::Get_Instance();
    Begin_Picture();
    scene.Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false);
    driver.End_Frame();
    driver.Page_Flip(true);
    if (!driver.Read_Back_Buffer(rgba)) return false;
    for (size_t alpha = 3; alpha < rgba.size(); alpha += 4) rgba[alpha] = 255;
    return true;
}

std::string OffscreenView::Describe() const
{
    return Holder->Surface->Describe();
}

} // namespace vro
