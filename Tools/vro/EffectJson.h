#pragma once

#include "vro/JsonText.h"

#include "MKLib/RefCount.h"

class vrMKParticleEmitter;

namespace vro
{

/// The whole effect.
Json Effect_To_Json(const vrMKParticleEmitter &emitter);
/// The effect that a document tells; what is left out keeps its default. Throws JsonError with the place of a fault.
SmartPtr<vrMKParticleEmitter> Effect_From_Json(const Json &document);

} // namespace vro
