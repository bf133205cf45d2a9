#include "Code/ParticleProperties.h"

#include "Code/IParticleData.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace
{

using Kind = ParticleProperty::Kind;

constexpr const char *LEVEL_LABELS[] = {"Lowest", "Low", "Medium", "High", "Highest"};

std::string To_Text(bool value)
{
    return value ? "true" : "false";
}

std::string To_Text(std::string value)
{
    return value;
}

template <typename T>
std::string Number_Text(T value)
{
    char buffer[64];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return {buffer, result.ptr};
}

std::string To_Text(float value)
{
    return Number_Text(value);
}

std::string To_Text(int32_t value)
{
    return Number_Text(value);
}

std::string To_Text(GlobalLevelOfDetail value)
{
    const int level = static_cast<int>(value);
    return level >= 0 && level < static_cast<int>(std::size(LEVEL_LABELS)) ? LEVEL_LABELS[level] : Number_Text(level);
}

bool Parse(std::string_view text, bool &value)
{
    value = text == "true";
    return value || text == "false";
}

template <typename T>
bool Parse_Number(std::string_view text, T &value)
{
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool Parse(std::string_view text, float &value)
{
    return Parse_Number(text, value) && std::isfinite(value);
}

bool Parse(std::string_view text, int32_t &value)
{
    return Parse_Number(text, value);
}

bool Parse(std::string_view text, GlobalLevelOfDetail &value)
{
    for (int level = 0; level < static_cast<int>(std::size(LEVEL_LABELS)); ++level) {
        if (text != LEVEL_LABELS[level]) continue;
        value = static_cast<GlobalLevelOfDetail>(level);
        return true;
    }
    int32_t number = 0;
    if (!Parse_Number(text, number)) return false;
    value = static_cast<GlobalLevelOfDetail>(number);
    return true;
}

template <typename T>
constexpr Kind KIND_OF = Kind::Text;
template <>
constexpr Kind KIND_OF<bool> = Kind::Boolean;
template <>
constexpr Kind KIND_OF<GlobalLevelOfDetail> = Kind::LevelOfDetail;
template <>
constexpr Kind KIND_OF<float> = Kind::Float;
template <>
constexpr Kind KIND_OF<int32_t> = Kind::Integer;

template <auto Getter>
std::string Get_Text(const IParticleData &row)
{
    return To_Text((row.*Getter)());
}

template <typename T, void (IParticleData::*Setter)(T)>
bool Set_Text(IParticleData &row, std::string_view text)
{
    T value{};
    if (!Parse(text, value)) return false;
    (row.*Setter)(value);
    return true;
}

template <typename T, T (IParticleData::*Getter)() const>
constexpr ParticleProperty Read_Only(const char *name)
{
    return {name, KIND_OF<T>, Get_Text<Getter>, nullptr};
}

template <typename T, T (IParticleData::*Getter)() const, void (IParticleData::*Setter)(T)>
constexpr ParticleProperty Writable(const char *name)
{
    return {name, KIND_OF<T>, Get_Text<Getter>, Set_Text<T, Setter>};
}

using Row = IParticleData;

constexpr ParticleProperty PROPERTIES[] = {
    Writable<bool, &Row::Get_Modified, &Row::Set_Modified>("Modified"),
    Read_Only<std::string, &Row::Get_EmitterName>("EmitterName"),
    Read_Only<std::string, &Row::Get_ParticleName>("ParticleName"),
    Writable<GlobalLevelOfDetail, &Row::Get_GlobalLOD, &Row::Set_GlobalLOD>("GlobalLOD"),
    Writable<float, &Row::Get_MinimumDynamicLOD, &Row::Set_MinimumDynamicLOD>("MinimumDynamicLOD"),
    Writable<int32_t, &Row::Get_MinimumDynamicLODPerThousandth, &Row::Set_MinimumDynamicLODPerThousandth>(
        "MinimumDynamicLODPerThousandth"),
    Writable<float, &Row::Get_DynamicLODNearDistance, &Row::Set_DynamicLODNearDistance>("DynamicLODNearDistance"),
    Writable<int32_t, &Row::Get_DynamicLODNearDistancePerThousandth, &Row::Set_DynamicLODNearDistancePerThousandth>(
        "DynamicLODNearDistancePerThousandth"),
    Writable<float, &Row::Get_DynamicLODFarDistance, &Row::Set_DynamicLODFarDistance>("DynamicLODFarDistance"),
    Writable<int32_t, &Row::Get_DynamicLODFarDistancePerThousandth, &Row::Set_DynamicLODFarDistancePerThousandth>(
        "DynamicLODFarDistancePerThousandth"),
    Read_Only<bool, &Row::Get_SupportsHeat>("SupportsHeat"),
    Read_Only<bool, &Row::Get_UsesHeatVisualizer>("UsesHeatVisualizer"),
    Read_Only<bool, &Row::Get_DoesNotUseHeatVisualizer>("DoesNotUseHeatVisualizer"),
    Writable<float, &Row::Get_HeatDistanceCutoff, &Row::Set_HeatDistanceCutoff>("HeatDistanceCutoff"),
    Writable<int32_t, &Row::Get_HeatDistanceCutoffPerThousandth, &Row::Set_HeatDistanceCutoffPerThousandth>(
        "HeatDistanceCutoffPerThousandth"),
    Writable<float, &Row::Get_HeatDistortionScale, &Row::Set_HeatDistortionScale>("HeatDistortionScale"),
    Writable<int32_t, &Row::Get_HeatDistortionScalePerThousandth, &Row::Set_HeatDistortionScalePerThousandth>(
        "HeatDistortionScalePerThousandth"),
    Writable<float, &Row::Get_SaturationScale, &Row::Set_SaturationScale>("SaturationScale"),
    Writable<int32_t, &Row::Get_SaturationScalePerThousandth, &Row::Set_SaturationScalePerThousandth>(
        "SaturationScalePerThousandth"),
    Writable<bool, &Row::Get_SceneLightingAdjustments, &Row::Set_SceneLightingAdjustments>("SceneLightingAdjustments"),
};

} // namespace

std::span<const ParticleProperty> Get_Particle_Properties()
{
    return PROPERTIES;
}

const ParticleProperty *Find_Particle_Property(std::string_view name)
{
    for (const ParticleProperty &property : PROPERTIES)
        if (property.Name == name) return &property;
    return nullptr;
}
