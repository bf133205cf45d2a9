#pragma once

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// Random steps of place and velocity in each frame.
class vrMKPRandomWalkModifier final : public vrMKPModifier
{
public:
    vrMKPRandomWalkModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
