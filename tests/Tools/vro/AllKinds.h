#pragma once

#include "MKLib/RefCount.h"

class vrMKPPlugin;
class vrMKParticleEmitter;

namespace vroTest
{

/// Gives every parameter another value than its default, of every form that its kind has.
void Change_All_Values(vrMKPPlugin &plugin);

/// An effect that holds one plugin of each kind, with changed values. Sets `count` to the number of plugins.
SmartPtr<vrMKParticleEmitter> Make_Effect_Of_All_Kinds(int &count);

} // namespace vroTest
