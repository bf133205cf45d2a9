#pragma once

#include "vrGraphics/scene/vrRenderable.h"

/// The placeholder that stands for a model which isn't there.
class vrDefaultModel final : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE

    vrDefaultModel *Clone(vrCloneType) const override { return new vrDefaultModel(*this); }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
