#include "vrGraphics/plugins/base/SharedTables.h"

#include <cmath>
#include <numbers>

const vrMKPSharedTables &vrMKPSharedTables::Get()
{
    static const vrMKPSharedTables tables = [] {
        vrMKPSharedTables filled;
        for (int i = 0; i < SIZE; ++i) {
            const double angle = i * 2.0 * std::numbers::pi / SIZE;
            filled.Sine[static_cast<size_t>(i)] = static_cast<float>(std::sin(angle));
            filled.Cosine[static_cast<size_t>(i)] = static_cast<float>(std::cos(angle));
        }
        return filled;
    }();
    return tables;
}
