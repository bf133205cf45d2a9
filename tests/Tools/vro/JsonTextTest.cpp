#include "vro/JsonText.h"

#include "vro/JsonReading.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

using namespace vro;

namespace
{

std::string Text_Of(float value)
{
    std::string text = To_Text(Float_To_Json(value));
    text.pop_back();
    return text;
}

} // namespace

TEST(JsonText, WritesFloatsAsTheShortestDecimalThatReadsBack)
{
    using Limits = std::numeric_limits<float>;
    const struct
    {
        float value;
        const char *text;
    } numbers[] = {
        {-0.0f, "-0.0"},
        {Limits::denorm_min(), "1e-45"},
        {Limits::quiet_NaN(), "\"nan\""},
        {-Limits::quiet_NaN(), "\"nan\""},
        {-Limits::infinity(), "\"-inf\""},
    };
    for (const auto &number : numbers) EXPECT_EQ(Text_Of(number.value), number.text);
}

TEST(JsonText, NumbersReadBackToTheSameBits)
{
    // Steps through the floats with a stride prime to their number, so that every exponent and many patterns come by.
    for (uint64_t step = 0; step < 400000; ++step) {
        const float value = std::bit_cast<float>(static_cast<uint32_t>(step * 2654435761u));
        if (!std::isfinite(value)) continue;
        const float back = Read_Float(Parse_Json(Text_Of(value)), "");
        ASSERT_EQ(std::bit_cast<uint32_t>(back), std::bit_cast<uint32_t>(value)) << Text_Of(value);
    }
}

TEST(JsonText, AFloatSurvivesReadersThatGoByWayOfADouble)
{
    // The double nearest to 7.038531e-26 lies midway between two floats, and rounds to the other one.
    const float value = std::strtof("7.038531e-26", nullptr);
    ASSERT_NE(static_cast<float>(std::strtod("7.038531e-26", nullptr)), value);
    EXPECT_EQ(static_cast<float>(std::strtod(Text_Of(value).c_str(), nullptr)), value);
}
