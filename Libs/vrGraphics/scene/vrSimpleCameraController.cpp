#include "vrGraphics/scene/vrSimpleCameraController.h"

#include "vrGraphics/drivercommon/vrCamera.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace
{

constexpr float QUARTER_TURN = 1.5707964f;
constexpr float DEGREE = 0.017453292f; ///< in radians
constexpr float TURN = 360.0f;
constexpr float TURNS_A_DEGREE = 0.0027777778f;
/// Angles beyond it are so coarse that taking turns off one by one would never end.
constexpr float LARGE_ANGLE = 36000.0f;

float Wrap(float angle)
{
    return angle >= 0.0f && angle < TURN ? angle : angle - TURN * std::floor(angle * TURNS_A_DEGREE);
}

/// The shorter way around.
float Angle_Between(float value, float target)
{
    float way = value - target;
    if (!(std::abs(way) < LARGE_ANGLE)) way = std::isfinite(way) ? std::fmod(way, TURN) : 0.0f;
    while (std::abs(way) > TURN * 0.5f) way += value >= target ? -TURN : TURN;
    return way;
}

} // namespace

template <typename Value>
void vrSimpleCameraController::Spring<Value>::Step_Toward(const Value &change, float dt)
{
    if (Switch <= 0) {
        Current = Target;
        Velocity = Value(0.0f);
        return;
    }
    const float omega = 2.0f * Rate;
    const float x = omega * dt;
    const float decay = 1.0f / (1.0f + x + 0.48f * x * x + 0.235f * x * x * x);
    const Value step = (Velocity + omega * change) * dt;
    Velocity = (Velocity - omega * step) * decay;
    Current = Target + (change + step) * decay;
}

void vrSimpleCameraController::Step_Angle(Spring<float> &spring, float dt)
{
    spring.Current = Wrap(spring.Current);
    spring.Step_Toward(Angle_Between(spring.Current, spring.Target), dt);
    spring.Current = Wrap(spring.Current);
}

void vrSimpleCameraController::Set_Smoothing_Switch(int value)
{
    Pitch.Switch = Yaw.Switch = Distance.Switch = Location.Switch = value;
}

void vrSimpleCameraController::Update_Camera(vrCamera *camera, float dt)
{
    TimeStep = dt;
    Step_Angle(Pitch, dt);
    Step_Angle(Yaw, dt);
    Distance.Step(dt);
    Location.Step(dt);
    Place();
    if (camera) camera->Set_Transform(Transform);
}

/// Turned a quarter about x, what looked along negative z looks along y with z upward; then yaw is about its own y
/// axis, which is the world's z, and pitch about its x.
void vrSimpleCameraController::Place()
{
    Transform = Mat3DClass::From_Translation(Location.Get(Smoothed.Location)) *
                Mat3DClass::From_Angles({QUARTER_TURN, 0.0f, 0.0f}) *
                Mat3DClass::From_Angles({0.0f, Yaw.Get(Smoothed.Yaw) * DEGREE, 0.0f}) *
                Mat3DClass::From_Angles({-Pitch.Get(Smoothed.Pitch) * DEGREE, 0.0f, 0.0f}) *
                Mat3DClass::From_Translation({0.0f, 0.0f, Distance.Get(Smoothed.Distance)});
}

bool vrSimpleCameraController::On_Mouse_Move(float dx, float dy, bool zoom, float scale)
{
    if (IsRotating && zoom) {
        const float sign = dy * scale >= 0.0f ? 1.0f : -1.0f;
        Distance.Target = std::clamp(Distance.Target * (1.0f + ZoomRate * sign), MinimumDistance,
                                     std::max(MinimumDistance, MaximumDistance));
        return true;
    }
    if (IsRotating) {
        Turn(dx, dy, scale);
        return true;
    }
    if (!IsPanning) return false;
    Pan(dx, dy);
    return true;
}

void vrSimpleCameraController::Turn(float dx, float dy, float scale)
{
    Yaw.Target += YawRate * TimeStep * dx * scale;
    Pitch.Target = std::clamp(Pitch.Target - PitchRate * TimeStep * dy * scale, MinimumPitch, MaximumPitch);
    if (Yaw.Target > TURN)
        Yaw.Target = std::fmod(Yaw.Target, TURN);
    else if (Yaw.Target < 0.0f)
        Yaw.Target = TURN - std::fmod(-Yaw.Target, TURN);
}

/// Along the ground, as if the mouse held it; the higher the camera, the more.
void vrSimpleCameraController::Pan(float dx, float dy)
{
    const float reach = PanRate * TimeStep * Transform.Row[2].w;
    const Vector3 right = Transform.Get_Axis(0);
    const Vector3 ahead = glm::cross(Vector3(0.0f, 0.0f, 1.0f), right);
    Location.Target -= (right * dx + ahead * dy) * reach;
}
