#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/JsonText.h"
#include "vro/Workloads.h"

#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <vector>

namespace vro
{

namespace
{

constexpr float PLAY_SECONDS = 5.0f; ///< of an effect's start that count
constexpr int PLAY_FRAMES = static_cast<int>(PLAY_SECONDS / WORKLOAD_STEP);
constexpr int WARM_UP_FRAMES = static_cast<int>(1.25f * STEADY_LIFE / WORKLOAD_STEP);
constexpr int STEADY_FRAMES = static_cast<int>(STEADY_LIFE / WORKLOAD_STEP);
constexpr int DRAWN_FRAMES = 20;        ///< of a steady effect
constexpr double MEASURE_SECONDS = 0.5; ///< of repeating; the fastest repetition counts, which others disturbed least
constexpr int LEAST_REPEATS = 3;
constexpr int EMITTERS = 100;
constexpr int EMITTER_PARTICLES = 1000;
constexpr int BURST_PARTICLES = 100000;
constexpr double COUNT_TOLERANCE = 0.1;

using Clock = std::chrono::steady_clock;

double Seconds_Since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Part of the work of a frame, on average: its seconds, and the particles that it went through.
struct Stage
{
    double Seconds = 0.0;
    double Particles = 0.0;

    double Nanoseconds() const { return Particles > 0.0 ? Seconds / Particles * 1e9 : 0.0; }
    double Rate() const { return Seconds > 0.0 ? Particles / Seconds : 0.0; } ///< particles a second
};

/// What a draw costs ahead of the driver.
struct DrawStages
{
    Stage Selection; ///< of the living ones, by level of detail
    Stage Vertices;  ///< of the visible ones, with their sorting

    double Seconds() const { return Selection.Seconds + Vertices.Seconds; }
};

/// One line of the table. Times are in seconds; what wasn't measured is 0.
struct Result
{
    std::string Name;
    int Threads = 1;
    double Load = 0.0;  ///< from the file's bytes to an effect
    double Start = 0.0; ///< the first frame, which makes the buffers
    double Frame = 0.0; ///< one frame's simulation, on average
    double Live = 0.0;  ///< particles in a frame, on average; those born, of a burst
    int Peak = 0;
    DrawStages Draw;

    Stage Simulation() const { return {Frame, Live}; }
};

/// Calls `call(layer, buffer)` for what plays.
template <typename Call>
void For_Layers(const vrMKParticleEmitter &emitter, Call &&call)
{
    for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index) {
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(emitter.Peek_Particle_Renderable(index));
        for (int at = 0; group && at < group->Particle_Count(); ++at) {
            vrMKParticle &layer = *group->Get_Particle(at);
            vrMKPBuffer *buffer = layer.Get_Buffer();
            if (buffer && buffer->Active) call(layer, *buffer);
        }
    }
}

/// Effects in a scene of their own.
class Play
{
public:
    explicit Play(std::vector<SmartPtr<vrMKParticleEmitter>> emitters)
        : Emitters(std::move(emitters)), Scene(new vrSimpleScene)
    {
        View.Camera = Mat3DClass::Look_At({0.0f, -500.0f, 200.0f}, Vector3(0.0f));
        Scene->Set_Camera(View.Camera);
        for (const auto &emitter : Emitters) Scene->Add_Renderable(emitter.Get());
    }

    /// From the start again, also what has left the scene at its end.
    void Restart()
    {
        for (const auto &emitter : Emitters) {
            if (emitter->Get_Scene())
                emitter->Restart();
            else
                Scene->Add_Renderable(emitter.Get());
        }
    }

    /// The seconds that this many frames take.
    double Run(int frames)
    {
        const auto start = Clock::now();
        for (int frame = 0; frame < frames; ++frame) Scene->Update(WORKLOAD_STEP);
        return Seconds_Since(start);
    }

    int Count_Live() const
    {
        int live = 0;
        for (const auto &emitter : Emitters)
            For_Layers(*emitter, [&](const vrMKParticle &, const vrMKPBuffer &buffer) { live += buffer.ActiveCount; });
        return live;
    }

    /// Does what a render does ahead of the driver, and adds what it took.
    void Prepare_Draw(DrawStages &total)
    {
        Drawn.clear();
        for (const auto &emitter : Emitters)
            For_Layers(*emitter, [&](vrMKParticle &layer, const vrMKPBuffer &buffer) {
                const bool isDrawn = layer.Get_Visualizer() && !layer.Is_Suspended() && !layer.Is_Hardware();
                if (isDrawn && buffer.ActiveCount > 0) Drawn.push_back(&layer);
            });
        ParticleScratch::Reset();
        total.Selection.Seconds += Time_Drawn([this](vrMKParticle &layer) {
            layer.Pre_Render_Transform(View.Camera);
            layer.Select_Visible_Particles(View);
        });
        total.Vertices.Seconds += Time_Drawn(
            [this](vrMKParticle &layer) { layer.Get_Visualizer()->Pre_Visualize(*layer.Get_Buffer(), View); });
        for (const vrMKParticle *layer : Drawn) {
            total.Selection.Particles += layer->Get_Buffer()->ActiveCount;
            total.Vertices.Particles += layer->Get_Buffer()->VisibleCount;
        }
    }

private:
    template <typename Work>
    double Time_Drawn(Work &&work) const
    {
        const auto start = Clock::now();
        ThreadPool::Parallel_For(0, static_cast<int>(Drawn.size()), 1, [&](int first, int last) {
            for (int at = first; at < last; ++at) work(*Drawn[static_cast<size_t>(at)]);
        });
        return Seconds_Since(start);
    }

    vrPreRenderContext View;
    std::vector<vrMKParticle *> Drawn;
    std::vector<SmartPtr<vrMKParticleEmitter>> Emitters;
    SmartPtr<vrSimpleScene> Scene;
};

/// The least that `measure` answers over a while.
template <typename Measure>
double Fastest(Measure &&measure)
{
    double fastest = std::numeric_limits<double>::infinity();
    const auto start = Clock::now();
    for (int repeat = 0; repeat < LEAST_REPEATS || Seconds_Since(start) < MEASURE_SECONDS; ++repeat)
        fastest = std::min(fastest, measure());
    return fastest;
}

/// What the draws of so many frames cost on average; `begin` comes ahead of the first.
template <typename Begin>
void Measure_Draw(Play &play, int frames, Result &result, Begin &&begin)
{
    constexpr size_t QUAD_BYTES = 4 * sizeof(vrLitBumpVertex);
    if (!ParticleScratch::Start(2 * static_cast<size_t>(result.Peak) * QUAD_BYTES)) return;
    double least = std::numeric_limits<double>::infinity();
    Fastest([&] {
        DrawStages total;
        begin();
        for (int frame = 0; frame < frames; ++frame) {
            play.Run(1);
            play.Prepare_Draw(total);
        }
        for (Stage *stage : {&total.Selection, &total.Vertices}) {
            stage->Seconds /= frames;
            stage->Particles /= frames;
        }
        if (total.Seconds() < least) result.Draw = total;
        least = std::min(least, total.Seconds());
        return least;
    });
    ParticleScratch::Shutdown();
}

/// Frames once the count of particles has settled. Each repetition starts over: hours into a run the clocks of spawners
/// are too coarse for the count to be what was asked for.
void Measure_Steady(Play &play, Result &result)
{
    result.Start = play.Run(1);
    result.Frame = Fastest([&] {
                       play.Restart();
                       play.Run(WARM_UP_FRAMES);
                       return play.Run(STEADY_FRAMES);
                   }) /
                   STEADY_FRAMES;
    result.Live = result.Peak = play.Count_Live();
    Measure_Draw(play, DRAWN_FRAMES, result, [] {});
}

/// The frame in which all are born, with the buffers made before.
void Measure_Burst(Play &play, Result &result)
{
    result.Start = play.Run(1);
    result.Live = result.Peak = play.Count_Live();
    result.Frame = Fastest([&] {
        play.Restart();
        return play.Run(1);
    });
}

/// The first seconds from the start on, over and over.
void Measure_Effect(Play &play, Result &result)
{
    result.Start = play.Run(1);
    int64_t total = 0;
    const auto count = [&] {
        const int live = play.Count_Live();
        total += live;
        result.Peak = std::max(result.Peak, live);
    };
    count();
    for (int frame = 1; frame < PLAY_FRAMES; ++frame) {
        play.Run(1);
        count();
    }
    result.Live = static_cast<double>(total) / PLAY_FRAMES;
    result.Frame = Fastest([&] {
                       play.Restart();
                       return play.Run(PLAY_FRAMES);
                   }) /
                   PLAY_FRAMES;
    Measure_Draw(play, PLAY_FRAMES, result, [&] { play.Restart(); });
}

bool Measure_File(const std::string &file, Result &result, std::string &error)
{
    result.Name = file;
    SmartPtr<vrMKParticleEmitter> emitter;
    const auto load = [&] {
        const auto start = Clock::now();
        emitter = Load_Effect(file, error);
        return Seconds_Since(start);
    };
    result.Load = load();
    if (!emitter) return false;
    if (file != "-") result.Load = std::min(result.Load, Fastest(load)); // standard input can be read but once
    if (!emitter) return false;
    Play play({emitter});
    Measure_Effect(play, result);
    if (result.Peak > 0) return true;
    error = "no particle is born in the first " + std::to_string(PLAY_FRAMES) + " frames";
    return false;
}

/// A workload that is made here: how, how it is measured, and how many particles it must have.
struct BuiltIn
{
    const char *Name;
    SmartPtr<vrMKParticleEmitter> (*Make)(int particles);
    void (*Measure)(Play &play, Result &result);
    int Emitters;
    int Particles; ///< of each emitter
    int Threads;
};

SmartPtr<vrMKParticleEmitter> Steady(int particles)
{
    return Make_Steady(particles);
}
SmartPtr<vrMKParticleEmitter> Drawn(int particles)
{
    return Make_Steady(particles, WorkloadViewer::Billboard);
}

constexpr BuiltIn BUILT_INS[] = {
    {"steady 1k", Steady, Measure_Steady, 1, 1000, 1},
    {"steady 10k", Steady, Measure_Steady, 1, 10000, 1},
    {"steady 100k", Steady, Measure_Steady, 1, 100000, 1},
    {"steady 1M", Steady, Measure_Steady, 1, 1000000, 1},
    {"drawn 10k", Drawn, Measure_Steady, 1, 10000, 1},
    {"drawn 100k", Drawn, Measure_Steady, 1, 100000, 1},
    {"drawn 100x1k", Drawn, Measure_Steady, EMITTERS, EMITTER_PARTICLES, 1},
    {"drawn 100x1k", Drawn, Measure_Steady, EMITTERS, EMITTER_PARTICLES, 2},
    {"burst 100k", Make_Burst, Measure_Burst, 1, BURST_PARTICLES, 1},
    {"emitters 100x1k", Steady, Measure_Steady, EMITTERS, EMITTER_PARTICLES, 1},
    {"emitters 100x1k", Steady, Measure_Steady, EMITTERS, EMITTER_PARTICLES, 2},
};

bool Measure_Built_In(const BuiltIn &workload, Result &result, std::string &error)
{
    result.Name = workload.Name;
    result.Threads = workload.Threads;
    std::vector<SmartPtr<vrMKParticleEmitter>> emitters = {workload.Make(workload.Particles)};
    for (int copy = 1; copy < workload.Emitters; ++copy) emitters.emplace_back(emitters[0]->Clone(VR_CLONE_COPY));
    ThreadPool::System_Init(workload.Threads);
    Play play(std::move(emitters));
    workload.Measure(play, result);
    ThreadPool::System_Init(1);
    const double expected = static_cast<double>(workload.Emitters) * workload.Particles;
    if (std::abs(result.Live / expected - 1.0) <= COUNT_TOLERANCE) return true;
    error = std::to_string(static_cast<int64_t>(result.Live)) + " particles live, expected about " +
            std::to_string(static_cast<int64_t>(expected));
    return false;
}

std::string Cell(double value, double factor, int decimals)
{
    if (value <= 0.0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value * factor);
    return text;
}

void Print_Heading(size_t width)
{
    std::printf("%-*s  THREADS      LIVE      PEAK   LOAD ms  START ms   FRAME us  ns/PARTICLE  MILLIONS/s  SELECT ns  "
                "VERTEX ns  MILLIONS/s\n",
                static_cast<int>(width), "WORKLOAD");
}

void Print_Row(const Result &result, size_t width)
{
    const Stage simulation = result.Simulation();
    const DrawStages &draw = result.Draw;
    std::printf("%-*s  %7d %9.0f %9d %9s %9s %10s %12s %11s %10s %10s %11s\n", static_cast<int>(width),
                result.Name.c_str(), result.Threads, result.Live, result.Peak, Cell(result.Load, 1e3, 3).c_str(),
                Cell(result.Start, 1e3, 3).c_str(), Cell(result.Frame, 1e6, 2).c_str(),
                Cell(simulation.Nanoseconds(), 1.0, 2).c_str(), Cell(simulation.Rate(), 1e-6, 1).c_str(),
                Cell(draw.Selection.Nanoseconds(), 1.0, 2).c_str(), Cell(draw.Vertices.Nanoseconds(), 1.0, 2).c_str(),
                Cell(draw.Vertices.Rate(), 1e-6, 1).c_str());
    std::fflush(stdout); // each line as soon as it is known
}

Json To_Json(const Stage &stage)
{
    return {{"seconds", stage.Seconds},
            {"particles", stage.Particles},
            {"nanoseconds_per_particle", stage.Nanoseconds()},
            {"particles_per_second", stage.Rate()}};
}

/// The stages hold the seconds of a frame.
Json To_Json(const Result &result)
{
    Json stages = {{"simulation", To_Json(result.Simulation())}};
    if (result.Draw.Selection.Particles > 0.0) {
        stages["selection"] = To_Json(result.Draw.Selection);
        stages["vertices"] = To_Json(result.Draw.Vertices);
    }
    return {{"name", result.Name},
            {"threads", result.Threads},
            {"live", result.Live},
            {"peak", result.Peak},
            {"load_seconds", result.Load},
            {"start_seconds", result.Start},
            {"frame_seconds", result.Frame},
            {"nanoseconds_per_particle", result.Simulation().Nanoseconds()},
            {"particles_per_second", result.Simulation().Rate()},
            {"stages", std::move(stages)}};
}

/// Prints the table as it grows, or the JSON at the end.
class Report
{
public:
    Report(size_t width, bool asJson) : Width(width), AsJson(asJson)
    {
        if (!AsJson) Print_Heading(Width);
    }
    void Add(const Result &result)
    {
        if (AsJson)
            Results.push_back(To_Json(result));
        else
            Print_Row(result, Width);
    }
    void Finish() const
    {
        if (AsJson) std::fputs(To_Text({{"results", Results}}).c_str(), stdout);
    }

private:
    size_t Width;
    bool AsJson;
    Json Results = Json::array();
};

} // namespace

int Run_Bench(const std::vector<std::string> &files, bool asJson)
{
    constexpr size_t LEAST_WIDTH = 16;
    size_t width = LEAST_WIDTH;
    for (const std::string &file : files) width = std::max(width, file.size());
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(1);
    Report report(width, asJson);
    int code = EXIT_WELL;
    const auto add = [&](const Result &result, bool isMeasured, const std::string &error) {
        if (isMeasured)
            report.Add(result);
        else
            code = Fail(result.Name, error);
    };
    for (const std::string &file : files) {
        Result result;
        std::string error;
        const bool isMeasured = Measure_File(file, result, error);
        add(result, isMeasured, error);
    }
    for (const BuiltIn &workload : BUILT_INS) {
        if (!files.empty()) break;
        Result result;
        std::string error;
        const bool isMeasured = Measure_Built_In(workload, result, error);
        add(result, isMeasured, error);
    }
    report.Finish();
    return code;
}

} // namespace vro
