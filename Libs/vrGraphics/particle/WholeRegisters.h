#pragma once

/// Loops without a tail. What a loop over a run of slots does with the last few one by one costs as much as hundreds of
/// the others, and a ring has two runs; here whole registers reach back over those before.

#include "MKLib/MKMath/Simd.h"

#include <cstdint>

namespace Particle
{

/// Floats of the widest registers.
constexpr int LANES = 16;
/// Floats that a loop with little to do takes at once, whatever the width of the registers.
constexpr int WIDE_LANES = 32;

/// `work(i)` for each i below `count`, of which the last may be done twice: for work whose results don't depend on what
/// it writes.
template <typename Work>
MK_INLINE void For_Whole_Registers(int count, const Work &work)
{
    if (count < LANES) {
#pragma GCC ivdep
        for (int i = 0; i < count; ++i) work(i);
        return;
    }
    const int whole = count & -LANES;
#pragma GCC ivdep
    for (int i = 0; i < whole; ++i) work(i);
    if (whole == count) return;
    const int last = count - LANES;
#pragma GCC ivdep
    for (int lane = 0; lane < LANES; ++lane) work(last + lane);
}

/// The same with `work(i, lane)`, where those that are done together have lanes of their own, below `WIDE_LANES`: for a
/// little work that keeps something for each lane.
template <typename Work>
MK_INLINE void For_Wide_Lanes(int count, const Work &work)
{
    if (count < WIDE_LANES) {
        for (int i = 0; i < count; ++i) work(i, 0);
        return;
    }
    int at = 0;
    for (; at <= count - WIDE_LANES; at += WIDE_LANES)
#pragma GCC ivdep
        for (int lane = 0; lane < WIDE_LANES; ++lane) work(at + lane, lane);
    if (at == count) return;
    at = count - WIDE_LANES;
#pragma GCC ivdep
    for (int lane = 0; lane < WIDE_LANES; ++lane) work(at + lane, lane);
}

/// values[i] = change(values[i], lane) for each i below `count`, in lanes as above. Once each: the last are read before
/// the first are written.
template <typename Change>
MK_INLINE void Change_In_Wide_Lanes(float *values, int count, const Change &change)
{
    if (count < WIDE_LANES) {
        for (int i = 0; i < count; ++i) values[i] = change(values[i], 0);
        return;
    }
    float last[WIDE_LANES];
    float *const end = values + count - WIDE_LANES;
    for (int lane = 0; lane < WIDE_LANES; ++lane) last[lane] = change(end[lane], lane);
    for (int at = 0; at <= count - WIDE_LANES; at += WIDE_LANES)
        for (int lane = 0; lane < WIDE_LANES; ++lane) values[at + lane] = change(values[at + lane], lane);
    for (int lane = 0; lane < WIDE_LANES; ++lane) end[lane] = last[lane];
}

} // namespace Particle
