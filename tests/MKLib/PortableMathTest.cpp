#include "MKLib/MKMath/PortableMath.h"

#include "MKLib/MKMath/RotationPath.h"

#include <gtest/gtest.h>

#include <glm/gtc/quaternion.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace
{

using namespace Portable;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr double THIRD = 0.3333333432674408;

/// How far an operation is from the same one of the C library's widest type.
struct Errors
{
    double Greatest = 0.0; ///< of the value
    int Misrounded = 0;    ///< results that aren't the float nearest to the truth

    void Add(double value, long double truth)
    {
        if (truth != 0.0L) Greatest = std::max(Greatest, static_cast<double>(std::abs((value - truth) / truth)));
        Misrounded += static_cast<float>(value) != static_cast<float>(truth);
    }
};

TEST(PortableMath, RoundsSineAndCosineToTheNearestFloat)
{
    // Near 0, around the folds and up to the greatest angle that is one.
    const std::pair<float, double> rows[] = {
        {1e-3f, 1e-13}, {1.6f, 1e-13}, {6.3f, 1e-13}, {1e5f, 1e-12}, {6.7e7f, 1e-10}};
    for (const auto &[range, error] : rows) {
        constexpr int STEPS = 100000;
        Errors sines, roundedSines, cosines;
        for (int i = -STEPS; i <= STEPS; ++i) {
            const double angle = range * static_cast<float>(i) / STEPS;
            const auto [sine, cosine] = Sine_And_Cosine(angle);
            sines.Add(Sine(angle), std::sin(static_cast<long double>(angle)));
            roundedSines.Add(sine, std::sin(static_cast<long double>(angle)));
            cosines.Add(cosine, std::cos(static_cast<long double>(angle)));
        }
        EXPECT_LT(sines.Greatest, error) << range;
        EXPECT_LE(roundedSines.Misrounded + cosines.Misrounded, 2) << range; // halfway between two floats
    }
}

TEST(PortableMath, TakesAnyAngle)
{
    EXPECT_TRUE(std::signbit(Sine(-0.0)));
    for (const double farAway : {67108864.0, -1e30}) {
        EXPECT_EQ(Sine_And_Cosine(farAway).Sine, 0.0f);
        EXPECT_EQ(Sine_And_Cosine(farAway).Cosine, 1.0f);
    }
    for (const float none : {INF, -INF, NO_NUMBER}) {
        EXPECT_TRUE(std::isnan(Sine_And_Cosine(none).Sine)) << none;
        EXPECT_TRUE(std::isnan(Sine_And_Cosine(none).Cosine)) << none;
    }
}

TEST(PortableMath, RoundsRootsToTheNearestFloat)
{
    Errors roots, powers;
    for (uint32_t bits = 1; bits < 0x7f800000u; bits += 4993) { // floats of all sizes, those below the normal ones too
        const auto value = std::bit_cast<float>(bits);
        roots.Add(Cube_Root(value), std::cbrt(static_cast<long double>(value)));
        powers.Add(Power_Of_Third(value), std::pow(static_cast<long double>(value), static_cast<long double>(THIRD)));
    }
    for (int draw = 1; draw < 32767; ++draw) { // what an even distribution takes it of
        const float value = static_cast<float>(draw) / 32766.0f;
        powers.Add(Power_Of_Third(value), std::pow(static_cast<long double>(value), static_cast<long double>(THIRD)));
    }
    EXPECT_EQ(roots.Misrounded + powers.Misrounded, 0);
    EXPECT_LT(powers.Greatest, 2e-14);

    EXPECT_EQ(Cube_Root(-125.0f), -5.0f);
    EXPECT_TRUE(std::signbit(Cube_Root(-0.0f)));
    EXPECT_EQ(Cube_Root(-INF), -INF);
    EXPECT_TRUE(std::isnan(Cube_Root(NO_NUMBER)));
    EXPECT_EQ(Power_Of_Third(0.0f), 0.0);
    EXPECT_FALSE(std::signbit(Power_Of_Third(-0.0f)));
    EXPECT_EQ(Power_Of_Third(INF), static_cast<double>(INF));
    for (const float none : {-1e-30f, -8.0f, -INF, NO_NUMBER}) EXPECT_TRUE(std::isnan(Power_Of_Third(none))) << none;
}

TEST(PortableMath, TellsAngles)
{
    long double error = 0.0L;
    long double quickError = 0.0L;
    long double cosineError = 0.0L;
    for (int y = -300; y <= 300; ++y) {
        for (int x = -300; x <= 300; ++x) {
            const auto truth = std::atan2(static_cast<long double>(y), static_cast<long double>(x));
            error = std::max(error, std::abs(Arc_Tangent(y, x) - truth));
            const float quick = Quick_Arc_Tangent(static_cast<float>(y), static_cast<float>(x));
            quickError = std::max(quickError, std::abs(quick - truth));
        }
        const auto cosine = static_cast<long double>(y) / 300;
        cosineError = std::max(cosineError, std::abs(Arc_Cosine(static_cast<double>(cosine)) - std::acos(cosine)));
    }
    EXPECT_LT(error, 1e-15);
    EXPECT_LT(quickError, 3e-7);
    EXPECT_LT(cosineError, 1e-14); // the cosine is rounded, too

    for (const float y : {0.0f, -0.0f, 1e-40f, -2e38f})
        for (const float x : {0.0f, -0.0f, 1e-40f, -2e38f}) {
            const float truth = std::atan2(y, x);
            EXPECT_NEAR(Quick_Arc_Tangent(y, x), truth, 3e-7f) << y << ' ' << x;
            EXPECT_EQ(std::signbit(Quick_Arc_Tangent(y, x)), std::signbit(truth)) << y << ' ' << x;
        }
    EXPECT_EQ(Arc_Tangent(0.0, -1.0), PI);
    EXPECT_EQ(Arc_Tangent(0.0, 0.0), 0.0);
    EXPECT_EQ(Arc_Cosine(1.5), 0.0);
    EXPECT_EQ(Arc_Cosine(-static_cast<double>(INF)), PI);
    EXPECT_TRUE(std::isnan(Arc_Cosine(NO_NUMBER)));
}

TEST(RotationPath, TurnsEvenlyByTheShorterWay)
{
    const auto aboutZ = [](double degrees) {
        const double half = degrees * PI / 360.0;
        return QuaternionClass(static_cast<float>(std::cos(half)), 0.0f, 0.0f, static_cast<float>(std::sin(half)));
    };
    const struct
    {
        double From, To;
        float Fraction;
        double Expected;
    } rows[] = {
        {0, 90, 1.0f, 90}, {10, 190, 0.25f, 55}, {0, 300, 0.5f, 330}, {20, 20, 0.7f, 20}, {0, 1e-6, 0.5f, 5e-7}};
    for (const auto &row : rows) {
        const QuaternionClass turn = RotationPath(aboutZ(row.From), aboutZ(row.To)).At(row.Fraction);
        // A rotation and its negative are the same.
        EXPECT_NEAR(std::fabs(glm::dot(turn, aboutZ(row.Expected))), 1.0f, 3e-7f) << row.From << " to " << row.To;
        EXPECT_NEAR(glm::length(turn), 1.0f, 3e-7f);
    }
    EXPECT_EQ(RotationPath().At(0.5f), QuaternionClass(1.0f, 0.0f, 0.0f, 0.0f));
}

} // namespace
