#pragma once

#include <cstdint>

/// What a render of a scene is for: one bit each, so that a renderable can tell in one mask where it shows.
enum vrRenderModeType : uint32_t
{
    VR_RENDER_MODE_NORMAL = 0x1,
    VR_RENDER_MODE_REFLECTION = 0x2,
    VR_RENDER_MODE_REFRACTION = 0x4,
    VR_RENDER_MODE_SHADOW_MAP = 0x8,
    // Sub-modes of the normal one, which the driver takes while it draws; no scene is rendered with the first.
    VR_RENDER_MODE_OFFSCREEN = 0x80,    ///< into a target of its own, tested against the scene's depth by the shaders
    VR_RENDER_MODE_FULL_SCREEN = 0x100, ///< without depth
};
