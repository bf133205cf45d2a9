#include "vrGraphics/drivercommon/vrGammaTable.h"

#include <gtest/gtest.h>

#include <limits>

TEST(GammaTable, EntriesArePowersOfTheirPlace)
{
    const vrGammaTable square = vrGammaTable::Of_Exponent(2.0f);
    EXPECT_EQ(square.Entries[0], 0.0f);
    EXPECT_EQ(square.Entries[256], 0.0625f);
    EXPECT_EQ(square.Entries[512], 0.25f);
    EXPECT_EQ(square.Entries[1024], 1.0f);
    const vrGammaTable identity = vrGammaTable::Of_Exponent(1.0f);
    for (int index = 0; index <= GAMMA_TABLE_RESOLUTION; ++index)
        ASSERT_EQ(identity.Entries[static_cast<size_t>(index)], static_cast<float>(index) / 1024.0f);
}

TEST(GammaTable, ChannelsTakeTheNearestEntryAndAlphaStays)
{
    const vrGammaTable square = vrGammaTable::Of_Exponent(2.0f);
    const struct
    {
        const char *what;
        float channel;
        float result;
    } rows[] = {
        {"an entry", 0.5f, 0.25f},
        {"just under the half step", 512.49f / 1024.0f, 0.25f},
        {"just over the half step", 512.51f / 1024.0f, 513.0f * 513.0f / (1024.0f * 1024.0f)},
        {"one", 1.0f, 1.0f},
        {"bright", 7.0f, 1.0f},
        {"endless", std::numeric_limits<float>::infinity(), 1.0f},
        {"below the range", -0.5f, 0.0f},
        {"no number", std::numeric_limits<float>::quiet_NaN(), 0.0f},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(square.Convert(row.channel), row.result) << row.what;
        EXPECT_EQ(square.Convert({1.0f, row.channel, 0.0f, 3.0f}), (RGBAClass{1.0f, row.result, 0.0f, 3.0f}))
            << row.what;
    }
}
