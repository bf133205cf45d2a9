#include "MKLib/RandomLanes.h"

namespace
{

/// The step that a generator makes, read off its own.
constexpr RandomJump STEP{RandomClass::Next_State(1) - RandomClass::Next_State(0), RandomClass::Next_State(0)};

/// For one number of steps a taker, how far each taker is from the first.
struct Distances
{
    alignas(64) uint32_t Factors[RandomLanes::CAPACITY];
    alignas(64) uint32_t Addends[RandomLanes::CAPACITY];
};

struct Tables
{
    RandomJump Jumps[RandomLanes::MOST_STEPS + 1]; ///< by so many steps
    Distances Takers[RandomLanes::MOST_STEPS + 1];
};

constexpr Tables Make_Tables()
{
    Tables tables{};
    RandomJump jump;
    for (int steps = 0; steps <= RandomLanes::MOST_STEPS; ++steps, jump = jump.Then(STEP)) {
        tables.Jumps[steps] = jump;
        RandomJump distance;
        for (int taker = 0; taker < RandomLanes::CAPACITY; ++taker, distance = distance.Then(jump)) {
            tables.Takers[steps].Factors[taker] = distance.Factor;
            tables.Takers[steps].Addends[taker] = distance.Addend;
        }
    }
    return tables;
}

constexpr Tables TABLES = Make_Tables();

MK_SIMD void Draw_Words(uint32_t *__restrict words, const RandomLanes::View &source, int count)
{
    const RandomLanes::View lanes = source;
    for (int i = 0; i < RandomLanes::Round_Up(count); ++i) {
        const uint32_t first = RandomClass::Next_State(lanes[i]);
        const uint32_t second = RandomClass::Next_State(first);
        words[i] = (RandomClass::Output_Of(first) & 0xff) << 8 | (RandomClass::Output_Of(second) & 0xff);
    }
}

} // namespace

RandomJump RandomLanes::Jump_By(int steps)
{
    return TABLES.Jumps[steps];
}

RandomLanes::View RandomLanes::Get_View() const
{
    return {TABLES.Takers[Steps].Factors, TABLES.Takers[Steps].Addends, Start};
}

void RandomLanes::Finish(RandomClass &random, int count) const
{
    if (count > 0) random.Seed(Jump_By(Steps)(Get_View()[count - 1]));
}

void RandomLanes::Get_Words(uint32_t *words, int count) const
{
    Draw_Words(words, Get_View(), count);
}
