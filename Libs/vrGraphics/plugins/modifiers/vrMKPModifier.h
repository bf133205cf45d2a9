#pragma once

/// The modifier family: the plugins of a layer that change the attributes of its living particles, once a frame, in the
/// order in which the layer lists them. A modifier keeps nothing about a particle: what varies between particles comes
/// from the channels of the buffer, so that a modifier may be added, removed or moved at any time.

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// The base of all modifiers. It has no parameters of its own.
class vrMKPModifier : public vrMKPPlugin
{
};
