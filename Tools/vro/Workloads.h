#pragma once

#include "MKLib/RefCount.h"

class vrMKParticleEmitter;

/// The effects that speed is measured with, by the same names in `vro bench` and in the benchmarks. Each has one layer
/// with a fixed seed: particles born in a sphere, a world-space transformer, acceleration, and linear colour, size and
/// rotation.
namespace vro
{

/// Seconds of a frame of the workloads.
constexpr float WORKLOAD_STEP = 1.0f / 60.0f;
/// Seconds that a particle of the steady workload lives, after which the count no longer rises.
constexpr float STEADY_LIFE = 2.0f;

/// Who looks at the particles.
enum class WorkloadViewer
{
    None,     ///< simulation only
    Billboard ///< a visualizer, which asks for the box around the particles in each frame
};

/// As many particles die as are born in each frame, and about `particles` live.
SmartPtr<vrMKParticleEmitter> Make_Steady(int particles, WorkloadViewer viewer = WorkloadViewer::None);
/// All of about `particles` are born in the first frame, and none later.
SmartPtr<vrMKParticleEmitter> Make_Burst(int particles);

} // namespace vro
