#include "PlainLoops.h"

#include <algorithm>

using namespace Behaviour;

namespace
{

constexpr RGBAClass FROM = RGBA_From_Bytes(255, 204, 77, 255);
constexpr RGBAClass TO = RGBA_From_Bytes(102, 26, 40, 30);

RGBAClass Key_Color(int key)
{
    const float value = Key_Value(key) / 8.0f;
    return {value, 1.0f - value, value * value, 0.5f};
}

MK_INLINE vrColor Ramp(vrColor from, vrColor to, float weight)
{
    return Particle::Lerp_Color(from, to, static_cast<int32_t>(weight * 65536.0f));
}

/// color *= a ramp by `weight(position)`
template <typename Weight>
void Multiply(const PlainParticles &p, vrColor from, vrColor to, Weight weight)
{
    Each(p.Count,
         [color = p.Color, position = Positions(p), from = Given(from), to = Given(to), weight](int i)
             MK_LOOP { color[i] = Particle::Multiply_Color(color[i], Ramp(from, to, weight(position.At(i)))); });
}

MK_INLINE float Between(float value, float start, float scale)
{
    return Particle::Clamp_01((value - start) * scale);
}

/// A curve for each channel.
struct ColorCurve
{
    float Channels[4][KEY_COUNT];
    Curve<float (*)(int)> Times{+[](int) { return 0.0f; }};

    ColorCurve()
    {
        for (int key = 0; key < KEY_COUNT; ++key) {
            const RGBAClass color = Key_Color(key);
            for (int channel = 0; channel < 4; ++channel) Channels[channel][key] = (&color.R)[channel];
        }
    }
    MK_INLINE vrColor At_Time(float time) const
    {
        const int place = Times.Place(time);
        const int low = Times.Low(place);
        const int high = Times.High(place);
        const float fraction = Times.Fraction(time, place);
        vrColor color = 0;
        for (int channel = 0; channel < 4; ++channel) {
            const float from = Channels[channel][low];
            const float value = from + fraction * (Channels[channel][high] - from);
            color |= (static_cast<uint32_t>(static_cast<int32_t>(value * 255.0f)) & 0xff) << channel * 8;
        }
        return color;
    }
};

/// `least` and `greatest` by channel; the shares come from a table by the low bits of the ID.
void Vary(const PlainParticles &p, const float *shares, const float (&least)[4], const float (&greatest)[4])
{
    struct Range
    {
        float Least[4], Greatest[4];
    } range;
    std::copy_n(least, 4, range.Least);
    std::copy_n(greatest, 4, range.Greatest);
    Each(p.Count, [color = p.Color, id = p.ID, shares, range](int i) MK_LOOP {
        vrColor result = 0;
        for (int channel = 0; channel < 4; ++channel) {
            const float old = static_cast<float>(static_cast<int32_t>(color[i] >> channel * 8 & 0xff)) / 255.0f;
            const float share = shares[(id[i] & 0xff) * 4 + static_cast<uint32_t>(channel)];
            const float value =
                Particle::Clamp_01(old + (1.0f - share) * range.Least[channel] + share * range.Greatest[channel]);
            result |= static_cast<uint32_t>(static_cast<int32_t>(value * 255.0f)) << channel * 8;
        }
        color[i] = result;
    });
}

void Add_By_Time(CaseList &cases)
{
    cases.Modifier(8).Set("Start Color", FROM).Set("End Color", TO).Beside([](const PlainParticles &p, const auto &) {
        Each(p.Count,
             [color = p.Color, time = p.Time, from = Given(Particle::Pack(FROM)), to = Given(Particle::Pack(TO)),
              way = Way()](int i) MK_LOOP { color[i] = Ramp(from, to, way.At(time[i])); });
    });
    cases.Modifier(59).Set("Color", FROM).Set("Write Once", false).Beside([](const PlainParticles &p, const auto &) {
        std::fill_n(p.Color, p.Count, Particle::Pack(FROM));
    });
    cases.Modifier(17).Set_Keys("Color", Key_Color).Within(6.0).Beside([](const PlainParticles &p, const auto &) {
        Each(p.Count, [color = p.Color, time = p.Time, curve = ColorCurve()](int i)
                          MK_LOOP { color[i] = curve.At_Time(time[i]); });
    });
}

void Add_Variance(CaseList &cases)
{
    // The first generator that the process uses it with fills the table: that of the stage.
    static std::vector<float> shares = [] {
        std::vector<float> drawn(256 * 4);
        RandomClass random(1);
        for (float &share : drawn) share = random.Get_Float(0.0f, 1.0f);
        return drawn;
    }();
    cases.Modifier(53)
        .Set("Min Red Variance", -0.2f)
        .Set("Max Red Variance", 0.1f)
        .Set("Max Green Variance", 0.3f)
        .Set("Min Blue Variance", -0.4f)
        .Beside([](const PlainParticles &p, const auto &) {
            Vary(p, shares.data(), {-0.2f, 0.0f, -0.4f, 0.0f}, {0.1f, 0.3f, 0.0f, 0.0f});
        });
}

void Add_By_Place(CaseList &cases)
{
    static constexpr float INVERSE_80 = 1.0f / 80.0f;
    static const Vector3 AXIS(0.36f, 0.48f, 0.8f);
    cases.Modifier(77)
        .Set("Axis", AXIS)
        .Set("Start Distance", -40.0f)
        .Set("End Distance", 40.0f)
        .Set_Keys("Color", Key_Color)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Each(p.Count, [color = p.Color, position = Positions(p), toLocal = state.InverseTransform, axis = AXIS,
                           curve = ColorCurve()](int i) MK_LOOP {
                const float weight = Between(Dot(Map(toLocal, position.At(i)), axis), -40.0f, INVERSE_80);
                color[i] = Particle::Multiply_Color(color[i], curve.At_Time(weight));
            });
        });
    cases.Modifier(78)
        .Set("Axis", AXIS)
        .Set("Start Distance", -40.0f)
        .Set("End Distance", 40.0f)
        .Set("Start Color", FROM)
        .Set("End Color", TO)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Multiply(p, Particle::Pack(FROM), Particle::Pack(TO),
                     [axis = state.Transform.Rotate(AXIS)](const Vector3 &position)
                         MK_LOOP { return Between(Dot(position, axis), -40.0f, INVERSE_80); });
        });
    cases.Modifier(110)
        .Set("Near Distance", -40.0f)
        .Set("Far Distance", 40.0f)
        .Set("Near Color", FROM)
        .Set("Far Color", TO)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            const Vector3 way = state.Camera.Get_Translation() - state.Get_Position();
            Multiply(p, Particle::Pack(FROM), Particle::Pack(TO),
                     [axis = Particle::Unit({way.x, way.y, 0.0f})](const Vector3 &position)
                         MK_LOOP { return Between(Dot(position, axis), -40.0f, INVERSE_80); });
        });
    cases.Modifier(117)
        .Set("Near Depth", 100.0f)
        .Set("Far Depth", 200.0f)
        .Set("Near Color", FROM)
        .Set("Far Color", TO)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Multiply(p, Particle::Pack(FROM), Particle::Pack(TO),
                     [camera = state.Camera.Get_Translation()](const Vector3 &position)
                         MK_LOOP { return Between(Length(Minus(position, camera)), 100.0f, 0.01f); });
        });
    cases.Modifier(81)
        .Set("Start Radius", 0.0f)
        .Set("End Radius", 80.0f)
        .Set("Start Color", FROM)
        .Set("End Color", TO)
        .Beside([](const PlainParticles &p, const auto &) {
            Multiply(p, Particle::Pack(FROM), Particle::Pack(TO),
                     [](const Vector3 &position) MK_LOOP { return Between(Length(position), 0.0f, INVERSE_80); });
        });
}

template <bool Flat>
void Add_Lit(CaseList &cases, int id)
{
    cases.Modifier(id)
        .Set("Light Color", FROM)
        .Set("Shadow Color", TO)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Multiply(p, Particle::Pack(TO), Particle::Pack(FROM),
                     [sun = state.SunDirection](const Vector3 &position) MK_LOOP {
                         const Vector3 outward = Particle::Unit({position.x, position.y, Flat ? 0.0f : position.z});
                         return Particle::Clamp_01(0.5f * Dot(outward, sun) + 0.5f);
                     });
        });
}

} // namespace

void Behaviour::Add_Colors(CaseList &cases)
{
    Add_Variance(cases);
    Add_By_Time(cases);
    Add_By_Place(cases);
    Add_Lit<true>(cases, 79);
    Add_Lit<false>(cases, 80);
}
