#pragma once

/// The visualizers that draw nothing: one by intent, and those that exist so that old files load.

#include "vrGraphics/plugins/visualizers/BumpShading.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

/// Culled and thinned as any other, and without render modes, assets or shader.
class vrMKPNULLVisualizer final : public vrMKPVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrRenderPhaseEnum Get_Render_Phase() const override { return vrRenderPhaseEnum::Opaque; }
};

/// Once drew particles as lines; kept with its parameters, like the rest below.
class vrMKPLineVisualizer final : public vrMKPSimpleVisualizer
{
public:
    vrMKPLineVisualizer() : vrMKPSimpleVisualizer(true) {}
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPVolumetricVisualizer final : public vrMKPSimpleVisualizer
{
public:
    vrMKPVolumetricVisualizer() : vrMKPSimpleVisualizer(true) {}
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// The bump mapped billboard of the time before billboards could switch it on. A layer's load replaces it and the three
/// below by today's kinds, which take over each parameter whose name they share: so it has all of a billboard's, but
/// for the switch.
class vrMKPBumpMapVisualizer : public vrMKPSimpleVisualizer
{
public:
    vrMKPBumpMapVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Load_Assets(bool /*force*/, const vrMKPVisualizer * /*shared*/) override {}
};

class vrMKPObsoleteSphericalBumpVisualizer final : public vrMKPBumpMapVisualizer
{
public:
    vrMKPObsoleteSphericalBumpVisualizer() { Add_Curvature(Parameters, SPHERICAL_BUMP_SHADING); }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPObsoleteCylindricalBumpVisualizer final : public vrMKPBumpMapVisualizer
{
public:
    vrMKPObsoleteCylindricalBumpVisualizer() { Add_Curvature(Parameters, CYLINDRICAL_BUMP_SHADING); }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPObsoleteCenterToVertBumpVisualizer final : public vrMKPBumpMapVisualizer
{
public:
    vrMKPObsoleteCenterToVertBumpVisualizer() { Add_Curvature(Parameters, CENTER_TO_VERT_BUMP_SHADING); }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
