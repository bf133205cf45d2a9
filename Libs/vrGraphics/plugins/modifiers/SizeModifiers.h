#pragma once

/// The modifiers that write width and height. "Uniform" ones write one number for both. A variation scales each size by
/// a factor from the particle's ID, so that it stays the same for all of its life.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPLinearUniformSizeModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *StartSize;
    RangedFloatParameter *EndSize;
    RangedFloatParameter *Variation;
    BoolParameter *ScaleByTargetRadius;
};

class vrMKPLinearSizeModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *StartWidth;
    RangedFloatParameter *EndWidth;
    RangedFloatParameter *WidthVariation;
    RangedFloatParameter *StartHeight;
    RangedFloatParameter *EndHeight;
    RangedFloatParameter *HeightVariation;
    BoolParameter *ScaleByTargetRadius;
};

class vrMKPConstantUniformSizeModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Size;
    RangedFloatParameter *Variation;
    BoolParameter *ScaleByTargetRadius;
};

class vrMKPConstantSizeModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *Width;
    RangedFloatParameter *Height;
    RangedFloatParameter *WidthVariation;
    RangedFloatParameter *HeightVariation;
    BoolParameter *ScaleByTargetRadius;
};

class vrMKPKeyedUniformSizeModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    KeyedFloatParameterClass *Size;
    RangedFloatParameter *Variation;
    BoolParameter *ScaleByTargetRadius;
};

/// Width and height by a curve each.
class vrMKPKeyedWidthAndHeightModifier : public vrMKPKeyedModifier
{
protected:
    vrMKPKeyedWidthAndHeightModifier();
    /// Writes up to MKP_CURVE_BLOCK sizes, from `first` on, with the curves at `times`.
    void Write_Keyed_Sizes(vrMKPBuffer &buffer, int first, int count, const float *times, float scale) const;

private:
    KeyedFloatParameterClass *Width;
    KeyedFloatParameterClass *Height;
    RangedFloatParameter *WidthVariation;
    RangedFloatParameter *HeightVariation;
};

class vrMKPKeyedSizeModifier final : public vrMKPKeyedWidthAndHeightModifier
{
public:
    vrMKPKeyedSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    BoolParameter *ScaleByTargetRadius;
};

/// The keys are over the distance from the centre of the layer in place of time.
class vrMKPKeyedSphericalSizeModifier final : public vrMKPKeyedWidthAndHeightModifier
{
public:
    vrMKPKeyedSphericalSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *StartRadius;
    RangedFloatParameter *EndRadius;
};

/// By the distance from the group along the level line toward the camera.
class vrMKPNearAndFarUniformSizeModifier final : public vrMKPModifier
{
public:
    vrMKPNearAndFarUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *NearDistance;
    RangedFloatParameter *FarDistance;
    RangedFloatParameter *NearSize;
    RangedFloatParameter *FarSize;
};
