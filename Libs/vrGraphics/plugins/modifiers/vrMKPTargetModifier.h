#pragma once

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/particle/TargetPoint.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// The bone that a target modifier found for a buffer.
class vrMKPTargetModifierPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override { Bone.Reset(); }

    vrMKPBoneCache Bone;
};

/// The base of the modifiers that act about a point: the parameters tell which.
class vrMKPTargetModifier : public vrMKPModifier
{
public:
    /// The entries of "Target Position", by the number that a file stores.
    enum TargetPosition : int
    {
        TARGET_POSITION_EMITTER,                 ///< the group's place in the world
        TARGET_POSITION_BONE,                    ///< a bone of the model that carries the group, by its name
        TARGET_POSITION_TARGET,                  ///< what game code set
        TARGET_POSITION_FIXED,                   ///< a place in the group's space
        TARGET_POSITION_KEYED,                   ///< a moving place in the group's space
        TARGET_POSITION_PROJECTILE_TARGET_START, ///< where a projectile's target was when the emitter started
        TARGET_POSITION_PROJECTILE_TARGET_CURRENT
    };

    /// The entries of "Looping": what a keyed position does past its end.
    enum LoopingTypeEnum : int
    {
        LOOPING_NONE,
        LOOPING_LOOPED,
        LOOPING_PING_PONG
    };

    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    /// In the world; `index` is the modifier's place in the layer.
    Vector3 Get_Target_Position(const vrMKPBuffer &buffer, int index) const;

protected:
    vrMKPTargetModifier();
    /// In the space of the buffer's particles.
    Vector3 Get_Buffer_Target(const vrMKPBuffer &buffer, int index) const;

private:
    Vector3 Get_Keyed_Position(float age) const;

    EnumParameterClass *Target;
    StringParameterClass *BoneName;
    Vector3Parameter *FixedPosition;
    RangedFloatParameter *StartTime;
    RangedFloatParameter *EndTime;
    KeyedFloatParameterClass *Translate[3];
    EnumParameterClass *Looping;
};
