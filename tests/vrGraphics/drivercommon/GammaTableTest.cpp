#include "vrGraphics/drivercommon/vrGammaTable.h"

#include <gtest/gtest.h>

#include <limits>

TEST(GammaTable, ChannelsTakeTheNearestEntryAndAlphaStays)
{
    const vrGammaTable square = vrGammaTable::Of_Exponent(2.0f);
    const struct
    {
        const char *what;
        float channel;
        float result;
    } rows[] = {
        {"just under the half step", 512.49f / 1024.0f, 0.25f},
        {"just over the half step", 512.51f / 1024.0f, 513.0f * 513.0f / (1024.0f * 1024.0f)},
        {"one", 1.0f, 1.0f},
        {"bright", 7.0f, 1.0f},
        {"endless", std::numeric_limits<float>::infinity(), 1.0f},
        {"below the range", -0.5f, 0.0f},
        {"no number", std::numeric_limits<float>::quiet_NaN(), 0.0f},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(square.Convert({1.0f, row.channel, 0.0f, 3.0f}), (RGBAClass{1.0f, row.result, 0.0f, 3.0f}))
            << row.what;
    }
}
