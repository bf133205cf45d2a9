#pragma once

#include <span>
#include <string>
#include <vector>

class ParticleData;
struct ParticleProperty;

/// How the grid shows one property of a row.
struct ParticleColumn
{
    enum class Cell
    {
        Mark, ///< a dot when it holds
        Text,
        Level,  ///< one of the levels of detail
        Number, ///< the engine's own value, typed
        Slider, ///< 0 to 1000, drawn or typed
        Check,
        Flag ///< yes or no, only shown
    };
    /// What a row must have for the cell to be written.
    enum class Needs
    {
        Nothing,
        Spawner,
        Heat,
        Lighting
    };

    const char *PropertyName;
    const char *Group; ///< heading over neighbouring columns
    const char *Title;
    const char *Help;
    Cell Kind;
    double (*Number)(const ParticleData &row) = nullptr; ///< the value; null for texts
    Needs Need = Needs::Nothing;
    bool Shown = true; ///< before the user chose
    // Of what may be typed. The scale of thousandths has its own.
    double Minimum = 0.0;
    double Maximum = 0.0;

    const ParticleProperty &Get_Property() const;
    bool Is_Writable() const { return Kind != Cell::Mark && Kind != Cell::Text && Kind != Cell::Flag; }
};

/// All, in the order of the row's properties.
std::span<const ParticleColumn> Get_Particle_Columns();
inline const ParticleColumn &Get_Particle_Column(int column)
{
    return Get_Particle_Columns()[static_cast<size_t>(column)];
}
/// Expects a name that there is.
int Find_Particle_Column(const char *propertyName);

constexpr int THOUSANDTHS = 1000;

bool Can_Write(const ParticleColumn &column, const ParticleData &row);
/// Writes the text to the row, from where it goes to the selection. False, with the reason in `reason`, when the cell
/// can't be written or the text isn't a value that it takes.
bool Write_Cell(const ParticleColumn &column, ParticleData &row, const std::string &text, std::string &reason);
/// The names of the kinds that the layer is made of: spawner, visualizer, modifiers and so on, each once.
std::vector<std::string> Get_Plugin_Names(const ParticleData &row);
