#pragma once

#include <cstdint>
#include <iterator>

/// The channels of a particle buffer. Bit n of a mask stands for channel n.
enum MKPAttribTypes : uint32_t
{
    MKP_PROJECTILE_STARTING_POSITION,
    MKP_PREVIOUS_POSITION,
    MKP_POSITION,
    MKP_PROJECTILE_TARGET_POSITION,
    MKP_VELOCITY,
    MKP_AGE,
    MKP_MAX_AGE,
    MKP_TIME,
    MKP_PROJECTILE_FLIGHT_DURATION,
    MKP_FLAGS,
    MKP_ID,
    MKP_NUMBER,
    MKP_UV,
    MKP_DUV,
    MKP_COLOR,
    MKP_SIZE,
    MKP_ROTATION,
    MKP_WORLD_POSITION,
    MKP_RENDER,
    MKP_SORTING_RELATIVE_TO_GROUP,
    MKP_ATTRIBUTE_COUNT
};

constexpr const char *MKP_ATTRIBUTE_NAMES[] = {
    "ProjectileStartingPosition",
    "PreviousPosition",
    "Position",
    "ProjectileTargetPosition",
    "Velocity",
    "Age",
    "MaxAge",
    "Time",
    "ProjectileFlightDuration",
    "Flags",
    "ID",
    "Number",
    "UV",
    "dUV",
    "Color",
    "Size",
    "Rotation",
    "WorldPosition",
    "Render",
    "SortingRelativeToGroup",
};
static_assert(std::size(MKP_ATTRIBUTE_NAMES) == MKP_ATTRIBUTE_COUNT);
