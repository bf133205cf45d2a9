#pragma once

/// The light plugins of a group. Each runs one light source of the emitter, which lights the scene around it and, by
/// its name, the bump mapped particles that ask for it.

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// The base of all light controllers: the light's name, its reach, and how it follows the count of particles.
class vrMKPLightSourceController : public vrMKPPlugin
{
protected:
    vrMKPLightSourceController();
};
