#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/InputFile.h"
#include "vro/SimulateJson.h"
#include "vro/SimulateOptions.h"

#include "vrGraphics/drivercommon/vrPicture.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrHeightField.h"
#include "vrGraphics/scene/vrMovingTarget.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"

#include <glm/ext/vector_double3.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <memory>
#include <thread>

namespace vro
{

namespace
{

constexpr float DEGREE = 0.017453292f; ///< in radians

std::unique_ptr<vrTerrain> Load_Terrain(const PictureTerrain &terrain, std::string &error)
{
    const auto input = InputFile::Open(terrain.Path, error);
    vrPicture picture;
    if (!input || !picture.Load(input->Get_File(), error)) return nullptr;
    return std::make_unique<vrHeightField>(picture.Get_Grey(), picture.Get_Width(), picture.Get_Height(), terrain.SizeX,
                                           terrain.SizeY, terrain.Height);
}

/// What the options say, told to an effect in its scene frame by frame. The clock of what moves starts with the first
/// frame.
class Stage
{
public:
    Stage(const SimulateOptions &options, vrMKParticleEmitter &emitter, std::unique_ptr<vrTerrain> terrain)
        : Options(options), Emitter(emitter), Terrain(std::move(terrain)), Scene(new vrSimpleScene),
          Orientation(Mat3DClass::From_Angles(options.Rotation * DEGREE))
    {
        if (Options.Target) Target = std::make_unique<vrMovingTarget>(*Options.Target, Options.TargetVelocity);
        Camera = Mat3DClass::Look_At(Options.Camera, Options.LookAt);
        Scene->Set_Camera(Camera);
        Scene->Set_Wind(Options.Wind);
        Scene->Set_Terrain(Terrain.get());
        Set_Game();
        Place(0.0);
        Emitter.Set_Alt_Index(Options.AltIndex);
        Scene->Add_Renderable(&Emitter);
    }

    void Run_Frame(int frame)
    {
        const double elapsed = (frame - 1) * static_cast<double>(Options.StepSeconds);
        if (frame == 1) {
            For_Groups([](vrMKParticleGroup &group) { group.Pre_Think(0.0f); }); // makes the buffers
        } else {
            Turn();
            Place(elapsed);
        }
        const auto hidden = Options.Hidden.find(frame);
        if (hidden != Options.Hidden.end()) Emitter.Set_Hidden(hidden->second);
        const auto spawn = Options.Spawns.find(frame);
        if (spawn != Options.Spawns.end()) Emitter.Spawn_Code_Particles(spawn->second);
        Scene->Update(Options.StepSeconds);
    }

    /// As a draw would: places what depends on the view, then picks what is seen.
    void Select_Visible()
    {
        vrPreRenderContext context;
        context.Camera = Camera;
        For_Groups([&](vrMKParticleGroup &group) {
            for (int layer = 0; layer < group.Particle_Count(); ++layer) {
                group.Get_Particle(layer)->Pre_Render_Transform(Camera);
                group.Get_Particle(layer)->Select_Visible_Particles(context);
            }
        });
    }

private:
    template <typename Call>
    void For_Groups(Call &&call)
    {
        for (int index = 0; index < Emitter.Get_Particle_Renderable_Count(); ++index)
            if (auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(Emitter.Peek_Particle_Renderable(index))) call(*group);
    }

    void Set_Game()
    {
        constexpr int RADIUS = vrMKPRenderState::DYNAMIC_TARGET_RADIUS;
        Game.ProjectileSpeed = Options.ProjectileSpeed;
        if (Options.TargetRadius)
            Game.TargetCircleRadius = Game.Dynamic[RADIUS] = *Options.TargetRadius;
        else if (Target && Options.ProjectileSpeed > 0.0f) // projectiles read the seconds of their flight there
            Game.Dynamic[RADIUS] = Target->Get_Flight_Seconds(Options.Position, Options.ProjectileSpeed);
        for (const auto &[number, value] : Options.Dynamic) Game.Dynamic[static_cast<size_t>(number)] = value;
    }

    void Turn()
    {
        if (Options.Spin == Vector3(0.0f)) return;
        const Mat3DClass turn = Mat3DClass::From_Angles(Options.Spin * (Options.StepSeconds * DEGREE));
        // By way of a unit quaternion, so that rounding doesn't stretch it over many frames.
        Orientation = Mat3DClass::From_Quaternion((turn * Orientation).Get_Rotation());
    }

    void Place(double elapsed)
    {
        Mat3DClass transform = Orientation.Scaled(Options.Scale);
        transform.Set_Translation(Vector3(glm::dvec3(Options.Position) + glm::dvec3(Options.Velocity) * elapsed));
        Emitter.Set_Transform(transform);
        if (Target) Game.TargetPosition = Game.ProjectileTarget = Game.HomingTarget = Target->Get_Position(elapsed);
        Emitter.Set_Game_State(Game);
    }

    const SimulateOptions &Options;
    vrMKParticleEmitter &Emitter;
    std::unique_ptr<vrTerrain> Terrain;
    std::unique_ptr<vrMovingTarget> Target;
    SmartPtr<vrSimpleScene> Scene;
    Mat3DClass Orientation;
    Mat3DClass Camera;
    vrMKPGameState Game;
};

} // namespace

int Run_Simulate(const SimulateOptions &options)
{
    std::string error;
    std::unique_ptr<vrTerrain> terrain;
    if (const auto *height = std::get_if<float>(&options.Terrain)) terrain = std::make_unique<vrGroundPlane>(*height);
    if (const auto *picture = std::get_if<PictureTerrain>(&options.Terrain)) {
        terrain = Load_Terrain(*picture, error);
        if (!terrain) return Fail(picture->Path, error);
    }
    const auto emitter = Load_Effect(options.File, error);
    if (!emitter) return Fail(options.File, error);

    Init_Floating_Point_Mode();
    ThreadPool::System_Init(static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u)));
    if (options.Quality) vrMKPSpawner::Set_Global_LOD(*options.Quality);
    Stage stage(options, *emitter, std::move(terrain));
    SimulateJson json(options.Channels);
    for (int frame = 1; frame <= options.Frames; ++frame) {
        stage.Run_Frame(frame);
        if (!options.Is_Reported(frame)) continue;
        stage.Select_Visible();
        const auto time = static_cast<float>(frame * static_cast<double>(options.StepSeconds));
        if (!json.Add_Frame(frame, time, *emitter)) return EXIT_BAD_DATA;
    }
    return json.Finish() ? EXIT_WELL : EXIT_BAD_DATA;
}

} // namespace vro
