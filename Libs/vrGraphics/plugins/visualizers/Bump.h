#pragma once

/// Billboards that are always bump mapped: the normals of a quad lean away from a centre, so that flat particles take
/// the light as a round body.

#include "vrGraphics/plugins/visualizers/Billboards.h"
#include "vrGraphics/plugins/visualizers/BumpShading.h"

/// The base of the three, with "Curvature", which tells how far the normals lean.
class vrMKPCurvedBumpVisualizer : public vrMKPBillboardVisualizer
{
protected:
    explicit vrMKPCurvedBumpVisualizer(const vrMKPBumpShading &shading) { Add_Curvature(Parameters, shading); }
};

/// Leans away from the layer's smoothed centroid.
class vrMKPSphericalBumpVisualizer final : public vrMKPCurvedBumpVisualizer
{
public:
    vrMKPSphericalBumpVisualizer() : vrMKPCurvedBumpVisualizer(SPHERICAL_BUMP_SHADING) {}
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// As the spherical one, in the X-Y plane only.
class vrMKPCylindricalBumpVisualizer final : public vrMKPCurvedBumpVisualizer
{
public:
    vrMKPCylindricalBumpVisualizer() : vrMKPCurvedBumpVisualizer(CYLINDRICAL_BUMP_SHADING) {}
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Leans away from each particle's own centre.
class vrMKPCenterToVertBumpVisualizer final : public vrMKPCurvedBumpVisualizer
{
public:
    vrMKPCenterToVertBumpVisualizer() : vrMKPCurvedBumpVisualizer(CENTER_TO_VERT_BUMP_SHADING) {}
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
