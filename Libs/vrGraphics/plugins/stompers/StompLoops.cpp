#include "vrGraphics/plugins/stompers/StompLoops.h"

#include "vrGraphics/particle/VectorPlanes.h"

#include <cstring>

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

// What kills: whether it does a particle that a source tells of by its place.

/// `SIGN` 1 for what is above the limit, -1 for what isn't.
template <int SIGN>
struct AtDistance
{
    Vector3 Center;
    float Limit;

    template <typename Points>
    MK_INLINE bool Kills(const Points &positions, int i) const
    {
        const Vector3 position = positions.At(i);
        const float x = position.x - Center.x;
        const float y = position.y - Center.y;
        const float z = position.z - Center.z;
        const float squared = x * x + y * y + z * z;
        return SIGN > 0 ? squared > Limit : squared <= Limit;
    }
};

struct PastRow
{
    Vector4 Row;
    float Sign;
    float Limit;

    template <typename Points>
    MK_INLINE bool Kills(const Points &positions, int i) const
    {
        const Vector3 position = positions.At(i);
        return (Row.x * position.x + Row.y * position.y + Row.z * position.z + Row.w) * Sign > Limit;
    }
};

/// One of `STEP` floats each.
template <int STEP>
struct Coordinates
{
    const float *Values;

    MK_INLINE float At(int i) const { return Values[i * STEP]; }
};

struct PastValue
{
    float Sign;
    float Limit;

    template <typename Values>
    MK_INLINE bool Kills(const Values &values, int i) const
    {
        return values.At(i) * Sign > Limit;
    }
};

struct FromValue
{
    float Limit;

    template <typename Values>
    MK_INLINE bool Kills(const Values &values, int i) const
    {
        return values.At(i) >= Limit;
    }
};

/// Above an offset.
struct BelowHeight
{
    float Offset;
    float Limit;

    template <typename Values>
    MK_INLINE bool Kills(const Values &values, int i) const
    {
        return values.At(i) + Offset < Limit;
    }
};

template <typename Source, typename Condition>
MK_SIMD bool Kills_Any(const Source &source, int count, Condition condition)
{
    uint32_t any = 0;
    for (int i = 0; i < count; ++i) any |= condition.Kills(source, i) ? ~0u : 0u;
    return any != 0;
}

template <typename Source, typename Condition>
MK_SIMD void Mark_All(const Source &source, int count, Condition condition, uint8_t *__restrict dead)
{
    for (int i = 0; i < count; ++i) dead[i] = condition.Kills(source, i) ? 1 : 0;
}

/// Most blocks lose nobody, and are done when that is known.
template <typename Source, typename Condition>
int Mark(const Source &source, int count, const Condition &condition, uint8_t *dead)
{
    if (!Kills_Any(source, count, condition)) {
        std::memset(dead, 0, static_cast<size_t>(count));
        return 0;
    }
    Mark_All(source, count, condition, dead);
    return Count_Marks(dead, count);
}

template <typename Condition>
int Mark_Points(const Vector3 *positions, int count, const Condition &condition, uint8_t *dead)
{
    int deaths = 0;
    Particle::For_Points(positions, count, [&](const auto &points, int at, int size) {
        deaths += Mark(points, size, condition, dead + at);
    });
    return deaths;
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
    return Mark_Points(positions, count, AtDistance<1>{center, squaredRadius}, dead);
}

int Mark_Within(const Vector3 *positions, int count, const Vector3 &center, float squaredRadius, uint8_t *dead)
{
    return Mark_Points(positions, count, AtDistance<-1>{center, squaredRadius}, dead);
}

int Mark_On_Axis(const Vector3 *positions, int axis, int count, Comparison comparison, float limit, uint8_t *dead)
{
    const float sign = Sign_Of(comparison);
    return Mark(Coordinates<3>{&positions->x + axis}, count, PastValue{sign, limit * sign}, dead);
}

int Mark_Mapped(const Vector3 *positions, int count, const Vector4 &row, Comparison comparison, float limit,
                uint8_t *dead)
{
    const float sign = Sign_Of(comparison);
    return Mark_Points(positions, count, PastRow{row, sign, limit * sign}, dead);
}

int Mark_Below(const Vector3 *positions, int count, const vrTerrain &terrain, const Vector3 &offset, uint8_t *dead)
{
    const vrHeightRange range = terrain.Get_Height_Range();
    const int low = Mark(Coordinates<3>{&positions->z}, count, BelowHeight{offset.z, range.Greatest}, dead);
    if (low == 0 || range.Least == range.Greatest) return low;
    int deaths = 0;
    for (int at = 0; at < count; ++at) {
        if (!dead[at]) continue;
        const Vector3 point = positions[at] + offset;
        dead[at] = point.z < range.Least || point.z < terrain.Get_Height(point.x, point.y) ? 1 : 0;
        deaths += dead[at];
    }
    return deaths;
}

int Mark_From(const float *values, int count, float limit, uint8_t *dead)
{
    return Mark(Coordinates<1>{values}, count, FromValue{limit}, dead);
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
