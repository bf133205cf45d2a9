#pragma once

/// The modifiers that write the rotation about the line of sight. Parameters are in turns; the channel has 4096 steps a
/// turn.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

/// What makes one particle turn otherwise than the next, and the rest not at all.
class vrMKPRotationRandomness
{
public:
    /// Adds four parameters with ids in a row.
    void Add(ParameterListClass &parameters, int32_t firstId);

    bool Is_Reversing() const { return Reverse->Get_Value(); }
    /// The most that the ID adds or takes, in turns; 0 when it is off.
    float Get_Offset() const { return RandomizeRotations->Get_Value() ? Variation->Get_Value() : 0.0f; }
    bool Is_Only_When_Moving() const { return OnlyWhenMoving->Get_Value(); }

private:
    BoolParameter *Reverse;
    BoolParameter *RandomizeRotations;
    RangedFloatParameter *Variation;
    BoolParameter *OnlyWhenMoving;
};

class vrMKPLinearRotationModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *StartRotation;
    RangedFloatParameter *EndRotation;
    vrMKPRotationRandomness Randomness;
};

class vrMKPConstantRotationModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Rotation;
    RangedFloatParameter *Variation;
    BoolParameter *Reverse;
};

class vrMKPKeyedRotationModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    KeyedFloatParameterClass *Rotation;
    vrMKPRotationRandomness Randomness;
};

/// Does nothing, and stands for old files alone.
class vrMKPLinearRotationRateModifier final : public vrMKPLinearModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Does nothing, and stands for old files alone.
class vrMKPKeyedRotationRateModifier final : public vrMKPKeyedModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Spins particles by where they stand on a dome that is seen from the side: the rim fast, the middle not at all. Adds
/// to the rotation that stands.
class vrMKPMushroomRotationModifier final : public vrMKPModifier
{
public:
    vrMKPMushroomRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Rate;
    RangedFloatParameter *Variation;
    KeyedFloatParameterClass *Envelope;
    Vector3Parameter *Axis;
};

/// Turns each particle along its motion on the screen.
class vrMKPScreenVelocityAlignedRotationModifier final : public vrMKPModifier
{
public:
    vrMKPScreenVelocityAlignedRotationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Base;
    BoolParameter *OnlyWhenMoving;
};
