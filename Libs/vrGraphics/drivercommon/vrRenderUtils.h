#pragma once

/// Plain drawing on top of the driver, for the tool's helpers. Nothing happens without a driver. The main thread's.

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

struct vrRenderUtils
{
    static SmartPtr<vrTexture> Get_Generic_White_Texture();

    /// Opens a batch of quads on the screen. The modes are the blend and the depth of `Begin_Primitive_State`.
    static void Begin_Render_2D_Quad(vrTexture *texture, int renderMode = 0, int zMode = 0,
                                     vrSamplerType sampler = VR_SAMPLER_PLAIN);
    /// From the top left (x0, y0) to the bottom right (x1, y1); the screen goes from -1 to 1, with y up.
    static void Render_2D_Quad(float x0, float y0, float x1, float y1, float z, Vector2 uv0, Vector2 uv1,
                               vrColor color);
    static void End_Render_2D_Quad();
};
