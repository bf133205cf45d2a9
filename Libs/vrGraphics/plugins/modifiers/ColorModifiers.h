#pragma once

/// The modifiers that write a colour by time, and the one that varies it between particles.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPLinearColorModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RGBAParameter *StartColor;
    RGBAParameter *EndColor;
};

class vrMKPConstantColorModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RGBAParameter *Color;
};

/// On the axis of the dynamic parameter all particles get the colour of now, however old they are.
class vrMKPKeyedColorModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    KeyedRGBAParameter *Color;
    EnumParameterClass *TimeAxis;
};

/// Adds an amount to each channel, in each frame again or once at the spawn. What a particle gets between the least and
/// the most stands in a table of the process, by the low 8 bits of its ID; the first buffer that any such modifier
/// works on fills it from its own generator. That frame runs on one thread, so that the first is always the same.
class vrMKPColorVarianceModifier final : public vrMKPModifier
{
public:
    vrMKPColorVarianceModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WriteOnce->Get_Value() ? WALK_NEW : WALK_LIVE; }
    bool Needs_Serial_Frame() const override;
    void Prepare_Frame(vrMKPBuffer &buffer, int index) const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Minimum[4]; ///< red, green, blue, alpha
    RangedFloatParameter *Maximum[4];
    BoolParameter *LockRGB;
    BoolParameter *WriteOnce;
};
