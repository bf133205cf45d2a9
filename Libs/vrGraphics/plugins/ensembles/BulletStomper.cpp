#include "vrGraphics/plugins/ensembles/Bullet.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/Simd.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/stompers/StompLoops.h"

#include <algorithm>

namespace
{

constexpr float NO_FLIGHT_LIFE = 0.01f;
/// Time stops there for one frame, so that a modifier sees the particle at its target before it dies at 1.
constexpr float LAST_FRAME_TIME = 0.99f;
constexpr float ARRIVAL_TIME = 1.0f;

template <bool UPDATES_TIME>
MK_INLINE void Fly(float *__restrict age, float *__restrict time, const float *__restrict maxAge, int count, float dt)
{
    for (int at = 0; at < count; ++at) {
        const bool arrives = time[at] == LAST_FRAME_TIME;
        const float aged = age[at] + dt;
        const float share = aged / maxAge[at];
        const float capped = share < LAST_FRAME_TIME ? share : LAST_FRAME_TIME;
        const float flying = UPDATES_TIME ? capped : time[at];
        age[at] = arrives ? age[at] : aged;
        time[at] = arrives ? ARRIVAL_TIME : flying;
    }
}

MK_SIMD void Fly_By_Age(float *age, float *time, const float *maxAge, int count, float dt)
{
    Fly<true>(age, time, maxAge, count, dt);
}

MK_SIMD void Fly_By_Time(float *age, float *time, const float *maxAge, int count, float dt)
{
    Fly<false>(age, time, maxAge, count, dt);
}

MK_SIMD int Count_Not_Positive(const float *__restrict values, int count)
{
    int found = 0;
    for (int at = 0; at < count; ++at) found += values[at] > 0.0f ? 0 : 1;
    return found;
}

} // namespace

vrMKPBulletStomper::vrMKPBulletStomper()
{
    SpeedMultiplier = Parameters.Add_Float(200, "SpeedMultiplier", 1.0f, 0.01f, 100.0f,
                                           "The visual particles associated with a projectile can travel at a multiple "
                                           "of the logicial projectile speed.");
}

void vrMKPBulletStomper::Update_Life() const
{
    vrMKPStomper::Update_Life();
    FixedLife = false;
}

float vrMKPBulletStomper::Get_Max_Life(const vrMKPRenderState &state) const
{
    const float flight = state.Get_Target_Radius();
    return std::min(vrMKPStomper::Get_Max_Life(state), flight > 0.0f ? flight : NO_FLIGHT_LIFE);
}

void vrMKPBulletStomper::Init_New_Particles(vrMKPBuffer &buffer) const
{
    Note_Kill_On_Removal(buffer);
    const float share = 1.0f / SpeedMultiplier->Get_Value();
    bool isPositive = true;
    for (const vrMKPSpan span : buffer.New_Spans()) {
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            const float flight = buffer.ProjectileFlightDuration[slot];
            const bool flies = flight > 0.0f;
            const float life = flies ? flight * share : NO_FLIGHT_LIFE;
            isPositive &= life > 0.0f;
            buffer.MaxAge[slot] = life;
            buffer.Time[slot] = flies ? buffer.Age[slot] / life : ARRIVAL_TIME;
        }
    }
    MK_ASSERT(isPositive, "buffer->MaxAge[index] > 0.0f");
}

bool vrMKPBulletStomper::Begin_Age(vrMKPBuffer &buffer) const
{
    if (!Begin_Frame(buffer)) return false;
    if (Updates_Time()) {
        int invalid = 0;
        for (const vrMKPSpan span : buffer.Live_Spans())
            invalid += Count_Not_Positive(buffer.MaxAge + span.First, span.Count);
        MK_ASSERT(invalid == 0, "buffer->MaxAge[index] > 0.0f");
    }
    return true;
}

void vrMKPBulletStomper::Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    (Updates_Time() ? Fly_By_Age : Fly_By_Time)(buffer.Age + span.First, buffer.Time + span.First,
                                                buffer.MaxAge + span.First, span.Count, buffer.State->FrameTime);
}

void vrMKPBulletStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    StompLoops::Remove_From(buffer, ARRIVAL_TIME, spawnOnDeath);
}
