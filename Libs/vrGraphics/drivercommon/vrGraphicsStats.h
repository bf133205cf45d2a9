#pragma once

#include <atomic>
#include <cstdint>

/// What frames did, for the tool's counters. Simulation and drawing add from their threads; reading and closing are the
/// main thread's.
struct vrGraphicsStats
{
    struct Values
    {
        int ParticlesSimulated = 0;
        int ParticlesRendered = 0;
        int Vertices = 0; ///< handed to the driver
        int Draws = 0;
        int Renders = 0; ///< of scenes
        int Updates = 0; ///< of scenes
        int StateChanges = 0;
        int PrepareMicroseconds = 0; ///< of selection, sorting and vertex building

        friend bool operator==(const Values &, const Values &) = default;
    };

    static std::atomic<int> ParticlesSimulated;
    static std::atomic<int> ParticlesRendered;
    static std::atomic<int> Vertices;
    static std::atomic<int> Draws;
    static std::atomic<int> Renders;
    static std::atomic<int> Updates;
    static std::atomic<int> StateChanges;
    static std::atomic<int> PrepareMicroseconds;

    /// The figures that were closed last. `latch` first closes what was counted since, if anything was: two calls in a
    /// row answer the same.
    static Values Get_Stats(bool latch);
};
