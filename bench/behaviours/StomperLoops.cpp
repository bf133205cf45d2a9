#include "PlainLoops.h"

#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrSimpleCarrier.h"

#include <cstring>

using namespace Behaviour;

namespace
{

MK_SIMD void Age_Together(float *__restrict age, float *__restrict time, int count, float dt, float life)
{
    for (int i = 0; i < count; ++i) {
        age[i] += dt;
        time[i] = age[i] / life;
    }
}

/// Ages, and finds out how many are dead.
MK_SIMD int Age_Each(float *__restrict age, float *__restrict time, const float *__restrict maxAge, int count, float dt)
{
    int deaths = 0;
    for (int i = 0; i < count; ++i) {
        age[i] += dt;
        time[i] = age[i] / maxAge[i];
        deaths += age[i] > maxAge[i] ? 1 : 0;
    }
    return deaths;
}

/// Marks the dead, and counts them.
template <typename Dies>
MK_SIMD int Mark(uint8_t *dead, int count, Dies dies)
{
    int deaths = 0;
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) {
        const uint8_t is = dies(i) ? 1 : 0;
        dead[i] = is;
        deaths += is;
    }
    return deaths;
}

template <typename Dies>
void Kill(const PlainParticles &p, Dies dies)
{
    p.Deaths += Mark(p.Dead, p.Count, dies);
}

void Add_Ageing(CaseList &cases)
{
    cases.Ageing(19, "one life")
        .Starting([](Stage &stage) { stage.Buffer->HardLifetime = true; })
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Age_Together(p.Age, p.Time, p.Count, state.FrameTime, Stage::LIFE);
        });
    cases.Ageing(19, "lives of their own")
        .Set("Stomp Time Variation", 50.0f)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            p.Deaths += Age_Each(p.Age, p.Time, p.MaxAge, p.Count, state.FrameTime);
        });
    cases.Ageing(66).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Each(p.Count, [age = p.Age, dt = state.FrameTime](int i) MK_LOOP { age[i] += dt; });
    });
    cases.Ageing(88).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Each(p.Count, [age = p.Age, time = p.Time, maxAge = p.MaxAge, dt = state.FrameTime](int i) MK_LOOP {
            const bool arrives = time[i] == 0.99f;
            const float aged = age[i] + dt;
            const float share = aged / maxAge[i];
            age[i] = arrives ? age[i] : aged;
            time[i] = arrives ? 1.0f : share < 0.99f ? share : 0.99f;
        });
    });
}

void Add_Conditions(CaseList &cases)
{
    static const vrGroundPlane GROUND(-60.0f);
    static const vrSimpleCarrier CARRIER = [] {
        vrSimpleCarrier carrier;
        carrier.Set_Trajectory({{-60.0f, 0.0f, 0.0f}, {60.0f, 0.0f, 0.0f}});
        return carrier;
    }();
    cases.Killing(20).Set("Stomp Radius", 100.0f).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Kill(p, [position = Positions(p), center = state.Get_Position()](int i) MK_LOOP {
            const Vector3 way = Minus(position.At(i), center);
            return Dot(way, way) > 10000.0f;
        });
    });
    cases.Killing(44)
        .Set("Target Position", 2)
        .Set("Target Radius", 60.0f)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Kill(p, [position = Positions(p), center = state.TargetPosition](int i) MK_LOOP {
                const Vector3 way = Minus(position.At(i), center);
                return Dot(way, way) <= 3600.0f;
            });
        });
    cases.Killing(82).Set("Stomp Value", -60.0f).Beside([](const PlainParticles &p, const auto &) {
        Kill(p, [z = p.Z](int i) MK_LOOP { return z[i] < -60.0f; });
    });
    cases.Killing(21, "level ground")
        .Starting([](Stage &stage) { stage.State.Terrain = &GROUND; })
        .Beside([](const PlainParticles &p, const auto &) {
            Kill(p, [z = p.WZ](int i) MK_LOOP { return z[i] < -60.0f; });
        });
    // The carrier tells where a particle is on its way; both sides have to ask it.
    cases.Killing(72)
        .Starting([](Stage &stage) { stage.State.Carrier = &CARRIER; })
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            for (int i = 0; i < p.Count; ++i) {
                float fraction = 0.0f;
                const bool isOn = state.Carrier->Get_Trajectory_Fraction({p.X[i], p.Y[i], p.Z[i]}, fraction);
                p.Dead[i] = isOn && fraction * 100.0f > 99.0f ? 1 : 0;
                p.Deaths += p.Dead[i];
            }
        });
    cases.Killing(88).Beside([](const PlainParticles &p, const auto &) {
        Kill(p, [time = p.Time](int i) MK_LOOP { return time[i] >= 1.0f; });
    });
}

constexpr uint32_t MKP_CHANNELS = MKP_ATTRIBUTE_COUNT;

/// Takes some out at random, beside a move of the bytes of all of them by one slot.
void Add_Compaction(CaseList &cases, const char *name, uint32_t perMille)
{
    static std::vector<uint8_t> dead;
    const auto dies = [](int slot) { return dead[static_cast<size_t>(slot)] != 0; };
    cases
        .Other(name,
               [](Stage &stage) {
                   stage.Buffer->Remove_Marked([](vrMKPSpan span, uint8_t *marks) {
                       int deaths = 0;
                       std::memcpy(marks, dead.data() + span.First, static_cast<size_t>(span.Count));
                       for (int at = 0; at < span.Count; ++at) deaths += marks[at];
                       return deaths;
                   });
               })
        .Starting([perMille](Stage &stage) {
            RandomClass random(3);
            dead.assign(static_cast<size_t>(stage.Buffer->Capacity), 0);
            for (uint8_t &mark : dead) mark = static_cast<uint32_t>(random.Get_Int(0, 999)) < perMille ? 1 : 0;
        })
        .Repeated(1)
        .Beside([dies](const PlainParticles &p, const vrMKPRenderState &) {
            static std::vector<uint8_t> bytes;
            bytes.resize(vrMKPBuffer::Get_Particle_Size() * static_cast<size_t>(p.Count));
            uint8_t *block = bytes.data();
            for (uint32_t channel = 0; channel < MKP_CHANNELS; ++channel) {
                const size_t size = vrMKPBuffer::Get_Element_Size(static_cast<MKPAttribTypes>(channel));
                const size_t all = size * static_cast<size_t>(p.Count);
                std::memmove(block, block + size, all - size);
                block += all;
            }
            for (int i = 0; i < p.Count; ++i) p.Deaths += dies(i) ? 1 : 0;
        });
}

} // namespace

void Behaviour::Add_Stompers(CaseList &cases)
{
    Add_Ageing(cases);
    Add_Conditions(cases);
    Add_Compaction(cases, "Compaction, 1 % dead", 10);
    Add_Compaction(cases, "Compaction, 10 % dead", 100);
    Add_Compaction(cases, "Compaction, 50 % dead", 500);
}
