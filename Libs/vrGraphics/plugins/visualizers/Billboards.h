#pragma once

/// The visualizers that draw one quad for each visible particle. All of them are billboards that differ in how they
/// choose the two axes of the quad.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

struct vrMKPSorting;
class vrMKPQuadDraw;

/// Faces the camera, turned by the particle's rotation. The base of every quad visualizer.
class vrMKPBillboardVisualizer : public vrMKPSimpleVisualizer
{
public:
    vrMKPBillboardVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// Looks up the light source that it takes its light from.
    void Bind_To_Emitter(vrMKPEmitterFace &emitter) override;

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    vrPrimVertexType Get_Vertex_Type() const override { return Has_Bump() ? VR_LIT_BUMP_VERTEX : VR_LIT_VERTEX; }
    void Set_Lighting(const vrMKPBuffer &buffer, const vrRenderContext &context) const override;
    void Share_Assets(const vrMKPSimpleVisualizer &from) override;
    void Load_Textures(bool force) override;
    void Set_Shader_Parameters() override;

    /// Whether it is bump mapped and lit.
    virtual bool Has_Bump() const;
    virtual vrMKPSorting Get_Sorting() const;
    BoolParameter &Get_Sort() const { return *Sorting.Sort; }
    /// The common head of a draw: false when there is nothing to draw, and otherwise with the particles in order.
    bool Begin_Draw(vrMKPQuadDraw &draw, vrMKPBuffer &buffer, const vrPreRenderContext &context) const;

private:
    void Light_By_Source(const vrMKPBuffer &buffer) const;
    void Light_By_Sun(const vrMKPBuffer &buffer) const;
    void Set_Light(const vrMKPBuffer &buffer, const Vector3 &position, const RGBAClass &color, float intensity) const;

    BoolParameter *EnableBump;
    TextureNameParameterClass *BumpTextureName;
    SortingParameters Sorting;
    LightingParameters Lighting;
    SmartPtr<vrTexture> BumpTexture;
    // Parameters of the shader, -1 for one that it doesn't have.
    int LightPosParameter = -1;
    int LightDiffuseParameter = -1;
    int EmissiveParameter = -1;
    int LightIndex = 0; ///< of the emitter's light sources
};

/// Has a fixed rotation, in the world's frame or in the renderable's.
class vrMKPXYZAlignedVisualizer final : public vrMKPBillboardVisualizer
{
public:
    vrMKPXYZAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    vrPrimVertexType Get_Vertex_Type() const override { return VR_LIT_VERTEX; }
    /// Whatever the parameters say of type and age.
    vrMKPSorting Get_Sorting() const override;

private:
    Mat3DClass Get_Alignment(const Mat3DClass &local) const;

    BoolParameter *LocalSpace;
    RangedFloatParameter *RotateX; ///< degrees, as the others
    RangedFloatParameter *RotateY;
    RangedFloatParameter *RotateZ;
};

/// Reaches from the source of a projectile, the renderable's position, to its target.
class vrMKPInstantProjectileVisualizer final : public vrMKPBillboardVisualizer
{
public:
    vrMKPInstantProjectileVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// Takes no light source.
    void Bind_To_Emitter(vrMKPEmitterFace &emitter) override;
    void Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const override;
    bool Has_Plain_Bounds() const override { return false; }

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;

private:
    EnumParameterClass *TextureRotation;
};
