#pragma once

#include <cstdint>

/// Kinds of post-effects, as bits.
enum vrPostFxEnum : uint32_t
{
    VR_POSTFX_BLOOM = 0x1,
    VR_POSTFX_HEAT_DISTORTION = 0x2,
    VR_POSTFX_DEPTH_OF_FIELD = 0x4,
    VR_POSTFX_HDR = 0x8,
    VR_POSTFX_GAME = 0x10,
    VR_POSTFX_ALL = 0x1f
};

/// Which post-effects a scene allows. A value: whoever changes it takes a copy and sets it back.
class vrSceneEffectsParams
{
public:
    /// Sets or clears exactly those bits.
    void Enable_PostFx(uint32_t mask, bool on) { PostFxMask = on ? PostFxMask | mask : PostFxMask & ~mask; }
    uint32_t Get_PostFx_Mask() const { return PostFxMask; }

private:
    uint32_t PostFxMask = VR_POSTFX_ALL;
};
