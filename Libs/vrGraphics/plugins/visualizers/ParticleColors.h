#pragma once

#include "vrGraphics/drivercommon/vrColor.h"

#include <array>
#include <cstdint>

struct vrGammaTable;

/// The way of particles' colours to their vertices: times a multiplier, packed, and then red, green and blue through
/// the driver's gamma table 0. Made once a draw. What follows the packing depends on one byte alone, so that it's a
/// table of bytes.
class vrMKPColorPath
{
public:
    /// Takes the gamma table as it stands. `multiplier` has the alpha of everything that fades the layer. Before it the
    /// path leads nowhere.
    void Begin(const RGBAClass &multiplier);

    /// The two arrays may not overlap.
    void Convert(vrColor *to, const vrColor *from, int count) const;
    /// All four channels times `fades` too, and without the packing ahead of the gamma table.
    void Convert_Faded(vrColor *to, const vrColor *from, const float *fades, int count) const;

private:
    RGBAClass Multiplier;
    const vrGammaTable *Table = nullptr;
    bool IsIdentity = true;          ///< the table has i / 1024 at i
    std::array<uint32_t, 256> Bytes; ///< what another makes of a packed channel
};
