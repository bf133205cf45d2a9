#include "MKLib/EnumConverter.h"
#include "MKLib/XMLTypeConverter.h"

#include <gtest/gtest.h>

namespace
{

constexpr EnumConverterClass::Entry Weather[] = {{"Sun", 0}, {"Rain", 4}, {"Drizzle", 4}};
constexpr EnumConverterClass::Entry Short[] = {{"Snow", 9}};

TEST(EnumConverter, LooksUpBothWaysAndIsReplaced)
{
    EnumConverterClass::Register("WeatherEnum", Short);
    EnumConverterClass::Register("WeatherEnum", Weather);
    int32_t value = 77;
    EXPECT_TRUE(EnumConverterClass::To_Value("WeatherEnum", "drIZZle", value));
    EXPECT_EQ(value, 4);
    EXPECT_FALSE(EnumConverterClass::To_Value("WeatherEnum", "Su", value));
    EXPECT_FALSE(EnumConverterClass::To_Value("weatherenum", "Sun", value));
    EXPECT_STREQ(EnumConverterClass::To_Text("WeatherEnum", 4), "Rain");
    EXPECT_EQ(EnumConverterClass::To_Text("WeatherEnum", 5), nullptr);
    EXPECT_FALSE(EnumConverterClass::To_Value("WeatherEnum", "Snow", value));
    EXPECT_TRUE(XMLTypeConverter::Convert_Enum(" sun\n", "WeatherEnum", value));
    EXPECT_EQ(value, 0);
}

template <typename T>
void Expect_Refused(std::initializer_list<const char *> texts)
{
    for (const char *text : texts) {
        T value{};
        const T before = value;
        EXPECT_FALSE(XMLTypeConverter::Convert(text, value)) << "'" << text << "'";
        EXPECT_EQ(value, before) << text;
    }
}

TEST(XMLTypeConverter, ReadsNumbers)
{
    const std::pair<const char *, float> floats[] = {{"1.5", 1.5f},    {" -0.25\n", -0.25f}, {"+3", 3.0f},
                                                     {"1e3", 1000.0f}, {".5", 0.5f},         {"7.", 7.0f}};
    for (const auto &[text, expected] : floats) {
        float value = 0.0f;
        EXPECT_TRUE(XMLTypeConverter::Convert(text, value)) << text;
        EXPECT_EQ(value, expected) << text;
    }
    int32_t signedValue = 0;
    uint32_t unsignedValue = 0;
    EXPECT_TRUE(XMLTypeConverter::Convert("-2147483648", signedValue));
    EXPECT_TRUE(XMLTypeConverter::Convert("4294967295", unsignedValue));
    EXPECT_TRUE(signedValue == INT32_MIN && unsignedValue == UINT32_MAX);
    Expect_Refused<float>({"", " ", "x", "1,5", "1.5 2", "1.5f", "+-1", "+"});
    Expect_Refused<int32_t>({"", "2147483648", "1.0", "0x10", "1 2"});
    Expect_Refused<uint32_t>({"-1", "4294967296"});
}

TEST(XMLTypeConverter, ReadsBoolsVectorsAndColours)
{
    for (const auto &[text, expected] : {std::pair(" TRUE ", true), {"1", true}, {"false", false}, {"0", false}}) {
        bool value = !expected;
        EXPECT_TRUE(XMLTypeConverter::Convert(text, value)) << text;
        EXPECT_EQ(value, expected) << text;
    }
    Expect_Refused<bool>({"", "yes", "2", "true false"});

    Vector3 vector{0.0f};
    EXPECT_TRUE(XMLTypeConverter::Convert("1 -2.5\t3", vector));
    EXPECT_EQ(vector, Vector3(1.0f, -2.5f, 3.0f));
    RGBAClass colour{0.0f, 0.0f, 0.0f, 0.0f};
    EXPECT_TRUE(XMLTypeConverter::Convert("0.5 0.25 0", colour));
    EXPECT_EQ(colour, (RGBAClass{0.5f, 0.25f, 0.0f, 1.0f}));
    EXPECT_TRUE(XMLTypeConverter::Convert("0 0 1 0.5", colour));
    EXPECT_EQ(colour.A, 0.5f);
    Expect_Refused<Vector2>({"1", "1 2 3", "1, 2"});
    Expect_Refused<RGBAClass>({"1 1", "1 1 1 1 1"});
}

} // namespace
