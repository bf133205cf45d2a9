#pragma once

#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrMovingTarget.h"
#include "vrGraphics/scene/vrSimpleCarrier.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <string>
#include <vector>

namespace MKTest
{

/// The paths of the samples' emitter files, sorted.
std::vector<std::string> Sample_Files();
/// The name of a sample, from its path.
std::string Sample_Name(const std::string &path);

/// Plays one sample, as the tool loads it, in a world that has something for each of them: level ground, wind, sun, a
/// moving target with a flight to it, a model that carries the effect, dynamic parameters, requests for code particles.
/// What takes its seed from a counter of the process gets a fixed one, so that it doesn't matter what played before.
class SamplePlayer
{
public:
    static constexpr float STEP = 1.0f / 30.0f;

    /// Throws when the file isn't to be had.
    explicit SamplePlayer(const std::string &path);

    /// A frame and the choice of what is drawn.
    void Run_Frame();
    void Run_Seconds(float seconds);
    /// Back to the start, in the world and in the seeds.
    void Restart();
    /// On the driver that there is.
    void Draw();

    /// Calls visit(renderable, layer, particle) for each layer, in the file's order.
    template <typename Visit>
    void For_Layers(Visit &&visit) const
    {
        For_Groups([&](int index, vrMKParticleGroup &group) {
            for (int layer = 0; layer < group.Particle_Count(); ++layer)
                visit(index, layer, *group.Get_Particle(layer));
        });
    }

private:
    template <typename Visit>
    void For_Groups(Visit &&visit) const
    {
        for (int index = 0; index < Emitter->Get_Particle_Renderable_Count(); ++index)
            if (auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(Emitter->Peek_Particle_Renderable(index)))
                visit(index, *group);
    }
    void Fix_Seeds();
    void Place();

    vrGroundPlane Ground;
    vrMovingTarget Target{Vector3(300.0f, 100.0f, 80.0f), Vector3(20.0f, -10.0f, 0.0f)};
    vrSimpleCarrier Carrier;
    vrMKPGameState Game;
    SmartPtr<vrMKParticleEmitter> Emitter;
    SmartPtr<vrSimpleScene> Scene{new vrSimpleScene};
    SmartPtr<vrCamera> Camera{new vrCamera};
    int Frame = 0; ///< those that ran
};

} // namespace MKTest
