#pragma once

/// The loops that find the particles which die. Each `Mark_` writes 1 (dead) or 0 for `count` particles and answers how
/// many are dead; a comparison with what is no number spares the particle.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrWorld.h"

namespace StompLoops
{

enum Comparison : int
{
    GREATER_THAN = 0,
    LESS_THAN = 1
};

/// Those whose age of `dt` later is above their greatest.
int Mark_Aged(const float *age, const float *maxAge, int count, float dt, uint8_t *dead);
/// The same, counted only; `invalid` grows by those that live on with a greatest age that isn't positive.
int Count_Aged(const float *age, const float *maxAge, int count, float dt, int &invalid);
/// Those beyond, or else within, the root of `squaredRadius` about a centre.
int Mark_Beyond(const Vector3 *positions, int count, const Vector3 &center, float squaredRadius, uint8_t *dead);
int Mark_Within(const Vector3 *positions, int count, const Vector3 &center, float squaredRadius, uint8_t *dead);
/// Those whose coordinate on an axis (0 x, 1 y, 2 z) compares with `limit`.
int Mark_On_Axis(const Vector3 *positions, int axis, int count, Comparison comparison, float limit, uint8_t *dead);
/// The same for the coordinate in another frame: the dot product with `row`, its fourth number added.
int Mark_Mapped(const Vector3 *positions, int count, const Vector4 &row, Comparison comparison, float limit,
                uint8_t *dead);

/// Those that `offset` puts below the ground.
int Mark_Below(const Vector3 *positions, int count, const vrTerrain &terrain, const Vector3 &offset, uint8_t *dead);
/// Those with a value that is no less than `limit`.
int Mark_From(const float *values, int count, float limit, uint8_t *dead);

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
