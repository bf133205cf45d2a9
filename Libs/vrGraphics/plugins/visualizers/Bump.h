#pragma once

/// Billboards that are always bump mapped: the normals of a quad lean away from a centre, so that flat particles take
/// the light as a round body.

#include "vrGraphics/plugins/visualizers/Billboards.h"
#include "vrGraphics/plugins/visualizers/BumpShading.h"

/// The base of the three, with "Curvature" C, which tells how far the normals lean: at each corner the normal is
/// (1 - C) a + C d scaled to unit length, where a is the camera's axis that points at the viewer and d the direction of
/// unit length from the centre to the corner. So 0 is the flat light of a billboard and 1 that of the round body alone.
/// Where d has no length, or the two cancel out, it is a.
class vrMKPCurvedBumpVisualizer : public vrMKPBillboardVisualizer
{
protected:
    explicit vrMKPCurvedBumpVisualizer(const vrMKPBumpShading &shading)
        : Shading(shading), Curvature(Add_Curvature(Parameters, shading))
    {
    }
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    bool Has_Bump() const override { return true; }

private:
    const vrMKPBumpShading &Shading;
    RangedFloatParameter *Curvature;
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
