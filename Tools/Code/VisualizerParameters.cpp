#include "Code/VisualizerParameters.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

BoolParameter *Find_Bool_Parameter(vrMKPPlugin &plugin, std::string_view name)
{
    ParameterClass *parameter = plugin.Get_Parameter_By_Name(name);
    const bool isBool = parameter && parameter->Get_Type() == ParameterType::Boolean;
    return isBool ? static_cast<BoolParameter *>(parameter) : nullptr;
}

StringParameterClass *Find_String_Parameter(vrMKPPlugin &plugin, std::string_view name)
{
    ParameterClass *parameter = plugin.Get_Parameter_By_Name(name);
    if (!parameter) return nullptr;
    const ParameterType type = parameter->Get_Type();
    const bool isText =
        type == ParameterType::String || type == ParameterType::TextureName || type == ParameterType::ShaderName;
    return isText ? static_cast<StringParameterClass *>(parameter) : nullptr;
}

namespace
{

template <typename T>
void Copy_Value(T *to, const T *from)
{
    if (MK_VERIFY(to && from, "a visualizer lacks a parameter of the heat conversion"))
        to->Set_Value(from->Get_Value());
}

} // namespace

void Copy_Heat_Parameters(vrMKPPlugin &heat, vrMKPPlugin &source)
{
    for (const char *name : {"Normal Render Mode", "Reflection Render Mode", "Refraction Render Mode",
                             "Shadow-map Render Mode", "Disable Depth Test"})
        Copy_Value(Find_Bool_Parameter(heat, name), Find_Bool_Parameter(source, name));
    for (const char *name : {"Texture Name", "Shader Name"})
        Copy_Value(Find_String_Parameter(heat, name), Find_String_Parameter(source, name));
    Copy_Value(Find_Bool_Parameter(heat, "Sort"), Find_Bool_Parameter(source, "Sort"));
}
