#pragma once

/// The modifiers that multiply the colour by one that depends on where the particle stands. They read what an earlier
/// modifier of the same frame wrote, and so stand behind one that writes each frame.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

/// Measures the distance of a particle from the renderable, in the renderable's frame.
class vrMKPPositionalKeyedColorModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPPositionalKeyedColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    RangedFloatParameter *StartDistance;
    RangedFloatParameter *EndDistance;
    KeyedRGBAParameter *Color;
};

/// Turns the axis into the frame of the particle, so that a distance in the world counts from the world's origin.
class vrMKPPositionalColorModifier final : public vrMKPModifier
{
public:
    vrMKPPositionalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    Vector3Parameter *Axis;
    RangedFloatParameter *StartDistance;
    RangedFloatParameter *EndDistance;
    RGBAParameter *StartColor;
    RGBAParameter *EndColor;
};

/// By the distance along the level line from the renderable toward the camera; it counts from the origin of the space
/// in which the particles stand.
class vrMKPNearAndFarColorModifier final : public vrMKPModifier
{
public:
    vrMKPNearAndFarColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *NearDistance;
    RangedFloatParameter *FarDistance;
    RGBAParameter *NearColor;
    RGBAParameter *FarColor;
};

/// By the distance from the camera.
class vrMKPDepthColorModifier final : public vrMKPModifier
{
public:
    vrMKPDepthColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *NearDepth;
    RangedFloatParameter *FarDepth;
    RGBAParameter *NearColor;
    RGBAParameter *FarColor;
};

/// The parameters of a surface that the sun lights, about the centre of the layer. The dark side grows darker with the
/// number of particles. Without a sun nothing changes.
class vrMKPLitColorModifier : public vrMKPModifier
{
public:
    bool Depends_On_Count() const override { return true; }

protected:
    explicit vrMKPLitColorModifier(int32_t particleCountId);
    /// `Flat` leaves the height out.
    template <bool Flat>
    void Light(vrMKPBuffer &buffer, vrMKPSpan span) const;

private:
    RGBAParameter *LightColor;
    RGBAParameter *ShadowColor;
    RangedFloatParameter *LightWrap;
    RangedIntParameter *ParticleCount;
};

/// Lit by the sun as the side of an upright cylinder about the centre of the layer.
class vrMKPCylindricalColorModifier final : public vrMKPLitColorModifier
{
public:
    vrMKPCylindricalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;
};

/// Lit by the sun as a ball about the centre of the layer.
class vrMKPSphericalColorModifier final : public vrMKPLitColorModifier
{
public:
    vrMKPSphericalColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;
};

/// By the distance from the centre of the layer; in full force once there are as many particles as told.
class vrMKPRadialColorModifier final : public vrMKPModifier
{
public:
    vrMKPRadialColorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Depends_On_Count() const override { return true; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RGBAParameter *StartColor;
    RGBAParameter *EndColor;
    RangedFloatParameter *StartRadius;
    RangedFloatParameter *EndRadius;
    RangedIntParameter *ParticleCount;
};
