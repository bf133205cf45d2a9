#pragma once

/// The space in which a layer's particles are simulated.
enum vrMKPTransformType : int
{
    MKP_TRANSFORM_WORLD = 0,
    MKP_TRANSFORM_LOCAL = 1, ///< the renderable's own frame
    MKP_TRANSFORM_SCREEN = 2 ///< a frame that is aligned to the camera
};

/// Where the mapping of a scene that shows particles at another scale applies.
enum vrParticleScaleType : int
{
    PARTICLE_SCALE_NONE = 0,
    PARTICLE_SCALE_AT_DRAW = 1, ///< to local particles, as they are drawn
    PARTICLE_SCALE_AT_SPAWN = 2 ///< to world particles, as they are spawned
};
