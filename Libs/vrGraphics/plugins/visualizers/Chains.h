#pragma once

/// The visualizers that draw a ribbon through the particles of a buffer, in age order. All active particles are links:
/// a chain isn't thinned, sorted, bump mapped or lit.

#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

/// One ribbon that faces the camera.
class vrMKPChainVisualizer : public vrMKPSimpleVisualizer
{
public:
    vrMKPChainVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// All particles are links: a chain with holes in it is another chain.
    void Select_Visible_Particles(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const override {}
};

/// One ribbon that lies flat in the X-Y plane.
class vrMKPXYAlignedChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Of old files: a chain by another name.
class vrMKPStretchedTextureChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// One ribbon for each member of a spawn cluster.
class vrMKPMultiChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
