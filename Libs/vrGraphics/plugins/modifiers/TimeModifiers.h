#pragma once

/// The modifiers that drive the normalised time of particles, which linear and keyed modifiers behind them follow.
/// The stomper must leave the time alone. Particles at rest have a time too, so these two don't pass them over.

#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

/// Time by the distance from a target: 1 within the inner radius, 0 outside the outer one.
class vrMKPDistanceKeyTimeModifier final : public vrMKPTargetModifier
{
public:
    vrMKPDistanceKeyTimeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *InnerRadius;
    RangedFloatParameter *OuterRadius;
    BoolParameter *Invert;
    BoolParameter *Smooth;
};

/// The clock of a buffer.
class vrMKPClockModifierPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override { Clock = 0.0f; }

    float Clock = 0.0f; ///< seconds
};

/// Time by a wave that all particles of the layer share, or that each takes at a place of its own by its ID.
class vrMKPClockModifier final : public vrMKPModifier
{
public:
    /// The entries of "Clock Type", by the number that a file stores.
    enum ClockType : int
    {
        CLOCK_LINEAR,
        CLOCK_SQUARE,
        CLOCK_TRIANGLE,
        CLOCK_SINE
    };

    vrMKPClockModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    void Prepare_Frame(vrMKPBuffer &buffer, int index) const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    EnumParameterClass *Type;
    RangedFloatParameter *Interval;
    BoolParameter *Invert;
    BoolParameter *RandomStart;
};
