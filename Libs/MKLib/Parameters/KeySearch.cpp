#include "MKLib/Parameters/KeySearch.h"

#include "MKLib/MKMath/Simd.h"

namespace
{

/// Among the first `KeyCount` of the key times, all of which are compared.
template <int KeyCount>
MK_SIMD void Count(const float *__restrict keyTimes, int keyCount, const float *__restrict times, int count,
                   int *__restrict places)
{
    float among[KeyCount];
    for (int key = 0; key < KeyCount; ++key) among[key] = keyTimes[key];
    for (int i = 0; i < count; ++i) {
        int above = 0;
        for (int key = 0; key < KeyCount; ++key) above += times[i] < among[key] ? 1 : 0;
        places[i] = keyCount - above;
    }
}

} // namespace

void KeySearch::Count_Among_Few(const float (&keyTimes)[FEW_KEYS], int keyCount, const float *times, int count,
                                int *places)
{
    if (keyCount <= 4) return Count<4>(keyTimes, keyCount, times, count, places);
    if (keyCount <= 8) return Count<8>(keyTimes, keyCount, times, count, places);
    Count<FEW_KEYS>(keyTimes, keyCount, times, count, places);
}
