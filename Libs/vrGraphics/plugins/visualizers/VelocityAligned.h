#pragma once

/// The quads that follow their particle's motion: the long axis lies along the velocity, or along an axis that stands
/// in for it, and stretches with the speed.

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/visualizers/Billboards.h"

/// Turns about its velocity toward the camera.
class vrMKPVelocityAlignedVisualizer : public vrMKPBillboardVisualizer
{
public:
    vrMKPVelocityAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    /// Kept off the list on purpose, so that it's neither saved nor shown; drawing doesn't heed it.
    SmartPtr<BoolParameter> FixEdgeView;
};

/// Turns about its velocity toward a fixed "up", whatever the camera.
class vrMKPVelocityAlignedWorldSpaceVisualizer : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPVelocityAlignedWorldSpaceVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Lies across its velocity.
class vrMKPVelocityAlignedNormalVisualizer final : public vrMKPVelocityAlignedWorldSpaceVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Lies in the plane across an axis, along the part of its velocity that lies there too.
class vrMKPVelocityAlignedPlanarVisualizer final : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPVelocityAlignedPlanarVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Turns about a fixed axis toward the camera.
class vrMKPAxisAlignedVisualizer final : public vrMKPVelocityAlignedVisualizer
{
public:
    vrMKPAxisAlignedVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Of old files: draws nothing, and keeps the parameters of a billboard.
class vrMKPKiteVisualizer final : public vrMKPBillboardVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Compute_Bounds(vrMKPBuffer & /*buffer*/, vrBounds * /*bounds*/) const override {}
    bool Has_Plain_Bounds() const override { return false; }
};
