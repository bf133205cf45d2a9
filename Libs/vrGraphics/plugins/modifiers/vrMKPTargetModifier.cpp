#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <cmath>

MK_DEFINE_RUN_TIME_TYPE(vrMKPTargetModifierPluginData, vrMKPBufferPluginData)

namespace
{

constexpr const char *TARGET_POSITIONS[] = {"Emitter",
                                            "Bone",
                                            "Target",
                                            "Position",
                                            "Keyed Position",
                                            "Projectile Target Start",
                                            "Projectile Target Current (For Homing)"};
constexpr const char *LOOPING_TYPES[] = {"None", "Looped", "Ping-Pong"};

} // namespace

vrMKPTargetModifier::vrMKPTargetModifier()
{
    Target = Parameters.Add_Enum(100, "Target Position", TARGET_POSITIONS, TARGET_POSITION_EMITTER,
                                 "Point within the particle system to target.");
    BoneName = Parameters.Add_String(101, "Bone Name", "",
                                     "Name of the bone target. (Only active if Target Position is set to 'Bone')");
    FixedPosition = Parameters.Add_Vector3(102, "Position", Vector3(0.0f), "Fixed position of the target.");
    StartTime = Parameters.Add_Float(103, "Start Time", 0.0f, 0.0f, 100.0f,
                                     "For keyed position:  Time at which the animation starts.");
    EndTime = Parameters.Add_Float(104, "End Time", 1.0f, 0.0f, 100.0f,
                                   "For keyed position:  Time at which the animation ends.");
    Translate[0] = Parameters.Add_Keyed_Float(105, "Translate X", "Translate X.");
    Translate[1] = Parameters.Add_Keyed_Float(106, "Translate Y", "Translate Y.");
    Translate[2] = Parameters.Add_Keyed_Float(107, "Translate Z", "Translate Z.");
    Looping = Parameters.Add_Enum(108, "Looping", LOOPING_TYPES, LOOPING_NONE, "How to loop the keyed position.");
}

vrMKPBufferPluginData *vrMKPTargetModifier::Create_Buffer_Data(const vrMKPRenderState &) const
{
    return new vrMKPTargetModifierPluginData;
}

Vector3 vrMKPTargetModifier::Get_Keyed_Position(float age) const
{
    const float start = StartTime->Get_Value();
    const float duration = EndTime->Get_Value() - start > 0.0f ? EndTime->Get_Value() - start : 0.01f;
    float time = (age - start) / duration;
    switch (Looping->Get_Value()) {
    case LOOPING_LOOPED: time = std::fmod(time, 1.0f); break;
    case LOOPING_PING_PONG:
        time = std::fmod(time, 2.0f) < 1.0f ? std::fmod(time, 1.0f) : 1.0f - std::fmod(time, 1.0f);
        break;
    default: break;
    }
    Vector3 position(0.0f);
    for (int axis = 0; axis < 3; ++axis) Translate[axis]->Evaluate(time, false, position[axis]);
    return position;
}

Vector3 vrMKPTargetModifier::Get_Target_Position(const vrMKPBuffer &buffer, int index) const
{
    const vrMKPRenderState &state = *buffer.State;
    const auto point = [&](vrMKPTargetPoint kind) {
        auto *data = Motion::Get_Data<vrMKPTargetModifierPluginData>(buffer, index);
        return Get_Target_Point(kind, state, BoneName->Get_Value(), data ? &data->Bone : nullptr);
    };
    switch (Target->Get_Value()) {
    case TARGET_POSITION_BONE: return point(MKP_TARGET_BONE);
    case TARGET_POSITION_TARGET: return point(MKP_TARGET_SET);
    case TARGET_POSITION_FIXED: return state.Transform.Transform(FixedPosition->Get_Value());
    case TARGET_POSITION_KEYED: return state.Transform.Transform(Get_Keyed_Position(state.RunningTime));
    case TARGET_POSITION_PROJECTILE_TARGET_START: return point(MKP_TARGET_PROJECTILE_TARGET_START);
    case TARGET_POSITION_PROJECTILE_TARGET_CURRENT: return point(MKP_TARGET_PROJECTILE_TARGET_CURRENT);
    default: return point(MKP_TARGET_EMITTER);
    }
}

Vector3 vrMKPTargetModifier::Get_Buffer_Target(const vrMKPBuffer &buffer, int index) const
{
    const Vector3 target = Get_Target_Position(buffer, index);
    return buffer.Is_World() ? target : buffer.State->InverseTransform.Transform(target);
}
