#include "PlainLoops.h"

#include "MKLib/MKMath/PortableMath.h"

using namespace Behaviour;

namespace
{

constexpr float STEPS = 4096.0f;

/// rotation = `turns(i)`
template <typename Turns>
void Write(const PlainParticles &p, Turns turns)
{
    Each(p.Count, [rotation = p.Rotation, turns](int i)
                      MK_LOOP { rotation[i] = static_cast<uint32_t>(static_cast<int32_t>(turns(i) * STEPS)) & 0xfff; });
}

MK_INLINE uint32_t Nearest(float steps)
{
    const auto whole = static_cast<int32_t>(steps);
    const float rest = steps - static_cast<float>(whole);
    return static_cast<uint32_t>(whole + (rest >= 0.5f ? 1 : 0) - (rest <= -0.5f ? 1 : 0)) & 0xfff;
}

void Add_Aligned(CaseList &cases)
{
    cases.Modifier(89)
        .Set("Rotation Rate", 2.0f)
        .Set("Rotation Variation", 0.25f)
        .Set_Keys("Envelope", Key_Value)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            const Vector3 axis(0.0f, 0.0f, 1.0f);
            const Vector3 camera = state.InverseTransform.Transform(state.Camera.Get_Translation());
            const Vector3 toward = Particle::Unit(camera - axis * Dot(camera, axis));
            Each(p.Count,
                 [rotation = p.Rotation, position = Positions(p), id = p.ID, time = p.Time, curve = Curve(Key_Value),
                  toLocal = state.InverseTransform, axis, toward, across = Cross(toward, axis), dt = state.FrameTime,
                  most = Given(2.0f), variation = Given(0.25f)](int i) MK_LOOP {
                     const Vector3 place = Map(toLocal, position.At(i));
                     const Vector3 radial = Particle::Unit(Minus(place, Times(axis, Dot(place, axis))));
                     const float side = 1.0f - std::fabs(Dot(toward, radial));
                     const float measure = Dot(across, radial) < 0.0f ? -side : side;
                     const float rate =
                         measure * most + (Particle::Unit_ID(id[i]) * 2.0f - 1.0f) * measure * most * variation;
                     const auto before = static_cast<float>(static_cast<int32_t>(rotation[i] & 0xfff));
                     rotation[i] = Nearest(before + curve.At_Time(time[i]) * rate * 1000.0f * dt);
                 });
        });
    cases.Modifier(90).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        const Mat3DClass toCamera = state.Camera.Inverse();
        Each(p.Count, [rotation = p.Rotation, velocity = Velocities(p), right = Vector3(toCamera.Row[0]),
                       up = Vector3(toCamera.Row[1]), base = Given(0.0f)](int i) MK_LOOP {
            const Vector3 motion = velocity.At(i);
            const Vector3 onScreen = Particle::Unit({Dot(right, motion), Dot(up, motion), 0.0f});
            const float turns = Portable::Quick_Arc_Tangent(onScreen.y, onScreen.x) * 0.15915494f + base;
            rotation[i] = Nearest(turns * STEPS);
        });
    });
}

} // namespace

void Behaviour::Add_Rotations(CaseList &cases)
{
    cases.Modifier(9).Beside([](const PlainParticles &p, const auto &) {
        Write(p, [time = p.Time, way = Way(), start = Given(0.0f), difference = Given(1.0f)](int i)
                     MK_LOOP { return way.At(time[i]) * difference + start; });
    });
    cases.Modifier(9, "randomized, reversed")
        .Set("Randomize Rotations", true)
        .Set("Reverse", true)
        .Beside([](const PlainParticles &p, const auto &) {
            Write(p, [time = p.Time, id = p.ID, way = Way(), start = Given(0.0f), difference = Given(1.0f),
                      offset = Given(1.0f)](int i) MK_LOOP {
                const float turns = way.At(time[i]) * difference + start;
                return ((id[i] & 1) != 0 ? -turns : turns) + (Particle::Unit_ID(id[i]) * 2.0f - 1.0f) * offset;
            });
        });
    cases.Modifier(58, "varied")
        .Set("Rotation", 0.25f)
        .Set("Rotation Variation", 0.5f)
        .Set("Write Once", false)
        .Beside([](const PlainParticles &p, const auto &) {
            Write(p, [id = p.ID, base = Given(0.25f), variation = Given(0.5f)](int i)
                         MK_LOOP { return base + (Particle::Unit_ID(id[i]) * (variation + variation) - variation); });
        });
    cases.Modifier(16).Set_Keys("Rotation", Key_Value).Within(6.0).Beside([](const PlainParticles &p, const auto &) {
        Write(p, [time = p.Time, curve = Curve(Key_Value)](int i) MK_LOOP { return curve.At_Time(time[i]); });
    });
    Add_Aligned(cases);
}
