#include "vrGraphics/drivercommon/vrEffectParser.h"

#include "MKLib/EnumConverter.h"
#include "MKLib/MKString.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{

using Entry = EnumConverterClass::Entry;

constexpr Entry TYPES[] = {
    {"bool", SHADER_PARAMS_BOOL},      {"float", SHADER_PARAMS_FLOAT},    {"float2", SHADER_PARAMS_VECTOR2},
    {"float3", SHADER_PARAMS_VECTOR3}, {"float4", SHADER_PARAMS_VECTOR4}, {"texture2d", SHADER_PARAMS_TEXTURE},
};
constexpr Entry SAMPLERS[] = {
    {"linear_wrap", VR_SAMPLER_LINEAR_WRAP},
    {"linear_clamp", VR_SAMPLER_LINEAR_CLAMP},
    {"point_clamp", VR_SAMPLER_POINT_CLAMP},
    {"plain", VR_SAMPLER_PLAIN},
};
constexpr Entry DEPTH_STATES[] = {
    {"none", VR_DEPTH_NONE},
    {"test_write", VR_DEPTH_TEST_WRITE},
    {"test", VR_DEPTH_TEST},
    {"write", VR_DEPTH_WRITE},
};
constexpr Entry BLEND_STATES[] = {
    {"opaque", VR_BLEND_OPAQUE},           {"alpha", VR_BLEND_ALPHA},
    {"additive", VR_BLEND_ADDITIVE},       {"modulate", VR_BLEND_MODULATE},
    {"modulate_2x", VR_BLEND_MODULATE_2X}, {"premultiplied", VR_BLEND_PREMULTIPLIED},
    {"add_one", VR_BLEND_ADD_ONE},         {"subtract", VR_BLEND_SUBTRACT},
};
constexpr Entry RASTERIZE_STATES[] = {
    {"cull_none", VR_RASTERIZE_CULL_NONE},
    {"cull_back", VR_RASTERIZE_CULL_BACK},
    {"cull_front", VR_RASTERIZE_CULL_FRONT},
    {"wireframe", VR_RASTERIZE_WIREFRAME},
};

/// The words of a pass that set one of its states.
struct StateWord
{
    const char *Word;
    std::span<const Entry> Values;
    int vrRenderStateBlock::*State;
};
constexpr StateWord STATE_WORDS[] = {
    {"blend", BLEND_STATES, &vrRenderStateBlock::m_blendState},
    {"depth", DEPTH_STATES, &vrRenderStateBlock::m_depthStencilState},
    {"rasterize", RASTERIZE_STATES, &vrRenderStateBlock::m_rasterizeState},
};

std::string Texts_Of(std::span<const Entry> entries)
{
    std::string texts;
    for (const Entry &entry : entries) texts += (texts.empty() ? "" : ", ") + std::string(entry.Text);
    return texts;
}

bool Is_Letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

bool Is_Blank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

int Component_Count(vrShaderParamType type)
{
    return type == SHADER_PARAMS_VECTOR2   ? 2
           : type == SHADER_PARAMS_VECTOR3 ? 3
           : type == SHADER_PARAMS_VECTOR4 ? 4
                                           : 1;
}

/// The length of the comment that `text` starts with; 0 for none, npos for one without an end.
size_t Comment_Length(std::string_view text)
{
    if (text.starts_with("//")) return std::min(text.find('\n'), text.size());
    if (!text.starts_with("/*")) return 0;
    const size_t end = text.find("*/", 2);
    return end == std::string_view::npos ? end : end + 2;
}

/// The level that a technique's name ends in; -1 when it doesn't.
int Level_Of(std::string_view name)
{
    constexpr std::string_view MARK = "_LOD_";
    const size_t at = name.rfind(MARK);
    if (at == std::string_view::npos) return -1;
    const char *begin = name.data() + at + MARK.size();
    const char *end = name.data() + name.size();
    int level = -1;
    const auto result = std::from_chars(begin, end, level);
    return result.ec == std::errc() && result.ptr == end && level >= 0 && level < 100 ? level : -1;
}

template <typename Item>
bool Has_Name(const std::vector<Item> &items, std::string_view name)
{
    return std::any_of(items.begin(), items.end(),
                       [name](const Item &item) { return MK::Equal_Ignoring_Case(item.Name, name); });
}

} // namespace

bool vrEffectParser::Fail_At(int line, const std::string &reason)
{
    if (Error.empty())
        Error = Source.Files[static_cast<size_t>(Place.File)] + ":" + std::to_string(line) + ": " + reason;
    return false;
}

std::string vrEffectParser::Quote_Current() const
{
    if (Current.Kind == TokenKind::End) return "the end of the file";
    return "'" + std::string(Current.Text.substr(0, vrEffectSource::MAX_NAME)) + "'";
}

bool vrEffectParser::Skip_Blanks()
{
    while (Place.Position < Place.Text.size()) {
        const std::string_view rest = Place.Text.substr(Place.Position);
        const size_t comment = Comment_Length(rest);
        if (comment == std::string_view::npos) return Fail_At(Place.Line, "the comment has no end");
        if (comment == 0 && !Is_Blank(rest[0])) return true;
        const size_t length = std::max<size_t>(comment, 1);
        Place.Line += static_cast<int>(std::count(rest.begin(), rest.begin() + static_cast<ptrdiff_t>(length), '\n'));
        Place.Position += length;
    }
    return true;
}

bool vrEffectParser::Read_String()
{
    const size_t end = Place.Text.find_first_of("\"\n", Place.Position + 1);
    if (end == std::string_view::npos || Place.Text[end] != '"') return Fail("the text has no closing quote");
    Current.Text = Place.Text.substr(Place.Position + 1, end - Place.Position - 1);
    Place.Position = end + 1;
    return true;
}

void vrEffectParser::Read_Number()
{
    size_t end = Place.Position + 1;
    while (end < Place.Text.size()) {
        const char c = Place.Text[end];
        const bool isExponentSign =
            (c == '-' || c == '+') && (Place.Text[end - 1] == 'e' || Place.Text[end - 1] == 'E');
        if (!Is_Letter(c) && !Is_Digit(c) && c != '.' && !isExponentSign) break;
        ++end;
    }
    Current.Text = Place.Text.substr(Place.Position, end - Place.Position);
    Place.Position = end;
}

bool vrEffectParser::Next()
{
    if (!Skip_Blanks()) return false;
    Current = {TokenKind::End, {}, Place.Line};
    if (Place.Position >= Place.Text.size()) return true;
    const char first = Place.Text[Place.Position];
    if (first == '"') {
        Current.Kind = TokenKind::String;
        return Read_String();
    }
    if (Is_Letter(first)) {
        size_t end = Place.Position;
        while (end < Place.Text.size() && (Is_Letter(Place.Text[end]) || Is_Digit(Place.Text[end]))) ++end;
        Current = {TokenKind::Word, Place.Text.substr(Place.Position, end - Place.Position), Place.Line};
        Place.Position = end;
        return true;
    }
    if (Is_Digit(first) || first == '-' || first == '+' || first == '.') {
        Current.Kind = TokenKind::Number;
        Read_Number();
        return true;
    }
    Current = {TokenKind::Mark, Place.Text.substr(Place.Position, 1), Place.Line};
    ++Place.Position;
    return true;
}

bool vrEffectParser::Take_Word(const char *what, std::string &word)
{
    if (Current.Kind != TokenKind::Word) return Fail(std::string("expected ") + what + " but got " + Quote_Current());
    if (Current.Text.size() > vrEffectSource::MAX_NAME)
        return Fail(std::string(what) + " has " + std::to_string(Current.Text.size()) + " characters, at most " +
                    std::to_string(vrEffectSource::MAX_NAME) + " are allowed");
    word = Current.Text;
    return Next();
}

bool vrEffectParser::Take_String(const char *what, std::string &text)
{
    if (Current.Kind != TokenKind::String)
        return Fail(std::string("expected ") + what + " in quotes but got " + Quote_Current());
    text = Current.Text;
    return Next();
}

bool vrEffectParser::Take_Mark(char mark)
{
    if (!Is_Mark(mark)) return Fail(std::string("expected '") + mark + "' but got " + Quote_Current());
    return Next();
}

bool vrEffectParser::Parse(std::string_view text, std::string_view fileName)
{
    if (!Parse_File(text, fileName)) return false;
    if (Source.Techniques.empty()) return Fail("the effect has no technique");
    return true;
}

bool vrEffectParser::Parse_File(std::string_view text, std::string_view fileName)
{
    Place = {text, 0, 1, static_cast<int>(Source.Files.size())};
    Current = {};
    Source.Files.emplace_back(fileName);
    if (text.size() > vrEffectSource::MAX_FILE_SIZE)
        return Fail("the file has " + std::to_string(text.size()) + " bytes, at most " +
                    std::to_string(vrEffectSource::MAX_FILE_SIZE) + " are read");
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && !Is_Blank(c); };
    const auto control = std::find_if(text.begin(), text.end(), isControl);
    if (control != text.end())
        return Fail_At(1 + static_cast<int>(std::count(text.begin(), control, '\n')), "a byte that isn't text");
    if (!Next()) return false;
    while (Current.Kind != TokenKind::End)
        if (!Parse_Item()) return false;
    return true;
}

bool vrEffectParser::Parse_Item()
{
    if (Is_Word("include")) return Next() && Parse_Include();
    if (Is_Word("annotation")) return Next() && Parse_Annotation();
    if (Is_Word("parameter")) return Next() && Parse_Parameter();
    if (Is_Word("shared")) return Next() && Parse_Shared();
    if (Is_Word("vertex")) return Next() && Parse_Stage(vrEffectStage::Vertex);
    if (Is_Word("fragment")) return Next() && Parse_Stage(vrEffectStage::Fragment);
    if (Is_Word("technique")) return Next() && Parse_Technique();
    return Fail("expected include, annotation, parameter, shared, vertex, fragment or technique but got " +
                Quote_Current());
}

bool vrEffectParser::Parse_Include()
{
    const int line = Current.Line;
    if (Current.Kind != TokenKind::String) return Fail("expected a file's name in quotes but got " + Quote_Current());
    const std::string name(Current.Text);
    for (const std::string &file : Source.Files)
        if (MK::Equal_Ignoring_Case(file, name)) return Next();
    if (Source.Files.size() >= vrEffectSource::MAX_FILES)
        return Fail("more than " + std::to_string(vrEffectSource::MAX_FILES) + " files");
    std::string text;
    if (!Includer || !Includer->Read_Include(name, text))
        return Fail_At(line, "can't read the included file '" + name + "'");
    const Cursor outer = Place;
    if (!Parse_File(text, name)) return false;
    Place = outer;
    return Next();
}

bool vrEffectParser::Parse_Annotation()
{
    vrEffectAnnotation annotation;
    const int line = Current.Line;
    if (!Take_Word("an annotation's name", annotation.Name)) return false;
    if (Source.Annotations.size() >= vrEffectSource::MAX_PARAMETERS) return Fail_At(line, "too many annotations");
    if (Has_Name(Source.Annotations, annotation.Name))
        return Fail_At(line, "the annotation '" + annotation.Name + "' is there twice");
    if (!Take_String("the annotation's text", annotation.Value)) return false;
    Source.Annotations.push_back(std::move(annotation));
    return true;
}

bool vrEffectParser::Parse_Parameter()
{
    vrEffectParameter parameter;
    int32_t type = 0;
    const int line = Current.Line;
    if (!EnumConverterClass::To_Value(TYPES, Current.Text, type))
        return Fail("expected a type (" + Texts_Of(TYPES) + ") but got " + Quote_Current());
    parameter.Type = static_cast<vrShaderParamType>(type);
    if (!Next() || !Take_Word("a parameter's name", parameter.Name)) return false;
    if (Source.Parameters.size() >= vrEffectSource::MAX_PARAMETERS)
        return Fail_At(line, "more than " + std::to_string(vrEffectSource::MAX_PARAMETERS) + " parameters");
    if (Has_Name(Source.Parameters, parameter.Name))
        return Fail_At(line, "the parameter '" + parameter.Name + "' is there twice");
    if (Is_Mark('=') && (!Next() || !Parse_Default(parameter))) return false;
    int32_t sampler = 0;
    if (parameter.Type == SHADER_PARAMS_TEXTURE && Current.Kind == TokenKind::Word &&
        EnumConverterClass::To_Value(SAMPLERS, Current.Text, sampler))
    {
        parameter.Sampler = static_cast<vrSamplerType>(sampler);
        if (!Next()) return false;
    }
    Source.Parameters.push_back(std::move(parameter));
    return true;
}

bool vrEffectParser::Parse_Default(vrEffectParameter &parameter)
{
    if (parameter.Type == SHADER_PARAMS_TEXTURE) return Take_String("a texture's name", parameter.DefaultTexture);
    if (parameter.Type == SHADER_PARAMS_BOOL) {
        if (!Is_Word("true") && !Is_Word("false")) return Fail("expected true or false but got " + Quote_Current());
        parameter.Default[0] = Is_Word("true") ? 1.0f : 0.0f;
        return Next();
    }
    for (int i = 0; i < Component_Count(parameter.Type); ++i)
        if (!Parse_Number(parameter.Default[static_cast<size_t>(i)])) return false;
    return true;
}

bool vrEffectParser::Parse_Number(float &value)
{
    if (Current.Kind != TokenKind::Number) return Fail("expected a number but got " + Quote_Current());
    const std::string_view digits = Current.Text.substr(Current.Text[0] == '+' ? 1 : 0);
    const char *end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
        return Fail(Quote_Current() + " isn't a number");
    return Next();
}

bool vrEffectParser::Parse_Shared()
{
    vrEffectSource::SharedBlock shared;
    if (Is_Word("vertex") || Is_Word("fragment")) {
        shared.InStage[Is_Word("vertex") ? 1 : 0] = false;
        if (!Next()) return false;
    }
    if (!Parse_Block(shared.Block)) return false;
    Source.Shared.push_back(shared);
    return true;
}

bool vrEffectParser::Parse_Stage(vrEffectStage stage)
{
    std::string name;
    const int line = Current.Line;
    int block = -1;
    if (!Take_Word("a stage's name", name) || !Parse_Block(block)) return false;
    if (!NamedStages[static_cast<int>(stage)].emplace(name, block).second)
        return Fail_At(line, "the stage '" + name + "' is there twice");
    return true;
}

bool vrEffectParser::Parse_Block(int &block)
{
    if (!Is_Mark('{')) return Fail("expected '{' but got " + Quote_Current());
    if (Source.Blocks.size() >= vrEffectSource::MAX_BLOCKS)
        return Fail("more than " + std::to_string(vrEffectSource::MAX_BLOCKS) + " blocks");
    const int firstLine = Current.Line;
    const size_t begin = Place.Position;
    int depth = 1;
    while (Place.Position < Place.Text.size()) {
        const std::string_view rest = Place.Text.substr(Place.Position);
        const size_t comment = Comment_Length(rest);
        if (comment == std::string_view::npos) break;
        depth += rest[0] == '{' ? 1 : rest[0] == '}' ? -1 : 0;
        if (depth == 0) break;
        const size_t length = std::max<size_t>(comment, 1);
        Place.Line += static_cast<int>(std::count(rest.begin(), rest.begin() + static_cast<ptrdiff_t>(length), '\n'));
        Place.Position += length;
    }
    if (depth != 0) return Fail_At(firstLine, "the block has no closing '}'");
    block = static_cast<int>(Source.Blocks.size());
    Source.Blocks.push_back({std::string(Place.Text.substr(begin, Place.Position - begin)), Place.File, firstLine});
    ++Place.Position;
    return Next();
}

bool vrEffectParser::Parse_Technique()
{
    vrEffectTechnique technique;
    const int line = Current.Line;
    if (!Take_Word("a technique's name", technique.Name)) return false;
    technique.Lod = Level_Of(technique.Name);
    if (technique.Lod < 0)
        return Fail_At(line,
                       "the technique's name '" + technique.Name + "' doesn't end in _LOD_ and a level below 100");
    if (Source.Techniques.size() >= vrEffectSource::MAX_TECHNIQUES)
        return Fail_At(line, "more than " + std::to_string(vrEffectSource::MAX_TECHNIQUES) + " techniques");
    if (Has_Name(Source.Techniques, technique.Name))
        return Fail_At(line, "the technique '" + technique.Name + "' is there twice");
    if (!Take_Mark('{')) return false;
    while (!Is_Mark('}')) {
        if (!Is_Word("pass")) return Fail("expected pass or '}' but got " + Quote_Current());
        if (!Next() || !Parse_Pass(technique)) return false;
    }
    if (technique.Passes.empty()) return Fail_At(line, "the technique '" + technique.Name + "' has no pass");
    Source.Techniques.push_back(std::move(technique));
    return Next();
}

bool vrEffectParser::Parse_Pass(vrEffectTechnique &technique)
{
    vrEffectPass pass;
    const int line = Current.Line;
    if (technique.Passes.size() >= vrEffectSource::MAX_PASSES)
        return Fail("more than " + std::to_string(vrEffectSource::MAX_PASSES) + " passes");
    if (Current.Kind == TokenKind::Word && !Take_Word("a pass's name", pass.Name)) return false;
    if (!Take_Mark('{')) return false;
    while (!Is_Mark('}'))
        if (!Parse_Pass_Item(pass)) return false;
    if (pass.Stages[0] < 0) return Fail_At(line, "the pass has no vertex stage");
    if (pass.Stages[1] < 0) return Fail_At(line, "the pass has no fragment stage");
    technique.Passes.push_back(std::move(pass));
    return Next();
}

bool vrEffectParser::Parse_Pass_Item(vrEffectPass &pass)
{
    if (Is_Word("vertex")) return Next() && Parse_Pass_Stage(pass, vrEffectStage::Vertex);
    if (Is_Word("fragment")) return Next() && Parse_Pass_Stage(pass, vrEffectStage::Fragment);
    for (const StateWord &state : STATE_WORDS) {
        if (!Is_Word(state.Word)) continue;
        int32_t value = 0;
        if (!Next()) return false;
        if (Current.Kind != TokenKind::Word || !EnumConverterClass::To_Value(state.Values, Current.Text, value))
            return Fail(std::string("expected a state of ") + state.Word + " (" + Texts_Of(state.Values) +
                        ") but got " + Quote_Current());
        pass.State.*state.State = value;
        return Next();
    }
    return Fail("expected blend, depth, rasterize, vertex, fragment or '}' but got " + Quote_Current());
}

bool vrEffectParser::Parse_Pass_Stage(vrEffectPass &pass, vrEffectStage stage)
{
    int &block = pass.Stages[static_cast<size_t>(stage)];
    if (block >= 0) return Fail("the pass has that stage twice");
    if (Is_Mark('{')) return Parse_Block(block);
    const auto &stages = NamedStages[static_cast<int>(stage)];
    const auto found = Current.Kind == TokenKind::Word ? stages.find(Current.Text) : stages.end();
    if (found == stages.end()) return Fail("expected '{' or the name of a stage above but got " + Quote_Current());
    block = found->second;
    return Next();
}
