#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/stompers/StompLoops.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr float MIN_LIFE = 0.01f;
constexpr float FIXED_LIFE_VARIATION = 0.01f; ///< up to this, all particles live equally long

MK_SIMD void Age_By_Life(float *__restrict age, float *__restrict time, int count, float step, float life)
{
    for (int i = 0; i < count; ++i) {
        const float older = age[i] + step;
        age[i] = older;
        time[i] = older / life;
    }
}

MK_SIMD void Age_By_Max_Age(float *__restrict age, float *__restrict time, const float *__restrict maxAge, int count,
                            float step)
{
    for (int i = 0; i < count; ++i) {
        const float older = age[i] + step;
        age[i] = older;
        time[i] = older / maxAge[i];
    }
}

MK_SIMD void Give_Fixed_Life(float *__restrict maxAge, float *__restrict time, const float *__restrict age, int count,
                             float life)
{
    for (int i = 0; i < count; ++i) {
        maxAge[i] = life;
        time[i] = life == 0.0f ? 1.0f : age[i] / life;
    }
}

} // namespace

vrMKPStomper::vrMKPStomper()
{
    StompTime = Parameters.Add_Float(0, "Stomp Time", 5.0f, 0.01f, 100.0f, "Time in seconds to stomp on particle");
    StompTimeVariation = Parameters.Add_Float(1, "Stomp Time Variation", 0.0f, 0.0f, 100.0f, "Stomp Time variation");
    KillOnRemoval =
        Parameters.Add_Bool(2, "Kill On Removal", false, "Kills all particles upon the emitter's removal from scene");
    SpawnOnAge = Parameters.Add_Bool(
        3, "Spawn on Age", false, "Stomper will tell death spawners to spawn particles when particles die from age.");
    SpawnOnConditional =
        Parameters.Add_Bool(4, "Spawn on Conditional", false,
                            "Stomper will tell death spawners to spawn particles when particles die from a condition "
                            "being met. (Ignored by Base Stomper).");
    UpdateTime =
        Parameters.Add_Bool(5, "Update Time", true, "Stomper will update the time attribute based on age and max age.");
    FullRangeVariation = Parameters.Add_Bool(
        6, "Full Range Variation", false,
        "Causes the range given by Stomp Time Variation to be a full range adding to or subtracting "
        "from Stomp Time. (Legacy Support)");
}

bool vrMKPStomper::Post_Load()
{
    Mark_Dirty();
    Update_Life();
    return true;
}

void vrMKPStomper::Update_Life() const
{
    if (!Dirty) return;
    Dirty = false;
    const float minimum = StompTimeVariation->Get_Minimum();
    const float share = (StompTimeVariation->Get_Value() - minimum) / (StompTimeVariation->Get_Maximum() - minimum);
    BaseLife = StompTime->Get_Value();
    LifeVariation = share * BaseLife;
    FixedLife = std::abs(LifeVariation) <= FIXED_LIFE_VARIATION;
    MaxLife = BaseLife + LifeVariation;
}

float vrMKPStomper::Get_Max_Life(const vrMKPRenderState &) const
{
    Update_Life();
    return MaxLife;
}

bool vrMKPStomper::Get_Kill_On_Removal() const
{
    return KillOnRemoval->Get_Value();
}

void vrMKPStomper::Note_Kill_On_Removal(vrMKPBuffer &buffer) const
{
    if (KillOnRemoval->Get_Value()) buffer.KillOnRemoval = true;
}

void vrMKPStomper::Init_New_Particles(vrMKPBuffer &buffer) const
{
    Note_Kill_On_Removal(buffer);
    if (!FixedLife) return Give_Varied_Lives(buffer);
    for (const vrMKPSpan span : buffer.New_Spans())
        Give_Fixed_Life(buffer.MaxAge + span.First, buffer.Time + span.First, buffer.Age + span.First, span.Count,
                        BaseLife);
}

void vrMKPStomper::Give_Varied_Lives(vrMKPBuffer &buffer) const
{
    const float low = FullRangeVariation->Get_Value() ? -LifeVariation : 0.0f;
    // A negative variation is as good as its opposite.
    const auto [lowest, highest] = std::minmax(low, LifeVariation);
    bool isPositive = true;
    for (const vrMKPSpan span : buffer.New_Spans()) {
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            const float drawn = BaseLife + buffer.Random.Get_Float(lowest, highest);
            const float life = drawn < MIN_LIFE ? MIN_LIFE : drawn;
            isPositive &= life > 0.0f;
            buffer.MaxAge[slot] = life;
            buffer.Time[slot] = buffer.Age[slot] / life;
        }
    }
    MK_ASSERT(isPositive, "buffer->MaxAge[index] > 0.0f");
}

bool vrMKPStomper::Begin_Frame(vrMKPBuffer &buffer) const
{
    buffer.TimeSinceDeath += buffer.State->FrameTime;
    if (buffer.ActiveCount <= 0) return false;
    if (!KillOnRemoval->Get_Value() || buffer.State->Is_Showing()) return true;
    buffer.Clear_Particles();
    buffer.TimeSinceDeath = 0.0f;
    return false;
}

bool vrMKPStomper::Begin_Age(vrMKPBuffer &buffer) const
{
    if (!Begin_Frame(buffer)) return false;
    const bool spawnOnDeath = SpawnOnAge->Get_Value() && buffer.Has_Death_Listeners();
    if (buffer.HardLifetime && FixedLife)
        Remove_Expired(buffer, spawnOnDeath);
    else
        StompLoops::Remove_Aged(buffer, buffer.State->FrameTime, spawnOnDeath);
    return buffer.ActiveCount > 0;
}

void vrMKPStomper::Remove_Expired(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    const float dt = buffer.State->FrameTime;
    int slot = buffer.Head;
    int expired = 0;
    for (; expired < buffer.ActiveCount && buffer.Age[slot] + dt > BaseLife; slot = buffer.Next_Slot(slot)) {
        if (spawnOnDeath) buffer.Notify_Death(slot, buffer.Age[slot] + dt - buffer.MaxAge[slot]);
        ++expired;
    }
    if (expired == 0) return;
    buffer.TimeSinceDeath = 0.0f;
    buffer.Remove_Oldest(expired);
}

void vrMKPStomper::Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    float *age = buffer.Age + span.First;
    float *time = buffer.Time + span.First;
    const float step = buffer.State->FrameTime;
    if (!UpdateTime->Get_Value())
        Particle::Add_Float(age, span.Count, step);
    else if (buffer.HardLifetime && FixedLife)
        Age_By_Life(age, time, span.Count, step, BaseLife);
    else
        Age_By_Max_Age(age, time, buffer.MaxAge + span.First, span.Count, step);
}

void vrMKPStomper::Age_Particles(vrMKPBuffer &buffer) const
{
    if (!Begin_Age(buffer)) return;
    for (const vrMKPSpan span : buffer.Live_Spans()) Age_Span(buffer, span);
}

void vrMKPStomper::Kill_Particles(vrMKPBuffer &buffer) const
{
    Stomp(buffer, SpawnOnConditional->Get_Value() && buffer.Has_Death_Listeners());
}
