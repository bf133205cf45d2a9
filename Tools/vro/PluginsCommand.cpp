#include "vro/Commands.h"

#include "vro/OutputFile.h"
#include "vro/ParameterJson.h"
#include "vro/PluginReference.h"

#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "MKLib/File/RAMFile.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"

namespace vro
{

namespace
{

Json Reference_Of(const ParameterClass &parameter)
{
    TextPlaces texts;
    Json json = {{"id", parameter.Get_ID()},
                 {"name", parameter.Get_Name()},
                 {"kind", Get_Parameter_Type_Name(parameter.Get_Type())},
                 {"default", Value_To_Json(parameter, "", texts)}};
    if (const auto *number = dynamic_cast<const RangedFloatParameter *>(&parameter)) {
        json["min"] = Float_To_Json(number->Get_Minimum());
        json["max"] = Float_To_Json(number->Get_Maximum());
    } else if (const auto *whole = dynamic_cast<const RangedIntParameter *>(&parameter)) {
        json["min"] = whole->Get_Minimum();
        json["max"] = whole->Get_Maximum();
    } else if (const auto *choice = dynamic_cast<const EnumParameterClass *>(&parameter)) {
        Json labels = Json::array();
        for (const char *label : choice->Get_Labels()) labels.push_back(label);
        json["labels"] = std::move(labels);
    }
    json["description"] = parameter.Get_Description();
    json["saved"] = !parameter.Is_Save_Excluded();
    return json;
}

Json Reference_Of(const vrMKPPlugin &plugin, const vrMKPPluginInfo &info)
{
    Json parameters = Json::array();
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        parameters.push_back(Reference_Of(*plugin.Get_Parameters().Get_Parameter(index)));
    return {{"id", info.Id},
            {"class", info.ClassName},
            {"name", plugin.Get_Name()},
            {"family", vrMKPPlugin::Get_Plugin_Type_Name(plugin.Get_Plugin_Type())},
            {"category", vrMKPPlugin::Get_Category_Name(plugin.Get_Category())},
            {"description", plugin.Get_Description()},
            {"read_mask", plugin.Get_Read_Attributes()},
            {"write_mask", plugin.Get_Write_Attributes()},
            {"obsolete", plugin.Is_Obsolete()},
            {"parameters", std::move(parameters)}};
}

} // namespace

Json Get_Plugin_Reference()
{
    Json kinds = Json::array();
    for (uint32_t id = 0; id < VRMKP_PLUGIN_COUNT; ++id)
        kinds.push_back(Reference_Of(*SmartPtr<vrMKPPlugin>(vrMKPPlugin::Create_Plugin(id)),
                                     *Find_Plugin_Info(static_cast<int>(id))));
    return kinds;
}

int Run_Plugins(bool asJson)
{
    std::string text;
    if (asJson) {
        text = To_Text(Get_Plugin_Reference());
    } else {
        RAMFileClass pages;
        pages.Open("plugins", MKPlatform::FILE_OPEN_GENERIC_WRITE);
        for (uint32_t id = 0; id < VRMKP_PLUGIN_COUNT; ++id)
            SmartPtr<vrMKPPlugin>(vrMKPPlugin::Create_Plugin(id))->Dump_Plugin(pages);
        text.assign(reinterpret_cast<const char *>(pages.Get_Buffer()), static_cast<size_t>(pages.Get_Size()));
    }
    std::string error;
    return Write_Output("-", text, error) ? EXIT_WELL : Fail("standard output", error);
}

} // namespace vro
