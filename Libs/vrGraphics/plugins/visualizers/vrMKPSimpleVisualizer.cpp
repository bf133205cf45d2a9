#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"

#include <cmath>

namespace
{

constexpr const char *SHADER_NAME = "Shader Name";
constexpr const char *SHADER_TEXT = "Name of shader";

// Indices into these are a file format.
constexpr const char *ANCHOR_POINTS[] = {"Center", "Bottom", "Top", "Bottom To Top With Age"};
constexpr const char *TEXTURE_ROTATIONS[] = {"None", "90 Degrees", "180 Degrees", "270 Degrees"};
constexpr const char *SORT_TYPES[] = {"Normal", "Stop After Max Sort Age"};
constexpr const char *LIGHTING_SOURCES[] = {"Sun", "Particle Light Source"};

constexpr RGBAClass OPAQUE_BLACK{0.0f, 0.0f, 0.0f, 1.0f};

} // namespace

vrMKPSimpleVisualizer::vrMKPSimpleVisualizer(bool usesAspectRatio)
    : ShaderName(new StringParameterClass(SHADER_NAME, SHADER_TEXT, "Unknown"))
{
    NormalRenderMode =
        Parameters.Add_Bool(0, "Normal Render Mode", true, "Render this particle system in the normal render mode.");
    ReflectionRenderMode = Parameters.Add_Bool(1, "Reflection Render Mode", false,
                                               "Render this particle system in the reflection render mode.");
    RefractionRenderMode = Parameters.Add_Bool(2, "Refraction Render Mode", false,
                                               "Return this particle system in the refraction render mode.");
    ShadowMapRenderMode = Parameters.Add_Bool(3, "Shadow-map Render Mode", false,
                                              "Render this particle system in the shadow map render mode.");
    DisableDepthTest = Parameters.Add_Bool(4, "Disable Depth Test", false, "Disables depth testing during render.");
    DepthOffset = Parameters.Add_Float(7, "Depth Offset", 0.0f, -100.0f, 100.0f,
                                       "Depth offset for each particle. Positive value \"pushes\" them further away. "
                                       "Negative value \"pulls\" them closer.");
    if (usesAspectRatio) {
        MinAspectRatio = Parameters.Add_Float(5, "Min Aspect Ratio", 1.0f, 0.0f, 100.0f,
                                              "Minimum possible aspect ratio for each particle.");
        MaxAspectRatio = Parameters.Add_Float(6, "Max Aspect Ratio", 1.0f, 0.0f, 100.0f,
                                              "Maximum possible aspect ratio for each particle.");
    }
}

vrMKPBufferPluginData *vrMKPSimpleVisualizer::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPSimpleVisualizerData;
}

/// Particles are drawn as if the camera stood that much nearer or farther, which moves them by as much in its eyes.
vrBounds vrMKPSimpleVisualizer::Get_Cull_Box(const vrMKPBuffer & /*buffer*/, const vrBounds &bounds) const
{
    const float offset = std::fabs(Get_Depth_Offset());
    return {bounds.Center, bounds.Extent + Vector3(Is_Valid(offset) ? offset : 0.0f)};
}

vrMKPAspect vrMKPSimpleVisualizer::Get_Aspect() const
{
    if (!MinAspectRatio) return {};
    return {MinAspectRatio->Get_Value(), MaxAspectRatio->Get_Value()};
}

bool vrMKPSimpleVisualizer::Ignores_Depth() const
{
    return DisableDepthTest->Get_Value();
}

float vrMKPSimpleVisualizer::Get_Depth_Offset() const
{
    return DepthOffset->Get_Value();
}

vrRenderPhaseEnum vrMKPSimpleVisualizer::Get_Render_Phase() const
{
    return Shader ? Shader->Get_Render_Phase() : vrRenderPhaseEnum::Particles;
}

bool vrMKPSimpleVisualizer::Is_Render_Mode_Enabled(vrRenderModeType mode) const
{
    switch (mode) {
    case VR_RENDER_MODE_NORMAL:
    case VR_RENDER_MODE_FULL_SCREEN: return NormalRenderMode->Get_Value();
    case VR_RENDER_MODE_REFLECTION: return ReflectionRenderMode->Get_Value();
    case VR_RENDER_MODE_REFRACTION: return RefractionRenderMode->Get_Value();
    case VR_RENDER_MODE_SHADOW_MAP: return ShadowMapRenderMode->Get_Value();
    default: return false;
    }
}

void vrMKPSimpleVisualizer::Load_Assets(bool force, const vrMKPVisualizer *shared)
{
    if (!TextureName) return;
    const auto *from = dynamic_cast<const vrMKPSimpleVisualizer *>(shared);
    if (!force && from && from->Shader) {
        Share_Assets(*from);
        return;
    }
    if (!TheGraphicsDriver) return;
    Load_Textures(force);
    if (force || !Shader) Shader = TheGraphicsDriver->Create_Shader_Instance(Get_Shader_Name());
    if (Shader) Set_Shader_Parameters();
}

void vrMKPSimpleVisualizer::Share_Assets(const vrMKPSimpleVisualizer &from)
{
    BaseTexture = from.BaseTexture;
    Shader = from.Shader;
}

void vrMKPSimpleVisualizer::Load_Textures(bool force)
{
    if (force || !BaseTexture) BaseTexture = Load_Texture(TextureName->Get_Value());
}

void vrMKPSimpleVisualizer::Set_Shader_Parameters()
{
    Set_Shader_Texture("BaseTexture", BaseTexture.Get());
}

SmartPtr<vrTexture> vrMKPSimpleVisualizer::Load_Texture(std::string_view name)
{
    SmartPtr<vrTexture> texture = TheGraphicsDriver->Load_Texture(name);
    return texture ? texture : TheGraphicsDriver->Get_Generic_Texture();
}

void vrMKPSimpleVisualizer::Set_Shader_Float(const char *name, float value) const
{
    const int parameter = Shader->Get_Parameter_Index(name);
    if (parameter >= 0) Shader->Set_Float(parameter, value);
}

void vrMKPSimpleVisualizer::Set_Shader_Texture(const char *name, vrTexture *texture) const
{
    const int parameter = Shader->Get_Parameter_Index(name);
    if (parameter >= 0) Shader->Set_Texture(parameter, texture);
}

void vrMKPSimpleVisualizer::Set_Shader_Vector(int parameter, const Vector4 &value) const
{
    if (parameter < 0) return;
    if (Shader->Get_Parameter_Type(parameter) == SHADER_PARAMS_VECTOR3)
        Shader->Set_Vector3(parameter, &value.x);
    else
        Shader->Set_Vector4(parameter, &value.x);
}

void vrMKPSimpleVisualizer::Add_Texture_Name(int32_t id, std::string_view value)
{
    TextureName = Parameters.Add_Texture(id, "Texture Name", value, "Name of texture");
}

void vrMKPSimpleVisualizer::Add_Shader_Name(int32_t id, std::string_view value)
{
    ShaderName = Parameters.Add_Shader(id, SHADER_NAME, value, SHADER_TEXT);
}

EnumParameterClass *vrMKPSimpleVisualizer::Add_Anchor_Point(int32_t id)
{
    return Parameters.Add_Enum(id, "Anchor Point", ANCHOR_POINTS, 0,
                               "Place within the particle to anchor from for rendering.");
}

EnumParameterClass *vrMKPSimpleVisualizer::Add_Texture_Rotation(int32_t id)
{
    return Parameters.Add_Enum(id, "Texture Rotation", TEXTURE_ROTATIONS, 0,
                               "Rotate particle texture by the given amount");
}

TextureNameParameterClass *vrMKPSimpleVisualizer::Add_Bump_Texture_Name()
{
    return Parameters.Add_Texture(108, "Bump Texture Name", "smokenormals.tga", "Name of bump texture");
}

vrMKPSimpleVisualizer::SortingParameters vrMKPSimpleVisualizer::Add_Sorting()
{
    return {
        .Sort = Parameters.Add_Bool(102, "Sort", false, "Sort particles by distance from camera if true"),
        .SortType = Parameters.Add_Enum(105, "Sort Type", SORT_TYPES, SORT_STOP_AFTER_MAX_AGE, "Type of sorting."),
        .MaxSortAge = Parameters.Add_Float(
            106, "Max Sort Age", 0.5f, 0.0f, 200.0f,
            "When the sort type is set to \"Stop After Max Sort Age\", all particles younger than this age "
            "will be sorted, while all particles older than this age will keep their previous value.\nUse "
            "this to alleviate popping of sorted particles."),
    };
}

vrMKPSimpleVisualizer::LightingParameters vrMKPSimpleVisualizer::Add_Lighting()
{
    return {
        .Specular = Parameters.Add_RGBA(109, "Specular", OPAQUE_BLACK, "Specular Color"),
        .Emissive = Parameters.Add_RGBA(110, "Emissive", OPAQUE_BLACK, "Emissive Color"),
        .LightWrap = Parameters.Add_Float(
            111, "Light Wrap", 2.0f, 0.0f, 8.0f,
            "Use to soften lighting.  Normal lighting is 1.0, default is 2.0.  Increase this value "
            "to soften the apparent light angle, decrease to harshen it."),
        .NormalScale = Parameters.Add_Float(112, "Normal Scale", 1.0f, 0.0f, 100.0f,
                                            "Increase to bend normals for more extreme shading."),
        .LightingSource =
            Parameters.Add_Enum(113, "Lighting Source", LIGHTING_SOURCES, 0, "Where to evaluate light from"),
        .LightSourceName =
            Parameters.Add_String(114, "Light Source Name", "Light", "Name of the particle light source to use"),
        .SceneLighting = Parameters.Add_Bool(
            115, "Scene Lighting Adj.", true,
            "Using the environment settings in the terrain file, multiplies particle color by the particle "
            "diffuse multiplier, and adds to the emissive using the particle emissive adder."),
    };
}
