#include "vrGraphics/plugins/renderables/Physics.h"

#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/ParticleMath.h"

namespace
{

enum WaveformType : int
{
    WAVE_SINE,
    WAVE_TRIANGLE,
    WAVE_SQUARE,
    WAVE_SAWTOOTH
};
// Indices into this are a file format.
constexpr const char *WAVEFORMS[] = {"Sine", "Triangle", "Square", "Sawtooth"};

/// The random point within the wave that an instance drew.
class WaveDataClass final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override { IsDrawn = false; }

    float Phase = 0.0f;
    bool IsDrawn = false;
};
MK_DEFINE_RUN_TIME_TYPE(WaveDataClass, vrMKPBufferPluginData)

/// -1 to 1 at so many waves. Each but the square starts at 0 and rises.
double Wave_At(int waveform, double waves)
{
    const double u = waves - std::floor(waves);
    switch (waveform) {
    case WAVE_TRIANGLE: return u < 0.25 ? 4.0 * u : u < 0.75 ? 2.0 - 4.0 * u : 4.0 * u - 4.0;
    case WAVE_SQUARE: return u < 0.5 ? 1.0 : -1.0;
    case WAVE_SAWTOOTH: return u < 0.5 ? 2.0 * u : 2.0 * u - 2.0;
    default: return Portable::Sine(u * 2.0 * Portable::PI);
    }
}

/// Whole turns are taken out first, so that what spins for hours still turns evenly.
float To_Radians(double degrees)
{
    return static_cast<float>(std::fmod(degrees, 360.0) * (Portable::PI / 180.0));
}

/// `frame` with its axes as long as those of `scaled`.
Mat3DClass With_Scale_Of(const Mat3DClass &frame, const Mat3DClass &scaled)
{
    const float scale = frame.Get_Uniform_Scale();
    return scale > 0.0f ? frame.Scaled(scaled.Get_Uniform_Scale() / scale) : frame;
}

} // namespace

vrMKPWaveAndSpinRenderablePhysics::vrMKPWaveAndSpinRenderablePhysics()
    : Waveform(Parameters.Add_Enum(100, "Waveform", WAVEFORMS, 0, "Shape of the wave.")),
      WaveAmplitude(Parameters.Add_Vector3(101, "Wave Amplitude", Vector3(0.0f),
                                           "Greatest distance from the rest position along each axis.")),
      WaveFrequency(Parameters.Add_Vector3(102, "Wave Frequency", Vector3(1.0f), "Waves per second along each axis.")),
      WavePhase(Parameters.Add_Vector3(103, "Wave Phase", Vector3(0.0f),
                                       "Point within the wave to start from along each axis, 0 to 1.")),
      RandomPhase(
          Parameters.Add_Bool(104, "Random Phase", false, "Start each instance at a random point within the wave.")),
      SpinRate(Parameters.Add_Vector3(105, "Spin Rate", Vector3(0.0f), "Degrees per second to turn about each axis.")),
      StartRotation(
          Parameters.Add_Vector3(106, "Start Rotation", Vector3(0.0f), "Degrees to turn about each axis at the start."))
{
}

vrMKPBufferPluginData *vrMKPWaveAndSpinRenderablePhysics::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new WaveDataClass;
}

float vrMKPWaveAndSpinRenderablePhysics::Get_Instance_Phase(const vrMKPMotionContext &context) const
{
    auto *const data = MK_Dynamic_Cast<WaveDataClass>(context.Data);
    if (!data || !RandomPhase->Get_Value()) return 0.0f;
    if (!data->IsDrawn) {
        data->IsDrawn = true;
        data->Phase = context.Random.Get_Float(0.0f, 1.0f);
    }
    return data->Phase;
}

Mat3DClass vrMKPWaveAndSpinRenderablePhysics::Get_Motion(const vrMKPMotionContext &context) const
{
    const double time = static_cast<double>(context.RunningTime);
    const double instancePhase = static_cast<double>(Get_Instance_Phase(context));
    Vector3 swing;
    Vector3 turn;
    for (int axis = 0; axis < 3; ++axis) {
        const double waves = static_cast<double>(WaveFrequency->Get_Value()[axis]) * time +
                             static_cast<double>(WavePhase->Get_Value()[axis]) + instancePhase;
        const double amplitude = static_cast<double>(WaveAmplitude->Get_Value()[axis]);
        swing[axis] = static_cast<float>(amplitude * Wave_At(Waveform->Get_Value(), waves));
        turn[axis] = To_Radians(static_cast<double>(StartRotation->Get_Value()[axis]) +
                                static_cast<double>(SpinRate->Get_Value()[axis]) * time);
    }
    Mat3DClass motion = Mat3DClass::From_Angles(turn);
    motion.Set_Translation(swing);
    return context.Base * motion;
}

vrMKPKeyedTransformRenderablePhysics::vrMKPKeyedTransformRenderablePhysics()
    : Timing(Add_Keyframe_Timing(Parameters, 100)),
      Translate{Add_Constant_Curve(Parameters, 102, "Translate X", 0.0f, "Distance to move along the X-axis."),
                Add_Constant_Curve(Parameters, 103, "Translate Y", 0.0f, "Distance to move along the Y-axis."),
                Add_Constant_Curve(Parameters, 104, "Translate Z", 0.0f, "Distance to move along the Z-axis.")},
      Rotate{Add_Constant_Curve(Parameters, 105, "Rotate X", 0.0f, "Degrees to turn about the X-axis."),
             Add_Constant_Curve(Parameters, 106, "Rotate Y", 0.0f, "Degrees to turn about the Y-axis."),
             Add_Constant_Curve(Parameters, 107, "Rotate Z", 0.0f, "Degrees to turn about the Z-axis.")},
      Scale(Add_Constant_Curve(Parameters, 108, "Scale", 1.0f, "Uniform scale."))
{
}

Mat3DClass vrMKPKeyedTransformRenderablePhysics::Get_Motion(const vrMKPMotionContext &context) const
{
    const float keyTime = Timing.Get_Key_Time(context.RunningTime);
    Vector3 place;
    Vector3 turn;
    for (int axis = 0; axis < 3; ++axis) {
        place[axis] = Evaluate_Curve(*Translate[axis], keyTime);
        turn[axis] = To_Radians(static_cast<double>(Evaluate_Curve(*Rotate[axis], keyTime)));
    }
    Mat3DClass motion = Mat3DClass::From_Angles(turn).Scaled(Evaluate_Curve(*Scale, keyTime));
    motion.Set_Translation(place);
    return context.Base * motion;
}

vrMKPFollowRenderablePhysics::vrMKPFollowRenderablePhysics()
    : ParentName(Parameters.Add_String(100, "Parent Name", "", "Name of the group or model to follow.")),
      FollowRotation(
          Parameters.Add_Bool(101, "Follow Rotation", true, "Turn with the parent as well as move with it.")),
      FollowScale(Parameters.Add_Bool(102, "Follow Scale", true, "Take the parent's scale as well as move with it."))
{
}

std::string_view vrMKPFollowRenderablePhysics::Get_Parent_Name() const
{
    return ParentName->Get_Value();
}

void vrMKPFollowRenderablePhysics::Set_Parent_Name(std::string_view name)
{
    ParentName->Set_Value(name);
}

Mat3DClass vrMKPFollowRenderablePhysics::Get_Motion(const vrMKPMotionContext &context) const
{
    Mat3DClass parent;
    const std::string_view name = Get_Parent_Name();
    if (name.empty() || !context.Ahead || !context.Ahead->Find_Motion(name, parent)) return context.Base;
    const bool rotates = FollowRotation->Get_Value();
    const bool scales = FollowScale->Get_Value();
    if (rotates && scales) return parent;
    Mat3DClass motion = rotates ? parent : context.Base;
    if (rotates != scales) motion = With_Scale_Of(motion, scales ? parent : context.Base);
    motion.Set_Translation(parent.Get_Translation());
    return motion;
}
