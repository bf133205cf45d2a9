#pragma once

/// The numbers of many takers from one run of the ordinary generator, at once. What a seed means is the order of the
/// steps: the first taker's, then the next one's, and so on. Where all of them take the same number of steps, each
/// one's state can be told from the first: some steps of the generator in a row are one of the same form. So a loop
/// over takers needn't go through them in turn.

#include "MKLib/MKMath/Simd.h"
#include "MKLib/Random.h"

/// Some steps of the generator as one.
struct RandomJump
{
    uint32_t Factor = 1;
    uint32_t Addend = 0;

    MK_INLINE constexpr uint32_t operator()(uint32_t state) const { return state * Factor + Addend; }
    /// These steps, and then others.
    constexpr RandomJump Then(RandomJump next) const { return {Factor * next.Factor, next(Addend)}; }
};

class RandomLanes
{
public:
    static constexpr int CAPACITY = 128;  ///< the most takers
    static constexpr int MOST_STEPS = 12; ///< of one taker
    /// Takers are drawn for in whole groups: arrays have room for whole ones, and hold more than was asked for.
    static constexpr int GROUP = 8;

    static constexpr int Round_Up(int count) { return (count + GROUP - 1) & -GROUP; }

    /// For takers of `steps` each, the first of which begins at the state.
    RandomLanes(const RandomClass &random, int steps) : Start(random.Get_State()), Steps(steps) {}
    /// The same takers, each some steps on.
    RandomLanes After(int steps) const { return {Jump_By(steps)(Start), Steps}; }
    /// Where `count` takers leave the generator.
    void Finish(RandomClass &random, int count) const;

    /// Their next two steps as `RandomClass::Get_Word`.
    void Get_Words(uint32_t *words, int count) const;

    /// What a loop over the takers draws with.
    struct View
    {
        const uint32_t *Factors;
        const uint32_t *Addends;
        uint32_t Start;

        /// The state of a taker ahead of its first step, from which `Draw` goes on.
        MK_INLINE uint32_t operator[](int taker) const { return Start * Factors[taker] + Addends[taker]; }
    };
    View Get_View() const;

    /// As `RandomClass::Draw`, but that what it would draw again sets a bit of `REPEATED` in `marks`.
    MK_INLINE static int32_t Draw(uint32_t &state, uint32_t &marks)
    {
        const uint32_t draw = Step(state);
        marks |= draw + 1;
        return static_cast<int32_t>(draw);
    }
    /// A draw as a float from 0 to 1, as `RandomClass::To_Float`. The quotient of whole numbers of 15 bits is far from
    /// the middle of two floats unless it's one of them, so one rounding gives what two in a row do.
    MK_INLINE static float To_Unit(int32_t draw) { return static_cast<float>(draw) / static_cast<float>(RandomMax); }
    static constexpr uint32_t REPEATED = 0x8000;
    static_assert(RandomMax + 2 == REPEATED, "the one output above the greatest draw reaches the bit");

private:
    RandomLanes(uint32_t start, int steps) : Start(start), Steps(steps) {}
    MK_INLINE static uint32_t Step(uint32_t &state)
    {
        state = RandomClass::Next_State(state);
        return RandomClass::Output_Of(state);
    }
    static RandomJump Jump_By(int steps);

    uint32_t Start;
    int Steps;
};
