#pragma once

/// The loops that find the particles which die. Each `Remove_` takes those out for which something holds, and tells the
/// listeners of them where `spawnOnDeath` asks for it; a comparison with what is no number spares the particle.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrWorld.h"

namespace StompLoops
{

enum Comparison : int
{
    GREATER_THAN = 0,
    LESS_THAN = 1
};

/// Those whose age of `dt` later is above their greatest. One that lives on and whose greatest age isn't positive
/// asserts.
void Remove_Aged(vrMKPBuffer &buffer, float dt, bool spawnOnDeath);
/// Those beyond, or else within, the root of `squaredRadius` about a centre.
void Remove_Beyond(vrMKPBuffer &buffer, const Vector3 &center, float squaredRadius, bool spawnOnDeath);
void Remove_Within(vrMKPBuffer &buffer, const Vector3 &center, float squaredRadius, bool spawnOnDeath);
/// Those whose coordinate on an axis (0 x, 1 y, 2 z) compares with `limit`.
void Remove_On_Axis(vrMKPBuffer &buffer, int axis, Comparison comparison, float limit, bool spawnOnDeath);
/// The same for the coordinate in another frame: the dot product with `row`, its fourth number added.
void Remove_Mapped(vrMKPBuffer &buffer, const Vector4 &row, Comparison comparison, float limit, bool spawnOnDeath);
/// Those that `offset` puts below the ground.
void Remove_Below(vrMKPBuffer &buffer, const vrTerrain &terrain, const Vector3 &offset, bool spawnOnDeath);
/// Those whose time is no less than `limit`.
void Remove_From(vrMKPBuffer &buffer, float limit, bool spawnOnDeath);

/// Tells the listeners of the marked ones of a run, in ring order, as they will stand `dt` later, and clears the clock.
void Report_Deaths(vrMKPBuffer &buffer, vrMKPSpan span, const uint8_t *dead, float dt, bool spawnOnDeath);

/// Removes what `mark(span, dead)` marks, and reports it.
template <typename Mark>
void Remove_Marked(vrMKPBuffer &buffer, float dt, bool spawnOnDeath, Mark &&mark)
{
    buffer.Remove_Marked([&](vrMKPSpan span, uint8_t *dead) {
        const int deaths = mark(span, dead);
        if (deaths > 0) Report_Deaths(buffer, span, dead, dt, spawnOnDeath);
        return deaths;
    });
}

} // namespace StompLoops
