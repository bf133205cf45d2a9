#pragma once

/// Forces toward, away from and around a point or an axis, by the distance from it.

#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

/// How strong a force is at a distance d: constant + linear d + inverse / d between two cutoffs, and nothing at them or
/// outside.
struct vrMKPDistanceLaw
{
    RangedFloatParameter *Constant;
    RangedFloatParameter *Linear;
    RangedFloatParameter *Inverse;
    RangedFloatParameter *InnerCutoff;
    RangedFloatParameter *OuterCutoff;
};

/// Toward or from the place of the group, with the same force at any distance. Positive values repel.
class vrMKPAttractAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPAttractAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Attract;
};

/// Negative values attract: the force points away from the target.
class vrMKPAttractorModifier final : public vrMKPTargetModifier
{
public:
    vrMKPAttractorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    vrMKPDistanceLaw Law;
    BoolParameter *Swim; ///< turns the velocity only
};

class vrMKPAxisAttractorModifier final : public vrMKPTargetModifier
{
public:
    vrMKPAxisAttractorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    vrMKPDistanceLaw Law;
};

/// Around an axis through the target.
class vrMKPTorqueModifier final : public vrMKPTargetModifier
{
public:
    vrMKPTorqueModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    vrMKPDistanceLaw Law;
};

/// Speeds particles up without turning them. It has no plugin id, and so never stands in a file.
class vrMKPTargetAccelerationFieldModifier final : public vrMKPTargetModifier
{
public:
    vrMKPTargetAccelerationFieldModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    vrMKPDistanceLaw Law;
    RangedFloatParameter *DistanceOffset;
};
