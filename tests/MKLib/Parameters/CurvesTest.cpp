#include "MKLib/Parameters/ParameterFiles.h"

#include "MKLib/Random.h"
#include "common/Reports.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <limits>
#include <thread>

namespace
{

constexpr float NAN_VALUE = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();

using FloatCurve = KeyedParameterClass<float, ParameterType::KeyedFloat>;

template <typename Curve>
void Fill(Curve &curve, std::initializer_list<std::pair<float, float>> keys)
{
    for (const auto &[time, value] : keys) curve.Add_Key(time, value);
}

float At(const FloatCurve &curve, float time, bool smooth = false)
{
    float value = -77.0f;
    curve.Evaluate(time, smooth, value);
    return value;
}

TEST(Curve, EvaluatesBetweenAndOutsideOfItsKeys)
{
    FloatCurve curve("k", "");
    Fill(curve,
         {{4.0f, -20.0f}, {1.0f, 10.0f}, {2.0f, 20.0f}, {4.0f, 99.0f}, {NAN_VALUE, 5.0f}}); // the last two are dropped
    const std::tuple<float, float, float> rows[] = {
        {-5.0f, 10.0f, 10.0f},      {1.25f, 12.5f, 11.5625f}, // (3 - 0.5) / 16 = 0.15625
        {2.0f, 20.0f, 20.0f},       {3.5f, -10.0f, -13.75f},  // (3 - 1.5) * 0.5625 = 0.84375
        {INFINITE, -20.0f, -20.0f},
    };
    for (const auto &[time, linear, smooth] : rows) {
        EXPECT_EQ(At(curve, time), linear) << time;
        EXPECT_EQ(At(curve, time, true), smooth) << time;
    }
    FloatCurve near("k", "");
    Fill(near, {{0.0f, 1.0f}, {0.0001f, 2.0f}, {0.0003f, 4.0f}});
    EXPECT_EQ(At(near, 0.00009f), 1.0f) << "nearer than the shortest span";
    EXPECT_NEAR(At(near, 0.0002f), 3.0f, 1e-3f);
}

TEST(Curve, ColoursAndRectanglesBlendByComponentAndHaveAZeroOfTheirOwn)
{
    EXPECT_EQ(At(FloatCurve("k", ""), 1.0f), 0.0f);
    RGBAClass colour{0.0f, 0.0f, 0.0f, 0.0f};
    KeyedRGBAParameter colours("c", "");
    colours.Evaluate(1.0f, true, colour);
    EXPECT_EQ(colour, (RGBAClass{1.0f, 1.0f, 1.0f, 1.0f}));
    colours.Add_Key(0.0f, {0.0f, 1.0f, 0.5f, 1.0f});
    colours.Add_Key(2.0f, {1.0f, 0.0f, 0.5f, 0.0f});
    colours.Set_Spline(true); // stored, without a meaning here
    colours.Evaluate(0.5f, false, colour);
    EXPECT_EQ(colour, (RGBAClass{0.25f, 0.75f, 0.5f, 0.75f}));

    Vector4 rectangle(3.0f);
    KeyedUVParameter rectangles("u", "");
    rectangles.Evaluate(1.0f, false, rectangle);
    EXPECT_EQ(rectangle, Vector4(3.0f)) << "left as the caller gave it";
    rectangles.Add_Key(0.0f, Vector4(0.0f, 0.0f, 1.0f, 1.0f));
    rectangles.Add_Key(1.0f, Vector4(1.0f, 2.0f, 1.0f, 3.0f));
    rectangles.Evaluate(0.5f, true, rectangle);
    EXPECT_EQ(rectangle, Vector4(0.5f, 1.0f, 1.0f, 2.0f));
}

/// A time or value out of a few that meet, numbers of all sizes, and what is none.
float Any_Number(RandomClass &random)
{
    const int kind = random.Get_Int(0, 9);
    if (kind == 0) return NAN_VALUE;
    if (kind == 1) return random.Get_Int(0, 1) ? INFINITE : -INFINITE;
    if (kind == 2) return -0.0f;
    if (kind < 5) return static_cast<float>(random.Get_Int(-4, 4)) * 0.25f;
    if (kind < 7) return 0.5f + static_cast<float>(random.Get_Int(-4, 4)) * 0.00005f;
    return random.Get_Float(-2.0f, 2.0f);
}

/// The same for every NaN.
uint32_t Bits(float value)
{
    return std::isnan(value) ? UINT32_MAX : std::bit_cast<uint32_t>(value);
}

template <typename T, typename Curve>
void Expect_Many_As_One_By_One(bool spline)
{
    using Numbers = std::array<float, sizeof(T) / sizeof(float)>;
    RandomClass random(7);
    MKTest::Reports reports; // splines of times that meet are told
    for (int round = 0; round < 400; ++round) {
        Curve curve("k", "");
        curve.Set_Spline(spline);
        const int keyCount = random.Get_Int(0, random.Get_Int(0, 3) ? 18 : 60);
        for (int key = 0; key < keyCount; ++key) {
            Numbers value;
            for (float &number : value) number = Any_Number(random);
            float time = Any_Number(random);
            if (std::isnan(time) && random.Get_Int(0, 9)) time = random.Get_Float(0.0f, 1.0f);
            curve.Add_Key(time, std::bit_cast<T>(value));
        }
        std::vector<float> times(static_cast<size_t>(random.Get_Int(0, 600)));
        for (float &time : times) time = Any_Number(random);
        const bool smooth = round % 2 != 0;
        std::vector<T> many(times.size());
        curve.Evaluate_Many(times.data(), static_cast<int>(times.size()), smooth, many.data());
        for (size_t i = 0; i < times.size(); ++i) {
            T one{};
            curve.Evaluate(times[i], smooth, one);
            for (size_t component = 0; component < Numbers().size(); ++component)
                ASSERT_EQ(Bits(std::bit_cast<Numbers>(many[i])[component]),
                          Bits(std::bit_cast<Numbers>(one)[component]))
                    << "round " << round << ", " << curve.Get_Key_Count() << " keys at " << times[i];
        }
    }
}

TEST(Curve, EvaluatesManyTimesToTheBitAsOneByOne)
{
    Expect_Many_As_One_By_One<float, KeyedFloatParameterClass>(false);
    Expect_Many_As_One_By_One<float, KeyedFloatParameterClass>(true);
    Expect_Many_As_One_By_One<RGBAClass, KeyedRGBAParameter>(false);
    Expect_Many_As_One_By_One<Vector4, KeyedUVParameter>(false);
}

TEST(Spline, IsTheNaturalCubicThroughItsPoints)
{
    // Through (0,0) (1,1) (2,0) it is 1.5 x - 0.5 x^3 up to 1, and the mirror image after that.
    CubicInterpolator hill;
    for (const auto &[x, y] : {std::pair(2.0f, 0.0f), {0.0f, 0.0f}, {1.0f, 1.0f}}) hill.Add_Point(x, y);
    for (const float x : {0.125f, 0.25f, 0.5f, 0.75f}) {
        const float expected = 1.5f * x - 0.5f * x * x * x;
        EXPECT_NEAR(hill.Get_Value(x), expected, 1e-6f) << x;
        EXPECT_NEAR(hill.Get_Value(2.0f - x), expected, 1e-6f) << x;
    }

    // Uneven points: the moments solve 6 m1 + 2 m2 = -12 and 2 m1 + 6 m2 = 24, so m1 = -3.75 and m2 = 5.25.
    CubicInterpolator uneven;
    for (const auto &[x, y] : {std::pair(0.0f, 0.0f), {1.0f, 1.0f}, {3.0f, -1.0f}, {4.0f, 2.0f}})
        uneven.Add_Point(x, y);
    const std::pair<float, float> rows[] = {{-1.0f, 0.0f}, {0.5f, 0.734375f}, {2.0f, -0.375f},
                                            {3.0f, -1.0f}, {3.5f, 0.171875f}, {5.0f, 2.0f}};
    for (const auto &[x, y] : rows) EXPECT_NEAR(uneven.Get_Value(x), y, 1e-6f) << x;
}

TEST(KeyedFloat, UsesTheSplineOnlyWithMoreThanTwoPoints)
{
    KeyedFloatParameterClass curve("k", "");
    curve.Set_Spline(true);
    Fill(curve, {{0.0f, 0.0f}, {1.0f, 1.0f}});
    EXPECT_EQ(At(curve, 0.25f, true), 0.25f) << "linear, whatever smooth says";
    curve.Add_Key(2.0f, 0.0f);
    EXPECT_NEAR(At(curve, 0.5f, false), 0.6875f, 1e-6f);
    curve.Set_Spline(false);
    EXPECT_EQ(At(curve, 0.25f, true), 0.15625f);
    curve.Set_Spline(true);
    KeyedFloatParameterClass copy("k", "");
    copy.Copy_From(curve);
    curve.Clear_Keys();
    EXPECT_EQ(At(curve, 0.5f, false), 0.0f);
    EXPECT_NEAR(At(copy, 1.5f), 0.6875f, 1e-6f);

    MKTest::Reports reports;
    copy.Add_Key(1.0f, 5.0f); // the spline alone takes it
    EXPECT_EQ(copy.Get_Key_Count(), 3);
    EXPECT_TRUE(Is_Valid(At(copy, 0.5f)));
    At(copy, 0.75f);
    EXPECT_EQ(reports.Count_Logs("Bad input"), 1) << "reported by the solution, not by each reading";
}

TEST(KeyedFloat, ThreadsMayBeTheFirstToEvaluate)
{
    for (int round = 0; round < 50; ++round) {
        KeyedFloatParameterClass curve("k", "");
        curve.Set_Spline(true);
        Fill(curve, {{2.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}});
        std::vector<float> seen(3);
        std::vector<std::jthread> threads;
        for (float &value : seen) threads.emplace_back([&] { value = At(curve, 0.5f); });
        threads.clear();
        EXPECT_THAT(seen, testing::Each(testing::FloatNear(0.6875f, 1e-6f)));
    }
}

} // namespace
