#pragma once

/// The particles of a hardware layer, simulated on the processor in place of a device. They live in the renderable's
/// frame, all of them equally long, and what moves them is the same for all, so that neither behaviours nor the
/// channels of a layer's buffer come into it.

#include "vrGraphics/drivercommon/vrShaderInstance.h"
#include "vrGraphics/particle/vrHWParticleBuffer.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/ensembles/vrHWParticleLook.h"

#include <string>

class vrMKPHardwareSpawner;
struct vrMKPRenderState;

/// What a hardware spawner asks for. Seconds, and world units of the renderable's frame.
struct vrHWSpawnRules
{
    float Count = 0.0f; ///< in a burst, or a second
    float Life = 0.0f;
    bool IsBurst = false; ///< all at once at the start of each cycle, which is a life long
    float StartDelay = 0.0f;
    float StopTime = 0.0f; ///< after the start delay; 0 for never
};

/// What moves the particles.
struct vrHWForces
{
    Vector3 Acceleration{0.0f};
    float Attraction = 0.0f; ///< acceleration away from the origin; negative pulls
    Vector3 Axis{0.0f};      ///< through the origin, of unit length; or zero, and then the rest is 0 too
    float Rotation = 0.0f;   ///< speed about the axis, at any distance from it
    float Repulsion = 0.0f;  ///< acceleration away from the axis; negative pulls
};

/// Draws from a generator of its own: a seed gives the same births whatever the frame times are.
class vrHWParticles final : public vrHWParticleBuffer
{
public:
    /// The most that live at one time, whatever the spawner asks for.
    static constexpr int MAX_PARTICLES = 1 << 20;

    /// Room for what the spawner's values ask for now; they are read anew in each frame. With a count of 0; null, which
    /// is logged, when there is no memory. `layer` is the buffer that it stands beside, seeded for the run.
    static vrHWParticles *Create(const vrMKPHardwareSpawner &spawner, const vrMKPBuffer &layer);
    ~vrHWParticles() override;

    bool Update(float dt, const Vector3 &boxMinimum, const Vector3 &boxMaximum) override;
    /// Changes nothing: hardware particles ride with their group.
    void Update_Transform(int /*worldSpace*/) override {}
    void Stop_Spawning() override { IsStopped = true; }
    void Start_Spawning() override;
    bool Is_Finished() const override { return IsPastEnd && Particles->ActiveCount == 0; }
    void Render(vrRenderContext &context, const vrHWParticleLook &look) override;

    /// Position, velocity and age in seconds of the living, oldest first; the other channels mean nothing.
    const vrMKPBuffer &Get_Particles() const { return *Particles; }

private:
    vrHWParticles(const vrMKPHardwareSpawner &spawner, const vrMKPBuffer &layer, SmartPtr<vrMKPBuffer> particles);

    void Age_And_Move(float dt, float life, const vrHWForces &forces);
    /// Answers whether a cycle began.
    bool Spawn(const vrHWSpawnRules &rules, const vrHWForces &forces);
    /// Those due up to `now`, which is the spawning's own clock, as long as that doesn't pass `end`.
    void Spawn_At_Rate(const vrHWSpawnRules &rules, const vrHWForces &forces, double now, double end);
    /// The first is `age` seconds old, and each later one is `interval` younger.
    void Add(double count, double age, double interval, const vrHWForces &forces);

    /// Takes the shader that a look asks for; false when there is none.
    bool Ready_Shader(const vrHWParticleLook &look);

    SmartPtr<const vrMKPHardwareSpawner> Spawner;
    const vrMKPRenderState &State; ///< the renderable's, which outlives the layer's buffer
    SmartPtr<vrMKPBuffer> Particles;
    double Clock = 0.0; ///< seconds since spawning began, start delay included
    // On the same clock without the delay, of what is due next.
    double NextCycle = 0.0;
    double NextBirth = 0.0;
    bool IsStopped = false; ///< from outside
    bool IsPastEnd = false; ///< by the stop time
    float Life = 0.0f;      ///< of this frame

    // Made in the first draw, and again when the look asks for another.
    SmartPtr<vrShaderInstance> Shader;
    std::string ShaderName;
    vrHWParticleRenderMode ShaderMode = VR_HW_ALPHA_BLEND;
};
