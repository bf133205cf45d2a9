#include "MKLib/RandomLanes.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

/// The seed whose first step has an output: the step solved backwards, modulo 2^32.
constexpr uint32_t Seed_Of(uint32_t output)
{
    constexpr uint32_t MULTIPLIER = 0x41c64e6d;
    uint32_t inverse = MULTIPLIER;
    for (int digits = 3; digits < 32; digits *= 2) inverse *= 2 - MULTIPLIER * inverse;
    return ((output << 10) - 0xbdfu) * inverse;
}

RandomGeneratorClass Seeded(uint32_t seed)
{
    RandomGeneratorClass generator;
    generator.Seed(seed);
    return generator;
}

// From state 1 the outputs are 0x7196, 0x6FE9, 0x7873, 0x036E, 0x31BB.
const struct
{
    const char *what;
    uint32_t seed;
    int low, high;
    std::vector<int> draws;
    uint32_t stateAfter;
} IntDraws[] = {
    {"a full mask never repeats a step", 1, 0, 255, {0x96, 0xe9, 0x73, 0x6e}, 0x9c0db805},
    {"equal bounds take no step", 1, 5, 5, {5, 5}, 1},
    {"a mask of 7 over 5 drops the 6", 1, 0, 5, {1, 3}, 0xd9e1ccfe},
    {"bounds in the other order", 1, 7, 3, {4, 6, 6}, 0x38c6ec00},
    {"the output above the greatest value is drawn again", Seed_Of(0x7fff), 0, 0x7ffe, {0x3195}, 0xc0c657df},
};

TEST(Random, DrawsIntegersAsSeeded)
{
    for (const auto &row : IntDraws) {
        SCOPED_TRACE(row.what);
        MKTest::Reports reports;
        RandomClass random(row.seed);
        std::vector<int> draws;
        for (size_t i = 0; i < row.draws.size(); ++i) draws.push_back(random.Get_Int(row.low, row.high));
        EXPECT_EQ(draws, row.draws);
        EXPECT_EQ(random.Get_State(), row.stateAfter);
        EXPECT_EQ(reports.Get_Text(), "");
    }
}

TEST(Random, CutsARangeThatIsTooWideAndSwapsOneInTheWrongOrder)
{
    MKTest::Reports reports;
    RandomClass random(1);
    EXPECT_EQ(random.Get_Int(100, 100 + 0x7fff), 100 + 0x7196);
    // As unsigned values -1 is the greater bound, so the draw starts at 2.
    random.Seed(1);
    EXPECT_EQ(random.Get_Int(-1, 2), 2 + 0x7196);
    EXPECT_EQ(reports.Count_Asserts("range >= (int)RandomMax"), 2);
    EXPECT_EQ(Seeded(Seed_Of(0)).Get_Float(8.0f, 2.0f), 2.0f);
    EXPECT_TRUE(reports.Has_Assert("low <= high"));
}

TEST(Random, DrawsTheSameFloatsWithAndWithoutTheFront)
{
    const float bounds[][2] = {{0.0f, 1.0f},      {-1.0f, 1.0f},      {0.0f, 6.2831855f}, {-10.0f, 10.0f},
                               {0.1f, 0.7f},      {0.3333333f, 1.0f}, {-0.7f, 1e9f},      {1e-30f, 1e30f},
                               {-3e38f, 3e38f},   {1.0f, 1.0000001f}, {-1e-45f, 3e-45f},  {16777216.0f, 16777220.0f},
                               {-2e-38f, 1e-38f}, {-1e-30f, 1e-30f},  {5.0f, 5.0f},       {-16777216.0f, 16777215.0f}};
    for (const auto &[low, high] : bounds) {
        SCOPED_TRACE(testing::Message() << low << " to " << high);
        int different = 0;
        for (uint32_t output = 0; output <= RandomMax; ++output) {
            const uint32_t seed = Seed_Of(output);
            RandomClass random(seed);
            const long double exact = static_cast<long double>(output) / RandomMax *
                                          (static_cast<long double>(high) - static_cast<long double>(low)) +
                                      static_cast<long double>(low);
            const float drawn = random.Get_Float(low, high);
            different += drawn != static_cast<float>(exact) || drawn != Seeded(seed).Get_Float(low, high);
        }
        EXPECT_EQ(different, 0);
    }
}

TEST(Random, ReachesTheEndsOfAFloatRangeUnlessTheyAreExcluded)
{
    EXPECT_EQ(Seeded(Seed_Of(0)).Get_Float(0.0f, 1.0f, false, true), 0.0f);
    EXPECT_EQ(Seeded(Seed_Of(0x7ffe)).Get_Float(0.0f, 1.0f, true, false), 1.0f);
    EXPECT_EQ(Seeded(Seed_Of(0)).Get_Float(0.0f, 32766.0f, true, false), 1.0f);
    EXPECT_EQ(Seeded(Seed_Of(0x7ffe)).Get_Float(0.0f, 32766.0f, false, true), 32765.0f);
}

TEST(Random, LanesAreTheStepsOfTheGeneratorInItsOrder)
{
    constexpr int COUNT = RandomLanes::CAPACITY - 1;
    uint32_t words[RandomLanes::CAPACITY];
    int repeated = 0;
    for (int steps = 1; steps <= RandomLanes::MOST_STEPS; ++steps) {
        for (const uint32_t seed : {1u, 0xffffffffu, Seed_Of(0x7fff), Seed_Of(0x7ffe)}) {
            SCOPED_TRACE(testing::Message() << steps << " steps from " << seed);
            RandomClass random(seed), serial(seed);
            const RandomLanes takers(random, steps);
            const RandomLanes::View lanes = takers.Get_View();
            takers.Get_Words(words, COUNT);
            for (int taker = 0; taker < COUNT; ++taker) {
                uint32_t state = lanes[taker];
                ASSERT_EQ(state, serial.Get_State()) << "taker " << taker;
                ASSERT_EQ(words[taker], RandomClass(state).Get_Word()) << "taker " << taker;
                uint32_t marks = 0;
                const int32_t draw = RandomLanes::Draw(state, marks);
                const bool repeats = (marks & RandomLanes::REPEATED) != 0;
                ASSERT_EQ(draw == RandomClass(lanes[taker]).Draw(), !repeats) << "taker " << taker;
                repeated += repeats;
                for (int step = 0; step < steps; ++step) serial.Get_Byte();
            }
            takers.Finish(random, COUNT);
            EXPECT_EQ(random.Get_State(), serial.Get_State());
        }
    }
    EXPECT_GE(repeated, RandomLanes::MOST_STEPS);
}

} // namespace
