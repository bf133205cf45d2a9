#include "vrGraphics/plugins/modifiers/CellSequence.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace
{

constexpr int BLOCK = 256;
constexpr float MOST_REGULAR = 4194304.0f; ///< whole numbers and their sums below this are exact, with room to spare

MK_INLINE uint32_t As_Bit(bool value)
{
    return value ? 1u : 0u;
}

/// `a` where the bit is 1, without a jump.
MK_INLINE float Select(uint32_t bit, float a, float b)
{
    const uint32_t mask = 0u - bit;
    return std::bit_cast<float>((std::bit_cast<uint32_t>(a) & mask) | (std::bit_cast<uint32_t>(b) & ~mask));
}

/// Exact for any number.
struct FullArithmetic
{
    static float Floor(float value) { return std::floor(value); }
    static float Remainder(float value, float divisor) { return std::fmod(value, divisor); }
};

/// For values from 0 to twice `MOST_REGULAR`; for remainders, of whole numbers or by a power of two.
struct RegularArithmetic
{
    MK_INLINE static float Floor(float value) { return static_cast<float>(static_cast<int32_t>(value)); }
    MK_INLINE static float Remainder(float value, float divisor)
    {
        // Rounding may take the quotient up to the next whole number. The product is exact all the same.
        const float rest = value - Floor(value / divisor) * divisor;
        return rest + Select(As_Bit(rest < 0.0f), divisor, 0.0f);
    }
};

template <typename Arithmetic>
MK_INLINE void Write_Cell(float *origin, float *size, float frame, uint32_t id, const vrMKPCellSequence &sequence)
{
    const float loops = sequence.LoopsPerFrame * frame;
    const uint32_t isOver = As_Bit(!(loops < sequence.LoopLimit));
    const uint32_t isOddLoop = As_Bit(Arithmetic::Remainder(loops, 2.0f) >= 1.0f);
    const uint32_t isReverse = sequence.ReverseBit ^ (sequence.PingPongBit & isOddLoop);

    const float inLoop = Arithmetic::Remainder(frame, sequence.FrameCount);
    const float step = Select(isReverse, sequence.FrameCount - 1.0f - inLoop, inLoop);
    const float cell = Arithmetic::Remainder(step + sequence.FirstCell, sequence.CellCount);
    const float row = Arithmetic::Floor(cell / sequence.CellsPerRow);
    const float column = cell - sequence.CellsPerRow * row;

    const uint32_t flipU = id & sequence.RandomFlipBit;
    const uint32_t flipV = (id >> 4) & sequence.RandomFlipBit;
    const float u = column * sequence.Cell.x + Select(flipU | sequence.FlipU, sequence.Cell.x, 0.0f);
    const float v = row * sequence.Cell.y + Select(flipV | sequence.FlipV, sequence.Cell.y, 0.0f);
    origin[0] = Select(isOver, origin[0], u + sequence.Offset.x);
    origin[1] = Select(isOver, origin[1], v + sequence.Offset.y);
    size[0] = Select(isOver, size[0], Select(flipU, -sequence.Size.x, sequence.Size.x));
    size[1] = Select(isOver, size[1], Select(flipV, -sequence.Size.y, sequence.Size.y));
}

MK_SIMD void Write_Regular(float *__restrict origins, float *__restrict sizes, const float *__restrict frames,
                           const uint32_t *__restrict ids, int count, vrMKPCellSequence sequence)
{
    for (int i = 0; i < count; ++i)
        Write_Cell<RegularArithmetic>(origins + 2 * i, sizes + 2 * i, frames[i], ids[i], sequence);
}

void Write_Any(float *origins, float *sizes, const float *frames, const uint32_t *ids, int count,
               const vrMKPCellSequence &sequence)
{
    for (int i = 0; i < count; ++i)
        Write_Cell<FullArithmetic>(origins + 2 * i, sizes + 2 * i, frames[i], ids[i], sequence);
}

/// Frame numbers since birth, and whether all of them are regular. Others aren't right yet.
MK_SIMD bool Find_Regular_Frames(float *__restrict frames, const float *__restrict times,
                                 const uint32_t *__restrict ids, int count, float framesPerTime, float randomFrames)
{
    uint32_t isRegular = 1;
    for (int i = 0; i < count; ++i) {
        const float frame = times[i] * framesPerTime;
        const uint32_t fits = As_Bit(frame >= 0.0f && frame < MOST_REGULAR);
        frames[i] = RegularArithmetic::Floor(Select(fits, frame, 0.0f)) +
                    RegularArithmetic::Floor(Particle::Unit_ID(ids[i]) * randomFrames);
        isRegular &= fits;
    }
    return isRegular != 0;
}

void Find_Any_Frames(float *frames, const float *times, const uint32_t *ids, int count, float framesPerTime,
                     float randomFrames)
{
    for (int i = 0; i < count; ++i)
        frames[i] = std::floor(times[i] * framesPerTime) + std::floor(Particle::Unit_ID(ids[i]) * randomFrames);
}

bool Is_Whole(float value)
{
    return std::floor(value) == value;
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
    const float columnRest = std::fmod(column, 1.0f);
    const float rowRest = std::fmod(row, 1.0f);
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
    float frames[BLOCK];
    for (int at = 0; at < count; at += BLOCK) {
        const int size = std::min(BLOCK, count - at);
        if (IsRegular && Find_Regular_Frames(frames, times + at, ids + at, size, FramesPerTime, RandomFrames)) {
            Write_Regular(origins + 2 * at, sizes + 2 * at, frames, ids + at, size, *this);
            continue;
        }
        Find_Any_Frames(frames, times + at, ids + at, size, FramesPerTime, RandomFrames);
        Write_Any(origins + 2 * at, sizes + 2 * at, frames, ids + at, size, *this);
    }
}
