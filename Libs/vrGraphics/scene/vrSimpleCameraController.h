#pragma once

#include "MKLib/MKMath/Mat3D.h"

class vrCamera;

/// Looks at a point from a distance, around it and up and down. What moves it changes the targets; a critically damped
/// spring each brings the smoothed values after them. Angles in degrees: at a yaw of 0 the camera looks along the y
/// axis, and a pitch above 0 looks down.
class vrSimpleCameraController
{
public:
    // Each sets the target.
    void Set_Pitch(float degrees) { Pitch.Target = degrees; }
    void Set_Yaw(float degrees) { Yaw.Target = degrees; }
    void Set_Distance(float distance) { Distance.Target = distance; } ///< not kept within the limits
    void Set_Camera_Location(const Vector3 &location) { Location.Target = location; }
    float Get_Pitch() const { return Pitch.Target; }
    float Get_Yaw() const { return Yaw.Target; }
    float Get_Distance() const { return Distance.Target; }
    const Vector3 &Get_Camera_Location() const { return Location.Target; }

    void Set_Yaw_Rate(float rate) { YawRate = rate; } ///< degrees a second and unit of the mouse's move
    void Set_Pitch_Rate(float rate) { PitchRate = rate; }
    void Set_Max_Camera_Distance(float distance) { MaximumDistance = distance; }

    void On_Rotate_Begin() { IsRotating = true; }
    void On_Rotate_End() { IsRotating = false; }
    void On_Pan_Begin() { IsPanning = true; }
    void On_Pan_End() { IsPanning = false; }
    /// A move of the mouse, in parts of half of the view with y upward, times `scale`; `zoom` makes it a change of the
    /// distance. False when neither turning nor panning is on.
    bool On_Mouse_Move(float dx, float dy, bool zoom, float scale);

    /// Lets `dt` seconds pass and places the camera; null for none.
    void Update_Camera(vrCamera *camera, float dt);
    const Mat3DClass &Get_Transform() const { return Transform; }

    /// Whether the view takes the smoothed value of each quantity and not its target. None does at the start.
    struct SmoothingFlags
    {
        bool Yaw = false;
        bool Pitch = false;
        bool Distance = false;
        bool Location = false;
    };
    void Set_Smoothing(const SmoothingFlags &flags) { Smoothed = flags; }
    /// At 0 or less a value lands on its target in one step.
    void Set_Smoothing_Switch(int value);

private:
    /// A value on its way to its target.
    template <typename Value>
    struct Spring
    {
        Value Current;
        Value Target = Current;
        Value Velocity = Value(0.0f);
        int Switch = 1;
        float Rate = 1.0f;

        Value Get(bool smoothed) const { return smoothed ? Current : Target; }
        void Step(float dt) { Step_Toward(Current - Target, dt); }
        /// `change` is the way from the target to the value, where that isn't the plain difference.
        void Step_Toward(const Value &change, float dt);
    };

    static void Step_Angle(Spring<float> &spring, float dt);
    void Place();
    void Turn(float dx, float dy, float scale);
    void Pan(float dx, float dy);

    float TimeStep = 0.0333333351f;
    bool IsRotating = false;
    bool IsPanning = false;
    Spring<float> Pitch{45.0f};
    Spring<float> Yaw{0.0f};
    Spring<float> Distance{500.0f};
    Spring<Vector3> Location{Vector3(1000.0f, 1000.0f, 0.0f)};
    Mat3DClass Transform;
    float YawRate = -360.0f;
    float PitchRate = 180.0f;
    float PanRate = 2.0f;
    float ZoomRate = 0.1f;
    float MinimumDistance = 1.0f;
    float MaximumDistance = 1000.0f;
    float MinimumPitch = -89.0f;
    float MaximumPitch = 89.0f;
    SmoothingFlags Smoothed;
};
