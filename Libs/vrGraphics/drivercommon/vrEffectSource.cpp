#include "vrGraphics/drivercommon/vrEffectSource.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrEffectParser.h"
#include "vrGraphics/drivercommon/vrGraphicsEnums.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace
{

constexpr const char *PRELUDE = "#version 330 core\n";

constexpr const char *STAGE_PRELUDES[] = {
    "#define VERTEX_STAGE 1\n"
    "#define VARYING out\n"
    "layout(location = 0) in vec3 inPosition;\n"
    "layout(location = 1) in vec3 inNormal;\n"
    "layout(location = 2) in vec2 inUV;\n"
    "layout(location = 3) in vec3 inTangent;\n"
    "layout(location = 4) in vec3 inBinormal;\n"
    "layout(location = 5) in vec4 inColor;\n",
    "#define FRAGMENT_STAGE 1\n"
    "#define VARYING in\n"
    "layout(location = 0) out vec4 outColor;\n",
};

const char *Get_GLSL_Type(vrShaderParamType type)
{
    switch (type) {
    case SHADER_PARAMS_BOOL: return "bool";
    case SHADER_PARAMS_VECTOR2: return "vec2";
    case SHADER_PARAMS_VECTOR3: return "vec3";
    case SHADER_PARAMS_VECTOR4: return "vec4";
    case SHADER_PARAMS_TEXTURE: return "sampler2D";
    default: return "float";
    }
}

/// The lines of each file start here: compilers that forget which file a line is of remember its number. More than any
/// file has.
constexpr int LINES_A_FILE = 1'000'000;
static_assert(vrEffectSource::MAX_FILE_SIZE < LINES_A_FILE);

void Add_Block(std::string &text, const vrEffectBlock &block)
{
    text += "#line " + std::to_string(block.File * LINES_A_FILE + block.Line) + " " + std::to_string(block.File) + "\n";
    text += block.Text;
    text += "\n";
}

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

bool vrEffectSource::Parse(std::string_view text, std::string_view fileName, vrEffectIncluder *includer,
                           std::string &error)
{
    *this = {};
    vrEffectParser parser(*this, includer);
    if (parser.Parse(text, fileName)) {
        if (Take_Annotations(error)) return true;
    } else {
        error = parser.Get_Error();
    }
    *this = {};
    return false;
}

bool vrEffectSource::Take_Annotations(std::string &error)
{
    const struct
    {
        const char *Name;
        std::span<const EnumConverterClass::Entry> Table;
        int32_t Value;
    } rows[] = {
        {"_VOREN_RENDER_PHASE", Get_Render_Phase_Table(), static_cast<int32_t>(vrRenderPhaseEnum::Opaque)},
        {"_VOREN_VERTEX_PROC", Get_Vertex_Proc_Table(), VR_VERTEX_PROC_WORLD},
        {"_VOREN_VERTEX_TYPE", Get_Vertex_Type_Table(), VR_LIT_VERTEX},
    };
    int32_t values[3] = {};
    for (size_t i = 0; i < std::size(rows); ++i) {
        values[i] = rows[i].Value;
        const std::string_view text = Get_Annotation(rows[i].Name);
        if (text.empty() || EnumConverterClass::To_Value(rows[i].Table, text, values[i])) continue;
        error = Files[0] + ":1: the annotation " + rows[i].Name + " has the unknown value '" + std::string(text) + "'";
        return false;
    }
    RenderPhase = static_cast<vrRenderPhaseEnum>(values[0]);
    VertexProc = static_cast<vrShaderVertexProcType>(values[1]);
    VertexType = static_cast<vrPrimVertexType>(values[2]);
    return true;
}

std::string_view vrEffectSource::Get_Annotation(std::string_view name) const
{
    for (const vrEffectAnnotation &annotation : Annotations)
        if (annotation.Name == name) return annotation.Value;
    return {};
}

int vrEffectSource::Choose_Technique(int lod) const
{
    MK_ASSERT(lod < SHADER_LOD_MAX, "lod < SHADER_LOD_MAX && \"Dx9 cannot use Dx10-ultra-high lod. Call Brem\"");
    const int wanted = std::min(lod, SHADER_LOD_MAX - 1);
    int best = -1;
    int lowest = -1;
    for (int i = 0; i < static_cast<int>(Techniques.size()); ++i) {
        const int level = Techniques[static_cast<size_t>(i)].Lod;
        if (lowest < 0 || level < Techniques[static_cast<size_t>(lowest)].Lod) lowest = i;
        if (level <= wanted && (best < 0 || level > Techniques[static_cast<size_t>(best)].Lod)) best = i;
    }
    return best >= 0 ? best : lowest;
}

std::string vrEffectSource::Get_Stage_Text(const vrEffectPass &pass, vrEffectStage stage) const
{
    const size_t at = static_cast<size_t>(stage);
    std::string text = PRELUDE;
    text += STAGE_PRELUDES[at];
    for (const vrEffectParameter &parameter : Parameters)
        text += std::string("uniform ") + Get_GLSL_Type(parameter.Type) + " " + parameter.Name + ";\n";
    for (const SharedBlock &shared : Shared)
        if (shared.InStage[at]) Add_Block(text, Blocks[static_cast<size_t>(shared.Block)]);
    Add_Block(text, Blocks[static_cast<size_t>(pass.Stages[at])]);
    return text;
}

std::string vrEffectSource::Name_Files(std::string_view messages) const
{
    std::string named;
    size_t position = 0;
    while (position < messages.size()) {
        const bool startsWord = position == 0 || messages[position - 1] == '\n' || messages[position - 1] == ' ';
        int file = 0;
        int line = 0;
        const char *end = messages.data() + messages.size();
        const auto number = std::from_chars(messages.data() + position, end, file);
        const bool isNumber = startsWord && Is_Digit(messages[position]) && number.ec == std::errc();
        const bool isPlace =
            isNumber && number.ptr + 1 < end && (*number.ptr == ':' || *number.ptr == '(') && Is_Digit(number.ptr[1]);
        const auto rest = isPlace ? std::from_chars(number.ptr + 1, end, line) : number;
        if (isPlace && line >= LINES_A_FILE) file = line / LINES_A_FILE;
        if (isPlace && rest.ec == std::errc() && static_cast<size_t>(file) < Files.size()) {
            named += Files[static_cast<size_t>(file)] + *number.ptr + std::to_string(line % LINES_A_FILE);
            position = static_cast<size_t>(rest.ptr - messages.data());
        } else {
            named += messages[position++];
        }
    }
    return named;
}
