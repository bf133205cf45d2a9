#pragma once

/// The bases of the modifiers that write one attribute by a rule over time: between two ends, constant, or by keys.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"

/// Between two values over a span of the particle's normalised time.
class vrMKPLinearModifier : public vrMKPModifier
{
protected:
    vrMKPLinearModifier();
};

/// The same value in each frame, or only in the frame of the spawn.
class vrMKPConstantModifier : public vrMKPModifier
{
protected:
    vrMKPConstantModifier();
};

/// By curves, over the particle's normalised time if the derived class says nothing else.
class vrMKPKeyedModifier : public vrMKPModifier
{
protected:
    vrMKPKeyedModifier();
};
