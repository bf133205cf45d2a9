#pragma once

/// Codes of the fixed states of a device. A block of three is set at once, and only when it differs from the last.
enum vrRenderStateCode : int
{
    // Depth and stencil.
    VR_DEPTH_NONE = 2000, ///< neither tested nor written
    VR_DEPTH_TEST_WRITE = 2001,
    VR_DEPTH_TEST = 2002,           ///< tested, not written
    VR_DEPTH_WRITE = 2003,          ///< written, whatever is there
    VR_DEPTH_NONE_OFFSCREEN = 2022, ///< as 2000, where the depth is the shader's matter
                                    // Blend.
    VR_BLEND_OPAQUE = 2004,
    VR_BLEND_ALPHA = 2005,    ///< source alpha over
    VR_BLEND_ADDITIVE = 2006, ///< source alpha times source, added
    VR_BLEND_MODULATE = 2007, ///< multiplies the target
    VR_BLEND_MODULATE_2X = 2008,
    VR_BLEND_PREMULTIPLIED = 2009, ///< source, over by its alpha
    VR_BLEND_ADD_ONE = 2010,       ///< source as it is, added
    VR_BLEND_SUBTRACT = 2011,
    // Rasterize.
    VR_RASTERIZE_CULL_NONE = 2012,
    VR_RASTERIZE_CULL_BACK = 2013,
    VR_RASTERIZE_CULL_FRONT = 2014,
    VR_RASTERIZE_WIREFRAME = 2015,

    VR_RENDER_STATE_INVALID = 2029
};

struct vrRenderStateBlock
{
    int m_rasterizeState = VR_RASTERIZE_CULL_NONE;
    int m_blendState = VR_BLEND_OPAQUE;
    int m_depthStencilState = VR_DEPTH_TEST_WRITE;

    friend bool operator==(const vrRenderStateBlock &, const vrRenderStateBlock &) = default;
};
