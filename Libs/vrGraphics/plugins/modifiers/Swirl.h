#pragma once

/// The modifiers that spin particles around an axis of the group. Particles at rest are left alone.

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// A push along the tangent, as strong at any distance, which leaves the particle free. Nothing within 0.1 of the
/// center.
class vrMKPVortexModifier final : public vrMKPModifier
{
public:
    vrMKPVortexModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    RangedFloatParameter *Speed;
    BoolParameter *IsLocal;
};

/// Holds particles on a cone between two heights. Where in the wall is by the particle's ID, and only the speed along
/// the axis stays its own.
class vrMKPFunnelModifier final : public vrMKPModifier
{
public:
    vrMKPFunnelModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    RangedFloatParameter *StartDistance;
    RangedFloatParameter *EndDistance;
    RangedFloatParameter *StartSpeed;
    RangedFloatParameter *EndSpeed;
    RangedFloatParameter *StartRadius;
    RangedFloatParameter *EndRadius;
    RangedFloatParameter *Thickness;
    RangedFloatParameter *SpeedVariation;
};

/// Holds particles on a tube about a ring, around which they turn. Depth and speed are by the particle's ID.
class vrMKPTorusModifier final : public vrMKPModifier
{
public:
    vrMKPTorusModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    RangedFloatParameter *InnerSpeed;
    RangedFloatParameter *Radius;
    RangedFloatParameter *TubeRadius;
    RangedFloatParameter *Thickness;
    RangedFloatParameter *SpeedVariation;
    RangedFloatParameter *OuterSpeed;
};
