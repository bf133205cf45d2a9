#include "vrGraphics/plugins/visualizers/WordRows.h"

#include <gtest/gtest.h>

#include <vector>

// Each count takes another way through the widths of registers: too few things for any, for the wide ones, whole
// registers, and some that are left over. Neither planes nor rows begin where a register could be aligned.
TEST(WordRows, EveryWordComesToItsPlaceAndNoneBehind)
{
    constexpr int MOST = 130;
    constexpr float UNTOUCHED = -1.0f;
    std::vector<std::vector<float>> planes(LIT_BUMP_QUAD_WORDS, {UNTOUCHED});
    std::vector<const float *> words;
    for (size_t word = 0; word < planes.size(); ++word) {
        for (int thing = 0; thing < MOST; ++thing) planes[word].push_back(static_cast<float>(word * 1000) + thing);
        words.push_back(planes[word].data() + 1);
    }
    for (const int wordCount : {LIT_QUAD_WORDS, LIT_BUMP_QUAD_WORDS})
        for (const int count : {0, 1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 64, 129}) {
            const int size = count * wordCount;
            std::vector<float> rows(static_cast<size_t>(size) + 16, UNTOUCHED);
            Write_Word_Rows(rows.data() + 1, words.data(), wordCount, count);
            EXPECT_EQ(rows[0], UNTOUCHED);
            for (int at = 0; at < size; ++at)
                ASSERT_EQ(rows[static_cast<size_t>(at) + 1], static_cast<float>(at % wordCount * 1000 + at / wordCount))
                    << wordCount << " words, " << count << " things, at " << at;
            for (size_t at = static_cast<size_t>(size) + 1; at < rows.size(); ++at) ASSERT_EQ(rows[at], UNTOUCHED);
        }
}
