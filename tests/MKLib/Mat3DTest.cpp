#include "MKLib/MKMath/Mat3D.h"

#include <gtest/gtest.h>

#include <glm/gtc/quaternion.hpp>

#include <cmath>
#include <limits>

namespace
{

constexpr float HALF_PI = 1.5707964f;

void Expect_Near(const Vector3 &value, const Vector3 &expected, const char *what, float error = 1e-6f)
{
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(value[axis], expected[axis], error) << what << ", axis " << axis;
}

TEST(Mat3D, TurnsAboutXThenYThenZAndLooksAlong)
{
    const auto turn = [](const Vector3 &quarters) { return Mat3DClass::From_Angles(quarters * HALF_PI); };
    const struct
    {
        const char *What;
        Mat3DClass Matrix;
        Vector3 X, Y, Z; ///< where the axes go
    } rows[] = {
        {"about x", turn({1, 0, 0}), {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
        {"about y", turn({0, 1, 0}), {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
        {"about z", turn({0, 0, 1}), {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
        {"about all", turn({1, 1, 1}), {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
        {"forward", Mat3DClass::Look_Along({2, 0, 0}), {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
        {"down", Mat3DClass::Look_Along({0, 0, -3}), {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
        {"oblique", Mat3DClass::Look_Along({3, 0, 4}), {0, 1, 0}, {-0.8f, 0, 0.6f}, {0.6f, 0, 0.8f}},
        {"nowhere", Mat3DClass::Look_Along({0, 0, 0}), {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    };
    for (const auto &row : rows) {
        Expect_Near(row.Matrix.Get_Axis(0), row.X, row.What);
        Expect_Near(row.Matrix.Get_Axis(1), row.Y, row.What);
        Expect_Near(row.Matrix.Get_Axis(2), row.Z, row.What);
    }
    const auto camera = Mat3DClass::Look_At({10, 0, 2}, {0, 0, 2});
    Expect_Near(camera.Transform({0, 0, -10}), {0, 0, 2}, "what lies before the camera");
    Expect_Near(camera.Get_Axis(1), {0, 0, 1}, "the camera's y axis is up");
}

TEST(Mat3D, UndoesItself)
{
    auto placed = Mat3DClass::From_Angles({0.3f, -1.2f, 2.5f}).Scaled(3.0f);
    placed.Set_Translation({5, -6, 7});
    Mat3DClass sheared;
    sheared.Row[0] = {2, 1, 0, 4};
    sheared.Row[1] = {0, -0.5f, 3, -1};
    sheared.Row[2] = {0, 0, 8, 2};
    for (const auto &transform : {placed, sheared}) {
        Expect_Near((transform * transform.Inverse()).Transform({3, 2, 1}), {3, 2, 1}, "the product", 5e-6f);
        Expect_Near(transform.Inverse().Transform(transform.Transform({1, 2, 3})), {1, 2, 3}, "there and back", 5e-6f);
    }
    for (const float none : {0.0f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(Mat3DClass().Scaled(none).Inverse(), Mat3DClass()) << none;
}

TEST(Mat3D, TakesScaleAndRotationApart)
{
    const auto turn = Mat3DClass::From_Angles({0.4f, 0.9f, -2.0f});
    auto mirrored = Mat3DClass();
    mirrored.Row[1].y = -8.0f;
    EXPECT_EQ(mirrored.Get_Uniform_Scale(), 2.0f);
    EXPECT_NEAR(turn.Scaled(0.25f).Get_Uniform_Scale(), 0.25f, 1e-7f);
    EXPECT_EQ(turn.Scaled(0.0f).Get_Uniform_Scale(), 0.0f);

    const auto aboutZ = Mat3DClass::From_Angles({0, 0, HALF_PI}).Scaled(5.0f).Get_Rotation();
    EXPECT_NEAR(glm::dot(aboutZ, {std::sqrt(0.5f), 0, 0, std::sqrt(0.5f)}), 1.0f, 1e-6f);
    const QuaternionClass rotation = turn.Scaled(7.0f).Get_Rotation();
    const auto again = Mat3DClass::From_Quaternion(rotation);
    for (int axis = 0; axis < 3; ++axis) Expect_Near(again.Get_Axis(axis), turn.Get_Axis(axis), "turned again");
    EXPECT_EQ(Mat3DClass().Scaled(0.0f).Get_Rotation(), QuaternionClass(1.0f, 0.0f, 0.0f, 0.0f));
}

} // namespace
