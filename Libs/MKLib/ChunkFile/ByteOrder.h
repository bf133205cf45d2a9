#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

/// The two byte orders of a chunk file. Memory here is little-endian, as an unswapped file is.
namespace ChunkFile
{

static_assert(std::endian::native == std::endian::little, "a big-endian machine has to swap unswapped files instead");

template <typename T>
T Swap_Bytes(T value)
{
    if constexpr (sizeof(T) == 1) {
        return value;
    } else {
        auto bytes = std::bit_cast<std::array<uint8_t, sizeof(T)>>(value);
        std::reverse(bytes.begin(), bytes.end());
        return std::bit_cast<T>(bytes);
    }
}

template <typename T>
void Swap_All(T *values, size_t count)
{
    for (size_t i = 0; i < count; ++i) values[i] = Swap_Bytes(values[i]);
}

/// Bit 0 with bit 7, and so on: the swapped form of a flags byte.
constexpr uint8_t Reverse_Bits(uint8_t value)
{
    unsigned reversed = 0;
    for (int bit = 0; bit < 8; ++bit) reversed |= ((value >> bit) & 1u) << (7 - bit);
    return static_cast<uint8_t>(reversed);
}

} // namespace ChunkFile
