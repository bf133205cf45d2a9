#include "vrGraphics/plugins/renderables/Physics.h"

#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

namespace
{

// Indices into these are a file format.
constexpr const char *WAVEFORMS[] = {"Sine", "Triangle", "Square", "Sawtooth"};
constexpr const char *TRAJECTORY_TYPES[] = {"Linear", "Arc"};
constexpr const char *TRACK_MODES[] = {"Normal", "Homing"};

// What both projectiles have, with the same ids.
void Add_Flight(ParameterListClass &parameters)
{
    parameters.Add_Enum(100, "Track Mode", TRACK_MODES, 0, "How the projectile tracks the target.");
    parameters.Add_Float(101, "Speed Multiplier", 1.0f, 0.01f, 100.0f,
                         "Multiple of the logical projectile speed at which the group flies.");
    parameters.Add_Bool(102, "Align To Motion", true, "Turn the group so that its X-axis points along the flight.");
}

} // namespace

vrMKPWaveAndSpinRenderablePhysics::vrMKPWaveAndSpinRenderablePhysics()
{
    Parameters.Add_Enum(100, "Waveform", WAVEFORMS, 0, "Shape of the wave.");
    Parameters.Add_Vector3(101, "Wave Amplitude", Vector3(0.0f),
                           "Greatest distance from the rest position along each axis.");
    Parameters.Add_Vector3(102, "Wave Frequency", Vector3(1.0f), "Waves per second along each axis.");
    Parameters.Add_Vector3(103, "Wave Phase", Vector3(0.0f),
                           "Point within the wave to start from along each axis, 0 to 1.");
    Parameters.Add_Bool(104, "Random Phase", false, "Start each instance at a random point within the wave.");
    Parameters.Add_Vector3(105, "Spin Rate", Vector3(0.0f), "Degrees per second to turn about each axis.");
    Parameters.Add_Vector3(106, "Start Rotation", Vector3(0.0f), "Degrees to turn about each axis at the start.");
}

vrMKPSimpleProjectileRenderablePhysics::vrMKPSimpleProjectileRenderablePhysics()
{
    Add_Flight(Parameters);
    Parameters.Add_Enum(110, "Trajectory Types", TRAJECTORY_TYPES, 0, "Path from the source to the target.");
    Parameters.Add_Float(111, "Gravity", 100.0f, 0.0f, 1000.0f,
                         "The downward acceleration for Arc projectiles, in units per second per second.");
}

vrMKPSpiralAndSeekProjectileRenderablePhysics::vrMKPSpiralAndSeekProjectileRenderablePhysics()
{
    Add_Flight(Parameters);
    Parameters.Add_Float(120, "Spiral Time", 0.5f, 0.0f, 60.0f,
                         "Time in seconds spent spiralling away before the projectile seeks its target.");
    Parameters.Add_Float(121, "Spiral Speed", 50.0f, 0.0f, 1000.0f,
                         "Speed along the axis of the spiral, in units per second.");
    Parameters.Add_Vector3(122, "Spiral Axis", Vector3(0.0f, 0.0f, 1.0f),
                           "Direction in which to spiral away from the source.");
    Parameters.Add_Float(123, "Spiral Radius", 25.0f, 0.0f, 500.0f, "Radius of the spiral at the end of its time.");
    Parameters.Add_Float(124, "Spiral Rate", 2.0f, -20.0f, 20.0f,
                         "Turns per second about the axis, negative for clockwise.");
    Parameters.Add_Bool(125, "Random Spiral Start", true, "Start each instance at a random angle about the axis.");
    Parameters.Add_Float(126, "Seek Acceleration", 500.0f, 0.0f, 10000.0f,
                         "Acceleration toward the target, in units per second per second.");
    Parameters.Add_Float(127, "Seek Turn Rate", 360.0f, 0.0f, 3600.0f,
                         "Fastest turn toward the target, in degrees per second.");
}

vrMKPKeyedTransformRenderablePhysics::vrMKPKeyedTransformRenderablePhysics()
{
    Add_Keyframe_Timing(Parameters, 100);
    Add_Constant_Curve(Parameters, 102, "Translate X", 0.0f, "Distance to move along the X-axis.");
    Add_Constant_Curve(Parameters, 103, "Translate Y", 0.0f, "Distance to move along the Y-axis.");
    Add_Constant_Curve(Parameters, 104, "Translate Z", 0.0f, "Distance to move along the Z-axis.");
    Add_Constant_Curve(Parameters, 105, "Rotate X", 0.0f, "Degrees to turn about the X-axis.");
    Add_Constant_Curve(Parameters, 106, "Rotate Y", 0.0f, "Degrees to turn about the Y-axis.");
    Add_Constant_Curve(Parameters, 107, "Rotate Z", 0.0f, "Degrees to turn about the Z-axis.");
    Add_Constant_Curve(Parameters, 108, "Scale", 1.0f, "Uniform scale.");
}

vrMKPFollowRenderablePhysics::vrMKPFollowRenderablePhysics()
{
    ParentName = Parameters.Add_String(100, "Parent Name", "", "Name of the group or model to follow.");
    Parameters.Add_Bool(101, "Follow Rotation", true, "Turn with the parent as well as move with it.");
    Parameters.Add_Bool(102, "Follow Scale", true, "Take the parent's scale as well as move with it.");
}

std::string_view vrMKPFollowRenderablePhysics::Get_Parent_Name() const
{
    return ParentName->Get_Value();
}

void vrMKPFollowRenderablePhysics::Set_Parent_Name(std::string_view name)
{
    ParentName->Set_Value(name);
}
