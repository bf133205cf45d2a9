#pragma once

/// The quads that follow their particle's motion: the long axis lies along the velocity, or along an axis that stands
/// in for it, and stretches with the speed. Motion is what the last frame did: without a frame time nothing is drawn.

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/visualizers/Billboards.h"

enum class vrMKPAlignment;
struct vrMKPVelocityView;

/// Turns about its velocity toward the camera; as the particles of a screen do, in the camera's plane.
class vrMKPVelocityAlignedVisualizer : public vrMKPBillboardVisualizer
{
public:
    vrMKPVelocityAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// As they were drawn in this frame, with the stretch in their radii. An anchor at one end moves the boxes in
    /// height alone.
    void Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const override;
    bool Has_Plain_Bounds() const override { return false; }

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    /// What tells the kinds apart.
    struct Kind
    {
        const char *ClassName; ///< in the log
        vrMKPAlignment Alignment;
        Vector3 Axis; ///< the fixed one, of any length
    };
    virtual Kind Get_Kind(const vrMKPBuffer &buffer) const;

private:
    vrMKPVelocityView Get_View(const Kind &kind, const Mat3DClass &camera) const;

    EnumParameterClass *AnchorPoint;
    EnumParameterClass *TextureRotation;
    RangedFloatParameter *SlowStretch;
    RangedFloatParameter *FastStretch;
    RangedFloatParameter *SlowSpeed; ///< units a second, as the next
    RangedFloatParameter *FastSpeed;
    /// Kept off the list on purpose, so that it's neither saved nor shown; drawing doesn't heed it.
    SmartPtr<BoolParameter> FixEdgeView;
};

/// Turns about its velocity toward a fixed "up", whatever the camera.
class vrMKPVelocityAlignedWorldSpaceVisualizer : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPVelocityAlignedWorldSpaceVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    Kind Get_Kind(const vrMKPBuffer &buffer) const override;

private:
    Vector3Parameter *UpAxis;
};

/// Lies across its velocity.
class vrMKPVelocityAlignedNormalVisualizer final : public vrMKPVelocityAlignedWorldSpaceVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    Kind Get_Kind(const vrMKPBuffer &buffer) const override;
};

/// Lies in the plane across an axis, along the part of its velocity that lies there too.
class vrMKPVelocityAlignedPlanarVisualizer final : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPVelocityAlignedPlanarVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    Kind Get_Kind(const vrMKPBuffer &buffer) const override;

private:
    Vector3Parameter *UpAxis;
};

/// Turns about a fixed axis toward the camera.
class vrMKPAxisAlignedVisualizer final : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPAxisAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    Kind Get_Kind(const vrMKPBuffer &buffer) const override;

private:
    Vector3Parameter *Axis;
};

/// Of old files: draws nothing, and keeps the parameters of a billboard.
class vrMKPKiteVisualizer final : public vrMKPBillboardVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Compute_Bounds(vrMKPBuffer & /*buffer*/, vrBounds * /*bounds*/) const override {}
    bool Has_Plain_Bounds() const override { return false; }

protected:
    void Do_Pre_Visualize(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const override {}
    void Do_Visualize(vrMKPBuffer & /*buffer*/, vrRenderContext & /*context*/) const override {}
};
