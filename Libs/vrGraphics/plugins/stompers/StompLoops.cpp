#include "vrGraphics/plugins/stompers/StompLoops.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/WholeRegisters.h"

namespace
{

struct AgeCheck
{
    bool AnyDies;
    bool AnyInvalid;
};

MK_SIMD AgeCheck Check_Ages(const float *age, const float *maxAge, int count, float dt)
{
    uint32_t dying = 0;
    uint32_t invalid = 0;
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const uint32_t dies = age[i] + dt > maxAge[i] ? ~0u : 0u;
        const uint32_t isPositive = maxAge[i] > 0.0f ? ~0u : 0u;
        dying |= dies;
        invalid |= ~(dies | isPositive);
    });
    return {dying != 0, invalid != 0};
}

/// Whether `kills(slot)` holds for any of the run.
template <typename Condition>
MK_SIMD bool Kills_Any(vrMKPSpan span, Condition kills)
{
    const int first = span.First;
    uint32_t any = 0;
    Particle::For_Whole_Registers(span.Count, [&](int i) MK_INLINE_LAMBDA { any |= kills(first + i) ? ~0u : 0u; });
    return any != 0;
}

template <typename Condition>
MK_SIMD void Mark_All(vrMKPSpan span, Condition kills, uint8_t *__restrict dead)
{
    const int first = span.First;
    Particle::For_Whole_Registers(span.Count, [&](int i) MK_INLINE_LAMBDA { dead[i] = kills(first + i) ? 1 : 0; });
}

MK_SIMD int Count_Marks(const uint8_t *dead, int count)
{
    int deaths = 0;
    for (int at = 0; at < count; ++at) deaths += dead[at];
    return deaths;
}

template <typename Condition>
int Mark(vrMKPSpan span, const Condition &kills, uint8_t *dead)
{
    Mark_All(span, kills, dead);
    return Count_Marks(dead, span.Count);
}

/// Whether there's work for a removal: in most frames nobody dies, and all is done when that is known.
template <typename Condition>
bool Kills_Any(const vrMKPBuffer &buffer, const Condition &kills)
{
    for (const vrMKPSpan span : buffer.Live_Spans())
        if (Kills_Any(span, kills)) return true;
    return false;
}

template <typename Condition>
void Remove(vrMKPBuffer &buffer, bool spawnOnDeath, const Condition &kills)
{
    if (!Kills_Any(buffer, kills)) return;
    StompLoops::Remove_Marked(buffer, 0.0f, spawnOnDeath,
                              [&kills](vrMKPSpan span, uint8_t *dead) { return Mark(span, kills, dead); });
}

/// Below a limit is above it with both signs turned.
float Sign_Of(StompLoops::Comparison comparison)
{
    return comparison == StompLoops::LESS_THAN ? -1.0f : 1.0f;
}

} // namespace

namespace StompLoops
{

void Remove_Aged(vrMKPBuffer &buffer, float dt, bool spawnOnDeath)
{
    AgeCheck all{false, false};
    for (const vrMKPSpan span : buffer.Live_Spans()) {
        const AgeCheck one = Check_Ages(buffer.Age + span.First, buffer.MaxAge + span.First, span.Count, dt);
        all = {all.AnyDies || one.AnyDies, all.AnyInvalid || one.AnyInvalid};
    }
    MK_ASSERT(!all.AnyInvalid, "buffer->MaxAge[index] > 0.0f");
    if (!all.AnyDies) return;
    const auto isAged = [age = buffer.Age, maxAge = buffer.MaxAge, dt](int slot)
                            MK_INLINE_LAMBDA { return age[slot] + dt > maxAge[slot]; };
    Remove_Marked(buffer, dt, spawnOnDeath,
                  [&isAged](vrMKPSpan span, uint8_t *dead) { return Mark(span, isAged, dead); });
}

void Remove_Beyond(vrMKPBuffer &buffer, const Vector3 &center, float squaredRadius, bool spawnOnDeath)
{
    Remove(buffer, spawnOnDeath, [positions = buffer.Position, center, squaredRadius](int slot) MK_INLINE_LAMBDA {
        return Particle::Distance_Squared(positions[slot], center) > squaredRadius;
    });
}

void Remove_Within(vrMKPBuffer &buffer, const Vector3 &center, float squaredRadius, bool spawnOnDeath)
{
    Remove(buffer, spawnOnDeath, [positions = buffer.Position, center, squaredRadius](int slot) MK_INLINE_LAMBDA {
        return Particle::Distance_Squared(positions[slot], center) <= squaredRadius;
    });
}

void Remove_On_Axis(vrMKPBuffer &buffer, int axis, Comparison comparison, float limit, bool spawnOnDeath)
{
    const float *const coordinates[] = {buffer.Position.X, buffer.Position.Y, buffer.Position.Z};
    const float sign = Sign_Of(comparison);
    Remove(buffer, spawnOnDeath, [values = coordinates[axis], sign, limit = limit * sign](int slot) MK_INLINE_LAMBDA {
        return values[slot] * sign > limit;
    });
}

void Remove_Mapped(vrMKPBuffer &buffer, const Vector4 &row, Comparison comparison, float limit, bool spawnOnDeath)
{
    const float sign = Sign_Of(comparison);
    Remove(buffer, spawnOnDeath,
           [positions = buffer.Position, row, sign, limit = limit * sign](int slot) MK_INLINE_LAMBDA {
               const Vector3 position = positions[slot];
               return (row.x * position.x + row.y * position.y + row.z * position.z + row.w) * sign > limit;
           });
}

void Remove_Below(vrMKPBuffer &buffer, const vrTerrain &terrain, const Vector3 &offset, bool spawnOnDeath)
{
    const vrMKPConstVectors positions = buffer.WorldPosition;
    const vrHeightRange range = terrain.Get_Height_Range();
    const auto isLow = [heights = positions.Z, raise = offset.z, limit = range.Greatest](int slot)
                           MK_INLINE_LAMBDA { return heights[slot] + raise < limit; };
    if (range.Least == range.Greatest) return Remove(buffer, spawnOnDeath, isLow);
    if (!Kills_Any(buffer, isLow)) return;
    Remove_Marked(buffer, 0.0f, spawnOnDeath, [&](vrMKPSpan span, uint8_t *dead) {
        if (Mark(span, isLow, dead) == 0) return 0;
        int deaths = 0;
        for (int at = 0; at < span.Count; ++at) {
            if (!dead[at]) continue;
            const Vector3 point = positions[span.First + at] + offset;
            dead[at] = point.z < range.Least || point.z < terrain.Get_Height(point.x, point.y) ? 1 : 0;
            deaths += dead[at];
        }
        return deaths;
    });
}

void Remove_From(vrMKPBuffer &buffer, float limit, bool spawnOnDeath)
{
    Remove(buffer, spawnOnDeath,
           [time = buffer.Time, limit](int slot) MK_INLINE_LAMBDA { return time[slot] >= limit; });
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
