#include "vrGraphics/plugins/visualizers/ParticleSort.h"

#include <array>
#include <bit>

namespace
{

/// Up to here shifting entries about is quicker than counting them.
constexpr size_t SMALL_COUNT = 48;
constexpr int DIGITS = 4;
constexpr size_t VALUES = 256; ///< of a digit

/// Bits whose order as integers is that of the floats.
uint32_t Ordered_Bits(float key)
{
    const auto bits = std::bit_cast<uint32_t>(key);
    const auto sign = static_cast<uint32_t>(static_cast<int32_t>(bits) >> 31);
    return bits ^ (sign | 0x80000000u);
}

void Sort_Few(vrMKPSortEntry *entries, size_t count)
{
    for (size_t at = 1; at < count; ++at) {
        const vrMKPSortEntry entry = entries[at];
        const uint32_t bits = Ordered_Bits(entry.Key);
        size_t to = at;
        for (; to > 0 && Ordered_Bits(entries[to - 1].Key) > bits; --to) entries[to] = entries[to - 1];
        entries[to] = entry;
    }
}

using Counts = std::array<std::array<uint32_t, VALUES>, DIGITS>;

void Count_Digits(const std::vector<vrMKPSortEntry> &entries, Counts &counts)
{
    for (auto &digit : counts) digit.fill(0);
    for (const vrMKPSortEntry &entry : entries) {
        const uint32_t bits = Ordered_Bits(entry.Key);
        for (int digit = 0; digit < DIGITS; ++digit) ++counts[static_cast<size_t>(digit)][(bits >> (8 * digit)) & 0xff];
    }
}

void Move_By_Digit(const vrMKPSortEntry *from, vrMKPSortEntry *to, size_t count, int digit,
                   std::array<uint32_t, VALUES> &places)
{
    uint32_t next = 0;
    for (uint32_t &place : places) {
        const uint32_t size = place;
        place = next;
        next += size;
    }
    for (size_t at = 0; at < count; ++at) {
        const vrMKPSortEntry entry = from[at];
        to[places[(Ordered_Bits(entry.Key) >> (8 * digit)) & 0xff]++] = entry;
    }
}

} // namespace

// By digits from the lowest to the highest: each pass keeps the order of the one before among equals, and the time
// doesn't depend on how the keys lie.
void Sort_Entries(std::vector<vrMKPSortEntry> &entries, std::vector<vrMKPSortEntry> &room)
{
    const size_t count = entries.size();
    room.reserve(entries.capacity()); // they may change places
    if (count <= SMALL_COUNT) {
        Sort_Few(entries.data(), count);
        return;
    }
    room.resize(count);
    Counts counts;
    Count_Digits(entries, counts);
    for (int digit = 0; digit < DIGITS; ++digit) {
        auto &places = counts[static_cast<size_t>(digit)];
        // Particles near each other share their highest digit.
        if (places[(Ordered_Bits(entries.front().Key) >> (8 * digit)) & 0xff] == count) continue;
        Move_By_Digit(entries.data(), room.data(), count, digit, places);
        entries.swap(room);
    }
}
