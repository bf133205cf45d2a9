#include "PlainLoops.h"

#include "MKLib/MKMath/PortableMath.h"

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
                    Each(p.Count, [time = p.Time, position = Positions(p), target = state.Get_Position(), ease,
                                   inner = Given(0.0f), width = Given(60.0f)](int i) MK_LOOP {
                        const float distance = Length(Minus(position.At(i), target));
                        time[i] = 1.0f - ease(Particle::Clamp_01((distance - inner) / width));
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
    clock("sine", Clock::CLOCK_SINE).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, state, [](float x) MK_LOOP {
            const auto angle = static_cast<double>(x * Particle::TWO_PI);
            return (static_cast<float>(Portable::Sine(angle)) + 1.0f) * 0.5f;
        });
    });
}
