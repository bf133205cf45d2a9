#include "vrGraphics/postfx/vrPostFxsChain.h"

#include "MKLib/File/XMLDatabase.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/XMLTypeConverter.h"

#include <algorithm>

namespace
{

using MKDebug::LogLevel;
MKDebug::Logger VorenLog("VorenLog");

constexpr EnumConverterClass::Entry VALUE_KINDS[] = {
    {"float", SHADER_PARAMS_FLOAT},
    {"float2", SHADER_PARAMS_VECTOR2},
    {"float3", SHADER_PARAMS_VECTOR3},
    {"texture2d", SHADER_PARAMS_TEXTURE},
};

bool Fail(const char *message)
{
    MK_LOG(VorenLog, LogLevel::Error, "%s", message);
    return false;
}

/// Tells what of a file was refused, before the message of the reader that gives up for it.
bool Refuse(std::string_view what, std::string_view value)
{
    MK_LOG(VorenLog, LogLevel::Error, "PostFx: %.*s '%.*s'", static_cast<int>(what.size()), what.data(),
           static_cast<int>(std::min<size_t>(value.size(), 100)), value.data());
    return false;
}

std::string_view Trimmed(std::string_view text)
{
    constexpr const char *BLANKS = " \t\r\n";
    const size_t begin = text.find_first_not_of(BLANKS);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

/// The element's own text.
std::string Value_Of(XMLDatabase &xml)
{
    MK::String value;
    xml.Get_Value(&value);
    return std::string(Trimmed(value));
}

std::string Attribute_Of(XMLDatabase &xml, const char *name)
{
    MK::String value;
    xml.Get_Attribute(name, &value);
    return std::string(Trimmed(value));
}

/// Takes exactly as many finite numbers as the vector has, with blanks or commas between them.
template <typename Numbers>
bool Read_Numbers(std::string text, Numbers &numbers)
{
    std::replace(text.begin(), text.end(), ',', ' ');
    Numbers read{};
    if (!XMLTypeConverter::Convert(text, read) || !Is_Valid(read)) return false;
    numbers = read;
    return true;
}

template <typename Enum>
bool Read_Enum(XMLDatabase &xml, std::span<const EnumConverterClass::Entry> table, Enum &value, const char *what)
{
    const std::string text = Value_Of(xml);
    int32_t number = 0;
    if (!EnumConverterClass::To_Value(table, text, number)) return Refuse(what, text);
    value = static_cast<Enum>(number);
    return true;
}

bool Read_Quad_Max(XMLDatabase &xml, vrPostFxStep &step)
{
    Vector2 size;
    const std::string text = Value_Of(xml);
    if (!Read_Numbers(text, size)) return Refuse("not two numbers in QuadMax:", text);
    const auto isUsable = [](float part) { return part > 0.0f && part <= 1.0f; };
    if (!isUsable(size.x) || !isUsable(size.y)) return Refuse("QuadMax isn't above 0 and up to 1:", text);
    step.QuadMaxX = size.x;
    step.QuadMaxY = size.y;
    return true;
}

/// Of the step's shader; -1 when it has none of that name, which isn't enough to refuse the step.
int Find_Parameter(const vrPostFxStep &step, const std::string &name)
{
    const int index = step.Shader->Get_Parameter_Index(name);
    if (index < 0)
        MK_LOG(VorenLog, LogLevel::Warning, "PostFx: the shader %s of the step %s has no parameter %s",
               step.Shader->Get_Name(), step.Name.c_str(), name.c_str());
    return index;
}

/// Opens a file of a folder below the post-effects path, which a name can't lead out of.
bool Open(XMLDatabase &xml, std::string_view folder, std::string_view fileName)
{
    std::string path(vrGraphicsDriver::Get_PostFxs_Path());
    path.append(folder).append(fileName);
    const bool leavesFolder = fileName.find("..") != std::string_view::npos;
    if (!fileName.empty() && !leavesFolder && xml.Load(path)) return true;
    return Refuse("can't read the file", path);
}

} // namespace

bool vrPostFxsChain::Load_Template(std::string_view fileName, vrGraphicsDriver &driver)
{
    Effects.clear();
    Driver = &driver;
    XMLDatabase xml;
    if (!Open(xml, "PostFxsChains\\", fileName)) return false;
    if (!xml.Enter_First_Child()) return true;
    do {
        if (!xml.Is_Key("PostFx")) continue;
        if (Effects.size() >= MAX_EFFECTS) return Refuse("more effects than are read, in", fileName);
        Effects.push_back(std::make_unique<vrPostFx>());
        const bool isRead = Load_PostFx(xml, *Effects.back());
        Effects.back()->Bind_Params();
        if (!isRead) {
            Refuse("an effect is read in part, from", fileName);
            return Fail("ERROR: Failed to parse a PostFx entry\n");
        }
    } while (xml.Next_Sibling());
    return true;
}

bool vrPostFxsChain::Load_PostFx(XMLDatabase &xml, vrPostFx &effect)
{
    if (!xml.Enter_First_Child()) return Fail("ERROR: Failed to perform inital descend while parsing a <PostFx>\n");
    do {
        if (!Load_PostFx_Element(xml, effect)) return false;
    } while (xml.Next_Sibling());
    return xml.Leave() || Fail("ERROR: Failed to perform final ascend while parsing a <PostFx>\n");
}

bool vrPostFxsChain::Load_PostFx_Element(XMLDatabase &xml, vrPostFx &effect)
{
    if (xml.Is_Key("Name")) effect.Name = Value_Of(xml);
    if (xml.Is_Key("Enable")) effect.Enabled = !MK::Equal_Ignoring_Case(Value_Of(xml), "false");
    if (xml.Is_Key("Type")) return Read_Enum(xml, Get_PostFx_Type_Table(), effect.Type, "unknown effect type");
    if (xml.Is_Key("Priority")) {
        int32_t priority = 0;
        if (!XMLTypeConverter::Convert(Value_Of(xml), priority)) return Refuse("not a priority:", Value_Of(xml));
        effect.Priority = priority;
    }
    if (xml.Is_Key("Params")) return Load_PostFxStep_Params(xml, effect) || Fail("ERROR: Failed to parse <Params>\n");
    if (xml.Is_Key("Steps")) return Load_PostFxSteps(xml, effect) || Fail("ERROR: Failed to parse <Steps>\n");
    return true;
}

bool vrPostFxsChain::Load_PostFxSteps(XMLDatabase &xml, vrPostFx &effect)
{
    if (!xml.Enter_First_Child()) return Fail("ERROR: Failed to perform inital descend while parsing <Steps>\n");
    do {
        if (!xml.Is_Key("Step")) continue;
        if (effect.Steps.size() >= MAX_STEPS) return Refuse("more steps than are read, in", effect.Name);
        vrPostFxStep step;
        if (!Load_PostFxStep(xml, effect, step)) return Fail("ERROR: Failed to load a PostFxStep\n");
        effect.Steps.push_back(std::move(step));
    } while (xml.Next_Sibling());
    return xml.Leave() || Fail("ERROR: Failed to perform final ascend while parsing <Steps>\n");
}

bool vrPostFxsChain::Load_PostFxStep(XMLDatabase &xml, vrPostFx &effect, vrPostFxStep &step)
{
    step.Name = Attribute_Of(xml, "template_file");
    if (!Load_Step_Template(step)) return Refuse("a step can't be read:", step.Name);
    if (!xml.Enter_First_Child()) {
        // A step without anything in it takes what its template says.
        if (Value_Of(xml).empty()) return true;
        return Fail("ERROR: Failed to perform inital descend while parsing <Step> from PostFx file\n");
    }
    do {
        if (xml.Is_Key("Params") && !Load_PostFxStep_Params(xml, effect))
            return Fail("ERROR: Failed to parse <Params>\n");
    } while (xml.Next_Sibling());
    return xml.Leave() || Fail("ERROR: Failed to perform final ascend while parsing <Step> from PostFx file\n");
}

bool vrPostFxsChain::Load_PostFxStep_Params(XMLDatabase &xml, vrPostFx &effect)
{
    if (!xml.Enter_First_Child()) return Fail("ERROR: Failed to perform inital descend while parsing <Params>\n");
    do {
        if (!xml.Is_Key("Param")) continue;
        std::string name;
        vrPostFxValue value;
        if (effect.Params.size() >= MAX_PARAMS) return Refuse("more params than are read, in", effect.Name);
        if (!Read_Value(xml, name, value)) return false;
        effect.Add_Param(name, std::move(value));
    } while (xml.Next_Sibling());
    return xml.Leave() || Fail("ERROR: Failed to perform final ascend while parsing <Params>\n");
}

bool vrPostFxsChain::Load_Step_Template(vrPostFxStep &step)
{
    XMLDatabase xml;
    if (!Open(xml, "PostFxSteps\\", step.Name)) return false;
    if (!xml.Enter_First_Child()) return Refuse("there is nothing in the step", step.Name);
    std::vector<std::pair<std::string, vrPostFxValue>> constants;
    do {
        if (xml.Is_Key("Shader")) step.Shader = Driver->Create_Shader_Instance(Value_Of(xml));
        if (xml.Is_Key("InputMode") && !Read_Enum(xml, Get_Input_Mode_Table(), step.InputMode, "unknown input mode"))
            return false;
        if (xml.Is_Key("OutputMode") &&
            !Read_Enum(xml, Get_Output_Mode_Table(), step.OutputMode, "unknown output mode"))
            return false;
        if (xml.Is_Key("QuadMax") && !Read_Quad_Max(xml, step)) return false;
        if (xml.Is_Key("SetParam")) {
            auto &[name, value] = constants.emplace_back();
            if (constants.size() > MAX_PARAMS || !Read_Value(xml, name, value))
                return Fail("ERROR: Failed to set PostFxStep param\n");
        }
        if (xml.Is_Key("Params") && !Load_Step_Template_Params(xml, step))
            return Fail("ERROR: Failed to parse <Params>\n");
    } while (xml.Next_Sibling());

    // A full-screen effect that is missing would hide the picture, so nothing stands in for it.
    if (!step.Shader || step.Shader->Is_Missing_Effect()) return Refuse("no shader for the step", step.Name);
    for (const auto &[name, value] : constants) value.Set_On(*step.Shader, Find_Parameter(step, name));
    for (vrPostFxStep::Binding &binding : step.Params) binding.ShaderIndex = Find_Parameter(step, binding.Name);
    return true;
}

bool vrPostFxsChain::Load_Step_Template_Params(XMLDatabase &xml, vrPostFxStep &step)
{
    if (!xml.Enter_First_Child()) return Fail("ERROR: Failed to perform inital descend while parsing <Params>\n");
    do {
        if (!xml.Is_Key("Param")) continue;
        if (step.Params.size() >= MAX_PARAMS) return Refuse("more params than are read, in", step.Name);
        const std::string name = Attribute_Of(xml, "name");
        if (name.empty()) return Refuse("a param without a name, in", step.Name);
        step.Params.push_back({name, -1, nullptr});
    } while (xml.Next_Sibling());
    return xml.Leave() || Fail("ERROR: Failed to perform final ascend while parsing <Params>\n");
}

bool vrPostFxsChain::Read_Value(XMLDatabase &xml, std::string &name, vrPostFxValue &value) const
{
    name = Attribute_Of(xml, "name");
    const std::string kind = Attribute_Of(xml, "type");
    const std::string text = Attribute_Of(xml, "value");
    if (name.empty()) return Refuse("a param without a name has the value", text);
    int32_t number = 0;
    if (!EnumConverterClass::To_Value(VALUE_KINDS, kind, number)) return Refuse("unknown type of a param:", kind);
    value.Kind = static_cast<vrShaderParamType>(number);
    if (value.Kind == SHADER_PARAMS_TEXTURE) {
        value.Texture = Driver->Load_Texture(text);
        if (!value.Texture) value.Texture = Driver->Get_Generic_Texture();
        return true;
    }
    Vector2 two(0.0f);
    Vector3 three(0.0f);
    const bool isRead = value.Kind == SHADER_PARAMS_FLOAT     ? Read_Numbers(text, three.x)
                        : value.Kind == SHADER_PARAMS_VECTOR2 ? Read_Numbers(text, two)
                                                              : Read_Numbers(text, three);
    if (!isRead) return Refuse("not the numbers of a " + kind + ":", text);
    if (value.Kind == SHADER_PARAMS_VECTOR2) three = Vector3(two, 0.0f);
    value.Numbers = {three.x, three.y, three.z};
    return true;
}
