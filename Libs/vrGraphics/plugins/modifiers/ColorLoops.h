#pragma once

/// What the loops of the colour modifiers share. Private to their sources.

#include "vrGraphics/particle/ParticleMath.h"

namespace ColorLoops
{

/// `Particle::Lerp_Color` between two colours for loops over many weights. Every product and sum is a float without a
/// rounding, so that no multiplication of 32-bit integers is needed, for which baseline x86-64 has no instruction.
struct Ramp
{
    float From[4];
    float Step[4]; ///< for 1 of 65536

    Ramp(vrColor from, vrColor to)
    {
        for (int channel = 0; channel < 4; ++channel) {
            const auto start = static_cast<float>((from >> channel * 8) & 0xff);
            From[channel] = start;
            Step[channel] = (static_cast<float>((to >> channel * 8) & 0xff) - start) / 65536.0f;
        }
    }

    /// For a weight of 0 to 1.
    MK_INLINE vrColor At(float weight) const
    {
        const auto fraction = static_cast<float>(Particle::Fixed_Weight(weight));
        vrColor color = 0;
        for (int channel = 0; channel < 4; ++channel)
            color |= static_cast<uint32_t>(static_cast<int32_t>(From[channel] + Step[channel] * fraction))
                     << channel * 8;
        return color;
    }
};

/// `Particle::Pack` of each; the arrays don't overlap.
void Pack_Many(vrColor *packed, const RGBAClass *colors, int count);
/// `Particle::Lerp_Color` from white to each, by the same weight of 0 to 1.
void Lerp_From_White(vrColor *colors, int count, float weight);
/// `Particle::Multiply_Color` of each by its factor; the arrays don't overlap.
void Multiply_Many(vrColor *colors, const vrColor *factors, int count);

} // namespace ColorLoops
