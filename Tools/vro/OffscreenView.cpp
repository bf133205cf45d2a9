#include "vro/OffscreenView.h"

#include "vro/RenderOptions.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrSimpleScene.h"
#include "vrOpenGL/vrEGLSurface.h"
#include "vrOpenGL/vrOpenGLDriver.h"

#include "MKLib/MKMath/FloatingPoint.h"

#include <glm/geometric.hpp>

namespace vro
{

namespace
{

// The preview's view.
constexpr float FIELD_OF_VIEW = 0.6108652353f;
constexpr float NEAREST = 5.0f; ///< world units, as the next ones
constexpr float FARTHEST = 10000.0f;
constexpr float OBJECT_FADE = 1000.0f;

/// Toward the sun: above, to the left, on the side of a camera that nobody moved.
const Vector3 SUN_DIRECTION = glm::normalize(Vector3(-0.5f, -0.45f, 0.75f));

void Set_Search_Paths(const std::string &root)
{
    vrGraphicsDriver::Clear_Texture_Path();
    vrGraphicsDriver::Clear_Effects_Path();
    for (const char *folder : {"", "Common\\", "Engine\\", "Terrain\\", "Particle\\", "ShadowMap\\"})
        vrGraphicsDriver::Add_Effects_Path(root + "\\Run\\DATA\\Art\\Shaders\\DX9\\" + folder);
    for (const char *folder : {"Game\\", "Bump\\", "NoCompression\\", "DDS\\", "Interface\\", "Heat\\"})
        vrGraphicsDriver::Add_Texture_Path(root + "\\Art\\Textures\\" + folder);
    vrGraphicsDriver::Set_PostFxs_Path(root + "\\Art\\PostFxs\\");
}

} // namespace

/// The surface outlives the driver that draws on it.
struct OffscreenView::Device
{
    ~Device()
    {
        if (HasDriver) vrOpenGLDriver::Shutdown();
    }

    std::unique_ptr<vrEGLSurface> Surface;
    bool HasDriver = false;
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
    Camera->Set_Perspective(FIELD_OF_VIEW, static_cast<float>(options.Width) / static_cast<float>(options.Height));
    Camera->Set_Depth_Range(NEAREST, FARTHEST);
    Camera->Set_Object_Fade_Depth(OBJECT_FADE);
    Camera->Set_Transform(Mat3DClass::Look_At(options.Camera, options.LookAt));
}

OffscreenView::~OffscreenView()
{
    vrGraphicsDriver::Set_Shadow_Depth_Texture(nullptr);
    vrGraphicsDriver::Set_Cloud_Shadow_Texture(nullptr);
    vrGraphicsDriver::Set_Fog_Of_War_Texture(nullptr);
}

bool OffscreenView::Start(const std::string &workingDirectory, std::string &error)
{
    Set_Search_Paths(workingDirectory);
    Init_Floating_Point_Mode();
    vrEGLSurface::Prefer_Exact_Filtering();
    Holder->Surface = vrEGLSurface::Create(Options.Width, Options.Height, error);
    if (!Holder->Surface) {
        error = "no OpenGL device: " + error;
        return false;
    }
    Holder->HasDriver = vrOpenGLDriver::Init();
    if (!Holder->HasDriver) {
        error = "the OpenGL driver can't start";
        return false;
    }
    vrOpenGLDriver &driver = *vrOpenGLDriver::Get_Instance();
    if (!driver.Set_Surface(Holder->Surface.get(), error)) return false;
    driver.Prepare_For_Scene();
    vrGraphicsDriver::Enable(0x200000, false);
    vrGraphicsDriver::Enable(0x40000, false);
    vrGraphicsDriver::Enable(0x80000, true);
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_HEAT_TARGET, true);
    const bool hasPrePass = driver.Is_Renderer_Supported(VR_RENDERER_LIGHT_PRE_PASS);
    driver.Set_Renderer_Type(hasPrePass ? VR_RENDERER_LIGHT_PRE_PASS : VR_RENDERER_FORWARD, false);
    if (Options.PostFxMask != 0) vrGraphicsDriver::Load_PostFxs_Chain("ParticleEditorChain.xml");
    if (Options.BackgroundPicture.empty()) return true;
    Background = driver.Load_Texture(Options.BackgroundPicture);
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
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    const SmartPtr<vrTexture> white = vrRenderUtils::Get_Generic_White_Texture();
    vrGraphicsDriver::Set_Shadow_Depth_Texture(white.Get());
    vrGraphicsDriver::Set_Cloud_Shadow_Texture(white.Get());
    vrGraphicsDriver::Set_Fog_Of_War_Texture(white.Get());
    const Mat3DClass identity;
    driver.Set_Camera(Camera.Get());
    driver.Set_World_Transform(&identity);
    driver.Begin_Frame();
    driver.Reset_Render_Target();
    driver.Reset_Depth_Buffer();
    driver.Flush_State();
    const auto part = [this](size_t channel) { return static_cast<float>(Options.Background[channel]) / 255.0f; };
    const RGBAClass color{part(0), part(1), part(2), 1.0f};
    driver.Clear(true, true, true, &color, nullptr, 1.0f, 0);
    if (!Background) return;
    vrRenderUtils::Begin_Render_2D_Quad(Background.Get());
    vrRenderUtils::Render_2D_Quad(-1.0f, 1.0f, 1.0f, -1.0f, 0.0f, Vector2(0.0f, 0.0f), Vector2(1.0f, 1.0f),
                                  0xffffffffu);
    vrRenderUtils::End_Render_2D_Quad();
}

bool OffscreenView::Draw(vrSimpleScene &scene, std::vector<uint8_t> &rgba, std::string &error)
{
    vrOpenGLDriver &driver = *vrOpenGLDriver::Get_Instance();
    error = "the device is lost";
    if (!driver.Check_Device()) return false;
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
