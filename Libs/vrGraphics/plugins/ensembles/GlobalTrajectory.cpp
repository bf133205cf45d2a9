#include "vrGraphics/plugins/ensembles/GlobalTrajectory.h"

#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/plugins/stompers/StompLoops.h"

vrMKPGlobalTrajectoryStomper::vrMKPGlobalTrajectoryStomper()
{
    TrajectoryPosition = Parameters.Add_Float(200, "Trajectory Position", 99.0f, 0.0f, 100.0f,
                                              "Where (percentage of length) to stomp particles");
    ReverseDirection = Parameters.Add_Bool(201, "Reverse Direction", false,
                                           "Stomp particles moving in the reverse direction instead.");
}

void vrMKPGlobalTrajectoryStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    const vrMKPRenderState &state = *buffer.State;
    if (!state.Carrier) return;
    const float limit = TrajectoryPosition->Get_Value();
    const bool isReverse = ReverseDirection->Get_Value();
    const auto passes = [&](int slot) {
        const Vector3 position = buffer.Position[slot];
        float fraction = 0.0f;
        if (!state.Carrier->Get_Trajectory_Fraction(buffer.Is_World() ? position : state.Transform.Transform(position),
                                                    fraction))
            return false;
        const float perCent = fraction * 100.0f;
        return isReverse ? perCent < limit : perCent > limit;
    };
    StompLoops::Remove_Marked(buffer, 0.0f, spawnOnDeath, [&](vrMKPSpan span, uint8_t *dead) {
        int deaths = 0;
        for (int at = 0; at < span.Count; ++at) {
            dead[at] = passes(span.First + at) ? 1 : 0;
            deaths += dead[at];
        }
        return deaths;
    });
}
