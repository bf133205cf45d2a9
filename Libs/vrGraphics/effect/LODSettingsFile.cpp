#include "vrGraphics/effect/LODSettingsFile.h"

#include "MKLib/File/XMLDatabase.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MKMath/Vectors.h"
#include "MKLib/XMLTypeConverter.h"
#include "vrGraphics/effect/vrLODManager.h"

#include <algorithm>

namespace
{

using Model = vrLODSettings::Model;

MKDebug::Logger VorenLog("VorenLog");

constexpr int HIGHEST_QUALITY = 4;

/// Logs where a value isn't well.
bool Check(bool isWell, const XMLDatabase &xml, const char *what)
{
    if (isWell) return true;
    MK::String key;
    xml.Get_Key(&key);
    MK_LOG(VorenLog, MKDebug::LogLevel::Warning, "LOD settings: element %s: bad or missing %s", key.c_str(), what);
    return false;
}

template <typename T>
bool Read_Attribute(const XMLDatabase &xml, const char *name, T &value)
{
    MK::String text;
    return Check(xml.Get_Attribute(name, &text) == S_OK && XMLTypeConverter::Convert(text, value), xml, name);
}

bool Read_In_Range(const XMLDatabase &xml, const char *name, int32_t low, int32_t high, int32_t &value)
{
    return Read_Attribute(xml, name, value) && Check(value >= low && value <= high, xml, name);
}

bool Read_Distance(const XMLDatabase &xml, float &value)
{
    return Read_Attribute(xml, "Distance", value) && Check(Is_Valid(value), xml, "Distance");
}

/// The text of the element.
bool Read_Value(const XMLDatabase &xml, float &value)
{
    MK::String text;
    return Check(xml.Get_Value(&text) == S_OK && XMLTypeConverter::Convert(text, value) && Is_Valid(value), xml,
                 "value");
}

/// Calls `read` with the cursor on each child, and puts the cursor back. False as soon as a call answers so.
template <typename Reader>
bool For_Each_Child(XMLDatabase &xml, Reader &&read)
{
    if (!xml.Enter_First_Child()) return true;
    bool isWell = read();
    while (isWell && xml.Next_Sibling()) isWell = read();
    return xml.Leave() && isWell;
}

template <typename Entry>
void Sort_By_Distance(std::vector<Entry> &entries)
{
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry &left, const Entry &right) { return left.Distance < right.Distance; });
}

bool Read_Static(XMLDatabase &xml, Model::StaticSetting &setting)
{
    if (!Read_In_Range(xml, "Quality", 0, HIGHEST_QUALITY, setting.Quality)) return false;
    const bool isWell = For_Each_Child(xml, [&] {
        if (!xml.Is_Key("Setting")) return true;
        auto &entry = setting.Settings.emplace_back();
        return Read_Distance(xml, entry.Distance) &&
               Read_In_Range(xml, "LOD", vrLODManager::MIN_MODEL_LOD, vrLODManager::MAX_MODEL_LOD, entry.LOD);
    });
    Sort_By_Distance(setting.Settings);
    return isWell;
}

bool Read_Dynamic(const XMLDatabase &xml, Model::DynamicSetting &setting)
{
    return Read_Distance(xml, setting.Distance) && Read_Attribute(xml, "Detail", setting.Detail) &&
           Check(setting.Detail >= 0.0f && setting.Detail <= 1.0f, xml, "Detail");
}

bool Read_Model(XMLDatabase &xml, Model &model)
{
    MK::String name;
    if (!Read_Attribute(xml, "Name", name) || !Check(!name.empty(), xml, "Name")) return false;
    model.Name = NameTableRef(name);
    const bool isWell = For_Each_Child(xml, [&] {
        if (xml.Is_Key("Static")) return Read_Static(xml, model.StaticSettings.emplace_back());
        if (xml.Is_Key("Dynamic")) return Read_Dynamic(xml, model.DynamicSettings.emplace_back());
        return true;
    });
    std::stable_sort(model.StaticSettings.begin(), model.StaticSettings.end(),
                     [](const auto &left, const auto &right) { return left.Quality < right.Quality; });
    Sort_By_Distance(model.DynamicSettings);
    return isWell;
}

} // namespace

bool Read_LOD_Settings(const char *xmlFilePath, vrLODSettings &settings)
{
    XMLDatabase xml;
    if (!xml.Load(xmlFilePath) || !Check(xml.Is_Key("LODSettings"), xml, "root element")) return false;
    return For_Each_Child(xml, [&] {
        if (xml.Is_Key("NearDistance")) return Read_Value(xml, settings.NearDistance);
        if (xml.Is_Key("FarDistance")) return Read_Value(xml, settings.FarDistance);
        if (xml.Is_Key("DistanceBias")) return Read_Value(xml, settings.DistanceBias);
        if (xml.Is_Key("Model")) return Read_Model(xml, settings.Models.emplace_back());
        return true;
    });
}
