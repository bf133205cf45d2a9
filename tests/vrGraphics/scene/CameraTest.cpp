#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/scene/vrSimpleCameraController.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

constexpr float RIGHT_ANGLE = 1.57079633f;
constexpr float STEP = 0.0333333351f;

void Expect_Near(const Vector3 &found, const Vector3 &expected, float tolerance = 1e-3f)
{
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(found[axis], expected[axis], tolerance) << "axis " << axis;
}

/// At the origin, a quarter turn wide and as high, from 1 to 100 units deep.
SmartPtr<vrCamera> Square_Camera()
{
    SmartPtr<vrCamera> camera(new vrCamera);
    camera->Set_Perspective(RIGHT_ANGLE, 1.0f);
    camera->Set_Depth_Range(1.0f, 100.0f);
    return camera;
}

TEST(Camera, SeesBoxesThatReachIntoItsFrustum)
{
    const auto camera = Square_Camera();
    const std::tuple<Vector3, float, bool> cases[] = {
        {{0, 0, 0}, 0.5f, false}, {{0, 0, 0}, 1.5f, true},   {{0, 0, -103}, 2, false},  {{0, 0, -103}, 4, true},
        {{60, 0, -50}, 4, false}, {{60, 0, -50}, 6, true},   {{-60, 0, -50}, 4, false}, {{0, 60, -50}, 4, false},
        {{0, 60, -50}, 6, true},  {{0, -60, -50}, 4, false}, {{0, 0, 0}, 1e6f, true},
    };
    for (const auto &[center, extent, isSeen] : cases)
        EXPECT_EQ(camera->Sees({center, Vector3(extent)}), isSeen)
            << center.x << " " << center.y << " " << center.z << " extent " << extent;
}

TEST(Camera, SeesWhatIsInFrontOfItWhereverItStands)
{
    const auto camera = Square_Camera();
    camera->Set_Transform(Mat3DClass::Look_At({1000.0f, -500.0f, 20.0f}, {1000.0f, -400.0f, 20.0f}));
    EXPECT_TRUE(camera->Sees({{1000.0f, -450.0f, 20.0f}, Vector3(1.0f)}));
    EXPECT_FALSE(camera->Sees({{1060.0f, -450.0f, 20.0f}, Vector3(1.0f)}));
    // A tenth of a unit decides at the far end, however small the near one is.
    camera->Set_Depth_Range(0.001f, 100.0f);
    EXPECT_TRUE(camera->Sees({{1000.0f, -399.95f, 20.0f}, Vector3(0.1f)}));
    EXPECT_FALSE(camera->Sees({{1000.0f, -399.85f, 20.0f}, Vector3(0.1f)}));
}

TEST(Camera, ProjectsItsDepthRangeToMinusOneAndOne)
{
    const auto camera = Square_Camera();
    const auto depth_of = [&](float z) {
        const Vector4 point = camera->Get_View_Projection().Transform({0.0f, 0.0f, z, 1.0f});
        return point.z / point.w;
    };
    EXPECT_NEAR(depth_of(-1.0f), -1.0f, 1e-5f);
    EXPECT_NEAR(depth_of(-100.0f), 1.0f, 1e-5f);
    const Vector4 corner = camera->Get_Projection().Transform({50.0f, -50.0f, -50.0f, 1.0f});
    EXPECT_NEAR(corner.x / corner.w, 1.0f, 1e-5f);
    EXPECT_NEAR(corner.y / corner.w, -1.0f, 1e-5f);

    camera->Set_Orthographic(40.0f, 20.0f);
    EXPECT_TRUE(camera->Sees({{19.0f, 0.0f, -90.0f}, Vector3(0.5f)}));
    EXPECT_FALSE(camera->Sees({{21.0f, 0.0f, -90.0f}, Vector3(0.5f)}));
}

TEST(CameraController, LooksAtItsLocationFromAbove)
{
    vrSimpleCameraController controller;
    controller.Set_Camera_Location({10.0f, 20.0f, 30.0f});
    controller.Set_Pitch(35.0f);
    controller.Set_Yaw(45.0f);
    controller.Set_Distance(550.0f);
    const SmartPtr<vrCamera> camera(new vrCamera);
    controller.Update_Camera(camera.Get(), STEP);
    // 550 (cos 35 sin 45, -cos 35 cos 45, sin 35)
    Expect_Near(camera->Get_Position(), {10.0f + 318.573f, 20.0f - 318.573f, 30.0f + 315.467f}, 0.01f);
    Expect_Near(camera->Get_Transform().Transform({0.0f, 0.0f, -550.0f}), {10.0f, 20.0f, 30.0f}, 0.01f);
    EXPECT_NEAR(camera->Get_Transform().Get_Axis(0).z, 0.0f, 1e-5f); // level
}

// With a rate of 1 and a step of half a second, the decay is 1 / (1 + 1 + 0.48 + 0.235).
TEST(CameraController, SpringsFollowTheirTargets)
{
    vrSimpleCameraController controller;
    vrSimpleCameraController::SmoothingFlags smoothed;
    smoothed.Distance = smoothed.Location = true;
    controller.Set_Smoothing(smoothed);
    controller.Set_Pitch(0.0f);
    controller.Set_Distance(0.0f);
    controller.Set_Camera_Location({1000.0f, 0.0f, 0.0f});
    controller.Update_Camera(nullptr, 0.5f);
    // Both are (1 + 1) 0.3683241 of the way from the target; without pitch and yaw the camera stands behind it on y.
    Expect_Near(controller.Get_Transform().Get_Translation(), {1000.0f, 736.648f - 368.324f, 0.0f}, 0.01f);
    // Velocity now -368.324 and -736.648: (c + (u + 2 c) / 2) 0.3683241 with c the first result.
    controller.Update_Camera(nullptr, 0.5f);
    Expect_Near(controller.Get_Transform().Get_Translation(), {1000.0f, 406.987f - 203.494f, 0.0f}, 0.01f);
}

TEST(CameraController, AnglesGoTheShortWayAround)
{
    vrSimpleCameraController controller;
    vrSimpleCameraController::SmoothingFlags smoothed;
    smoothed.Yaw = true;
    controller.Set_Smoothing(smoothed);
    controller.Set_Pitch(0.0f);
    controller.Set_Yaw(350.0f);
    controller.Set_Distance(100.0f);
    controller.Set_Camera_Location(Vector3(0.0f));
    controller.Update_Camera(nullptr, 0.5f);
    const float yaw = (350.0f + 20.0f / 2.715f) * 0.017453292f; // from 360 down
    Expect_Near(controller.Get_Transform().Get_Translation(), {100.0f * std::sin(yaw), -100.0f * std::cos(yaw), 0.0f});
    for (const float hostile : {1e30f, INFINITY, -NAN}) {
        controller.Set_Yaw(hostile);
        controller.Update_Camera(nullptr, 0.5f); // comes to an end
    }
}

TEST(CameraController, TheMouseTurnsByTheLastStep)
{
    vrSimpleCameraController controller;
    controller.Set_Pitch(35.0f);
    controller.Set_Yaw(45.0f);
    controller.Set_Yaw_Rate(-120.0f);
    controller.Set_Pitch_Rate(60.0f);
    controller.Update_Camera(nullptr, STEP);
    EXPECT_FALSE(controller.On_Mouse_Move(0.1f, 0.02f, false, 100.0f));
    controller.On_Rotate_Begin();
    EXPECT_TRUE(controller.On_Mouse_Move(0.1f, 0.02f, false, 100.0f)); // -120 / 30 * 10 and 60 / 30 * 2
    EXPECT_NEAR(controller.Get_Yaw(), 5.0f, 1e-3f);
    EXPECT_NEAR(controller.Get_Pitch(), 31.0f, 1e-3f);
    controller.Set_Yaw_Rate(90.0f);
    for (const float move : {0.013f, 0.029f, 0.058f, 0.097f}) { // the factors from left to right, to the last bit
        controller.Set_Yaw(0.0f);
        controller.On_Mouse_Move(move, 0.0f, false, 100.0f);
        EXPECT_EQ(controller.Get_Yaw(), 90.0f * STEP * move * 100.0f) << move;
    }
    controller.Set_Yaw_Rate(-120.0f);
    controller.Set_Yaw(5.0f);
    controller.On_Mouse_Move(0.1f, 0.0f, false, 100.0f);
    EXPECT_NEAR(controller.Get_Yaw(), 325.0f, 1e-3f);
    controller.Set_Pitch(100.0f);
    controller.On_Mouse_Move(0.0f, 0.0f, false, 100.0f);
    EXPECT_EQ(controller.Get_Pitch(), 89.0f);

    controller.Set_Distance(550.0f);
    controller.On_Mouse_Move(0.0f, 0.0f, true, 100.0f);
    EXPECT_NEAR(controller.Get_Distance(), 605.0f, 1e-2f);
    controller.On_Mouse_Move(0.0f, -0.1f, true, 100.0f);
    EXPECT_NEAR(controller.Get_Distance(), 544.5f, 1e-2f);
    controller.Set_Distance(20000.0f);
    controller.On_Mouse_Move(0.0f, -0.1f, true, 100.0f);
    EXPECT_EQ(controller.Get_Distance(), 1000.0f);
}

} // namespace
