// A frame of the built-in workloads, in nanoseconds a live particle, beside plain loops with the same arithmetic.
// simulate_bench [steady] [newborns] [emitters]: all three unless some are named.

#include "PlainLayer.h"
#include "Timing.h"

#include "vro/Workloads.h"

#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/ThreadPool.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace
{

constexpr float STEP = vro::WORKLOAD_STEP;
constexpr int WARM_UP = static_cast<int>(vro::STEADY_LIFE / STEP) + 10; ///< frames until the count no longer rises
constexpr int ROUNDS = 15;

/// Emitters of the steady workload in a scene of their own, warmed up.
class Stage
{
public:
    Stage(int emitters, int particlesEach, vro::WorkloadViewer viewer)
    {
        // Instances of one effect share its plugins, as they do in a game.
        const SmartPtr<vrMKParticleEmitter> prototype = vro::Make_Steady(particlesEach, viewer);
        for (int index = 0; index < emitters; ++index) {
            Emitters.emplace_back(prototype->Clone(VR_CLONE_COPY));
            Scene.Add_Renderable(Emitters.back().Get());
        }
        for (int frame = 0; frame < WARM_UP; ++frame) Scene.Update(STEP);
    }

    int Get_Live_Count() const
    {
        int count = 0;
        for (const auto &emitter : Emitters)
            count += static_cast<vrMKParticleGroup *>(emitter->Peek_Particle_Renderable(0))->Get_State().ParticleCount;
        return count;
    }
    /// Nanoseconds a particle of some frames.
    double Run(int frames)
    {
        double particles = 0.0;
        const double time = Timing::Nanoseconds([&] {
            for (int frame = 0; frame < frames; ++frame) {
                Scene.Update(STEP);
                particles += Get_Live_Count();
            }
        });
        if (particles < 1.0) std::abort(); // nothing was simulated
        return time / particles;
    }

private:
    vrSimpleScene Scene;
    std::vector<SmartPtr<vrMKParticleEmitter>> Emitters;
};

double Run_Plain(PlainLayer &layer, int frames)
{
    double particles = 0.0;
    const double time = Timing::Nanoseconds([&] {
        for (int frame = 0; frame < frames; ++frame) {
            layer.Step(STEP);
            particles += layer.Get_Live_Count();
        }
    });
    if (layer.Get_Checksum() == 12345.0f) std::abort(); // keeps the loops
    return time / particles;
}

void Bench_Steady(vro::WorkloadViewer viewer)
{
    const bool bounds = viewer == vro::WorkloadViewer::Billboard;
    std::printf("\nsteady%s\n%10s %12s %12s %8s\n", bounds ? ", with the box around the particles" : "", "particles",
                "ns/particle", "plain loops", "ratio");
    for (const int count : {1000, 10000, 100000, 1000000}) {
        Stage stage(1, count, viewer);
        PlainLayer plain(count + count / 20 + 1, static_cast<float>(count) / vro::STEADY_LIFE, vro::STEADY_LIFE,
                         bounds);
        for (int frame = 0; frame < WARM_UP; ++frame) plain.Step(STEP);
        const int frames = std::max(2000000 / count, 2);
        const auto [ours, limit] = Timing::Compare(
            ROUNDS, [&] { return stage.Run(frames); }, [&] { return Run_Plain(plain, frames); });
        std::printf("%10d %12.2f %12.2f %8.2f\n", stage.Get_Live_Count(), ours, limit, ours / limit);
    }
}

/// All newborns of one frame, which are most of the burst's cost.
void Bench_Newborns()
{
    constexpr int COUNT = 100000;
    const SmartPtr<vrMKParticleEmitter> emitter = vro::Make_Burst(COUNT);
    auto &group = *static_cast<vrMKParticleGroup *>(emitter->Peek_Particle_Renderable(0));
    vrSimpleScene scene;
    scene.Add_Renderable(emitter.Get());
    emitter->Set_Remove_On_Depleted(false);
    scene.Update(STEP);
    vrMKParticle &layer = *group.Get_Particle(0);
    vrMKPBuffer &buffer = *layer.Get_Buffer();
    PlainLayer plain(COUNT * 2, 1.0f, 1.0f, false);
    const auto [ours, limit] = Timing::Compare(
        ROUNDS,
        [&] {
            buffer.Reset();
            const double time = Timing::Nanoseconds([&] {
                layer.Get_Spawner()->Spawn(buffer);
                layer.Get_Stomper()->Init_New_Particles(buffer);
            });
            if (buffer.ActiveCount < COUNT / 2) std::abort();
            return time / buffer.ActiveCount;
        },
        [&] { return Timing::Nanoseconds([&] { plain.Spawn_All(COUNT); }) / COUNT; });
    std::printf("\nnewborns, ns each\n%12.1f plain loop %12.1f ratio %.2f\n", ours, limit, ours / limit);
}

/// What small layers cost by themselves: bare loops over many of them beside the same loops over one.
void Bench_Plain_Layers(int layers, int each)
{
    constexpr int FRAMES = 200;
    const auto make = [](int count) {
        auto layer = std::make_unique<PlainLayer>(count + count / 20 + 1, static_cast<float>(count) / vro::STEADY_LIFE,
                                                  vro::STEADY_LIFE, false);
        for (int frame = 0; frame < WARM_UP; ++frame) layer->Step(STEP);
        return layer;
    };
    const auto one = make(layers * each);
    std::vector<std::unique_ptr<PlainLayer>> many;
    for (int index = 0; index < layers; ++index) many.push_back(make(each));
    const auto [apart, together] = Timing::Compare(
        ROUNDS,
        [&] {
            double particles = 0.0;
            const double time = Timing::Nanoseconds([&] {
                for (int frame = 0; frame < FRAMES; ++frame)
                    for (const auto &layer : many) {
                        layer->Step(STEP);
                        particles += layer->Get_Live_Count();
                    }
            });
            return time / particles;
        },
        [&] { return Run_Plain(*one, FRAMES); });
    std::printf("%12.2f plain loops %23.2f ratio %.2f\n", apart, together, apart / together);
}

void Bench_Emitters()
{
    constexpr int EMITTERS = 100;
    constexpr int EACH = 1000;
    constexpr int FRAMES = 200; // what a pool takes to start is little beside them
    ThreadPool::System_Init(1);
    Stage one(1, EMITTERS * EACH, vro::WorkloadViewer::None);
    Stage many(EMITTERS, EACH, vro::WorkloadViewer::None);
    const auto [ours, limit] = Timing::Compare(
        ROUNDS, [&] { return many.Run(FRAMES); }, [&] { return one.Run(FRAMES); });
    std::printf("\n%d emitters of %d particles, ns/particle\n%12.2f one layer of as many %12.2f ratio %.2f\n", EMITTERS,
                EACH, ours, limit, ours / limit);
    Bench_Plain_Layers(EMITTERS, EACH);
    const auto [alone, together] = Timing::Compare(
        ROUNDS,
        [&] {
            ThreadPool::System_Init(1);
            return many.Run(FRAMES);
        },
        [&] {
            ThreadPool::System_Init(2);
            return many.Run(FRAMES);
        });
    std::printf("%12.2f on two threads %12.2f speed-up %.2f\n", alone, together, alone / together);
    ThreadPool::System_Shutdown();
}

} // namespace

int main(int count, char **names)
{
    const auto isAskedFor = [&](std::string_view name) {
        return count < 2 || std::find(names + 1, names + count, name) != names + count;
    };
    ThreadPool::System_Init(1);
    if (isAskedFor("steady")) {
        Bench_Steady(vro::WorkloadViewer::None);
        Bench_Steady(vro::WorkloadViewer::Billboard);
    }
    if (isAskedFor("newborns")) Bench_Newborns();
    if (isAskedFor("emitters")) Bench_Emitters();
    return 0;
}
