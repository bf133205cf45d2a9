#include "vrGraphics/drivercommon/vrRenderUtils.h"

SmartPtr<vrTexture> vrRenderUtils::Get_Generic_White_Texture()
{
    return TheGraphicsDriver ? TheGraphicsDriver->Get_Generic_Texture() : nullptr;
}

void vrRenderUtils::Begin_Render_2D_Quad(vrTexture *texture, int renderMode, int zMode, vrSamplerType sampler)
{
    if (!TheGraphicsDriver) return;
    TheGraphicsDriver->Set_Screen_Space(true);
    TheGraphicsDriver->Set_Texture(0, texture ? texture : TheGraphicsDriver->Get_Generic_Texture().Get(), sampler);
    TheGraphicsDriver->Begin_Primitive_State(0, renderMode, zMode);
}

void vrRenderUtils::Render_2D_Quad(float x0, float y0, float x1, float y1, float z, Vector2 uv0, Vector2 uv1,
                                   vrColor color)
{
    if (!TheGraphicsDriver) return;
    vrPrimVertex *vertices = nullptr;
    if (!TheGraphicsDriver->Begin_Prim_Vertices(VR_PRIMITIVE_QUADS, 4, &vertices)) return;
    vertices[0] = {{x0, y0, z}, uv0, color};
    vertices[1] = {{x0, y1, z}, {uv0.x, uv1.y}, color};
    vertices[2] = {{x1, y1, z}, uv1, color};
    vertices[3] = {{x1, y0, z}, {uv1.x, uv0.y}, color};
    TheGraphicsDriver->End_Prim_Vertices();
}

void vrRenderUtils::End_Render_2D_Quad()
{
    if (!TheGraphicsDriver) return;
    TheGraphicsDriver->End_Primitive_State();
    TheGraphicsDriver->Set_Screen_Space(false);
}
