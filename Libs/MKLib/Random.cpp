#include "MKLib/Random.h"

#include "MKLib/MKDebug/Assert.h"

#include <atomic>
#include <bit>
#include <random>
#include <utility>

namespace
{

/// The shared arithmetic of a draw: the least mask over the range, and again while the masked output is above the
/// range.
template <typename Step>
int32_t Draw_Masked(int32_t low, int32_t high, uint32_t greatestRange, Step &&step)
{
    auto lower = static_cast<uint32_t>(low);
    auto higher = static_cast<uint32_t>(high);
    if (higher < lower) std::swap(lower, higher);
    if (lower == higher) return static_cast<int32_t>(lower);

    uint32_t range = higher - lower;
    if (!MK_VERIFY(range <= greatestRange, "range >= (int)RandomMax")) range = greatestRange;
    const uint32_t mask = std::bit_floor(range) * 2 - 1;
    MK_ASSERT(mask != 0, "mask != 0");
    uint32_t value = step() & mask;
    while (value > range) value = step() & mask;
    return static_cast<int32_t>(lower + value);
}

/// Extended precision up to the one rounding at the end: other widths give other last bits.
float Interpolate(int32_t draw, int32_t greatest, float low, float high)
{
    using Extended = long double;
    const Extended fraction = static_cast<Extended>(draw) / static_cast<Extended>(greatest);
    const Extended span = static_cast<Extended>(high) - static_cast<Extended>(low);
    return static_cast<float>(fraction * span + static_cast<Extended>(low));
}

} // namespace

int32_t RandomClass::Get_Int(int32_t low, int32_t high)
{
    return Draw_Masked(low, high, RandomMax, [this] { return Step(); });
}

void RandomClass::Swap_Bounds(float &low, float &high)
{
    MK_ASSERT(!(high < low), "low <= high");
    std::swap(low, high);
}

float RandomClass::Get_Extended_Float(int32_t draw, float low, float high)
{
    return Interpolate(draw, static_cast<int32_t>(RandomMax), low, high);
}

struct SecureRandomClass::Device
{
    std::random_device Random;
};

SecureRandomClass::SecureRandomClass() : Source(std::make_unique<Device>())
{
}

SecureRandomClass::~SecureRandomClass() = default;

int32_t SecureRandomClass::Get_Int(int32_t low, int32_t high)
{
    return Draw_Masked(low, high, RandomWordMax,
                       [this] { return static_cast<uint32_t>(Source->Random()) & RandomWordMax; });
}

void SecureRandomClass::Seed(uint32_t)
{
    MK_ASSERT(false, "false && \"Cannot seed a secure rng\"");
}

RandomGeneratorClass::RandomGeneratorClass() : RandomGeneratorClass(std::make_unique<RandomClass>())
{
}

RandomGeneratorClass::RandomGeneratorClass(std::unique_ptr<RandomImplementationClass> implementation)
    : Implementation(std::move(implementation))
{
}

float RandomGeneratorClass::Get_Float(float low, float high, bool excludeLow, bool excludeHigh)
{
    if (!MK_VERIFY(!(high < low), "low <= high")) std::swap(low, high);
    const auto greatest = static_cast<int32_t>(Implementation->Draws_Words() ? RandomWordMax : RandomMax);
    int32_t draw = Get_Int(0, greatest);
    if (excludeLow && draw == 0) draw = 1;
    if (excludeHigh && draw == greatest) draw = greatest - 1;
    return Interpolate(draw, greatest, low, high);
}

RandomGeneratorClass &RandomGeneratorClass::Get_Shared()
{
    static std::atomic<uint32_t> nextSeed{1};
    thread_local RandomGeneratorClass generator(std::make_unique<RandomClass>(nextSeed.fetch_add(0x9e3779b9)));
    return generator;
}
