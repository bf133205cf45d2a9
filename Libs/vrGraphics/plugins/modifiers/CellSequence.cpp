#include "vrGraphics/plugins/modifiers/CellSequence.h"

#include "vrGraphics/particle/InlineVectors.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace
{

constexpr int BLOCK = 256;
constexpr float MOST_REGULAR = 1048576.0f; ///< below this the quick forms of the arithmetic are exact for whole numbers

MK_INLINE uint32_t As_Bit(bool value)
{
    return value ? 1u : 0u;
}

/// `a` where the bit is 1, without a jump.
MK_INLINE float Select(uint32_t bit, float a, float b)
{
    return Particle::Select_Bits(0u - bit, a, b);
}

/// A divisor with its reciprocal.
struct Divisor
{
    float Value;
    float Inverse;

    explicit Divisor(float value) : Value(value), Inverse(1.0f / value) {}
};

/// Exact for any number.
struct FullArithmetic
{
    static float Floor(float value) { return std::floor(value); }
    static float Remainder(float value, const Divisor &divisor) { return std::fmod(value, divisor.Value); }
    static bool Is_Odd(float value) { return std::fmod(value, 2.0f) >= 1.0f; }
};

/// For values from 0 to twice `MOST_REGULAR`; quotients and remainders for whole numbers alone.
struct RegularArithmetic
{
    MK_INLINE static float Floor(float value) { return static_cast<float>(static_cast<int32_t>(value)); }
    /// The half keeps the quotient further from whole numbers than rounding takes it.
    MK_INLINE static float Quotient(float value, const Divisor &divisor)
    {
        return Floor((value + 0.5f) * divisor.Inverse);
    }
    MK_INLINE static float Remainder(float value, const Divisor &divisor)
    {
        return value - Quotient(value, divisor) * divisor.Value;
    }
    MK_INLINE static bool Is_Odd(float value) { return value - Floor(value * 0.5f) * 2.0f >= 1.0f; }
};

/// The numbers of one sheet, ready for a loop.
struct Sheet
{
    explicit Sheet(const vrMKPCellSequence &sequence)
        : Sequence(sequence), FrameCount(sequence.FrameCount), CellCount(sequence.CellCount),
          CellsPerRow(sequence.CellsPerRow)
    {
    }

    vrMKPCellSequence Sequence;
    Divisor FrameCount;
    Divisor CellCount;
    Divisor CellsPerRow;
};

/// What a sequence has, from all to the least.
enum SequenceForm
{
    GENERAL,
    ENDLESS_FLIPPING, ///< it goes on for ever in one direction and doesn't run past the sheet, in rows of a whole
                      ///< number of cells, and IDs mirror it
    ENDLESS, ///< likewise, but all have the same size, which isn't written with the origins
    PLAIN    ///< likewise, forward and not mirrored at all
};

template <typename Arithmetic, SequenceForm Form>
MK_INLINE void Write_Cell(float *origin, float *size, float frame, uint32_t id, const Sheet &sheet)
{
    constexpr bool Simple = Form != GENERAL;
    constexpr bool Flips = Form == GENERAL || Form == ENDLESS_FLIPPING;
    const vrMKPCellSequence &sequence = sheet.Sequence;
    uint32_t isOver = 0;
    uint32_t isReverse = sequence.ReverseBit;
    if constexpr (!Simple) {
        const float loops = sequence.LoopsPerFrame * frame;
        isOver = As_Bit(!(loops < sequence.LoopLimit));
        isReverse ^= sequence.PingPongBit & As_Bit(Arithmetic::Is_Odd(loops));
    }
    const float inLoop = Arithmetic::Remainder(frame, sheet.FrameCount);
    const float step = Form == PLAIN ? inLoop : Select(isReverse, sequence.FrameCount - 1.0f - inLoop, inLoop);
    float cell = step + sequence.FirstCell;
    float row;
    if constexpr (Simple) {
        row = Arithmetic::Quotient(cell, sheet.CellsPerRow);
    } else {
        cell = Arithmetic::Remainder(cell, sheet.CellCount);
        row = Arithmetic::Floor(cell / sequence.CellsPerRow);
    }
    const float column = cell - sequence.CellsPerRow * row;
    if constexpr (Form == PLAIN) {
        origin[0] = column * sequence.Cell.x + sequence.Offset.x;
        origin[1] = row * sequence.Cell.y + sequence.Offset.y;
        return;
    }
    const uint32_t flipU = Flips ? id & sequence.RandomFlipBit : 0;
    const uint32_t flipV = Flips ? (id >> 4) & sequence.RandomFlipBit : 0;
    const float u = column * sequence.Cell.x + Select(flipU | sequence.FlipU, sequence.Cell.x, 0.0f);
    const float v = row * sequence.Cell.y + Select(flipV | sequence.FlipV, sequence.Cell.y, 0.0f);
    origin[0] = Select(isOver, origin[0], u + sequence.Offset.x);
    origin[1] = Select(isOver, origin[1], v + sequence.Offset.y);
    if constexpr (!Flips) return;
    size[0] = Select(isOver, size[0], Select(flipU, -sequence.Size.x, sequence.Size.x));
    size[1] = Select(isOver, size[1], Select(flipV, -sequence.Size.y, sequence.Size.y));
}

template <SequenceForm Form>
MK_SIMD void Write_Regular(float *__restrict origins, float *__restrict sizes, const float *__restrict frames,
                           const uint32_t *__restrict ids, int count, Sheet sheet)
{
    for (int i = 0; i < count; ++i)
        Write_Cell<RegularArithmetic, Form>(origins + 2 * i, sizes + 2 * i, frames[i], ids[i], sheet);
}

MK_SIMD void Write_Pairs(float *__restrict pairs, int count, float first, float second)
{
    for (int i = 0; i < count; ++i) {
        pairs[2 * i] = first;
        pairs[2 * i + 1] = second;
    }
}

void Write_Any(float *origins, float *sizes, const float *frames, const uint32_t *ids, int count, const Sheet &sheet)
{
    for (int i = 0; i < count; ++i)
        Write_Cell<FullArithmetic, GENERAL>(origins + 2 * i, sizes + 2 * i, frames[i], ids[i], sheet);
}

/// Frame numbers since birth, and whether all of them are regular. Others aren't right yet. `Random` is for IDs that
/// are ahead.
template <bool Random>
MK_SIMD bool Find_Regular_Frames(float *__restrict frames, const float *__restrict times,
                                 const uint32_t *__restrict ids, int count, float framesPerTime, float randomFrames)
{
    // The bits of floats that have no sign are in the order of these, and those of all others are above.
    constexpr auto LIMIT = std::bit_cast<uint32_t>(MOST_REGULAR);
    uint32_t irregular = 0;
    for (int i = 0; i < count; ++i) {
        const auto bits = std::bit_cast<uint32_t>(times[i] * framesPerTime + 0.0f); // a 0 without a sign
        const uint32_t isRegular = bits < LIMIT ? ~0u : 0u;
        const float frame = RegularArithmetic::Floor(std::bit_cast<float>(bits & isRegular));
        if constexpr (Random)
            frames[i] = frame + RegularArithmetic::Floor(Particle::Unit_ID(ids[i]) * randomFrames);
        else
            frames[i] = frame;
        irregular |= ~isRegular;
    }
    return irregular == 0;
}

void Find_Any_Frames(float *frames, const float *times, const uint32_t *ids, int count, float framesPerTime,
                     float randomFrames)
{
    for (int i = 0; i < count; ++i)
        frames[i] = std::floor(times[i] * framesPerTime) + std::floor(Particle::Unit_ID(ids[i]) * randomFrames);
}

/// The remainder by 1. Floats from 2^23 on are whole.
float Fraction(float value)
{
    if (!(std::fabs(value) < 8388608.0f)) return std::fmod(value, 1.0f);
    return std::copysign(value - static_cast<float>(static_cast<int32_t>(value)), value);
}

bool Is_Whole(float value)
{
    return Fraction(value) == 0.0f;
}

SequenceForm Form_Of(const vrMKPCellSequence &sequence)
{
    const bool isEndless = sequence.PingPongBit == 0 && sequence.LoopLimit == std::numeric_limits<float>::infinity();
    const bool staysOnSheet = sequence.FirstCell + sequence.FrameCount <= sequence.CellCount;
    if (!isEndless || !staysOnSheet || !Is_Whole(sequence.CellsPerRow)) return GENERAL;
    if (sequence.RandomFlipBit != 0) return ENDLESS_FLIPPING;
    return (sequence.ReverseBit | sequence.FlipU | sequence.FlipV) != 0 ? ENDLESS : PLAIN;
}

} // namespace

bool vrMKPCellSequence::Set_Sheet(const Vector4 &start, float frames)
{
    const float inverseHeight = 1.0f / std::fabs(start.w);
    Size = {start.z, start.w};
    Cell = {std::fabs(start.z), std::fabs(start.w)};
    CellsPerRow = 1.0f / Cell.x;
    CellCount = inverseHeight * CellsPerRow;
    const float column = CellsPerRow * (start.z < 0.0f ? start.x + start.z : start.x);
    const float row = inverseHeight * (start.w < 0.0f ? start.y + start.w : start.y);
    const float columnRest = Fraction(column);
    const float rowRest = Fraction(row);
    Offset = {columnRest * Cell.x, rowRest * Cell.y};
    FirstCell = (row - rowRest) * CellsPerRow + (column - columnRest);
    FrameCount = frames;
    LoopsPerFrame = 1.0f / frames;
    IsRegular = frames < MOST_REGULAR && FirstCell >= 0.0f && FirstCell < MOST_REGULAR && Is_Whole(FirstCell) &&
                CellCount >= 1.0f && CellCount < MOST_REGULAR && Is_Whole(CellCount) && inverseHeight < MOST_REGULAR;
    return frames >= 1.0f && CellsPerRow > 0.0f && CellCount > 0.0f && std::isfinite(CellsPerRow) &&
           std::isfinite(CellCount) && std::isfinite(FirstCell) && std::isfinite(Offset.x) && std::isfinite(Offset.y);
}

void vrMKPCellSequence::Set_Loops(float loops, bool isReverse, bool isPingPong)
{
    LoopLimit = loops > 0.0f ? loops : std::numeric_limits<float>::infinity();
    ReverseBit = As_Bit(isReverse);
    PingPongBit = As_Bit(isPingPong);
}

void vrMKPCellSequence::Set_Flips(bool isRandom)
{
    RandomFlipBit = As_Bit(isRandom);
    FlipU = As_Bit(!isRandom && Size.x < 0.0f);
    FlipV = As_Bit(!isRandom && Size.y < 0.0f);
}

void vrMKPCellSequence::Write(float *origins, float *sizes, const float *times, const uint32_t *ids, int count) const
{
    constexpr decltype(&Write_Regular<GENERAL>) WRITERS[] = {Write_Regular<GENERAL>, Write_Regular<ENDLESS_FLIPPING>,
                                                             Write_Regular<ENDLESS>, Write_Regular<PLAIN>};
    const SequenceForm form = Form_Of(*this);
    const auto find = RandomFrames == 0.0f ? Find_Regular_Frames<false> : Find_Regular_Frames<true>;
    const Sheet sheet(*this);
    float frames[BLOCK];
    for (int at = 0; at < count; at += BLOCK) {
        const int size = std::min(BLOCK, count - at);
        if (IsRegular && find(frames, times + at, ids + at, size, FramesPerTime, RandomFrames)) {
            WRITERS[form](origins + 2 * at, sizes + 2 * at, frames, ids + at, size, sheet);
            if (form >= ENDLESS) Write_Pairs(sizes + 2 * at, size, Size.x, Size.y);
            continue;
        }
        Find_Any_Frames(frames, times + at, ids + at, size, FramesPerTime, RandomFrames);
        Write_Any(origins + 2 * at, sizes + 2 * at, frames, ids + at, size, sheet);
    }
}
