#pragma once

#include "MKLib/MKMath/Vectors.h"

#include <array>

constexpr int GAMMA_TABLE_RESOLUTION = 1024;
constexpr int GAMMA_TABLE_ENTRIES_COUNT = GAMMA_TABLE_RESOLUTION + 1;

/// A conversion of colour channels by a table over 0 to 1.
struct vrGammaTable
{
    std::array<float, GAMMA_TABLE_ENTRIES_COUNT> Entries;

    /// entry(i) = (i / 1024) ^ exponent; 1 gives the identity.
    static vrGammaTable Of_Exponent(float exponent);
    /// Rounds to the nearest entry; what is above 1 takes the last one, what is below 0 or no number the first.
    float Convert(float channel) const;
    /// Alpha stays.
    RGBAClass Convert(const RGBAClass &color) const;
};
