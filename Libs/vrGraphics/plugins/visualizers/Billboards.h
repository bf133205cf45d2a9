#pragma once

/// The visualizers that draw one quad for each visible particle. All of them are billboards that differ in how they
/// choose the two axes of the quad.

#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

/// Faces the camera, turned by the particle's rotation. The base of every quad visualizer.
class vrMKPBillboardVisualizer : public vrMKPSimpleVisualizer
{
public:
    vrMKPBillboardVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Set_Texture_Name(std::string_view value) { TextureName->Set_Value(value); }

private:
    TextureNameParameterClass *TextureName;
};

/// Has a fixed rotation, in the world's frame or in the renderable's.
class vrMKPXYZAlignedVisualizer final : public vrMKPBillboardVisualizer
{
public:
    vrMKPXYZAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Reaches from the source of a projectile to its target.
class vrMKPInstantProjectileVisualizer final : public vrMKPBillboardVisualizer
{
public:
    vrMKPInstantProjectileVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
