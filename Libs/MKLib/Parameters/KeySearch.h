#pragma once

/// Where many times stand among the keys of a curve, for evaluations of a whole block of particles.

#include <limits>

namespace KeySearch
{

constexpr int BLOCK = 256;   ///< the most times of one call
constexpr int FEW_KEYS = 16; ///< so many are counted, all times at once; more are searched for each time

/// places[i] = how many of the `keyCount` times of keys aren't above times[i]; the unused ones are NaN. A time that is
/// no number has all keys below it.
void Count_Among_Few(const float (&keyTimes)[FEW_KEYS], int keyCount, const float *times, int count, int *places);

/// The same for any number of keys, one or more, whose times ascend.
template <auto TimeOfKey, typename Key>
void Find_Places(const Key *keys, int keyCount, const float *times, int count, int *places)
{
    if (keyCount <= FEW_KEYS) {
        float keyTimes[FEW_KEYS];
        for (int key = 0; key < FEW_KEYS; ++key)
            keyTimes[key] = key < keyCount ? keys[key].*TimeOfKey : std::numeric_limits<float>::quiet_NaN();
        return Count_Among_Few(keyTimes, keyCount, times, count, places);
    }
    for (int i = 0; i < count; ++i) {
        // Halves by sums in place of jumps, which nobody could predict.
        int place = 0;
        for (int left = keyCount; left > 0;) {
            const int half = (left + 1) / 2;
            place += times[i] < keys[place + half - 1].*TimeOfKey ? 0 : half;
            left -= half;
        }
        places[i] = place;
    }
}

} // namespace KeySearch
