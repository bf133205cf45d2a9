#include "PlainLoops.h"

using namespace Behaviour;

namespace
{

/// Both sizes by `size(i)`.
template <typename Size>
void Write_Uniform(const PlainParticles &p, Size size)
{
    Each(p.Count, [width = p.Width, height = p.Height, size](int i) MK_LOOP {
        const float value = size(i);
        width[i] = value;
        height[i] = value;
    });
}

template <typename Width, typename Height>
void Write_Both(const PlainParticles &p, Width widthAt, Height heightAt)
{
    Each(p.Count, [width = p.Width, height = p.Height, widthAt, heightAt](int i) MK_LOOP {
        width[i] = widthAt(i);
        height[i] = heightAt(i);
    });
}

MK_INLINE float Factor(uint32_t bits, float variation)
{
    return static_cast<float>(static_cast<int32_t>(bits)) * Particle::UNIT_ID * (variation + variation) - variation +
           1.0f;
}

struct Ramp
{
    Ramp(float from, float to) : From(Given(from)), Difference(Given(to) - From) {}

    Way Weight;
    float From;
    float Difference;

    MK_INLINE float At(float time) const { return Weight.At(time) * Difference + From; }
    MK_INLINE float Smooth_At(float time) const { return Weight.Smooth_At(time) * Difference + From; }
};

void Add_Linear(CaseList &cases)
{
    cases.Modifier(7).Set("Start Size", 1.0f).Set("End Size", 5.0f).Beside([](const PlainParticles &p, const auto &) {
        Write_Uniform(p, [time = p.Time, ramp = Ramp(1.0f, 5.0f)](int i) MK_LOOP { return ramp.At(time[i]); });
    });
    cases.Modifier(7, "varied")
        .Set("Start Size", 1.0f)
        .Set("End Size", 5.0f)
        .Set("Size Variation", 0.25f)
        .Beside([](const PlainParticles &p, const auto &) {
            Write_Uniform(p, [time = p.Time, id = p.ID, ramp = Ramp(1.0f, 5.0f), variation = Given(0.25f)](int i)
                                 MK_LOOP { return ramp.At(time[i]) * Factor(id[i] & 0xffff, variation); });
        });
    cases.Modifier(7, "smooth")
        .Set("Start Size", 1.0f)
        .Set("End Size", 5.0f)
        .Set("Flat Tangent Smooth", true)
        .Beside([](const PlainParticles &p, const auto &) {
            Write_Uniform(p,
                          [time = p.Time, ramp = Ramp(1.0f, 5.0f)](int i) MK_LOOP { return ramp.Smooth_At(time[i]); });
        });
    const auto ends = [](Case &one) -> Case & {
        return one.Set("Start Width", 1.0f).Set("End Width", 5.0f).Set("Start Height", 2.0f).Set("End Height", 3.0f);
    };
    ends(cases.Modifier(124)).Beside([](const PlainParticles &p, const auto &) {
        Write_Both(
            p, [time = p.Time, ramp = Ramp(1.0f, 5.0f)](int i) MK_LOOP { return ramp.At(time[i]); },
            [time = p.Time, ramp = Ramp(2.0f, 3.0f)](int i) MK_LOOP { return ramp.At(time[i]); });
    });
    ends(cases.Modifier(124, "varied"))
        .Set("Width Variation", 0.25f)
        .Set("Height Variation", 0.5f)
        .Beside([](const PlainParticles &p, const auto &) {
            Write_Both(
                p,
                [time = p.Time, id = p.ID, ramp = Ramp(1.0f, 5.0f), variation = Given(0.25f)](int i)
                    MK_LOOP { return ramp.At(time[i]) * Factor(id[i] & 0xff00, variation); },
                [time = p.Time, id = p.ID, ramp = Ramp(2.0f, 3.0f), variation = Given(0.5f)](int i)
                    MK_LOOP { return ramp.At(time[i]) * Factor((id[i] & 0xff) << 8, variation); });
        });
}

void Add_Constant(CaseList &cases)
{
    cases.Modifier(57).Set("Size", 3.0f).Set("Write Once", false).Beside([](const PlainParticles &p, const auto &) {
        Write_Uniform(p, [size = Given(3.0f)](int) MK_LOOP { return size; });
    });
    cases.Modifier(57, "varied")
        .Set("Size", 3.0f)
        .Set("Size Variation", 0.25f)
        .Set("Write Once", false)
        .Beside([](const PlainParticles &p, const auto &) {
            Write_Uniform(p, [id = p.ID, size = Given(3.0f), variation = Given(0.25f)](int i)
                                 MK_LOOP { return size * Factor(id[i] & 0xffff, variation); });
        });
    cases.Modifier(123, "varied")
        .Set("Width", 3.0f)
        .Set("Height", 2.0f)
        .Set("Width Variation", 0.25f)
        .Set("Height Variation", 0.5f)
        .Set("Write Once", false)
        .Beside([](const PlainParticles &p, const auto &) {
            Write_Both(
                p,
                [id = p.ID, size = Given(3.0f), variation = Given(0.25f)](int i)
                    MK_LOOP { return size * Factor(id[i] & 0xff00, variation); },
                [id = p.ID, size = Given(2.0f), variation = Given(0.5f)](int i)
                    MK_LOOP { return size * Factor((id[i] & 0xff) << 8, variation); });
        });
}

void Add_Keyed(CaseList &cases)
{
    const auto other = [](int key) { return Key_Value(key + 3); };
    cases.Modifier(15).Set_Keys("Size", Key_Value).Within(6.0).Beside([](const PlainParticles &p, const auto &) {
        Write_Uniform(p, [time = p.Time, curve = Curve(Key_Value)](int i) MK_LOOP { return curve.At_Time(time[i]); });
    });
    cases.Modifier(125)
        .Set_Keys("Width", Key_Value)
        .Set_Keys("Height", other)
        .Within(6.0)
        .Beside([other](const PlainParticles &p, const auto &) {
            Write_Both(
                p, [time = p.Time, curve = Curve(Key_Value)](int i) MK_LOOP { return curve.At_Time(time[i]); },
                [time = p.Time, curve = Curve(other)](int i) MK_LOOP { return curve.At_Time(time[i]); });
        });
    cases.Modifier(128)
        .Set_Keys("Width", Key_Value)
        .Set_Keys("Height", other)
        .Set("Start Radius", 10.0f)
        .Set("End Radius", 60.0f)
        .Within(6.0)
        .Beside([other](const PlainParticles &p, const auto &) {
            Each(p.Count, [position = Positions(p), width = p.Width, height = p.Height, widths = Curve(Key_Value),
                           heights = Curve(other), start = Given(10.0f), span = Given(50.0f)](int i) MK_LOOP {
                const float time = Particle::Clamp_01((Length(position.At(i)) - start) / span);
                width[i] = widths.At_Time(time);
                height[i] = heights.At_Time(time);
            });
        });
}

} // namespace

void Behaviour::Add_Sizes(CaseList &cases)
{
    Add_Linear(cases);
    Add_Constant(cases);
    Add_Keyed(cases);
    cases.Modifier(121)
        .Set("Near Distance", 40.0f)
        .Set("Far Distance", -40.0f)
        .Set("Near Size", 1.0f)
        .Set("Far Size", 5.0f)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            const Vector3 way = state.Camera.Get_Translation() - state.Get_Position();
            Write_Uniform(p, [position = Positions(p), axis = Particle::Unit({way.x, way.y, 0.0f}), near = Given(40.0f),
                              span = Given(-80.0f), size = Given(1.0f), difference = Given(4.0f)](int i) MK_LOOP {
                return size + Particle::Clamp_01((Dot(position.At(i), axis) - near) / span) * difference;
            });
        });
}
