#include "Desktop/ParticleColumns.h"

#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Code/VisualizerParameters.h"
#include "vrGraphics/effect/vrMKParticle.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace
{

using Cell = ParticleColumn::Cell;
using Needs = ParticleColumn::Needs;

constexpr double FARTHEST = 10000.0;

constexpr const char *SLIDER_HELP = "The value beside it on a scale from 0 to 1000: drag, or type a number";

template <auto Getter>
double Read(const ParticleData &row)
{
    return static_cast<double>((row.*Getter)());
}

constexpr ParticleColumn COLUMNS[] = {
    {"Modified", "Effect", "", "A dot: the effect has changes that are not saved", Cell::Mark,
     Read<&ParticleData::Get_Modified>},
    {"EmitterName", "Effect", "Effect", "The emitter, which is what a file holds and what is saved", Cell::Text},
    {"ParticleName", "Effect", "Layer", "One particle layer of the effect", Cell::Text},
    {"GlobalLOD", "Detail", "Level", "The lowest view mode at which the layer runs: Lowest runs always", Cell::Level,
     Read<&ParticleData::Get_GlobalLOD>, Needs::Spawner},
    {"MinimumDynamicLOD", "Least detail", "Fraction",
     "The fraction of the particles that is still drawn at the far distance and beyond, 0 to 1", Cell::Number,
     Read<&ParticleData::Get_MinimumDynamicLOD>, Needs::Spawner, true, 0.0, 1.0},
    {"MinimumDynamicLODPerThousandth", "Least detail", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_MinimumDynamicLODPerThousandth>, Needs::Spawner},
    {"DynamicLODNearDistance", "Near distance", "Distance", "Up to here all particles are drawn; world units",
     Cell::Number, Read<&ParticleData::Get_DynamicLODNearDistance>, Needs::Spawner, true, 0.0, FARTHEST},
    {"DynamicLODNearDistancePerThousandth", "Near distance", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_DynamicLODNearDistancePerThousandth>, Needs::Spawner},
    {"DynamicLODFarDistance", "Far distance", "Distance", "From here on only the least detail is drawn; world units",
     Cell::Number, Read<&ParticleData::Get_DynamicLODFarDistance>, Needs::Spawner, true, 0.0, FARTHEST},
    {"DynamicLODFarDistancePerThousandth", "Far distance", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_DynamicLODFarDistancePerThousandth>, Needs::Spawner},
    {"SupportsHeat", "Heat", "Can", "The layer shows heat, or can be converted to", Cell::Flag,
     Read<&ParticleData::Get_SupportsHeat>, Needs::Nothing, false},
    {"UsesHeatVisualizer", "Heat", "Is", "The layer has the heat visualizer, and so the values on the right",
     Cell::Flag, Read<&ParticleData::Get_UsesHeatVisualizer>},
    {"DoesNotUseHeatVisualizer", "Heat", "Is not", "The layer has another visualizer", Cell::Flag,
     Read<&ParticleData::Get_DoesNotUseHeatVisualizer>, Needs::Nothing, false},
    {"HeatDistanceCutoff", "Heat cutoff", "Distance", "Heat isn't drawn beyond this distance; world units",
     Cell::Number, Read<&ParticleData::Get_HeatDistanceCutoff>, Needs::Heat, true, 0.01, FARTHEST},
    {"HeatDistanceCutoffPerThousandth", "Heat cutoff", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_HeatDistanceCutoffPerThousandth>, Needs::Heat},
    {"HeatDistortionScale", "Distortion", "Scale", "How far heat bends the picture behind it, 0 to 2", Cell::Number,
     Read<&ParticleData::Get_HeatDistortionScale>, Needs::Heat, true, 0.0, 2.0},
    {"HeatDistortionScalePerThousandth", "Distortion", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_HeatDistortionScalePerThousandth>, Needs::Heat},
    {"SaturationScale", "Saturation", "Scale", "How heat changes the saturation behind it, -2 to 2", Cell::Number,
     Read<&ParticleData::Get_SaturationScale>, Needs::Heat, true, -2.0, 2.0},
    {"SaturationScalePerThousandth", "Saturation", "\u2030", SLIDER_HELP, Cell::Slider,
     Read<&ParticleData::Get_SaturationScalePerThousandth>, Needs::Heat},
    {"SceneLightingAdjustments", "Lighting", "Scene", "The scene's lighting adjustments apply to the layer",
     Cell::Check, Read<&ParticleData::Get_SceneLightingAdjustments>, Needs::Lighting},
};

std::string Number_Text(double value)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof(buffer), value).ptr};
}

bool Is_In_Range(const ParticleColumn &column, const std::string &text, std::string &reason)
{
    const bool isSlider = column.Kind == Cell::Slider;
    if (!isSlider && column.Kind != Cell::Number) return true;
    const double minimum = isSlider ? 0.0 : column.Minimum, maximum = isSlider ? THOUSANDTHS : column.Maximum;
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc() && result.ptr == text.data() + text.size() && value >= minimum && value <= maximum)
        return true;
    reason = std::string(column.Group) + " takes a " + (isSlider ? "whole number" : "number") + " from " +
             Number_Text(minimum) + " to " + Number_Text(maximum) + ", not \"" + text + "\"";
    return false;
}

} // namespace

const ParticleProperty &ParticleColumn::Get_Property() const
{
    return Get_Particle_Properties()[static_cast<size_t>(this - COLUMNS)];
}

std::span<const ParticleColumn> Get_Particle_Columns()
{
    return COLUMNS;
}

int Find_Particle_Column(const char *propertyName)
{
    const auto found = std::find_if(std::begin(COLUMNS), std::end(COLUMNS), [&](const ParticleColumn &column) {
        return std::strcmp(column.PropertyName, propertyName) == 0;
    });
    return static_cast<int>(found - std::begin(COLUMNS));
}

bool Can_Write(const ParticleColumn &column, const ParticleData &row)
{
    if (!column.Is_Writable()) return false;
    const vrMKParticle &particle = *row.Get_Particle();
    switch (column.Need) {
    case Needs::Spawner: return particle.Get_Spawner() != nullptr;
    case Needs::Heat: return row.Get_UsesHeatVisualizer();
    case Needs::Lighting:
        return particle.Get_Visualizer() && Find_Bool_Parameter(*particle.Get_Visualizer(), "Scene Lighting Adj.");
    case Needs::Nothing: break;
    }
    return true;
}

bool Write_Cell(const ParticleColumn &column, ParticleData &row, const std::string &text, std::string &reason)
{
    if (!Can_Write(column, row)) {
        reason = std::string(column.Group) + " is only shown for this layer";
        return false;
    }
    if (!Is_In_Range(column, text, reason)) return false;
    if (column.Get_Property().Set(row, text)) return true;
    reason = "\"" + text + "\" is no value for " + column.Group;
    return false;
}

std::vector<std::string> Get_Plugin_Names(const ParticleData &row)
{
    const vrMKParticle &particle = *row.Get_Particle();
    std::vector<std::string> names;
    const auto add = [&names](const vrMKPPlugin *plugin) {
        if (!plugin) return;
        std::string name = plugin->Get_Name();
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
    };
    add(particle.Get_Spawner());
    add(particle.Get_Visualizer());
    add(particle.Get_Transformer());
    add(particle.Get_Stomper());
    for (int index = 0; index < particle.Get_Modifier_Count(); ++index) add(particle.Get_Modifier(index));
    return names;
}
