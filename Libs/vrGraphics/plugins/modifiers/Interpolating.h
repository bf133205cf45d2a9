#pragma once

/// The bases of the modifiers that write one attribute by a rule over time: between two ends, constant, or by keys.

#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// How far a particle is on the way between two ends, 0 to 1, by its normalised time. Made once for a run of slots;
/// never yields what is no number.
struct vrMKPLinearWeight
{
    float Start;
    float End;
    float Scale; ///< 1 / (End - Start), or 1 where the two are equal: the way then takes the unit of time after them

    vrMKPLinearWeight(float start, float end)
        : Start(start), End(end), Scale(end == start ? 1.0f : 1.0f / (end - start))
    {
    }

    /// Smooth leaves and arrives with no slope, and steps where the ends are equal. Times outside hold the ends'
    /// weights.
    template <bool Smooth>
    MK_INLINE float At(float time) const
    {
        if constexpr (!Smooth) return Particle::Clamp_01((time - Start) * Scale);
        const float eased = Particle::Smooth_Step(Particle::Clamp_01((time - Start) / (End - Start)));
        const float ended = time >= End ? 1.0f : eased;
        return time <= Start ? 0.0f : ended;
    }
};

/// Between two values over a span of the particle's normalised time.
class vrMKPLinearModifier : public vrMKPModifier
{
protected:
    vrMKPLinearModifier();
    vrMKPLinearWeight Get_Weight() const { return {StartTime->Get_Value(), EndTime->Get_Value()}; }
    /// Which form of `vrMKPLinearWeight::At` to loop with.
    bool Is_Smooth() const { return Smooth->Get_Value(); }

    RangedFloatParameter *StartTime;
    RangedFloatParameter *EndTime;
    BoolParameter *Smooth;
};

/// The same value in each frame, or only in the frame of the spawn, whatever was there.
class vrMKPConstantModifier : public vrMKPModifier
{
public:
    WalkType Get_Walk() const override { return Is_Write_Once() ? WALK_NEW : WALK_WIDE; }
    bool Is_Write_Once() const { return WriteOnce->Get_Value(); }

protected:
    vrMKPConstantModifier();

    BoolParameter *WriteOnce;
};

/// Curves are evaluated by blocks of particles, on the stack.
constexpr int MKP_CURVE_BLOCK = 256;
/// Calls `work(first, count)` for each block of a run of slots.
template <typename Work>
void For_Each_Curve_Block(vrMKPSpan span, Work &&work)
{
    for (const int end = span.First + span.Count; span.First < end; span.First += MKP_CURVE_BLOCK)
        work(span.First, end - span.First < MKP_CURVE_BLOCK ? end - span.First : MKP_CURVE_BLOCK);
}

/// By curves, over the particle's normalised time if the derived class says nothing else.
class vrMKPKeyedModifier : public vrMKPModifier
{
protected:
    static constexpr int BLOCK = MKP_CURVE_BLOCK;

    vrMKPKeyedModifier();
    bool Is_Smooth() const { return Smooth->Get_Value(); }

    BoolParameter *Smooth;
};
