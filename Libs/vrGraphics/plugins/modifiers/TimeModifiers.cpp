#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <algorithm>

MK_DEFINE_RUN_TIME_TYPE(vrMKPClockModifierPluginData, vrMKPBufferPluginData)

namespace
{

using namespace Motion;

// Indices into this are a file format.
constexpr const char *CLOCK_TYPES[] = {"Linear", "Square", "Triangle", "Sin"};

/// x - floor(x). Floats from 2^23 on have no fraction.
MK_INLINE float Fraction(float x)
{
    const auto whole = static_cast<float>(Particle::Truncate(x));
    const float floored = whole > x ? whole - 1.0f : whole;
    return std::abs(x) < 8388608.0f ? x - floored : 0.0f;
}

/// Whether trunc(x) is odd. Where the conversion reaches its limits floats are even, and so are the limits.
MK_INLINE bool Is_Odd(float x)
{
    return (Particle::Truncate(x) & 1) != 0;
}

/// The signal at so many intervals after the start, 0 to 1.
template <int Type>
MK_INLINE float Signal(float intervals)
{
    if constexpr (Type == vrMKPClockModifier::CLOCK_SQUARE) return Is_Odd(intervals * 2.0f) ? 1.0f : 0.0f;
    if constexpr (Type == vrMKPClockModifier::CLOCK_TRIANGLE) {
        const float x = intervals * 2.0f;
        const float rise = Fraction(x);
        return Is_Odd(x) ? 1.0f - rise : rise;
    }
    if constexpr (Type == vrMKPClockModifier::CLOCK_SINE)
        return (static_cast<float>(Portable::Sine(static_cast<double>(intervals * Particle::TWO_PI))) + 1.0f) * 0.5f;
    return Fraction(intervals);
}

template <int Type>
MK_INLINE void Write_Signal(float *__restrict times, const uint32_t *__restrict ids, int count, float start,
                            bool invert)
{
    for (int i = 0; i < count; ++i) {
        const float signal = Signal<Type>(start + Particle::Unit_ID(ids[i]));
        times[i] = invert ? 1.0f - signal : signal;
    }
}
MK_SIMD void Write_Linear(float *times, const uint32_t *ids, int count, float start, bool invert)
{
    Write_Signal<vrMKPClockModifier::CLOCK_LINEAR>(times, ids, count, start, invert);
}
MK_SIMD void Write_Square(float *times, const uint32_t *ids, int count, float start, bool invert)
{
    Write_Signal<vrMKPClockModifier::CLOCK_SQUARE>(times, ids, count, start, invert);
}
MK_SIMD void Write_Triangle(float *times, const uint32_t *ids, int count, float start, bool invert)
{
    Write_Signal<vrMKPClockModifier::CLOCK_TRIANGLE>(times, ids, count, start, invert);
}
MK_SIMD void Write_Sine(float *times, const uint32_t *ids, int count, float start, bool invert)
{
    Write_Signal<vrMKPClockModifier::CLOCK_SINE>(times, ids, count, start, invert);
}

/// One form of the clock: its value, and the loop where each particle has one of its own.
struct ClockForm
{
    float (*Value)(float intervals);
    void (*Write)(float *times, const uint32_t *ids, int count, float start, bool invert);
};
constexpr ClockForm CLOCK_FORMS[] = {
    {[](float intervals) { return Signal<vrMKPClockModifier::CLOCK_LINEAR>(intervals); }, Write_Linear},
    {[](float intervals) { return Signal<vrMKPClockModifier::CLOCK_SQUARE>(intervals); }, Write_Square},
    {[](float intervals) { return Signal<vrMKPClockModifier::CLOCK_TRIANGLE>(intervals); }, Write_Triangle},
    {[](float intervals) { return Signal<vrMKPClockModifier::CLOCK_SINE>(intervals); }, Write_Sine},
};
static_assert(std::size(CLOCK_FORMS) == std::size(CLOCK_TYPES));

struct DistanceTime
{
    Vector3 Target; ///< in the space of the buffer
    float Inner;
    float Outer;
    bool Invert;
};

template <bool Smooth>
MK_INLINE void Write_Distance(float *__restrict times, const Vector3 *points, int count, const DistanceTime &from)
{
    const DistanceTime law = from;
    const float *__restrict positions = &points->x;
    const float width = law.Outer - law.Inner;
    for (int i = 0; i < count; ++i) {
        const Vector3 way = Minus({positions[3 * i], positions[3 * i + 1], positions[3 * i + 2]}, law.Target);
        const float distance = std::sqrt(Dot(way, way));
        float time = Particle::Clamp_01((distance - law.Inner) / width);
        if constexpr (Smooth) {
            const float eased = Particle::Smooth_Step(time);
            const float ended = distance >= law.Outer ? 1.0f : eased;
            time = distance <= law.Inner ? 0.0f : ended;
        }
        times[i] = law.Invert ? time : 1.0f - time;
    }
}
MK_SIMD void Write_Linear_Distance(float *times, const Vector3 *points, int count, const DistanceTime &law)
{
    Write_Distance<false>(times, points, count, law);
}
MK_SIMD void Write_Smooth_Distance(float *times, const Vector3 *points, int count, const DistanceTime &law)
{
    Write_Distance<true>(times, points, count, law);
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
    const auto write = Smooth->Get_Value() ? Write_Smooth_Distance : Write_Linear_Distance;
    write(buffer.Time + span.First, buffer.Position + span.First, span.Count, law);
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
