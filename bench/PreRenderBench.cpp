// What a scene of many layers costs ahead of its draws (selection, sorting and the building of vertices) on one thread
// and on two, in microseconds a frame. Layers of different groups go side by side; the scene itself is drawn on the
// null driver, so that nothing else is in the figures.

#include "Timing.h"
#include "vro/EffectFile.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr int ROUNDS = 15;
constexpr int FRAMES = 20; ///< a round
constexpr size_t SCRATCH_BYTES = 0x8000000;
constexpr const char *EFFECTS[] = {"campfire", "fountain",     "snow", "rain",   "waterfall",  "fireflies",
                                   "torch",    "magic_vortex", "dust", "portal", "bump_smoke", "smoke_column"};

/// Copies of samples side by side, after four seconds.
class Crowd
{
public:
    explicit Crowd(int copies) : Scene(new vrSimpleScene), Camera(new vrCamera)
    {
        for (int copy = 0; copy < copies; ++copy)
            for (const char *name : EFFECTS) Add(name);
        const float side = 100.0f * static_cast<float>(copies);
        Camera->Set_Perspective(1.0f, 4.0f / 3.0f);
        Camera->Set_Depth_Range(5.0f, 10000.0f);
        Camera->Set_Object_Fade_Depth(8000.0f);
        Camera->Set_Transform(Mat3DClass::Look_At({600.0f, -900.0f - side, 500.0f}, {600.0f, side, 0.0f}));
        Scene->Set_Camera(Camera->Get_Transform());
        for (int frame = 0; frame < 120; ++frame) Scene->Update(1.0f / 30.0f);
    }
    ~Crowd()
    {
        for (const auto &emitter : Emitters) Scene->Remove_Renderable(emitter.Get());
    }

    /// Microseconds of the pre-render of one frame.
    double Time(int threads)
    {
        ThreadPool::System_Init(threads);
        std::vector<double> times;
        for (int frame = 0; frame < FRAMES; ++frame) {
            vrGraphicsStats::Get_Stats(true);
            TheGraphicsDriver->Begin_Frame();
            Scene->Render(Camera.Get(), VR_RENDER_MODE_NORMAL, false);
            TheGraphicsDriver->End_Frame();
            Last = vrGraphicsStats::Get_Stats(true);
            times.push_back(Last.PrepareMicroseconds);
        }
        return Timing::Median(std::move(times));
    }
    const vrGraphicsStats::Values &Get_Last() const { return Last; }

private:
    void Add(const std::string &name)
    {
        std::string error;
        SmartPtr<vrMKParticleEmitter> emitter = vro::Load_Effect(MK_SAMPLES "/Art/Models/" + name + ".vro", error);
        if (!emitter) {
            std::fprintf(stderr, "%s: %s\n", name.c_str(), error.c_str());
            std::exit(1);
        }
        constexpr int COLUMNS = 12;
        const auto number = static_cast<int>(Emitters.size());
        Mat3DClass place;
        place.Set_Translation(
            {100.0f * static_cast<float>(number % COLUMNS), 100.0f * static_cast<float>(number / COLUMNS), 0.0f});
        emitter->Set_Transform(place);
        Scene->Add_Renderable(emitter.Get());
        Emitters.push_back(std::move(emitter));
    }

    SmartPtr<vrSimpleScene> Scene;
    SmartPtr<vrCamera> Camera;
    std::vector<SmartPtr<vrMKParticleEmitter>> Emitters;
    vrGraphicsStats::Values Last;
};

} // namespace

int main()
{
    Init_Floating_Point_Mode();
    if (!ParticleScratch::Start(SCRATCH_BYTES) || !vrNullDriverMethods::Init(nullptr, 640, 480)) return 1;
    vrNullDriverMethods::Set_Runs_Tasks(true);
    std::printf("%u processors\n", std::thread::hardware_concurrency());
    std::printf("%8s %8s %10s %12s %12s %8s\n", "emitters", "draws", "vertices", "1 thread us", "2 threads us",
                "faster");
    for (const int copies : {1, 4, 16}) {
        Crowd crowd(copies);
        const auto [one, two] = Timing::Compare(
            ROUNDS, [&] { return crowd.Time(1); }, [&] { return crowd.Time(2); });
        const vrGraphicsStats::Values &last = crowd.Get_Last();
        std::printf("%8d %8d %10d %12.0f %12.0f %8.2f\n", copies * static_cast<int>(std::size(EFFECTS)), last.Draws,
                    last.Vertices, one, two, one / two);
    }
    ThreadPool::System_Shutdown();
    vrNullDriverMethods::Shutdown();
    return 0;
}
