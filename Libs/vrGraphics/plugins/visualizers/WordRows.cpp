#include "vrGraphics/plugins/visualizers/WordRows.h"

#include "MKLib/MKMath/Simd.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// What takes the time are the stores: a processor does one or two in a cycle, however wide. So each width of registers
// has its form, which turns as many words of as many things as a register has floats around with each other.

namespace
{

/// Words that are turned around at a time, and stand in one 16-byte lane of a register.
constexpr int LANE = 4;
constexpr int CACHE_LINE = 64;
/// From what is written to what the processor is asked to fetch for it: a frame's vertices have left the caches by the
/// time that the next ones are written over them.
constexpr int BYTES_AHEAD = 8192;

// In each lane, `Mix` takes the floats 0 and 1, or 2 and 3, of both in turns; `Join` the first two, or the last two, of
// both. `Turn_Lanes` makes lane l of row r lane r of row l.

struct Register4
{
    using Type = float __attribute__((vector_size(16)));
    using Memory = float __attribute__((vector_size(16), aligned(4), may_alias)); ///< at any address, of any type

    MK_INLINE static void Mix(Type &low, Type &high, const Type &a, const Type &b)
    {
        low = __builtin_shufflevector(a, b, 0, 4, 1, 5);
        high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    }
    MK_INLINE static void Join(Type &first, Type &last, const Type &a, const Type &b)
    {
        first = __builtin_shufflevector(a, b, 0, 1, 4, 5);
        last = __builtin_shufflevector(a, b, 2, 3, 6, 7);
    }
    MK_INLINE static void Turn_Lanes(Type (&)[1]) {}
};

struct Register8
{
    using Type = float __attribute__((vector_size(32)));
    using Memory = float __attribute__((vector_size(32), aligned(4), may_alias));

    MK_INLINE static void Mix(Type &low, Type &high, const Type &a, const Type &b)
    {
        low = __builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13);
        high = __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15);
    }
    MK_INLINE static void Join(Type &first, Type &last, const Type &a, const Type &b)
    {
        first = __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
        last = __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
    }
    MK_INLINE static void Turn_Lanes(Type (&rows)[2])
    {
        const Type first = __builtin_shufflevector(rows[0], rows[1], 0, 1, 2, 3, 8, 9, 10, 11);
        rows[1] = __builtin_shufflevector(rows[0], rows[1], 4, 5, 6, 7, 12, 13, 14, 15);
        rows[0] = first;
    }
};

struct Register16
{
    using Type = float __attribute__((vector_size(64)));
    using Memory = float __attribute__((vector_size(64), aligned(4), may_alias));

    MK_INLINE static void Mix(Type &low, Type &high, const Type &a, const Type &b)
    {
        low = __builtin_shufflevector(a, b, 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9, 25, 12, 28, 13, 29);
        high = __builtin_shufflevector(a, b, 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11, 27, 14, 30, 15, 31);
    }
    MK_INLINE static void Join(Type &first, Type &last, const Type &a, const Type &b)
    {
        first = __builtin_shufflevector(a, b, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12, 13, 28, 29);
        last = __builtin_shufflevector(a, b, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14, 15, 30, 31);
    }
    MK_INLINE static void Part_Lanes(Type &even, Type &odd, const Type &a, const Type &b)
    {
        even = __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 24, 25, 26, 27);
        odd = __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15, 20, 21, 22, 23, 28, 29, 30, 31);
    }
    MK_INLINE static void Turn_Lanes(Type (&rows)[4])
    {
        Type even[2], odd[2];
        Part_Lanes(even[0], odd[0], rows[0], rows[1]);
        Part_Lanes(even[1], odd[1], rows[2], rows[3]);
        Part_Lanes(rows[0], rows[2], even[0], even[1]);
        Part_Lanes(rows[1], rows[3], odd[0], odd[1]);
    }
};

template <typename Register>
constexpr int FLOATS = sizeof(typename Register::Type) / sizeof(float);

/// Four words of as many things as there are floats: register i gets those of thing i + 4 * lane in each of its lanes.
template <typename Register>
MK_INLINE void Turn(typename Register::Type (&turned)[LANE], const float *const *words, int first)
{
    typename Register::Type planes[LANE], low[2], high[2];
#pragma GCC unroll 4
    for (int word = 0; word < LANE; ++word)
        planes[word] = *reinterpret_cast<const typename Register::Memory *>(words[word] + first);
    Register::Mix(low[0], high[0], planes[0], planes[1]);
    Register::Mix(low[1], high[1], planes[2], planes[3]);
    Register::Join(turned[0], turned[1], low[0], low[1]);
    Register::Join(turned[2], turned[3], high[0], high[1]);
}

/// Rows of as many words as a register holds, of as many things, of which each takes `stride` words.
template <typename Register>
MK_INLINE void Write_Square(float *to, int stride, const float *const *words, int firstThing)
{
    constexpr int LANES = FLOATS<Register> / LANE;
    typename Register::Type turned[LANES][LANE];
#pragma GCC unroll 4
    for (int lane = 0; lane < LANES; ++lane) Turn<Register>(turned[lane], words + lane * LANE, firstThing);
#pragma GCC unroll 4
    for (int thing = 0; thing < LANE; ++thing) {
        typename Register::Type rows[LANES];
#pragma GCC unroll 4
        for (int lane = 0; lane < LANES; ++lane) rows[lane] = turned[lane][thing];
        Register::Turn_Lanes(rows);
#pragma GCC unroll 4
        for (int lane = 0; lane < LANES; ++lane)
            *reinterpret_cast<typename Register::Memory *>(to + (thing + lane * LANE) * stride) = rows[lane];
    }
}

/// The memory some way behind so many words.
MK_INLINE void Fetch_Ahead(const float *words, int count)
{
    const char *const ahead = reinterpret_cast<const char *>(words) + BYTES_AHEAD;
    for (int at = 0; at < count * static_cast<int>(sizeof(float)); at += CACHE_LINE) __builtin_prefetch(ahead + at, 1);
}

/// Expects at least as many things and words as a register has floats. Where their numbers aren't multiples the last
/// ones are written twice.
template <typename Register, int WORDS>
MK_INLINE void Write_Squares(float *__restrict to, const float *const *__restrict words, int count)
{
    constexpr int SIDE = FLOATS<Register>;
    for (int nextThing = 0; nextThing < count; nextThing += SIDE) {
        const int thing = std::min(nextThing, count - SIDE);
        Fetch_Ahead(to + thing * WORDS, SIDE * WORDS);
        for (int nextWord = 0; nextWord < WORDS; nextWord += SIDE) {
            const int word = std::min(nextWord, WORDS - SIDE);
            Write_Square<Register>(to + thing * WORDS + word, WORDS, words + word, thing);
        }
    }
}

/// By the widest registers that there are things enough for. Expects four things.
template <typename Register, int WORDS>
MK_INLINE void Write_Rows(float *to, const float *const *words, int count)
{
    if (count < FLOATS<Register>)
        Write_Squares<Register4, WORDS>(to, words, count);
    else
        Write_Squares<Register, WORDS>(to, words, count);
}

/// Each number of words has its loops: what they know of strides counts.
template <typename Register>
MK_INLINE void Write_By(float *to, const float *const *words, int wordCount, int count)
{
    if (wordCount == LIT_QUAD_WORDS)
        Write_Rows<Register, LIT_QUAD_WORDS>(to, words, count);
    else
        Write_Rows<Register, LIT_BUMP_QUAD_WORDS>(to, words, count);
}

MK_SIMD_4_FLOATS void Write(float *to, const float *const *words, int wordCount, int count)
{
    Write_By<Register4>(to, words, wordCount, count);
}

#ifdef MK_SIMD_8_FLOATS
MK_SIMD_8_FLOATS void Write(float *to, const float *const *words, int wordCount, int count)
{
    Write_By<Register8>(to, words, wordCount, count);
}

MK_SIMD_16_FLOATS void Write(float *to, const float *const *words, int wordCount, int count)
{
    Write_By<Register16>(to, words, wordCount, count);
}
#endif

} // namespace

void Write_Word_Rows(void *to, const float *const *words, int wordCount, int count)
{
    if (count >= LANE) {
        Write(static_cast<float *>(to), words, wordCount, count);
        return;
    }
    auto *at = static_cast<uint8_t *>(to);
    for (int thing = 0; thing < count; ++thing)
        for (int word = 0; word < wordCount; ++word, at += sizeof(float))
            std::memcpy(at, words[word] + thing, sizeof(float));
}
