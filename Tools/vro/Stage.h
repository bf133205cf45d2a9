#pragma once

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/effect/vrMKPGameState.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrMovingTarget.h"
#include "vrGraphics/scene/vrSimpleScene.h"
#include "vrGraphics/particle/vrWorld.h"

#include <memory>

namespace vro
{

struct PlayOptions;

/// What the options say, told to an effect in its scene frame by frame. The clock of what moves starts with the first
/// frame.
class Stage
{
public:
    /// Loads the effect and the ground, and readies the process for playing. Null, with the message printed, when one
    /// of them can't be had. Borrows the options.
    static std::unique_ptr<Stage> Open(const PlayOptions &options);
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;
    ~Stage();

    /// Frames count from 1, and run in turn.
    void Run_Frame(int frame);
    /// Seconds from the start to the end of a frame's step.
    float Get_Time(int frame) const;
    /// As a draw would: places what depends on the view, then picks what is seen.
    void Select_Visible();
    /// Builds the vertices of what was picked, in scratch memory.
    void Build_Vertices();

    vrMKParticleEmitter &Get_Emitter() { return *Emitter; }
    vrSimpleScene &Get_Scene() { return *Scene; }
    const Mat3DClass &Get_Camera() const { return Camera; }

private:
    Stage(const PlayOptions &options, SmartPtr<vrMKParticleEmitter> emitter, std::unique_ptr<vrTerrain> terrain);
    void Set_Game();
    void Turn();
    void Place(double elapsed);

    template <typename Call>
    void For_Groups(Call &&call)
    {
        for (int index = 0; index < Emitter->Get_Particle_Renderable_Count(); ++index)
            if (auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(Emitter->Peek_Particle_Renderable(index)))
                call(*group);
    }

    const PlayOptions &Options;
    SmartPtr<vrMKParticleEmitter> Emitter;
    std::unique_ptr<vrTerrain> Terrain;
    std::unique_ptr<vrMovingTarget> Target;
    SmartPtr<vrSimpleScene> Scene;
    Mat3DClass Orientation;
    Mat3DClass Camera;
    vrMKPGameState Game;
};

} // namespace vro
