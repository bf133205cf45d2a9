#pragma once

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

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

protected:
    vrMKPTargetModifier();
};
