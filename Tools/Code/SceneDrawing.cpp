#include "Code/SceneDrawing.h"

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"

PreviewPaths Get_Preview_Paths(const std::string &workingDirectory)
{
    PreviewPaths paths;
    for (const char *folder : {"", "Common\\", "Engine\\", "Terrain\\", "Particle\\", "ShadowMap\\"})
        paths.Effects.push_back(workingDirectory + "\\Run\\DATA\\Art\\Shaders\\DX9\\" + folder);
    for (const char *folder : {"Game\\", "Bump\\", "NoCompression\\", "DDS\\", "Interface\\", "Heat\\"})
        paths.Textures.push_back(workingDirectory + "\\Art\\Textures\\" + folder);
    paths.PostFxs = workingDirectory + "\\Art\\PostFxs\\";
    return paths;
}

void Apply_Preview_Paths(const PreviewPaths &paths)
{
    vrGraphicsDriver::Clear_Texture_Path();
    vrGraphicsDriver::Clear_Effects_Path();
    for (const std::string &path : paths.Effects) vrGraphicsDriver::Add_Effects_Path(path);
    for (const std::string &path : paths.Textures) vrGraphicsDriver::Add_Texture_Path(path);
    vrGraphicsDriver::Set_PostFxs_Path(paths.PostFxs);
}

void Prepare_Scene_Driver()
{
    TheGraphicsDriver->Prepare_For_Scene();
    vrGraphicsDriver::Enable(0x200000, false);
    vrGraphicsDriver::Enable(0x40000, false);
    vrGraphicsDriver::Enable(0x80000, true);
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_HEAT_TARGET, true);
}

void Choose_Scene_Renderer()
{
    const bool hasPrePass = TheGraphicsDriver->Is_Renderer_Supported(VR_RENDERER_LIGHT_PRE_PASS);
    TheGraphicsDriver->Set_Renderer_Type(hasPrePass ? VR_RENDERER_LIGHT_PRE_PASS : VR_RENDERER_FORWARD, false);
}

void Set_Scene_Lens(vrCamera &camera, float aspect)
{
    camera.Set_Perspective(0.6108652353f, aspect);
    camera.Set_Depth_Range(5.0f, 10000.0f);
    camera.Set_Object_Fade_Depth(1000.0f);
}

void Begin_Scene_Frame(vrCamera &camera, const RGBAClass &color)
{
    const SmartPtr<vrTexture> white = vrRenderUtils::Get_Generic_White_Texture();
    vrGraphicsDriver::Set_Shadow_Depth_Texture(white.Get());
    vrGraphicsDriver::Set_Cloud_Shadow_Texture(white.Get());
    vrGraphicsDriver::Set_Fog_Of_War_Texture(white.Get());
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    const Mat3DClass identity;
    driver.Set_Camera(&camera);
    driver.Set_World_Transform(&identity);
    driver.Begin_Frame();
    driver.Reset_Render_Target();
    driver.Reset_Depth_Buffer();
    driver.Flush_State();
    driver.Clear(true, true, true, &color, nullptr, 1.0f, 0);
}

void Draw_Scene_Background(vrTexture &picture)
{
    vrRenderUtils::Begin_Render_2D_Quad(&picture);
    vrRenderUtils::Render_2D_Quad(-1.0f, 1.0f, 1.0f, -1.0f, 0.0f, Vector2(0.0f), Vector2(1.0f), VR_WHITE);
    vrRenderUtils::End_Render_2D_Quad();
}

void Release_Scene_Textures()
{
    vrGraphicsDriver::Set_Shadow_Depth_Texture(nullptr);
    vrGraphicsDriver::Set_Cloud_Shadow_Texture(nullptr);
    vrGraphicsDriver::Set_Fog_Of_War_Texture(nullptr);
}
