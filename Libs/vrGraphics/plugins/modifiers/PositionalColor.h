#pragma once

/// The modifiers that multiply the colour by one that depends on where the particle stands. They read what an earlier
/// modifier of the same frame wrote, and so stand behind one that writes each frame.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPPositionalKeyedColorModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPPositionalKeyedColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPPositionalColorModifier final : public vrMKPModifier
{
public:
    vrMKPPositionalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// By the distance from the group along the level line toward the camera.
class vrMKPNearAndFarColorModifier final : public vrMKPModifier
{
public:
    vrMKPNearAndFarColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// By the distance from the camera.
class vrMKPDepthColorModifier final : public vrMKPModifier
{
public:
    vrMKPDepthColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Lit by the sun as the side of an upright cylinder about the centre of the layer.
class vrMKPCylindricalColorModifier final : public vrMKPModifier
{
public:
    vrMKPCylindricalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Lit by the sun as a ball about the centre of the layer.
class vrMKPSphericalColorModifier final : public vrMKPModifier
{
public:
    vrMKPSphericalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPRadialColorModifier final : public vrMKPModifier
{
public:
    vrMKPRadialColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
