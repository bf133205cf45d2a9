#pragma once

/// The light plugins of a group. Each runs one light source of the emitter, which lights the scene around it and, by
/// its name, the bump mapped particles that ask for it.

#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

class vrMKPLayer;
struct vrParticleLight;

/// `State` has what a light asks besides: the group's layers by name, and the count of particles that light.
struct vrMKPLightContext : vrMKPRenderableContext
{
    Mat3DClass Transform{};                 ///< of the renderable in the world, this frame, scale included
    const vrMKPLayer *FirstLayer = nullptr; ///< of the group; null where it has none
};

/// The base of all light controllers: the light's name, its reach, and how it follows the count of particles.
class vrMKPLightSourceController : public vrMKPPlugin
{
public:
    /// Writes the whole of the light for this frame. Once a frame, after the layers of the group have taken their step.
    void Update(vrParticleLight &light, const vrMKPLightContext &context) const;
    /// As the definition has it.
    std::string_view Get_Light_Name() const;

protected:
    vrMKPLightSourceController();

    /// Sets what a kind decides: colour, intensity and whether the light is on. Position and radii come with what all
    /// kinds have in common, and may be changed.
    virtual void Shine(vrParticleLight &light, const vrMKPLightContext &context) const = 0;
    const Vector3 &Get_Offset() const;

private:
    /// The part of the intensity that the count of particles gives, 0 to 1.
    float Get_Count_Scale(int particleCount) const;

    StringParameterClass *Name;
    BoolParameter *LightScene;
    Vector3Parameter *Offset;
    RangedFloatParameter *InnerRadius;
    RangedFloatParameter *OuterRadius;
    BoolParameter *UseParticleCount;
    RangedIntParameter *ParticleCount;
};
