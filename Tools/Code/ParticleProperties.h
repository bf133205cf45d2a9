#pragma once

#include <span>
#include <string>
#include <string_view>

class IParticleData;

/// One property of a row by its name and as text: what a grid shows in a column, and what a script sets.
struct ParticleProperty
{
    enum class Kind
    {
        Boolean,       ///< `true` or `false`
        Text,          ///< as it stands
        LevelOfDetail, ///< a label of GlobalLevelOfDetail, or any whole number; numbers without a label print as such
        Float,         ///< the shortest decimal that reads back to the same value; only finite numbers are taken
        Integer        ///< a whole number of 32 bits
    };

    const char *Name; ///< as IParticleData has it
    Kind ValueKind;
    std::string (*Get)(const IParticleData &row);
    /// Null for a property that is only read. False, with the row untouched, for a text that isn't of the kind.
    bool (*Set)(IParticleData &row, std::string_view text);
};

/// All twenty, in the order of the columns.
std::span<const ParticleProperty> Get_Particle_Properties();
/// By exact name; null when there is none.
const ParticleProperty *Find_Particle_Property(std::string_view name);
