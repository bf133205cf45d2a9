#pragma once

/// The plugins of a renderable as a whole, a group of layers or a model: the physics that moves it, and the modifiers
/// that change or end it.
///
/// A renderable calls each of them once a frame, the physics first, on the thread that runs the renderable. What an
/// instance needs to remember (a random phase, a flight) stands in the data that `Create_Buffer_Data` makes once per
/// instance; `Reset` of the data makes the next call the first one of a new run. Nothing in these calls allocates.

#include "MKLib/Random.h"
#include "vrGraphics/particle/vrMKPBufferPluginData.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include <string_view>

/// What every plugin of a whole renderable is told of the frame.
struct vrMKPRenderableContext
{
    const vrMKPRenderState &State;
    float RunningTime;                     ///< seconds since the renderable's start, this frame's step included
    float Step;                            ///< seconds
    RandomGeneratorClass &Random;          ///< the instance's own
    vrMKPBufferPluginData *Data = nullptr; ///< the plugin's own for this instance; null where it keeps none
};

/// Looks renderables of the emitter up for those that follow them.
class vrMKPRenderableFinder
{
public:
    /// The world transform of this frame, scale included, of the renderable of that name, ignoring case, that stands
    /// ahead of the asking one in the emitter's list. False, with `transform` as it was, when there is none.
    virtual bool Find_Motion(std::string_view name, Mat3DClass &transform) const = 0;

protected:
    ~vrMKPRenderableFinder() = default;
};

struct vrMKPMotionContext : vrMKPRenderableContext
{
    Mat3DClass Base{}; ///< where the renderable stands without physics: the emitter's transform times its own offsets
    const vrMKPRenderableFinder *Ahead = nullptr;
};

/// Gives the renderable its motion, each frame anew, on top of the emitter's own. A renderable has exactly one.
class vrMKPRenderablePhysics : public vrMKPPlugin
{
public:
    /// Whether the lightweight instances of an emitter fly by a clone of it: true of projectiles.
    virtual bool Is_Shared_Physics() const { return false; }
    /// The renderable's world transform for this frame, scale included. With values in a file that are no numbers, it
    /// may not be valid: who calls asserts that, and stays at `Base`.
    virtual Mat3DClass Get_Motion(const vrMKPMotionContext &context) const { return context.Base; }
    /// Whether the instance that the data belongs to has reached its target. Null is an instance without data.
    virtual bool Has_Hit(const vrMKPBufferPluginData * /*data*/) const { return false; }
};

/// What the modifiers of a renderable make of its frame, one after the other. Starts each frame as it is here.
struct vrMKPRenderableOutcome
{
    float Fade = 1.0f;        ///< 0 to 1; multiplies the alpha of what is drawn
    Vector3 LightScale{1.0f}; ///< multiplies red, green and blue of the light that falls on the renderable
    bool Killed = false;      ///< the renderable is to be removed
};

struct vrMKPRenderableModifierContext : vrMKPRenderableContext
{
    bool ProjectileHit = false; ///< what the renderable's physics answered to `Has_Hit` after its motion of this frame
};

/// Changes a renderable in another way than by moving it. Killers are of this class too, under a family of their own.
class vrMKPRenderableModifier : public vrMKPPlugin
{
public:
    virtual void Update(vrMKPRenderableOutcome & /*outcome*/, const vrMKPRenderableModifierContext & /*context*/) const
    {
    }
};
