#pragma once

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// Lets particles bounce off, slide along or stick to the terrain.
class vrMKPTerrainBounceModifier final : public vrMKPModifier
{
public:
    vrMKPTerrainBounceModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
