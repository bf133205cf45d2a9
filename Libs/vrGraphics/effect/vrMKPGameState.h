#pragma once

#include "vrGraphics/particle/vrMKPRenderState.h"

/// What game code tells an emitter, for all of its renderables.
struct vrMKPGameState
{
    Vector3 TargetPosition{0.0f};
    Vector3 ProjectileTarget{0.0f}; ///< where the projectile's target is now
    Vector3 HomingTarget{0.0f};     ///< dynamic parameter 13
    float ProjectileSpeed = 0.0f;   ///< units a second
    float TargetCircleRadius = 0.0f;
    std::array<float, vrMKPRenderState::DYNAMIC_PARAMETER_COUNT> Dynamic{}; ///< by number, 1 to 15
    float Energy = 1.0f;        ///< strength, 0 to 1
    float GlobalDensity = 1.0f; ///< 0 to 1
    const vrCarrierModel *Carrier = nullptr; ///< borrowed; the model that the emitter is on
};
