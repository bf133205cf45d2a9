#pragma once

/// Descriptions of parameters that several spawners have, each under ids of its own.
namespace SpawnerText
{

inline constexpr const char *VELOCITY_IN_LOCAL_SPACE = "Treats the generated velocity in local space.";
inline constexpr const char *INHERIT_VELOCITY =
    "Adds the emitter's velocity to the particle's velocity. (World Transorm Only)";
inline constexpr const char *INHERITED_VELOCITY_SCALE =
    "Scales the inherited velocity by the given value. (World Transform Only)";
inline constexpr const char *MAX_INHERIT_SPEED = "Maximum speed to inherit from emitter. (World Transform Only)";

inline constexpr const char *POSITION_SHAPE =
    "Initial Position.\nParticles will spawn at random positions inside the selected shape (or, if Hollow Position is "
    "turned on, along its surface).";
inline constexpr const char *VELOCITY_SHAPE =
    "Initial Velocity.\nThe direction of particle movement will be described by random values inside the selected "
    "shape.\nGenerally speaking, they can be thought of as \"shooting away\" from an object of the chosen shape. "
    "The further a value lies from the origin, the faster the particle; a radial shape shoots away from the shape of "
    "the position.";
inline constexpr const char *HOLLOW_POSITION = "Treats the shape describing 'position' as hollow";
inline constexpr const char *HOLLOW_VELOCITY = "Treats the shape describing 'velocity' as hollow";
inline constexpr const char *EVEN_DISTRIBUTION =
    "Round shapes spawn particles with an even distribution from the center.";

inline constexpr const char *PARENT_NAME = "Name of the parent particle system to spawn from.";
inline constexpr const char *PARENT_ALIGNMENT = "Direction of parent particle system to align velocity to.";

} // namespace SpawnerText
