#pragma once

/// Loops without a tail. What a loop over a run of slots does with the last few one by one costs as much as hundreds of
/// the others, and a ring has two runs; here whole registers reach back over those before.

#include "MKLib/MKMath/Simd.h"

namespace Particle
{

/// Floats of the widest registers.
constexpr int LANES = 16;

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

/// values[i] = change(values[i]) for each i below `count`. Once each: the last are read before the first are written.
template <typename Change>
MK_INLINE void Change_Whole_Registers(float *values, int count, const Change &change)
{
    if (count < LANES) {
        for (int i = 0; i < count; ++i) values[i] = change(values[i]);
        return;
    }
    const int whole = count & -LANES;
    float last[LANES];
    float *const end = values + count - LANES;
    for (int lane = 0; lane < LANES; ++lane) last[lane] = change(end[lane]);
    for (int i = 0; i < whole; ++i) values[i] = change(values[i]);
    for (int lane = 0; lane < LANES; ++lane) end[lane] = last[lane];
}

} // namespace Particle
