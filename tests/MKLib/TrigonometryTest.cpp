#include "MKLib/MKMath/Trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

TEST(Trigonometry, RoundsSineAndCosineToTheNearestFloat)
{
    int inexact = 0;
    for (int i = -400000; i <= 400000; ++i) {
        const float angle = static_cast<float>(i) * (i % 7 == 0 ? 0.31f : 1.7e-5f); // far and near, past 100000 too
        float sine = 0.0f;
        float cosine = 0.0f;
        MKMath::Sin_Cos(angle, sine, cosine);
        inexact += sine != static_cast<float>(std::sin(static_cast<double>(angle)));
        inexact += cosine != static_cast<float>(std::cos(static_cast<double>(angle)));
    }
    EXPECT_LT(inexact, 800); // one in a thousand lies on the edge between two floats
    float sine = 0.0f;
    float cosine = 0.0f;
    MKMath::Sin_Cos(std::numeric_limits<float>::infinity(), sine, cosine);
    EXPECT_TRUE(std::isnan(sine) && std::isnan(cosine));
}

} // namespace
