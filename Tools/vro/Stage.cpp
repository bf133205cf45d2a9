#include "vro/Stage.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/InputFile.h"
#include "vro/PlayOptions.h"

#include "vrGraphics/drivercommon/vrPicture.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrHeightField.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"

#include <glm/ext/vector_double3.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
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

} // namespace

std::unique_ptr<Stage> Stage::Open(const PlayOptions &options)
{
    std::string error;
    std::unique_ptr<vrTerrain> terrain;
    if (const auto *height = std::get_if<float>(&options.Terrain)) terrain = std::make_unique<vrGroundPlane>(*height);
    if (const auto *picture = std::get_if<PictureTerrain>(&options.Terrain)) {
        terrain = Load_Terrain(*picture, error);
        if (!terrain) {
            Fail(picture->Path, error);
            return nullptr;
        }
    }
    SmartPtr<vrMKParticleEmitter> emitter = Load_Effect(options.File, error);
    if (!emitter) {
        Fail(options.File, error);
        return nullptr;
    }
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u)));
    if (options.Quality) vrMKPSpawner::Set_Global_LOD(*options.Quality);
    return std::unique_ptr<Stage>(new Stage(options, std::move(emitter), std::move(terrain)));
}

Stage::Stage(const PlayOptions &options, SmartPtr<vrMKParticleEmitter> emitter, std::unique_ptr<vrTerrain> terrain)
    : Options(options), Emitter(std::move(emitter)), Terrain(std::move(terrain)), Scene(new vrSimpleScene),
      Orientation(Mat3DClass::From_Angles(options.Rotation * DEGREE)),
      Camera(Mat3DClass::Look_At(options.Camera, options.LookAt))
{
    if (Options.Target) Target = std::make_unique<vrMovingTarget>(*Options.Target, Options.TargetVelocity);
    Scene->Set_Camera(Camera);
    Scene->Set_Wind(Options.Wind);
    Scene->Set_Terrain(Terrain.get());
    Set_Game();
    Place(0.0);
    Emitter->Set_Alt_Index(Options.AltIndex);
    Scene->Add_Renderable(Emitter.Get());
}

Stage::~Stage()
{
    Scene->Remove_Renderable(Emitter.Get());
}

void Stage::Run_Frame(int frame)
{
    const double elapsed = (frame - 1) * static_cast<double>(Options.StepSeconds);
    if (frame == 1) {
        For_Groups([](vrMKParticleGroup &group) { group.Pre_Think(0.0f); }); // makes the buffers
    } else {
        Turn();
        Place(elapsed);
    }
    const auto hidden = Options.Hidden.find(frame);
    if (hidden != Options.Hidden.end()) Emitter->Set_Hidden(hidden->second);
    const auto spawn = Options.Spawns.find(frame);
    if (spawn != Options.Spawns.end()) Emitter->Spawn_Code_Particles(spawn->second);
    Scene->Update(Options.StepSeconds);
}

float Stage::Get_Time(int frame) const
{
    return static_cast<float>(frame * static_cast<double>(Options.StepSeconds));
}

void Stage::Select_Visible()
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

void Stage::Build_Vertices()
{
    vrPreRenderContext context;
    context.Camera = Camera;
    For_Groups([&](vrMKParticleGroup &group) {
        for (int layer = 0; layer < group.Particle_Count(); ++layer) {
            const vrMKParticle &particle = *group.Get_Particle(layer);
            vrMKPBuffer *buffer = particle.Get_Buffer();
            if (buffer && buffer->Active && particle.Get_Visualizer() && !particle.Is_Suspended())
                particle.Get_Visualizer()->Pre_Visualize(*buffer, context);
        }
    });
}

void Stage::Set_Game()
{
    constexpr int RADIUS = vrMKPRenderState::DYNAMIC_TARGET_RADIUS;
    Game.ProjectileSpeed = Options.ProjectileSpeed;
    if (Options.TargetRadius)
        Game.TargetCircleRadius = Game.Dynamic[RADIUS] = *Options.TargetRadius;
    else if (Target && Options.ProjectileSpeed > 0.0f) // projectiles read the seconds of their flight there
        Game.Dynamic[RADIUS] = Target->Get_Flight_Seconds(Options.Position, Options.ProjectileSpeed);
    for (const auto &[number, value] : Options.Dynamic) Game.Dynamic[static_cast<size_t>(number)] = value;
}

void Stage::Turn()
{
    if (Options.Spin == Vector3(0.0f)) return;
    const Mat3DClass turn = Mat3DClass::From_Angles(Options.Spin * (Options.StepSeconds * DEGREE));
    // By way of a unit quaternion, so that rounding doesn't stretch it over many frames.
    Orientation = Mat3DClass::From_Quaternion((turn * Orientation).Get_Rotation());
}

void Stage::Place(double elapsed)
{
    Mat3DClass transform = Orientation.Scaled(Options.Scale);
    transform.Set_Translation(Vector3(glm::dvec3(Options.Position) + glm::dvec3(Options.Velocity) * elapsed));
    Emitter->Set_Transform(transform);
    if (Target) Game.TargetPosition = Game.ProjectileTarget = Game.HomingTarget = Target->Get_Position(elapsed);
    Emitter->Set_Game_State(Game);
}

} // namespace vro
