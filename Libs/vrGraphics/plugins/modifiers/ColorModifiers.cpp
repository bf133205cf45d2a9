#include "vrGraphics/plugins/modifiers/ColorModifiers.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/modifiers/ColorLoops.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace
{

// Indices into this are a file format.
constexpr const char *TIME_AXES[] = {"Time", "Dynamic Parameter 1"};
constexpr int32_t AXIS_DYNAMIC_PARAMETER = 1;

constexpr RGBAClass PALE_YELLOW = RGBA_From_Bytes(255, 255, 64, 255);

template <bool Smooth>
MK_SIMD void Write_Linear(vrColor *__restrict colors, const float *__restrict times, int count,
                          vrMKPLinearWeight weight, ColorLoops::Ramp ramp)
{
    Particle::For_Whole_Registers(count,
                                  [&](int i) MK_INLINE_LAMBDA { colors[i] = ramp.At(weight.At<Smooth>(times[i])); });
}

void Write_Same(vrMKPBuffer &buffer, vrMKPSpan span, const RGBAClass &color)
{
    std::fill_n(buffer.Color + span.First, span.Count, Particle::Pack(color));
}

/// Where a particle stands between the least and the most of each channel, 0 to 1.
struct VarianceRow
{
    float Channels[4];
};

struct VarianceTable
{
    VarianceRow Rows[256];
    std::atomic<bool> IsFilled = false;
    std::mutex Filling;

    /// Whoever comes first fills it, for good.
    void Fill(RandomClass &random)
    {
        if (IsFilled.load(std::memory_order_acquire)) return;
        const std::lock_guard lock(Filling);
        if (IsFilled.load(std::memory_order_relaxed)) return;
        for (VarianceRow &row : Rows)
            for (float &channel : row.Channels) channel = random.Get_Float(0.0f, 1.0f);
        IsFilled.store(true, std::memory_order_release);
    }
};

VarianceTable Variances;

struct VarianceRange
{
    float Minimum[4];
    float Maximum[4];
};

MK_INLINE float Varied(float channel, float share, float minimum, float maximum)
{
    return Particle::Clamp_01(channel + (1.0f - share) * minimum + share * maximum);
}

/// Locked channels get one amount, which is summed up before it is added.
MK_INLINE float Varied_Alike(float channel, float share, float minimum, float maximum)
{
    return Particle::Clamp_01(channel + ((1.0f - share) * minimum + share * maximum));
}

template <bool Locked>
MK_SIMD void Vary(vrColor *__restrict colors, const uint32_t *__restrict ids, int count,
                  const VarianceRow *__restrict rows, VarianceRange range)
{
    for (int i = 0; i < count; ++i) {
        const VarianceRow &row = rows[ids[i] & 0xff];
        vrColor color = 0;
        for (int channel = 0; channel < 4; ++channel) {
            const float old = static_cast<float>(static_cast<int32_t>((colors[i] >> channel * 8) & 0xff)) / 255.0f;
            const float value =
                Locked && channel < 3
                    ? Varied_Alike(old, row.Channels[0], range.Minimum[0], range.Maximum[0])
                    : Varied(old, row.Channels[channel], range.Minimum[channel], range.Maximum[channel]);
            color |= static_cast<uint32_t>(static_cast<int32_t>(value * 255.0f)) << channel * 8;
        }
        colors[i] = color;
    }
}

} // namespace

vrMKPLinearColorModifier::vrMKPLinearColorModifier()
{
    StartColor = Parameters.Add_RGBA(200, "Start Color", PALE_YELLOW, "Starting color");
    EndColor = Parameters.Add_RGBA(201, "End Color", PALE_YELLOW, "Ending color");
}

void vrMKPLinearColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const ColorLoops::Ramp ramp(Particle::Pack(StartColor->Get_Value()), Particle::Pack(EndColor->Get_Value()));
    const auto write = Is_Smooth() ? Write_Linear<true> : Write_Linear<false>;
    write(buffer.Color + span.First, buffer.Time + span.First, span.Count, Get_Weight(), ramp);
}

vrMKPConstantColorModifier::vrMKPConstantColorModifier()
{
    Color = Parameters.Add_RGBA(200, "Color", PALE_YELLOW, "Color of the particle.");
}

void vrMKPConstantColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Write_Same(buffer, span, Color->Get_Value());
}

vrMKPKeyedColorModifier::vrMKPKeyedColorModifier()
{
    Color = Parameters.Add_Keyed_RGBA(300, "Color", "Keyed color of the particle");
    TimeAxis = Parameters.Add_Enum(301, "Time Axis", TIME_AXES, 0, "What to use for the time axis when keyframing.");
}

void vrMKPKeyedColorModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    if (TimeAxis->Get_Value() == AXIS_DYNAMIC_PARAMETER) {
        RGBAClass color;
        Color->Evaluate(buffer.State->Dynamic[vrMKPRenderState::DYNAMIC_COLOR_TIME], Is_Smooth(), color);
        return Write_Same(buffer, span, color);
    }
    RGBAClass colors[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        Color->Evaluate_Many(buffer.Time + first, count, Is_Smooth(), colors);
        ColorLoops::Pack_Many(buffer.Color + first, colors, count);
    });
}

vrMKPColorVarianceModifier::vrMKPColorVarianceModifier()
{
    const auto addMinimum = [this](int channel, int32_t id, const char *name, const char *description) {
        Minimum[channel] = Parameters.Add_Float(id, name, 0.0f, -1.0f, 0.0f, description);
    };
    const auto addMaximum = [this](int channel, int32_t id, const char *name, const char *description) {
        Maximum[channel] = Parameters.Add_Float(id, name, 0.0f, 0.0f, 1.0f, description);
    };
    addMinimum(0, 200, "Min Red Variance", "Minimum amount to vary red by.");
    addMaximum(0, 201, "Max Red Variance", "Maximum amount to vary red by.");
    addMinimum(1, 202, "Min Green Variance", "Minimum amount to vary Green by.");
    addMaximum(1, 203, "Max Green Variance", "Maximum amount to vary Green by.");
    addMinimum(2, 204, "Min Blue Variance", "Minimum amount to vary Blue by.");
    addMaximum(2, 205, "Max Blue Variance", "Maximum amount to vary Blue by.");
    LockRGB =
        Parameters.Add_Bool(206, "Lock RGB", false, "Locks RGB variance to all be equal (based off the red value).");
    addMinimum(3, 207, "Min Alpha Variance", "Minimum amount to vary Alpha by.");
    addMaximum(3, 208, "Max Alpha Variance", "Maximum amount to vary Alpha by.");
    WriteOnce = Parameters.Add_Bool(209, "Write Once", false, "Write the constant value only once at spawn.");
}

bool vrMKPColorVarianceModifier::Needs_Serial_Frame() const
{
    return !Variances.IsFilled.load(std::memory_order_acquire);
}

void vrMKPColorVarianceModifier::Prepare_Frame(vrMKPBuffer &buffer, int) const
{
    Variances.Fill(buffer.Random);
}

void vrMKPColorVarianceModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    VarianceRange range;
    for (int channel = 0; channel < 4; ++channel) {
        range.Minimum[channel] = Minimum[channel]->Get_Value();
        range.Maximum[channel] = Maximum[channel]->Get_Value();
    }
    const auto vary = LockRGB->Get_Value() ? Vary<true> : Vary<false>;
    vary(buffer.Color + span.First, buffer.ID + span.First, span.Count, Variances.Rows, range);
}
