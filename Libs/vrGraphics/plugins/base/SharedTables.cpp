#include "vrGraphics/plugins/base/SharedTables.h"

#include "MKLib/MKMath/PortableMath.h"

const vrMKPSharedTables &vrMKPSharedTables::Get()
{
    static const vrMKPSharedTables tables = [] {
        vrMKPSharedTables filled;
        for (int i = 0; i < SIZE; ++i) {
            const auto [sine, cosine] = Portable::Sine_And_Cosine(i * 2.0 * Portable::PI / SIZE);
            filled.Sine[static_cast<size_t>(i)] = sine;
            filled.Cosine[static_cast<size_t>(i)] = cosine;
        }
        return filled;
    }();
    return tables;
}
