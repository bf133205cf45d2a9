#include "vrGraphics/particle/vrMKPBuffer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#if defined(__x86_64__) && !defined(MK_BASELINE_ONLY)
#include <immintrin.h>
#define MK_PACKS_WORDS
#endif

// Survivors move toward the head, array by array, each of which is a stream of words: slot after slot, and 8 words
// at a time whatever they belong to. Nothing is written over before it was read, since a place is written after what it
// held has moved on.

namespace
{

constexpr int GROUP = 8;
constexpr int KINDS = 2; ///< arrays have one or two words a slot

/// For each mask of a group: the places of its set bits, lowest first.
constexpr auto PLACES = [] {
    std::array<std::array<uint8_t, GROUP>, 256> places{};
    for (unsigned mask = 0; mask < 256; ++mask)
        for (uint8_t bit = 0, count = 0; bit < GROUP; ++bit)
            if (mask >> bit & 1) places[mask][count++] = bit;
    return places;
}();

/// For each mask: each bit twice.
constexpr auto DOUBLED = [] {
    std::array<uint16_t, 256> doubled{};
    for (unsigned mask = 0; mask < 256; ++mask)
        for (int bit = 0; bit < GROUP * 2; ++bit)
            doubled[mask] = static_cast<uint16_t>(doubled[mask] | (mask >> bit / 2 & 1) << bit);
    return doubled;
}();

/// Where the bits of the arrays of each number of words begin.
struct StayMasks
{
    StayMasks(uint8_t *bits, int capacity)
    {
        const size_t groups = static_cast<size_t>(capacity) / GROUP + 2;
        Bits[0] = bits;
        Bits[1] = Bits[0] + groups;
    }
    uint8_t *Bits[KINDS];
};

/// A part of the move that is done in one way.
struct Step
{
    int Read;
    int Write;
    int Group;
    int GroupCount; ///< 0 for one group that is moved word by word, since it stands at an end of the ring
};

/// All of it, in ring order. Single groups come up at the end of each of the two runs, and where less than a group of
/// places is left ahead of the ring's end, each of which takes one of the places; in between everything is one step.
struct StepList
{
    static constexpr int CAPACITY = 4 * GROUP;
    Step Steps[CAPACITY];
    int Count = 0;

    void Add_Single(int read, int write, int group) { Steps[Count++] = {read, write, group, 0}; }
    void Add_Group(int read, int write, int group)
    {
        if (Count > 0) {
            Step &last = Steps[Count - 1];
            const bool isNext = last.GroupCount > 0 && last.Read + last.GroupCount * GROUP == read &&
                                last.Group + last.GroupCount == group && last.Write <= write;
            if (isNext) {
                ++last.GroupCount;
                return;
            }
        }
        Steps[Count++] = {read, write, group, 1};
    }
};

using Packer = void (*)(uint32_t *to, const uint32_t *from, const uint8_t *masks, int groups);

/// How many bits of each mask are set; baseline x86-64 doesn't count them.
constexpr auto STAYING = [] {
    std::array<uint8_t, 256> counts{};
    for (unsigned mask = 0; mask < 256; ++mask) counts[mask] = static_cast<uint8_t>(std::popcount(mask));
    return counts;
}();

/// Writes the words that stay one after the other, and may write others past them, up to the end of what it read. No
/// place waits for the one before, and none is written over ahead of its turn: the next to stay is never nearer than
/// the next place.
void Pack_Plain(uint32_t *to, const uint32_t *from, const uint8_t *masks, int groups)
{
    for (int group = 0; group < groups; ++group, from += GROUP) {
        const uint8_t mask = masks[group];
        if (mask == 0xff) { // most of them where few die
            uint64_t words[GROUP / 2];
            std::memcpy(words, from, sizeof(words));
            std::memcpy(to, words, sizeof(words));
            to += GROUP;
            continue;
        }
        const auto &places = PLACES[mask];
        to[0] = from[places[0]];
        to[1] = from[places[1]];
        to[2] = from[places[2]];
        to[3] = from[places[3]];
        to[4] = from[places[4]];
        to[5] = from[places[5]];
        to[6] = from[places[6]];
        to[7] = from[places[7]];
        to += STAYING[mask];
    }
}

#ifdef MK_PACKS_WORDS

__attribute__((target("avx2,popcnt"))) void Pack_Fast(uint32_t *to, const uint32_t *from, const uint8_t *masks,
                                                      int groups)
{
    for (int group = 0; group < groups; ++group) {
        const uint8_t mask = masks[group];
        const __m256i words = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from + group * GROUP));
        const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(PLACES[mask].data()));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(to),
                            _mm256_permutevar8x32_epi32(words, _mm256_cvtepu8_epi32(places)));
        to += std::popcount(mask);
    }
}

Packer Choose_Packer()
{
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt") ? Pack_Fast : Pack_Plain;
}

#else

Packer Choose_Packer()
{
    return Pack_Plain;
}

#endif

/// Moves the slots of one group singly, around the end of the ring where it comes to that.
void Move_Singly(uint32_t *array, int words, const Step &step, unsigned mask, int capacity)
{
    int write = step.Write;
    for (int bit = 0; bit < GROUP; ++bit) {
        if (!(mask >> bit & 1)) continue;
        std::memmove(array + write * words, array + (step.Read + bit) * words,
                     static_cast<size_t>(words) * sizeof(uint32_t));
        if (++write == capacity) write = 0;
    }
}

} // namespace

void vrMKPBuffer::Note_Survivors(int firstGroup, int count, uint8_t *dead)
{
    const StayMasks masks(StayBits, Capacity);
    const int groups = (count + GROUP - 1) / GROUP;
    std::memset(dead + count, 1, static_cast<size_t>(groups * GROUP - count));
    for (int at = 0; at < groups; ++at) {
        const int group = firstGroup + at;
        uint64_t bytes;
        std::memcpy(&bytes, dead + at * GROUP, sizeof(bytes));
        // Gathers the lowest bits of the eight bytes in the highest one.
        const auto stays = static_cast<uint8_t>(~(bytes * 0x0102040810204080u >> 56));
        masks.Bits[0][group] = stays;
        std::memcpy(masks.Bits[1] + group * 2, &DOUBLED[stays], sizeof(uint16_t));
    }
}

void vrMKPBuffer::Move_Survivors(int firstGroup, int survivors)
{
    static const Packer pack = Choose_Packer();
    const StayMasks masks(StayBits, Capacity);
    StepList steps;
    int group = 0;
    int write = Head;
    for (const vrMKPSpan run : Live_Spans()) {
        for (int done = 0; done < run.Count; done += GROUP, ++group) {
            const int read = run.First + done;
            if (group < firstGroup) {
                write = (run.First + std::min(done + GROUP, run.Count)) % Capacity;
                continue;
            }
            const int staying = std::popcount(masks.Bits[0][group]);
            // Groups are packed past their survivors: up to their own end, or where all has been read.
            const bool hasRoom = done + GROUP <= run.Count && (write <= read || write + GROUP <= Capacity);
            // One without survivors stays part of its step, or the steps would be as many as there are such groups.
            if (hasRoom)
                steps.Add_Group(read, write, group);
            else if (staying > 0)
                steps.Add_Single(read, write, group);
            write = (write + staying) % Capacity;
        }
    }
    const auto move = [&](auto *array) {
        constexpr int WORDS = sizeof(*array) / sizeof(uint32_t);
        auto *base = reinterpret_cast<uint32_t *>(array);
        for (int at = 0; at < steps.Count; ++at) {
            const Step &step = steps.Steps[at];
            if (step.GroupCount == 0) {
                Move_Singly(base, WORDS, step, masks.Bits[0][step.Group], Capacity);
                continue;
            }
            pack(base + step.Write * WORDS, base + step.Read * WORDS, masks.Bits[WORDS - 1] + step.Group * WORDS,
                 step.GroupCount * WORDS);
        }
    };
    const auto moveVectors = [&](const vrMKPVectors &vectors) {
        move(vectors.X);
        move(vectors.Y);
        move(vectors.Z);
    };
    moveVectors(ProjectileStartingPosition);
    moveVectors(PreviousPosition);
    moveVectors(Position);
    moveVectors(ProjectileTargetPosition);
    moveVectors(Velocity);
    move(Age);
    move(MaxAge);
    move(Time);
    move(ProjectileFlightDuration);
    move(Flags);
    move(ID);
    move(Number);
    move(UV);
    move(DUV);
    move(Color);
    move(Size);
    move(Rotation);
    if (!Shares_World_Positions()) moveVectors(WorldPosition);
    move(SortingRelativeToGroup);
    ActiveCount = survivors;
    Tail = (Head + survivors - 1 + Capacity) % Capacity;
}
