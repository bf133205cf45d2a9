#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <algorithm>

MK_DEFINE_RUN_TIME_TYPE(vrMKPClockModifierPluginData, vrMKPBufferPluginData)

namespace
{

using namespace Motion;

// Indices into this are a file format.
constexpr const char *CLOCK_TYPES[] = {"Linear", "Square", "Triangle", "Sin"};

/// Below this, and not negative, floats are regular: their whole part is a conversion.
constexpr float MOST_REGULAR = 4194304.0f;

/// x - floor(x). Floats from 2^23 on have no fraction.
template <bool Regular>
MK_INLINE float Fraction(float x)
{
    if constexpr (Regular) return x - static_cast<float>(static_cast<int32_t>(x));
    const float kept = std::abs(x) < 8388608.0f ? x : 0.0f;
    const auto whole = static_cast<float>(static_cast<int32_t>(kept));
    const float floored = whole > kept ? whole - 1.0f : whole;
    return kept - floored;
}

/// All ones where trunc(x) is odd, or else 0. Where the conversion reaches its limits floats are even.
template <bool Regular>
MK_INLINE uint32_t Odd_Mask(float x)
{
    const uint32_t whole = Regular ? static_cast<uint32_t>(static_cast<int32_t>(x)) : Particle::Truncate_Low_Bits(x);
    return 0u - (whole & 1u);
}

/// The signal at so many intervals after the start, 0 to 1.
template <int Type, bool Regular>
MK_INLINE float Signal(float intervals)
{
    const float twice = intervals * 2.0f;
    if constexpr (Type == vrMKPClockModifier::CLOCK_SQUARE) return Select_Bits(Odd_Mask<Regular>(twice), 1.0f, 0.0f);
    if constexpr (Type == vrMKPClockModifier::CLOCK_TRIANGLE) {
        const float rise = Fraction<Regular>(twice);
        return Select_Bits(Odd_Mask<Regular>(twice), 1.0f - rise, rise);
    }
    if constexpr (Type == vrMKPClockModifier::CLOCK_SINE)
        return (static_cast<float>(Portable::Sine(static_cast<double>(intervals * Particle::TWO_PI))) + 1.0f) * 0.5f;
    return Fraction<Regular>(intervals);
}

template <int Type, bool Regular>
MK_SIMD void Write_Signals(float *__restrict times, const uint32_t *__restrict ids, int count, float start, bool invert)
{
    for (int i = 0; i < count; ++i) {
        const float signal = Signal<Type, Regular>(start + Particle::Unit_ID(ids[i]));
        times[i] = invert ? 1.0f - signal : signal;
    }
}

/// One form of the clock: its value, and the loop where each particle has one of its own.
struct ClockForm
{
    float (*Value)(float intervals);
    void (*Write)(float *times, const uint32_t *ids, int count, float start, bool invert);
};
template <int Type>
constexpr ClockForm Make_Clock_Form()
{
    return {[](float intervals) { return Signal<Type, false>(intervals); },
            [](float *times, const uint32_t *ids, int count, float start, bool invert) {
                if (start >= 0.0f && start < MOST_REGULAR - 1.0f)
                    Write_Signals<Type, true>(times, ids, count, start, invert);
                else
                    Write_Signals<Type, false>(times, ids, count, start, invert);
            }};
}
constexpr ClockForm CLOCK_FORMS[] = {
    Make_Clock_Form<vrMKPClockModifier::CLOCK_LINEAR>(), Make_Clock_Form<vrMKPClockModifier::CLOCK_SQUARE>(),
    Make_Clock_Form<vrMKPClockModifier::CLOCK_TRIANGLE>(), Make_Clock_Form<vrMKPClockModifier::CLOCK_SINE>()};
static_assert(std::size(CLOCK_FORMS) == std::size(CLOCK_TYPES));

struct DistanceTime
{
    Vector3 Target; ///< in the space of the buffer
    float Inner;
    float Outer;
    bool Invert;
};

template <bool Smooth>
MK_SIMD void Write_Distance(float *__restrict times, vrMKPConstVectors positions, int count, DistanceTime law)
{
    const float width = law.Outer - law.Inner;
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const Vector3 way = Minus(positions[i], law.Target);
        const float distance = std::sqrt(Dot(way, way));
        float time = Particle::Clamp_01((distance - law.Inner) / width);
        if constexpr (Smooth) {
            const float eased = Particle::Smooth_Step(time);
            const float ended = distance >= law.Outer ? 1.0f : eased;
            time = distance <= law.Inner ? 0.0f : ended;
        }
        times[i] = law.Invert ? time : 1.0f - time;
    });
}

} // namespace

vrMKPDistanceKeyTimeModifier::vrMKPDistanceKeyTimeModifier()
{
    InnerRadius = Parameters.Add_Float(200, "Inner Radius", 0.0f, 0.0f, 1000.0f,
                                       "Inner radius, if distance from target is <= inner-radius the key time is 1.");
    OuterRadius = Parameters.Add_Float(201, "Outer Radius", 20.0f, 0.0f, 1000.0f,
                                       "Outer radius, if distance from target is > inner-radius the key time is 0.");
    Invert = Parameters.Add_Bool(202, "Invert", false, "Inverts so ranges 0 to 1, with 0 being the inner radius");
    Smooth = Parameters.Add_Bool(203, "Flat Tangent Smooth", false, "Smooth Steps the interpolation of time.");
}

void vrMKPDistanceKeyTimeModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    const DistanceTime law = {Get_Buffer_Target(buffer, index), InnerRadius->Get_Value(), OuterRadius->Get_Value(),
                              Invert->Get_Value()};
    float *times = buffer.Time + span.First;
    const vrMKPConstVectors positions = buffer.Position + span.First;
    if (Smooth->Get_Value())
        Write_Distance<true>(times, positions, span.Count, law);
    else
        Write_Distance<false>(times, positions, span.Count, law);
}

vrMKPClockModifier::vrMKPClockModifier()
{
    Type = Parameters.Add_Enum(200, "Clock Type", CLOCK_TYPES, 0, "Type of clock signal to use.");
    Interval = Parameters.Add_Float(201, "Interval", 1.0f, 0.01f, 1000.0f, "Time per clock interval.");
    Invert = Parameters.Add_Bool(202, "Invert", false, "Invert the signal to run 'backwards'.");
    RandomStart =
        Parameters.Add_Bool(203, "Random Start", false, "Start individual particles at random points in an interval.");
}

vrMKPBufferPluginData *vrMKPClockModifier::Create_Buffer_Data(const vrMKPRenderState &) const
{
    return new vrMKPClockModifierPluginData;
}

void vrMKPClockModifier::Prepare_Frame(vrMKPBuffer &buffer, int index) const
{
    if (auto *data = Get_Data<vrMKPClockModifierPluginData>(buffer, index)) data->Clock += buffer.State->FrameTime;
}

void vrMKPClockModifier::Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const
{
    const auto *data = Get_Data<vrMKPClockModifierPluginData>(buffer, index);
    const float quotient = (data ? data->Clock : 0.0f) / Interval->Get_Value();
    // A clock without an interval stands at its start: what isn't a number would spread to all that follows the time.
    const float intervals = std::isfinite(quotient) ? quotient : 0.0f;
    const ClockForm &form = CLOCK_FORMS[Type->Get_Value()];
    float *times = buffer.Time + span.First;
    if (RandomStart->Get_Value()) {
        form.Write(times, buffer.ID + span.First, span.Count, intervals, Invert->Get_Value());
    } else {
        const float value = form.Value(intervals);
        std::fill_n(times, span.Count, Invert->Get_Value() ? 1.0f - value : value);
    }
}
