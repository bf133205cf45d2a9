#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "vrGraphics/scene/vrRenderable.h"

/// A light of a scene, which lights what stands in it. Belongs to a light context, and to a renderable where that
/// brought it along: then it lasts for one render.
class vrLightSource : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE

    const RGBAClass &Get_Diffuse() const { return Diffuse; } ///< alpha has no meaning, as in the next
    void Set_Diffuse(const RGBAClass &color) { Diffuse = color; }
    const RGBAClass &Get_Specular() const { return Specular; }
    void Set_Specular(const RGBAClass &color) { Specular = color; }
    float Get_Intensity() const { return Intensity; } ///< multiplies both colours
    void Set_Intensity(float intensity) { Intensity = intensity; }

    /// The thing that brought it along; borrowed, null for a light of the scene's own.
    vrRenderable *Get_Owner() const { return Owner; }
    void Set_Owner(vrRenderable *owner) { Owner = owner; }
    /// Whether it is too far-reaching to be sorted into a light field.
    virtual bool Is_Left_Out_Of_Light_Field() const { return false; }

protected:
    vrLightSource() = default;

private:
    RGBAClass Diffuse;
    RGBAClass Specular;
    float Intensity = 1.0f;
    vrRenderable *Owner = nullptr;
};

/// A light that comes from one direction everywhere.
class vrDirectionalLight final : public vrLightSource
{
public:
    MK_RUN_TIME_TYPE

    vrDirectionalLight() = default;

    vrDirectionalLight *Clone(vrCloneType type) const override;
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Is_Left_Out_Of_Light_Field() const override { return true; }

    /// Where the light comes from: a unit vector, which far out on its way meets the light.
    const Vector3 &Get_Direction() const { return Direction; }
    void Set_Direction(const Vector3 &direction) { Direction = direction; }

private:
    Vector3 Direction{0.0f, 0.0f, -1.0f};
};
