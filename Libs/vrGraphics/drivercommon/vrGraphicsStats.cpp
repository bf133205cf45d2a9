#include "vrGraphics/drivercommon/vrGraphicsStats.h"

std::atomic<int> vrGraphicsStats::ParticlesSimulated{0};
std::atomic<int> vrGraphicsStats::ParticlesRendered{0};
std::atomic<int> vrGraphicsStats::Vertices{0};
std::atomic<int> vrGraphicsStats::Draws{0};
std::atomic<int> vrGraphicsStats::Renders{0};
std::atomic<int> vrGraphicsStats::Updates{0};
std::atomic<int> vrGraphicsStats::StateChanges{0};
std::atomic<int> vrGraphicsStats::PrepareMicroseconds{0};

namespace
{

vrGraphicsStats::Values closed;

} // namespace

vrGraphicsStats::Values vrGraphicsStats::Get_Stats(bool latch)
{
    if (!latch) return closed;
    const Values counted{ParticlesSimulated.exchange(0),
                         ParticlesRendered.exchange(0),
                         Vertices.exchange(0),
                         Draws.exchange(0),
                         Renders.exchange(0),
                         Updates.exchange(0),
                         StateChanges.exchange(0),
                         PrepareMicroseconds.exchange(0)};
    if (counted != Values{}) closed = counted;
    return closed;
}
