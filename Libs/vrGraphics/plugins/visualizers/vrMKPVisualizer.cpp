#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

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

vrMKPVisualizer::vrMKPVisualizer()
{
    Parameters.Add_Float(10000, "Centroid Lag", 1.0f, 0.0f, 5.0f,
                         "Time over which to smooth out the centroid.\nIncrease this to prevent \"popping\" of the "
                         "shadows as particles pop in and out of existence.");
}

vrMKPSimpleVisualizer::vrMKPSimpleVisualizer(bool usesAspectRatio)
    : ShaderName(new StringParameterClass(SHADER_NAME, SHADER_TEXT, "Unknown"))
{
    Parameters.Add_Bool(0, "Normal Render Mode", true, "Render this particle system in the normal render mode.");
    Parameters.Add_Bool(1, "Reflection Render Mode", false,
                        "Render this particle system in the reflection render mode.");
    Parameters.Add_Bool(2, "Refraction Render Mode", false,
                        "Return this particle system in the refraction render mode.");
    Parameters.Add_Bool(3, "Shadow-map Render Mode", false,
                        "Render this particle system in the shadow map render mode.");
    Parameters.Add_Bool(4, "Disable Depth Test", false, "Disables depth testing during render.");
    Parameters.Add_Float(7, "Depth Offset", 0.0f, -100.0f, 100.0f,
                         "Depth offset for each particle. Positive value \"pushes\" them further away. Negative value "
                         "\"pulls\" them closer.");
    if (usesAspectRatio) {
        Parameters.Add_Float(5, "Min Aspect Ratio", 1.0f, 0.0f, 100.0f,
                             "Minimum possible aspect ratio for each particle.");
        Parameters.Add_Float(6, "Max Aspect Ratio", 1.0f, 0.0f, 100.0f,
                             "Maximum possible aspect ratio for each particle.");
    }
}

TextureNameParameterClass *vrMKPSimpleVisualizer::Add_Texture_Name(int32_t id, std::string_view value)
{
    return Parameters.Add_Texture(id, "Texture Name", value, "Name of texture");
}

void vrMKPSimpleVisualizer::Add_Shader_Name(int32_t id, std::string_view value)
{
    ShaderName = Parameters.Add_Shader(id, SHADER_NAME, value, SHADER_TEXT);
}

void vrMKPSimpleVisualizer::Add_Anchor_Point(int32_t id)
{
    Parameters.Add_Enum(id, "Anchor Point", ANCHOR_POINTS, 0,
                        "Place within the particle to anchor from for rendering.");
}

void vrMKPSimpleVisualizer::Add_Texture_Rotation(int32_t id)
{
    Parameters.Add_Enum(id, "Texture Rotation", TEXTURE_ROTATIONS, 0, "Rotate particle texture by the given amount");
}

void vrMKPSimpleVisualizer::Add_Bump_Texture_Name()
{
    Parameters.Add_Texture(108, "Bump Texture Name", "smokenormals.tga", "Name of bump texture");
}

void vrMKPSimpleVisualizer::Add_Sorting()
{
    Parameters.Add_Bool(102, "Sort", false, "Sort particles by distance from camera if true");
    Parameters.Add_Enum(105, "Sort Type", SORT_TYPES, SORT_STOP_AFTER_MAX_AGE, "Type of sorting.");
    Parameters.Add_Float(
        106, "Max Sort Age", 0.5f, 0.0f, 200.0f,
        "When the sort type is set to \"Stop After Max Sort Age\", all particles younger than this age "
        "will be sorted, while all particles older than this age will keep their previous value.\nUse "
        "this to alleviate popping of sorted particles.");
}

void vrMKPSimpleVisualizer::Add_Lighting()
{
    Parameters.Add_RGBA(109, "Specular", OPAQUE_BLACK, "Specular Color");
    Parameters.Add_RGBA(110, "Emissive", OPAQUE_BLACK, "Emissive Color");
    Parameters.Add_Float(111, "Light Wrap", 2.0f, 0.0f, 8.0f,
                         "Use to soften lighting.  Normal lighting is 1.0, default is 2.0.  Increase this value to "
                         "soften the apparent light angle, decrease to harshen it.");
    Parameters.Add_Float(112, "Normal Scale", 1.0f, 0.0f, 100.0f, "Increase to bend normals for more extreme shading.");
    Parameters.Add_Enum(113, "Lighting Source", LIGHTING_SOURCES, 0, "Where to evaluate light from");
    Parameters.Add_String(114, "Light Source Name", "Light", "Name of the particle light source to use");
    Parameters.Add_Bool(115, "Scene Lighting Adj.", true,
                        "Using the environment settings in the terrain file, multiplies particle color by the particle "
                        "diffuse multiplier, and adds to the emissive using the particle emissive adder.");
}
