#pragma once

/// The modifiers that write width and height. "Uniform" ones write one number for both.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPLinearUniformSizeModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPLinearSizeModifier final : public vrMKPLinearModifier
{
public:
    vrMKPLinearSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPConstantUniformSizeModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPConstantSizeModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedUniformSizeModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPKeyedSizeModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// The keys are over the distance from the centre of the layer in place of time.
class vrMKPKeyedSphericalSizeModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedSphericalSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// By the distance from the group along the level line toward the camera.
class vrMKPNearAndFarUniformSizeModifier final : public vrMKPModifier
{
public:
    vrMKPNearAndFarUniformSizeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
