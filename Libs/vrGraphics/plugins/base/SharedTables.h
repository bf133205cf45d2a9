#pragma once

#include <array>

/// Sine and cosine of i * 2 pi / 4096, the steps of the rotation attribute. Filled by the first plugin that is made, and
/// read-only from then on.
struct vrMKPSharedTables
{
    static constexpr int SIZE = 4096;
    std::array<float, SIZE> Sine;
    std::array<float, SIZE> Cosine;

    static const vrMKPSharedTables &Get();
};
