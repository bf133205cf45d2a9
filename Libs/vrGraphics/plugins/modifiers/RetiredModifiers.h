#pragma once

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// The modifiers of old files that do nothing any more: turbulence, and the follower of global trajectories.
class vrMKPRetiredModifier final : public vrMKPModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
