#pragma once

/// The facts of one frame of one renderable: all that a plugin may ask about the thing that it plays in. The renderable
/// writes them before its layers take their step, and while they do nobody changes them, but for the counters and the
/// generator, which are of the thread that runs the renderable.

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/Random.h"

#include <array>

class vrCarrierModel;
class vrMKPEmitterFace;
class vrMKPLayerList;
class vrTerrain;

struct vrMKPRenderState
{
    /// Dynamic parameters by number; 1 to 15 are in use.
    static constexpr int DYNAMIC_PARAMETER_COUNT = 16;
    static constexpr int DYNAMIC_COLOR_TIME = 1; ///< "Dynamic Parameter 1": the time axis of keyed colours
    static constexpr int DYNAMIC_TARGET_RADIUS =
        7; ///< a radius for some effects, the seconds of a flight for projectiles

    vrMKPRenderState();
    vrMKPRenderState(const vrMKPRenderState &) = delete;
    vrMKPRenderState &operator=(const vrMKPRenderState &) = delete;

    const Vector3 Get_Position() const { return Transform.Get_Translation(); }
    const Vector3 Get_Previous_Position() const { return PreviousTransform.Get_Translation(); }
    /// Places the renderable, with the inverse. The old place becomes the previous one.
    void Move_To(const Mat3DClass &transform);
    /// The same without a way between: the previous place is the new one.
    void Place_At(const Mat3DClass &transform);
    float Get_Target_Radius() const { return Dynamic[DYNAMIC_TARGET_RADIUS]; }
    /// Whether particles go on being born in the ordinary way: in a scene, and shown.
    bool Is_Showing() const { return InScene && !Hidden; }

    // Time, in seconds.
    float FrameTime = 0.0f;       ///< the step of this frame
    float RunningTime = 0.0f;     ///< all steps since the start
    float StartTimeOffset = 0.0f; ///< added to the start delay of each spawner

    // Place. Transforms are free of the uniform scale, which stands apart: particles work in unscaled space.
    Mat3DClass Transform;        ///< from the renderable's frame to the world
    Mat3DClass InverseTransform; ///< kept beside it
    Mat3DClass PreviousTransform;
    bool IsInstantMove = false; ///< the way from the previous place is a jump, which nothing smooths

    // Scale.
    float RenderSizeMultiplier = 1.0f; ///< factor for sizes as they are drawn
    float SizeScale = 1.0f;            ///< a further factor where scale applies at spawn
    float PositionScale = 1.0f;
    Vector3 PositionOffset{0.0f};
    float VelocityScale = 1.0f;

    // Life.
    bool InScene = false;
    bool Hidden = false;
    bool IsProjectile = false; ///< a layer flies its particles to a target
    bool IsHoming = false;
    float Energy = 1.0f;        ///< strength, 0 to 1; scales rates and initial speeds
    float GlobalDensity = 1.0f; ///< 0 to 1; scales what is drawn and what deaths spawn
    int QualitySnapshot = 4;    ///< the global level when the effect started

    // What game code sets.
    std::array<float, DYNAMIC_PARAMETER_COUNT> Dynamic{};
    Vector3 HomingTarget{0.0f}; ///< dynamic parameter 13, the one that is a point
    Vector3 TargetPosition{0.0f};
    Vector3 ProjectileTargetStart{0.0f}; ///< the target as the effect started
    Vector3 ProjectileTarget{0.0f};      ///< the target now
    float ProjectileSpeed = 0.0f;        ///< units a second
    float TargetCircleRadius = 0.0f;

    // The look of what is drawn.
    RGBAClass ColorMultiplier; ///< the effect's tint: multiplies colours and alpha
    float TintAlpha = 1.0f;    ///< the renderable's own fade: multiplies alpha
    Vector3 LightScale{1.0f};  ///< multiplies the light that falls on lit particles

    // The view: the renderable's own camera, or else the one that draws.
    Mat3DClass Camera; ///< looks down its negative z axis

    // The world; null where there is none.
    const vrTerrain *Terrain = nullptr;
    const vrCarrierModel *Carrier = nullptr;
    Vector3 Wind{0.0f}; ///< units a second
    bool HasSun = false;
    Vector3 SunDirection{0.0f, 0.0f, 1.0f}; ///< toward the sun, unit length

    const vrMKPLayerList *Layers = nullptr;    ///< the group's own
    bool AreAllSlotsSeen = false;              ///< a layer of the group copies whole rings of others
    const vrMKPEmitterFace *Emitter = nullptr; ///< null for a renderable without one
    int32_t Seed = 0;                          ///< what the renderable drew for itself
    /// For draws that no seed repeats. Each renderable has one of its own, so that the threads don't meet in it and
    /// what one effect draws doesn't depend on what another one does.
    mutable RandomClass Random;

    // Counters of the frame.
    int ParticleCount = 0;
    int LightingParticleCount = 0; ///< of the layers that contribute to lighting
    int HardwareCycles = 0;        ///< cycles that hardware layers began, since the start
};
