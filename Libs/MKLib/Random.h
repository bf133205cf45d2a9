#pragma once

#include "MKLib/MKMath/Simd.h"
#include "MKLib/NoCopy.h"

#include <cstdint>
#include <memory>

/// Random numbers of the engine. Effects must look the same each time they play with the same seed, on every machine,
/// so the arithmetic of the ordinary generator is fixed, and so is the number of steps that a draw takes. No lock: a
/// generator belongs to one thread at a time.

/// The greatest value and the greatest range of an ordinary draw.
constexpr uint32_t RandomMax = 0x7ffe;
/// The same where draws run to full words.
constexpr uint32_t RandomWordMax = 0xffff;

/// What stands behind a generator.
class RandomImplementationClass : public MK::NoCopy
{
public:
    virtual ~RandomImplementationClass() = default;
    /// From the lower to the higher bound, both included; they are ordered as unsigned values.
    virtual int32_t Get_Int(int32_t low, int32_t high) = 0;
    /// True when draws run to `RandomWordMax` instead of `RandomMax`.
    virtual bool Draws_Words() const = 0;
    virtual void Seed(uint32_t value) = 0;
};

/// The ordinary, repeatable generator: state = state * 0x41C64E6D + 0xBDF, of which 15 bits from bit 10 are the output.
class RandomClass final : public RandomImplementationClass
{
public:
    explicit RandomClass(uint32_t seed = 1) : State(seed) {}

    /// Draws as many bits as the range has and again while the value is above it. A range above `RandomMax` asserts and
    /// is cut to it. Equal bounds take no step.
    int32_t Get_Int(int32_t low, int32_t high) override;
    bool Draws_Words() const override { return false; }
    void Seed(uint32_t value) override { State = value; }
    uint32_t Get_State() const { return State; }
    /// A step's output from 0 to `RandomMax`, of which `To_Float` makes a float.
    int32_t Draw()
    {
        uint32_t draw = Step();
        while (draw > RandomMax) [[unlikely]] draw = Step();
        return static_cast<int32_t>(draw);
    }
    /// As that of `RandomGeneratorClass`, bit for bit, without its indirections: what a frame step draws with.
    float Get_Float(float low, float high)
    {
        if (high < low) [[unlikely]]
            Swap_Bounds(low, high);
        return To_Float(Draw(), low, high);
    }
    /// Between what the float of a draw lies: double is exact enough nearly always, where every value within its error
    /// rounds to the same float, as does the extended result. Each of the four roundings is off by half a unit of 2^-52
    /// at most.
    struct FloatRange
    {
        float Least;
        float Greatest;
    };
    MK_INLINE static FloatRange Range_Of(int32_t draw, float low, float high)
    {
        const double start = low;
        const double span = static_cast<double>(high) - start;
        const double product = static_cast<double>(draw) * (1.0 / RandomMax) * span;
        const double value = product + start;
        const double error = (Magnitude(product) + Magnitude(start)) * 0x1p-50;
        return {static_cast<float>(value - error), static_cast<float>(value + error)};
    }
    /// For bounds in order.
    static float To_Float(int32_t draw, float low, float high)
    {
        const FloatRange range = Range_Of(draw, low, high);
        if (range.Least == range.Greatest) [[likely]]
            return range.Least;
        return Get_Extended_Float(draw, low, high);
    }
    /// One of 0 to 255.
    uint32_t Get_Byte() { return Step() & 0xff; }
    /// Two bytes, the first of them the higher.
    uint32_t Get_Word()
    {
        const uint32_t high = Get_Byte();
        return high << 8 | Get_Byte();
    }
    // A step: the state after one, and what it puts out.
    MK_INLINE static constexpr uint32_t Next_State(uint32_t state) { return state * 0x41c64e6du + 0xbdfu; }
    MK_INLINE static constexpr uint32_t Output_Of(uint32_t state) { return (state >> 10) & 0x7fff; }
    /// True with `perCent` of 100: never for 0, always for 100.
    bool Get_Chance(int perCent) { return Get_Int(0, 99) < perCent; }

private:
    uint32_t Step()
    {
        State = Next_State(State);
        return Output_Of(State);
    }
    MK_INLINE static double Magnitude(double value) { return __builtin_fabs(value); }
    static void Swap_Bounds(float &low, float &high); ///< and asserts
    static float Get_Extended_Float(int32_t draw, float low, float high);

    uint32_t State;
};

/// A generator over the system's random device. It can't be seeded; for what must not be guessed, not for effects.
class SecureRandomClass final : public RandomImplementationClass
{
public:
    SecureRandomClass();
    ~SecureRandomClass() override;

    /// A range above `RandomWordMax` asserts and is cut to it.
    int32_t Get_Int(int32_t low, int32_t high) override;
    bool Draws_Words() const override { return true; }
    /// Asserts and changes nothing.
    void Seed(uint32_t value) override;

private:
    struct Device;
    std::unique_ptr<Device> Source;
};

/// What users hold: a thin front that makes its implementation and owns it.
class RandomGeneratorClass
{
public:
    /// The ordinary implementation, whose first state is 1 until someone seeds it.
    RandomGeneratorClass();
    explicit RandomGeneratorClass(std::unique_ptr<RandomImplementationClass> implementation);

    void Seed(uint32_t value) { Implementation->Seed(value); }
    int32_t Get_Int(int32_t low, int32_t high) { return Implementation->Get_Int(low, high); }
    /// A float from low to high. The flags keep the draw off the two ends. Bounds in the wrong order assert and swap.
    float Get_Float(float low, float high, bool excludeLow = false, bool excludeHigh = false);

    /// For what needs no repeatability. One a thread, so that frame steps on several threads don't meet in it.
    static RandomGeneratorClass &Get_Shared();

private:
    std::unique_ptr<RandomImplementationClass> Implementation;
};
