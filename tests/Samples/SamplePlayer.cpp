#include "Samples/SamplePlayer.h"

#include "vro/EffectFile.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKPGameState.h"

#include "MKLib/Parameters/SimpleParameters.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace MKTest
{

namespace
{

constexpr float PROJECTILE_SPEED = 250.0f;
const Vector3 START(0.0f, 0.0f, 30.0f);
const Vector3 VELOCITY(12.0f, 5.0f, 0.0f);
const Vector3 CAMERA(0.0f, -500.0f, 200.0f);

/// A roof of two triangles for those who spawn from a mesh, and a way to go.
void Furnish(vrSimpleCarrier &carrier)
{
    carrier.Add_Bone("root", Mat3DClass());
    carrier.Set_Mesh({{-20.0f, -10.0f, 0.0f}, {20.0f, -10.0f, 0.0f}, {20.0f, 10.0f, 8.0f}, {-20.0f, 10.0f, 8.0f}}, {},
                     {0, 1, 2, 0, 2, 3});
    carrier.Set_Trajectory({{0.0f, 0.0f, 0.0f}, {150.0f, 50.0f, 60.0f}, {300.0f, 100.0f, 0.0f}});
}

} // namespace

std::vector<std::string> Sample_Files()
{
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(MK_SAMPLES "/Art/Models"))
        if (entry.path().extension() == ".vro") files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string Sample_Name(const std::string &path)
{
    return std::filesystem::path(path).stem().string();
}

SamplePlayer::SamplePlayer(const std::string &path)
{
    std::string error;
    Emitter = vro::Load_Effect(path, error);
    if (!Emitter) throw std::runtime_error(path + ": " + error);
    Furnish(Carrier);
    Game.Carrier = &Carrier;
    Game.ProjectileSpeed = PROJECTILE_SPEED;
    Game.TargetCircleRadius = 40.0f;
    for (size_t number = 1; number < Game.Dynamic.size(); ++number)
        Game.Dynamic[number] = 0.05f * static_cast<float>(number);
    Game.Dynamic[vrMKPRenderState::DYNAMIC_TARGET_RADIUS] = Target.Get_Flight_Seconds(START, PROJECTILE_SPEED);

    Scene->Set_Camera(Mat3DClass::Look_At(CAMERA, Vector3(0.0f)));
    Camera->Set_Depth_Range(5.0f, 10000.0f);
    Camera->Set_Transform(Scene->Get_Camera());
    Scene->Set_Wind(Vector3(15.0f, 6.0f, 0.0f));
    Scene->Set_Sun_Direction(Vector3(0.6f, 0.0f, 0.8f));
    Scene->Set_Terrain(&Ground);
    Fix_Seeds();
    Place();
    Scene->Add_Renderable(Emitter.Get());
}

void SamplePlayer::Fix_Seeds()
{
    int32_t next = 1000;
    For_Layers([&](int, int, vrMKParticle &particle) {
        ++next;
        auto *seed = dynamic_cast<RangedIntParameter *>(particle.Get_Spawner()->Get_Parameter_By_Name("Random Seed"));
        if (seed && seed->Get_Value() == 0) seed->Set_Value(next);
    });
    for (int index = 0; index < Emitter->Get_Particle_Renderable_Count(); ++index) {
        vrMKPRenderable &renderable = *Emitter->Peek_Particle_Renderable(index);
        if (renderable.Get_Base_Random_Seed() == 0) renderable.Set_Base_Random_Seed(2001 + index);
        renderable.Seed_Instance();
        renderable.Get_State().Random.Seed(static_cast<uint32_t>(3001 + index));
    }
}

void SamplePlayer::Place()
{
    const double elapsed = Frame * static_cast<double>(STEP);
    Mat3DClass transform;
    transform.Set_Translation(START + VELOCITY * static_cast<float>(elapsed));
    Emitter->Set_Transform(transform);
    Carrier.Set_Transform(transform);
    Game.TargetPosition = Game.ProjectileTarget = Game.HomingTarget = Target.Get_Position(elapsed);
    Emitter->Set_Game_State(Game);
}

void SamplePlayer::Run_Frame()
{
    Place();
    if (Frame == 0) For_Groups([](int, vrMKParticleGroup &group) { group.Pre_Think(0.0f); }); // makes the buffers
    if (Frame == 1 || Frame == 40) Emitter->Spawn_Code_Particles(3);
    Scene->Update(STEP);
    ++Frame;
    For_Layers([&](int, int, vrMKParticle &particle) {
        particle.Pre_Render_Transform(Scene->Get_Camera());
        particle.Select_Visible_Particles({.Camera = Scene->Get_Camera()});
    });
}

void SamplePlayer::Draw()
{
    TheGraphicsDriver->Begin_Frame();
    Scene->Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false);
    TheGraphicsDriver->End_Frame();
    TheGraphicsDriver->Page_Flip(true);
}

void SamplePlayer::Run_Seconds(float seconds)
{
    for (int left = static_cast<int>(seconds / STEP + 0.5f); left > 0; --left) Run_Frame();
}

void SamplePlayer::Restart()
{
    Frame = 0;
    Fix_Seeds();
    Place();
    Emitter->Restart();
}

} // namespace MKTest
