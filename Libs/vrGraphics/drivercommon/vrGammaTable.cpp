#include "vrGraphics/drivercommon/vrGammaTable.h"

#include <cmath>

vrGammaTable vrGammaTable::Of_Exponent(float exponent)
{
    vrGammaTable table;
    // The wide power has one form on every processor, which that of a double hasn't.
    for (int index = 0; index < GAMMA_TABLE_ENTRIES_COUNT; ++index) {
        const long double channel = static_cast<long double>(index) / GAMMA_TABLE_RESOLUTION;
        table.Entries[static_cast<size_t>(index)] =
            static_cast<float>(std::pow(channel, static_cast<long double>(exponent)));
    }
    return table;
}

float vrGammaTable::Convert(float channel) const
{
    if (!(channel > 0.0f)) return Entries.front();
    if (channel >= 1.0f) return Entries.back();
    return Entries[static_cast<size_t>(channel * GAMMA_TABLE_RESOLUTION + 0.5f)];
}

RGBAClass vrGammaTable::Convert(const RGBAClass &color) const
{
    return {Convert(color.R), Convert(color.G), Convert(color.B), color.A};
}
