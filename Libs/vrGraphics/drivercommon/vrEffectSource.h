#pragma once

/// The parsed form of an effect: a text file `<name>.mks`, the same for every driver. docs/formats/effect.md has the
/// grammar.
///
/// What a driver does with one. For each pass it compiles `Get_Stage_Text` of both stages as they stand (GLSL 3.30
/// core) and links them. The prelude that these texts open with declares, in the vertex stage,
///
///     layout(location = 0) in vec3 inPosition;    layout(location = 3) in vec3 inTangent;
///     layout(location = 1) in vec3 inNormal;      layout(location = 4) in vec3 inBinormal;
///     layout(location = 2) in vec2 inUV;          layout(location = 5) in vec4 inColor;   // 0 to 1
///
/// whatever the effect's vertex type says, since a visualizer may feed any effect with any of the three layouts. The
/// driver feeds those that the stream of a draw has, and leaves the others at the constants normal (0, 0, 1), tangent
/// (1, 0, 0), binormal (0, 1, 0), color (1, 1, 1, 1). In the fragment stage it declares
/// `layout(location = 0) out vec4 outColor`. `VARYING` stands for `out` and `in`, so that one line in a shared block
/// serves both stages; `VERTEX_STAGE` or `FRAGMENT_STAGE` is defined.
///
/// User parameters are plain uniforms of their own names, declared by the prelude: bool, float, vec2, vec3, vec4 and
/// sampler2D; set from the instance's values when a pass begins, textures with the sampler of the parameter, a null
/// one as the generic white texture. Engine parameters (`g_ViewProj`, `g_ElapsedTime`, `SceneImageTexture`, ...) are
/// plain uniforms that the effect's own GLSL declares; the driver fills those that it knows, by name, and binds engine
/// textures linear and clamped. A uniform that the compiler dropped is skipped.
///
/// Of the engine parameters, these effects use: mat4 `g_World`, `g_View`, `g_ViewInv`, `g_Proj`, `g_ViewProj`,
/// `g_WorldViewProj` (column vectors: `g_ViewProj * vec4(p, 1)`); vec4 `g_EyePos`, `g_FogColor`, and `g_FogValues`
/// (near, far, density, 1 when on); float `g_ElapsedTime`; vec4 `g_ResolutionConstants` (width, height, 1 / width,
/// 1 / height of the target that is drawn into); vec2 `g_NearFar`; sampler2D `PostFxInputTexture`, `SceneImageTexture`,
/// `HeatDistortionTexture`, `PostFxIRT0Texture`, `PostFxIRT1Texture`. Texture row 0 is the picture's top: v grows
/// downwards, and a full-screen quad has (0, 0) at its top left. A device whose targets lie the other way round, as
/// those of OpenGL do, sees to it that shaders know nothing of it.

#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrRenderState.h"
#include "vrGraphics/drivercommon/vrShaderInstance.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

enum vrSamplerType : int;

/// Techniques have levels 0 (lowest) to this, exclusive.
constexpr int SHADER_LOD_MAX = 5;

/// Effect files end in this, what they include in the second.
constexpr const char *EFFECT_EXTENSION = ".mks";
constexpr const char *EFFECT_INCLUDE_EXTENSION = ".mksh";

enum class vrEffectStage : int
{
    Vertex,
    Fragment
};

struct vrEffectAnnotation
{
    std::string Name;
    std::string Value;
};

/// A value that the users of an effect set.
struct vrEffectParameter
{
    std::string Name;
    vrShaderParamType Type = SHADER_PARAMS_NONE;
    std::array<float, 4> Default{}; ///< as many as the type has; a bool is 0 or 1
    std::string DefaultTexture;     ///< a file's name; empty for the generic white texture
    vrSamplerType Sampler{};
};

/// A block of GLSL, and where it stood.
struct vrEffectBlock
{
    std::string Text;
    int File = 0; ///< of `vrEffectSource::Get_Files`
    int Line = 0; ///< of the text's first character; from 1
};

struct vrEffectPass
{
    std::string Name; ///< may be empty
    vrRenderStateBlock State;
    std::array<int, 2> Stages{-1, -1}; ///< blocks, by `vrEffectStage`; always there after a parse
};

struct vrEffectTechnique
{
    std::string Name; ///< ends in `_LOD_` and the level
    int Lod = 0;
    std::vector<vrEffectPass> Passes; ///< one at the least
};

/// Finds the files that an effect includes.
class vrEffectIncluder
{
public:
    virtual ~vrEffectIncluder() = default;
    /// Expects the name as the effect has it. False when there is none.
    virtual bool Read_Include(std::string_view name, std::string &text) = 0;
};

class vrEffectSource
{
public:
    // What a file may hold; beyond it, the parse fails.
    static constexpr size_t MAX_FILE_SIZE = 256 * 1024; ///< bytes, each file
    static constexpr size_t MAX_FILES = 16;             ///< itself and what it includes
    static constexpr size_t MAX_PARAMETERS = 64;
    static constexpr size_t MAX_TECHNIQUES = 16;
    static constexpr size_t MAX_PASSES = 8;
    static constexpr size_t MAX_BLOCKS = 128;
    static constexpr size_t MAX_NAME = 63; ///< characters

    /// Takes the place of what was there. False with `error` as "file:line: reason"; the source is then empty.
    /// Without an includer, an include is an error.
    bool Parse(std::string_view text, std::string_view fileName, vrEffectIncluder *includer, std::string &error);
    bool Is_Empty() const { return Techniques.empty(); }

    const std::vector<vrEffectAnnotation> &Get_Annotations() const { return Annotations; }
    /// Empty for one that the effect doesn't have.
    std::string_view Get_Annotation(std::string_view name) const;
    const std::vector<vrEffectParameter> &Get_Parameters() const { return Parameters; }
    const std::vector<vrEffectTechnique> &Get_Techniques() const { return Techniques; }
    const std::vector<std::string> &Get_Files() const { return Files; } ///< the effect's own first

    // What the annotations say, with `Opaque`, `VR_VERTEX_PROC_WORLD` and `VR_LIT_VERTEX` where they say nothing.
    vrRenderPhaseEnum Get_Render_Phase() const { return RenderPhase; }
    vrShaderVertexProcType Get_Vertex_Proc() const { return VertexProc; }
    vrPrimVertexType Get_Vertex_Type() const { return VertexType; }

    /// The technique of the highest level up to `lod`, or the one of the lowest level when all are above it. Asserts a
    /// level below `SHADER_LOD_MAX`. -1 for an empty source.
    int Choose_Technique(int lod) const;
    /// The whole text for a compiler: prelude, parameters, shared blocks and the pass's own, with `#line` directives
    /// that count files by their place in `Get_Files`, and from a million lines further on for each.
    std::string Get_Stage_Text(const vrEffectPass &pass, vrEffectStage stage) const;
    /// A compiler's messages with the files' names in place of their numbers ("0:12(3): ..." and "0(12) : ...") and
    /// lines as the files have them.
    std::string Name_Files(std::string_view messages) const;

private:
    friend class vrEffectParser;

    struct SharedBlock
    {
        int Block = -1;
        std::array<bool, 2> InStage{true, true};
    };

    bool Take_Annotations(std::string &error);

    std::vector<std::string> Files;
    std::vector<vrEffectAnnotation> Annotations;
    std::vector<vrEffectParameter> Parameters;
    std::vector<vrEffectTechnique> Techniques;
    std::vector<vrEffectBlock> Blocks;
    std::vector<SharedBlock> Shared;
    vrRenderPhaseEnum RenderPhase = vrRenderPhaseEnum::Opaque;
    vrShaderVertexProcType VertexProc = VR_VERTEX_PROC_WORLD;
    vrPrimVertexType VertexType = VR_LIT_VERTEX;
};
