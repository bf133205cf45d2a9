#pragma once

/// A block of newborns on their way into the channels.

#include "MKLib/RandomLanes.h"
#include "vrGraphics/particle/VectorPlanes.h"

#include <algorithm>

struct vrMKPNewborns
{
    static constexpr int BLOCK = RandomLanes::CAPACITY; ///< the most of them
    static constexpr int ROOM = BLOCK + RandomLanes::GROUP;
    static_assert(ROOM <= Particle::Planes::BLOCK);

    /// Loops may take whole groups after this: sets what they meet behind the first `count`.
    static void Fill_Up(float *values, int count) { std::fill_n(values + count, RandomLanes::GROUP, 0.0f); }
    static void Fill_Up(Particle::Planes &vectors, int count)
    {
        for (float *values : {vectors.X, vectors.Y, vectors.Z}) Fill_Up(values, count);
    }

    Particle::Planes Starts; ///< where they begin: in the spawner's local frame as they are drawn, and then placed
    Particle::Planes Velocities;
    Particle::Planes Positions; ///< at the end of the frame
    alignas(64) uint32_t IDs[ROOM];
    alignas(64) float Ages[ROOM];
    alignas(64) float Fractions[ROOM]; ///< of the way from the previous place to the present one
};
