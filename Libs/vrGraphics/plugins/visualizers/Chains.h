#pragma once

/// The visualizers that draw a ribbon through the particles of a buffer, in age order. All active particles are links:
/// a chain isn't thinned, sorted, bump mapped or lit.

#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <span>

class vrMKPQuadDraw;
struct Mat3DClass;
struct vrMKPRibbonStyle;

/// One ribbon that faces the camera.
class vrMKPChainVisualizer : public vrMKPSimpleVisualizer
{
public:
    vrMKPChainVisualizer();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// All particles are links: a chain with holes in it is another chain.
    void Select_Visible_Particles(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const override {}

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    /// Builds the ribbons of the points in the entries, of which each ends at one of `ends`.
    void Draw_Ribbons(vrMKPQuadDraw &draw, std::span<const uint32_t> ends) const;
    /// Which way the width of a ribbon lies.
    virtual void Set_Facing(vrMKPRibbonStyle &style, const Mat3DClass &camera) const;
    /// What the log calls the kind.
    virtual const char *Get_Class_Name() const { return "vrMKPChainVisualizer"; }

private:
    vrMKPRibbonStyle Get_Style(const vrMKPQuadDraw &draw) const;

    RangedFloatParameter *FadeInDistance;
    RangedFloatParameter *FadeOutDistance;
    RangedFloatParameter *BreakDistance;
    BoolParameter *UseWrapLength;
    RangedFloatParameter *WrapLength;
    EnumParameterClass *WrapAnchor;
};

/// One ribbon that lies flat in the X-Y plane.
class vrMKPXYAlignedChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    const char *Get_Class_Name() const override { return "vrMKPXYAlignedChainVisualizer"; }
    void Set_Facing(vrMKPRibbonStyle &style, const Mat3DClass &camera) const override;
};

/// Of old files: a chain by another name.
class vrMKPStretchedTextureChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// A particle that has its place in one of several chains.
struct MultiChainPoint
{
    uint32_t Number; ///< the particle's serial number, which it keeps when its slot changes
    uint32_t Chain;
};

/// Keeps which chain each particle belongs to. A chain is a queue: the young come in at one end, most of the old go out
/// at the other, and those that die in between leave the rest in its order.
class vrMKPMultiChainVisualizerData final : public vrMKPSimpleVisualizerData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override;
    /// Drops the dead, and gives the newborn their places: those of a cluster go to one chain after the other.
    void Follow(const vrMKPBuffer &buffer);
    /// Puts the slots of what was followed into the entries, chain by chain, the oldest first, and answers where each
    /// chain ends.
    std::span<const uint32_t> List(const vrMKPBuffer &buffer);

private:
    std::vector<MultiChainPoint> Points; ///< of all chains, in ring order
    std::vector<uint32_t> Ends;          ///< by chain, in the entries
};

/// One ribbon for each member of a spawn cluster.
class vrMKPMultiChainVisualizer final : public vrMKPChainVisualizer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;

protected:
    void Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const override;
    const char *Get_Class_Name() const override { return "vrMKPMultiChainVisualizer"; }
};
