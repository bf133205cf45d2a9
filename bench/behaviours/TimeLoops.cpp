#include "PlainLoops.h"

#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

using namespace Behaviour;

namespace
{

/// time = `signal(intervals)`, a place in the interval for each particle.
template <typename Signal>
void Write(const PlainParticles &p, const vrMKPRenderState &state, Signal signal)
{
    Each(p.Count, [time = p.Time, id = p.ID, start = state.FrameTime, signal](int i)
                      MK_LOOP { time[i] = signal(start + Particle::Unit_ID(id[i])); });
}

MK_INLINE float Whole(float value)
{
    return static_cast<float>(static_cast<int32_t>(value));
}

/// sin(2 pi x) for x of 0 or more, to 1e-6.
MK_INLINE float Sine_Of_Turns(float x)
{
    const float rest = x - Whole(x + 0.5f);
    const float low = rest < -0.25f ? -0.5f - rest : rest;
    const float y = (rest > 0.25f ? 0.5f - rest : low) * 6.2831855f;
    const float z = y * y;
    return y + y * z * (-0.16666667f + z * (0.008333333f + z * (-0.00019841270f + z * 2.7557319e-6f)));
}

} // namespace

void Behaviour::Add_Times(CaseList &cases)
{
    using Clock = vrMKPClockModifier;
    for (const bool smooth : {false, true})
        cases.Modifier(45, smooth ? "smooth" : "")
            .Set("Outer Radius", 60.0f)
            .Set("Flat Tangent Smooth", smooth)
            .Beside([smooth](const PlainParticles &p, const vrMKPRenderState &state) {
                const auto write = [&](auto ease) {
                    Each(p.Count,
                         [time = p.Time, position = Positions(p), target = state.Get_Position(), ease](int i) MK_LOOP {
                             const float distance = Length(Minus(position.At(i), target));
                             time[i] = 1.0f - ease(Particle::Clamp_01(distance / 60.0f));
                         });
                };
                if (smooth)
                    write([](float t) MK_LOOP { return Particle::Smooth_Step(t); });
                else
                    write([](float t) MK_LOOP { return t; });
            });
    const auto clock = [&cases](const char *variant, int type) -> Case & {
        // Of each round's first call: the clock runs on.
        return cases.Modifier(67, variant).Set("Clock Type", type).Set("Random Start", true);
    };
    clock("linear", Clock::CLOCK_LINEAR).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, state, [](float x) MK_LOOP { return x - Whole(x); });
    });
    clock("square", Clock::CLOCK_SQUARE).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, state, [](float x) MK_LOOP { return (static_cast<int32_t>(x * 2.0f) & 1) != 0 ? 1.0f : 0.0f; });
    });
    clock("triangle", Clock::CLOCK_TRIANGLE).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, state, [](float x) MK_LOOP {
            const float twice = x * 2.0f;
            const float rise = twice - Whole(twice);
            return (static_cast<int32_t>(twice) & 1) != 0 ? 1.0f - rise : rise;
        });
    });
    clock("sine", Clock::CLOCK_SINE).About(1e-5f).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, state, [](float x) MK_LOOP { return (Sine_Of_Turns(x) + 1.0f) * 0.5f; });
    });
}
