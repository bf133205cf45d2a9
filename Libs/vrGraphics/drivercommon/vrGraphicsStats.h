#pragma once

#include <atomic>
#include <cstdint>

/// What a frame did, for the tool's counters. Simulation and rendering add from their threads.
struct vrGraphicsStats
{
    struct Values
    {
        int ParticlesSimulated = 0;
        int ParticlesRendered = 0;
        int Vertices = 0; ///< handed to the driver
        int Draws = 0;
        int Renders = 0; ///< of scenes
        int StateChanges = 0;
    };

    static std::atomic<int> ParticlesSimulated;
    static std::atomic<int> ParticlesRendered;
    static std::atomic<int> Vertices;
    static std::atomic<int> Draws;
    static std::atomic<int> Renders;
    static std::atomic<int> StateChanges;

    /// Since the last call with `latch`, which closes the counting: the closed figures are what all calls answer.
    static Values Get_Stats(bool latch);
};
