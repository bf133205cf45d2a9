#pragma once

/// The stomper family: the plugins of a layer that end its particles. A stomper gives each particle its greatest age,
/// advances its age and its normalised time, and removes the dead.

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// The base of all stompers, with the parameters that each of them has, whether or not it heeds them.
class vrMKPStomper : public vrMKPPlugin
{
public:
    /// Called when the plugin's parameters were loaded or cloned.
    virtual bool Post_Load() { return true; }

protected:
    vrMKPStomper();
};
