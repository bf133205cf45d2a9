#pragma once

#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

/// Ends a whole renderable after a time.
class vrMKPRenderableKillerModifier final : public vrMKPRenderableModifier
{
public:
    vrMKPRenderableKillerModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Dims or tints the light that falls on a renderable through keyframes.
class vrMKPKeyedLightScaleRenderableModifier final : public vrMKPRenderableModifier
{
public:
    vrMKPKeyedLightScaleRenderableModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
