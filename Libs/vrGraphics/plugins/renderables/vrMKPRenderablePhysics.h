#pragma once

/// The plugins of a renderable as a whole, a group of layers or a model: the physics that moves it, and the modifiers
/// that change or end it.

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// Gives the renderable its motion, each frame anew, on top of the emitter's own. A renderable has exactly one.
class vrMKPRenderablePhysics : public vrMKPPlugin
{
public:
    /// Whether the lightweight instances of an emitter fly by a clone of it: true of projectiles.
    virtual bool Is_Shared_Physics() const { return false; }
};

/// Changes a renderable in another way than by moving it. Killers are of this class too, under a family of their own.
class vrMKPRenderableModifier : public vrMKPPlugin
{
};
