#include "vrGraphics/plugins/stompers/StompLoops.h"

#include "vrGraphics/particle/VectorPlanes.h"

namespace
{

MK_SIMD int Count_Marks(const uint8_t *dead, int count)
{
    int deaths = 0;
    for (int at = 0; at < count; ++at) deaths += dead[at];
    return deaths;
}

MK_SIMD void Mark_Ages(const float *__restrict age, const float *__restrict maxAge, int count, float dt,
                       uint8_t *__restrict dead)
{
    for (int at = 0; at < count; ++at) dead[at] = age[at] + dt > maxAge[at] ? 1 : 0;
}

MK_SIMD int Count_Ages(const float *__restrict age, const float *__restrict maxAge, int count, float dt,
                       int *__restrict invalid)
{
    int aged = 0;
    int bad = 0;
    for (int at = 0; at < count; ++at) {
        const int dies = age[at] + dt > maxAge[at] ? 1 : 0;
        const int positive = maxAge[at] > 0.0f ? 1 : 0;
        aged += dies;
        bad += 1 - (dies | positive);
    }
    *invalid += bad;
    return aged;
}

/// `SIGN` 1 marks what is above the limit, -1 what is below it.
template <int SIGN, typename Points>
MK_SIMD void Mark_Distances(const Points &positions, int count, Vector3 center, float limit, uint8_t *__restrict dead)
{
    for (int i = 0; i < count; ++i) {
        const Vector3 position = positions.At(i);
        const float x = position.x - center.x;
        const float y = position.y - center.y;
        const float z = position.z - center.z;
        const float squared = x * x + y * y + z * z;
        dead[i] = (SIGN > 0 ? squared > limit : squared <= limit) ? 1 : 0;
    }
}

MK_SIMD void Mark_Coordinates(const float *__restrict values, int count, float sign, float limit,
                              uint8_t *__restrict dead)
{
    for (int i = 0; i < count; ++i) dead[i] = values[i * 3] * sign > limit ? 1 : 0;
}

template <typename Points>
MK_SIMD void Mark_Rows(const Points &positions, int count, Vector4 row, float sign, float limit,
                       uint8_t *__restrict dead)
{
    for (int i = 0; i < count; ++i) {
        const Vector3 position = positions.At(i);
        const float value = row.x * position.x + row.y * position.y + row.z * position.z + row.w;
        dead[i] = value * sign > limit ? 1 : 0;
    }
}

/// Below a limit is above it with both signs turned.
float Sign_Of(StompLoops::Comparison comparison)
{
    return comparison == StompLoops::LESS_THAN ? -1.0f : 1.0f;
}

} // namespace

namespace StompLoops
{

int Mark_Aged(const float *age, const float *maxAge, int count, float dt, uint8_t *dead)
{
    Mark_Ages(age, maxAge, count, dt, dead);
    return Count_Marks(dead, count);
}

int Count_Aged(const float *age, const float *maxAge, int count, float dt, int &invalid)
{
    return Count_Ages(age, maxAge, count, dt, &invalid);
}

int Mark_Beyond(const Vector3 *positions, int count, const Vector3 &center, float squaredRadius, uint8_t *dead)
{
    Particle::For_Points(positions, count, [&](const auto &points, int at, int size) {
        Mark_Distances<1>(points, size, center, squaredRadius, dead + at);
    });
    return Count_Marks(dead, count);
}

int Mark_Within(const Vector3 *positions, int count, const Vector3 &center, float squaredRadius, uint8_t *dead)
{
    Particle::For_Points(positions, count, [&](const auto &points, int at, int size) {
        Mark_Distances<-1>(points, size, center, squaredRadius, dead + at);
    });
    return Count_Marks(dead, count);
}

int Mark_On_Axis(const Vector3 *positions, int axis, int count, Comparison comparison, float limit, uint8_t *dead)
{
    const float sign = Sign_Of(comparison);
    Mark_Coordinates(&positions->x + axis, count, sign, limit * sign, dead);
    return Count_Marks(dead, count);
}

int Mark_Mapped(const Vector3 *positions, int count, const Vector4 &row, Comparison comparison, float limit,
                uint8_t *dead)
{
    const float sign = Sign_Of(comparison);
    Particle::For_Points(positions, count, [&](const auto &points, int at, int size) {
        Mark_Rows(points, size, row, sign, limit * sign, dead + at);
    });
    return Count_Marks(dead, count);
}

void Report_Deaths(vrMKPBuffer &buffer, vrMKPSpan span, const uint8_t *dead, float dt, bool spawnOnDeath)
{
    buffer.TimeSinceDeath = 0.0f;
    if (!spawnOnDeath) return;
    for (int at = 0; at < span.Count; ++at) {
        const int slot = span.First + at;
        if (dead[at]) buffer.Notify_Death(slot, buffer.Age[slot] + dt - buffer.MaxAge[slot]);
    }
}

} // namespace StompLoops
