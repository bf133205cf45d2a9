#include "vrOpenGL/EngineParameters.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"

#include <algorithm>
#include <iterator>

namespace
{

using Source = EngineParameterSource;

constexpr float SHADOW_BIAS = 0.001f;
constexpr float SHADOW_EXTRUSION = 10000.0f; ///< world units

void Put(const vrMatrix44 &matrix, float *values)
{
    std::copy(matrix.Elements.begin(), matrix.Elements.end(), values);
}

void Put(float *values, float x, float y, float z = 0.0f, float w = 0.0f, int count = 4)
{
    const float all[] = {x, y, z, w};
    std::copy_n(all, count, values);
}

vrMatrix44 Transposed(const vrMatrix44 &matrix)
{
    vrMatrix44 result;
    for (size_t column = 0; column < 4; ++column)
        for (size_t row = 0; row < 4; ++row) result.Elements[4 * row + column] = matrix.Elements[4 * column + row];
    return result;
}

/// From clip space to the coordinates of a texture, v downwards.
vrMatrix44 Get_Texture_Bias()
{
    vrMatrix44 bias;
    bias.Elements = {0.5f, 0.0f, 0.0f, 0.0f, 0.0f, -0.5f, 0.0f, 0.0f, 0.0f, 0.0f, 0.5f, 0.0f, 0.5f, 0.5f, 0.5f, 1.0f};
    return bias;
}

void World(const Source &source, float *values)
{
    Put(source.View.World, values);
}
void World_Inverse(const Source &source, float *values)
{
    Put(source.View.World.Inverse(), values);
}
void World_Inverse_Transpose(const Source &source, float *values)
{
    Put(Transposed(source.View.World.Inverse()), values);
}
void View(const Source &source, float *values)
{
    Put(source.View.View, values);
}
void View_Inverse(const Source &source, float *values)
{
    Put(source.View.ViewInverse, values);
}
void Projection(const Source &source, float *values)
{
    Put(source.View.Projection, values);
}
void Projection_Texture(const Source &source, float *values)
{
    Put(Get_Texture_Bias() * source.View.Projection, values);
}
void View_Projection(const Source &source, float *values)
{
    Put(source.View.ViewProjection, values);
}
void View_Projection_Inverse(const Source &source, float *values)
{
    Put(source.View.ViewProjection.Inverse(), values);
}
void World_View(const Source &source, float *values)
{
    Put(source.View.View * source.View.World, values);
}
void World_View_Projection(const Source &source, float *values)
{
    Put(source.View.ViewProjection * source.View.World, values);
}
void World_View_Inverse(const Source &source, float *values)
{
    Put((source.View.View * source.View.World).Inverse(), values);
}

void Eye_Position(const Source &source, float *values)
{
    const Vector3 &eye = source.View.EyePosition;
    Put(values, eye.x, eye.y, eye.z, 1.0f);
}
void Eye_Object_Position(const Source &source, float *values)
{
    const Vector4 eye = source.View.World.Inverse().Transform(Vector4(source.View.EyePosition, 1.0f));
    Put(values, eye.x, eye.y, eye.z, 1.0f);
}

void Fog_Values(const Source &source, float *values)
{
    const vrEnvironmentValues &fog = source.Environment;
    Put(values, fog.FogNear, fog.FogFar, fog.FogDensity, fog.FogEnabled ? 1.0f : 0.0f);
}
void Fog_Color(const Source &source, float *values)
{
    const RGBAClass color = vrGraphicsDriver::Get_Gamma_Table(0).Convert(source.Environment.FogColor);
    Put(values, color.R, color.G, color.B, color.A);
}
void Distance_Fade(const Source &source, float *values)
{
    const float width = std::max(source.View.FadeEnd - source.View.FadeStart, 1e-6f);
    Put(values, source.View.FadeStart, source.View.FadeEnd, 1.0f / width, 0.0f);
}

void Elapsed_Time(const Source &source, float *values)
{
    values[0] = source.Environment.Time;
}
void Day_Night_Factor(const Source &source, float *values)
{
    values[0] = source.Environment.DayNightFactor;
}
void Resolution(const Source &source, float *values)
{
    const auto width = static_cast<float>(source.View.TargetWidth);
    const auto height = static_cast<float>(source.View.TargetHeight);
    Put(values, width, height, 1.0f / width, 1.0f / height);
}
void Near_Far(const Source &source, float *values)
{
    Put(values, source.View.Near, source.View.Far, 0.0f, 0.0f, 2);
}
/// What brings positions of clip space to coordinates of the target: scale in x and y, offset in z and w.
void Screen_Space(const Source &source, float *values)
{
    const vrViewport &viewport = source.View.Viewport;
    const auto width = static_cast<float>(source.View.TargetWidth);
    const auto height = static_cast<float>(source.View.TargetHeight);
    const float across = static_cast<float>(viewport.Width) * 0.5f, down = static_cast<float>(viewport.Height) * 0.5f;
    Put(values, across / width, -down / height, (static_cast<float>(viewport.X) + across) / width,
        (static_cast<float>(viewport.Y) + down) / height);
}

void Shadow_Inverse_Resolution(const Source &, float *values)
{
    const Vector2 size = vrGraphicsDriver::Get_Shadow_Inverse_Resolution();
    Put(values, size.x, size.y, 0.0f, 0.0f, 2);
}
void Shadow_Bias(const Source &, float *values)
{
    values[0] = SHADOW_BIAS;
}
void Shadow_Extrusion(const Source &, float *values)
{
    values[0] = SHADOW_EXTRUSION;
}
void Blends_Light(const Source &, float *values)
{
    values[0] = vrGraphicsDriver::Get_Gamma() != 1.0f ? 1.0f : 0.0f;
}
void Identity(const Source &, float *values)
{
    Put(vrMatrix44::From_Transform(Mat3DClass()), values);
}
void One(const Source &, float *values)
{
    values[0] = 1.0f;
}
void Zero(const Source &, float *values)
{
    values[0] = 0.0f;
}
void Zero_Vector(const Source &, float *values)
{
    Put(values, 0.0f, 0.0f);
}
void Zero_Matrix(const Source &, float *values)
{
    std::fill_n(values, 16, 0.0f);
}

constexpr EngineParameter PARAMETERS[] = {
    {"g_World", 16, false, World},
    {"g_Model", 16, false, World},
    {"g_WorldInv", 16, false, World_Inverse},
    {"g_ModelInv", 16, false, World_Inverse},
    {"g_WorldInvTranspose", 16, false, World_Inverse_Transpose},
    {"g_ModelInvTranspose", 16, false, World_Inverse_Transpose},
    {"g_View", 16, false, View},
    {"g_ViewInv", 16, false, View_Inverse},
    {"g_Proj", 16, false, Projection},
    {"g_ProjTex", 16, false, Projection_Texture},
    {"g_ViewProj", 16, false, View_Projection},
    {"g_ViewProjInv", 16, false, View_Projection_Inverse},
    {"g_WorldView", 16, false, World_View},
    {"g_ModelView", 16, false, World_View},
    {"g_WorldViewProj", 16, false, World_View_Projection},
    {"g_ModelViewProj", 16, false, World_View_Projection},
    {"g_WorldViewInv", 16, false, World_View_Inverse},
    {"g_EyePos", 4, false, Eye_Position},
    {"g_EyeObjPos", 4, false, Eye_Object_Position},
    {"g_FogValues", 4, false, Fog_Values},
    {"g_FogColor", 4, false, Fog_Color},
    {"g_DistanceFadeValues", 4, true, Distance_Fade},
    {"g_ElapsedTime", 1, false, Elapsed_Time},
    {"g_CloudTexU", 4, false, Zero_Vector},
    {"g_CloudTexV", 4, false, Zero_Vector},
    {"g_FowTexU", 4, false, Zero_Vector},
    {"g_FowTexV", 4, false, Zero_Vector},
    {"g_SphLightAll", 16, false, Zero_Matrix},
    {"g_SphLightFill", 16, false, Zero_Matrix},
    {"g_ResolutionConstants", 4, false, Resolution},
    {"g_NearFar", 2, false, Near_Far},
    {"ScreenspaceUVTransform", 4, false, Screen_Space},
    {"g_ShadowExtrusionDistance", 1, false, Shadow_Extrusion},
    {"g_LightScale", 1, false, One},
    {"g_WindBendVector", 4, true, Zero_Vector},
    {"g_WindGrassVector", 4, true, Zero_Vector},
    {"g_WorldToShadowmap", 16, true, Identity},
    {"g_ShadowBias", 1, true, Shadow_Bias},
    {"g_ShadowmapInverseResolution", 2, false, Shadow_Inverse_Resolution},
    {"g_WorldToLightField", 16, true, Identity},
    {"g_DayNightFactor", 1, false, Day_Night_Factor},
    {"IssRGBCorrectBlendingCapable", 1, false, Blends_Light},
    {"PrimHighlight", 4, false, Zero_Vector},
    {"LowResParticlesAdditiveBrightenFactor", 1, false, One},
    {"StereoDepth", 1, false, Zero},
};

template <vrFullScreenRTEnum TARGET>
vrTexture *Full_Screen(const Source &source)
{
    return source.Driver.Get_Full_Screen_Target(TARGET);
}
vrTexture *PostFx_Input(const Source &source)
{
    return source.View.PostFxInput;
}
vrTexture *Cloud_Shadow(const Source &)
{
    return vrGraphicsDriver::Get_Cloud_Shadow_Texture();
}
vrTexture *Fog_Of_War(const Source &)
{
    return vrGraphicsDriver::Get_Fog_Of_War_Texture();
}
vrTexture *Shadow_Depth(const Source &)
{
    return vrGraphicsDriver::Get_Shadow_Depth_Texture();
}
vrTexture *Scene_HDR(const Source &)
{
    MK_ASSERT(false, "0&&\"Warning! HDR not implemented in dx9.  Are you trying to use an HDR PostFX?\"");
    return nullptr;
}
vrTexture *None(const Source &)
{
    return nullptr;
}

constexpr EngineTexture TEXTURES[] = {
    {"PostFxInputTexture", PostFx_Input},
    {"SceneImageTexture", Full_Screen<SceneImage_RT>},
    {"SceneImageHDRTexture", Scene_HDR},
    {"HeatDistortionTexture", Full_Screen<HeatDistortion_RT>, false},
    {"PostFxIRT0Texture", Full_Screen<PostFxIRT0_RT>},
    {"PostFxIRT1Texture", Full_Screen<PostFxIRT1_RT>},
    {"CloudShadowTexture", Cloud_Shadow},
    {"FogOfWarTexture", Fog_Of_War},
    {"Shadowmap", Shadow_Depth},
    {"SceneShadowMaskTexture", None},
    {"LightFieldTexture", None},
    {"LightBufferTexture", None},
    {"SceneNormalTexture", None},
    {"SceneDepthTexture", None},
    {"CubeTexture", None},
    {"ObjectsEnvCubeTexture", None},
    {"NVIDIAStereoTexture", None},
};

template <typename Row, size_t COUNT>
const Row *Find(const Row (&rows)[COUNT], std::string_view name)
{
    const Row *row = std::find_if(std::begin(rows), std::end(rows), [name](const Row &r) { return r.Name == name; });
    return row == std::end(rows) ? nullptr : row;
}

} // namespace

const EngineParameter *Find_Engine_Parameter(std::string_view name)
{
    return Find(PARAMETERS, name);
}

const EngineTexture *Find_Engine_Texture(std::string_view name)
{
    return Find(TEXTURES, name);
}

void Fill_Engine_Parameter(const EngineParameter &parameter, const EngineParameterSource &source, float *values)
{
    std::fill_n(values, parameter.Count, 0.0f);
    if (parameter.NeedsContext &&
        !MK_VERIFY(source.Context, "effect->Get_Current_Render_Context() != NULL && \"Render context is NULL. Call "
                                   "Brem.\""))
        return;
    parameter.Fill(source, values);
}
