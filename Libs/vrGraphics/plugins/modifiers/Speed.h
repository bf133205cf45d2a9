#pragma once

/// The modifiers that change how fast a particle moves and keep its direction. One at rest stays at rest.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

/// Bounds in the wrong order count as swapped.
class vrMKPSpeedLimitModifier final : public vrMKPModifier
{
public:
    vrMKPSpeedLimitModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *MinSpeed;
    RangedFloatParameter *MaxSpeed;
};

/// The weight of its base, but where the two times are equal the speed steps from one end to the other.
class vrMKPLinearSpeedModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearSpeedModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *StartSpeed;
    RangedFloatParameter *EndSpeed;
};

/// Takes a part of the velocity away, per second, by a curve over the particle's time.
class vrMKPKeyedFrictionModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedFrictionModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    KeyedFloatParameterClass *Friction;
};
