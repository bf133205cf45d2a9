// What a layer's draw costs ahead of the driver, in nanoseconds a visible particle: selection, bounds, sorting and the
// building of vertices, beside a plain loop that writes as many bytes. `vertex_bench [NAME] [COUNT...]` measures the
// kinds whose names begin like that, with other counts of particles. The last column tells whether two builds make the
// same vertices.

#include "PlainQuads.h"
#include "Timing.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace
{

constexpr int ROUNDS = 15;
constexpr int MOST = 1000000;
const char *wanted = "";

bool Is_Wanted(const char *what)
{
    return std::strncmp(what, wanted, std::strlen(wanted)) == 0;
}

/// A layer that has been alive for a while, with its visualizer.
class Layer
{
public:
    Layer(int count, vrMKPPluginId kind)
        : Buffer(vrMKPBuffer::Create(count, "bench")),
          Visualizer(static_cast<vrMKPVisualizer *>(vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(kind))))
    {
        State.FrameTime = 1.0f / 60.0f;
        Buffer->State = &State;
        Buffer->TransformType = MKP_TRANSFORM_WORLD;
        int first = 0;
        Buffer->Grant_Slots(count, first);
        RandomClass random(5);
        for (int slot = 0; slot < count; ++slot) Fill(slot, random);
        Buffer->VisualizerData = Visualizer->Create_Buffer_Data(State);
        Context.Camera = Mat3DClass::Look_At({60.0f, -200.0f, 40.0f}, Vector3(0.0f));
    }

    void Set(const char *name, bool value)
    {
        static_cast<BoolParameter *>(Visualizer->Get_Parameter_By_Name(name))->Set_Value(value);
    }
    /// Nanoseconds a particle.
    template <typename Call>
    double Time(Call &&call)
    {
        const int frames = std::max(2000000 / Buffer->Capacity, 2);
        const double time = Timing::Nanoseconds([&] {
            for (int frame = 0; frame < frames; ++frame) call();
        });
        return time / (static_cast<double>(frames) * Buffer->Capacity);
    }
    double Select()
    {
        return Time([&] { Visualizer->Select_Visible_Particles(*Buffer, Context); });
    }
    double Measure()
    {
        vrBounds bounds;
        const double time = Time([&] { Visualizer->Compute_Bounds(*Buffer, &bounds); });
        if (!(bounds.Extent.x > 0.0f)) std::abort();
        return time;
    }
    double Build()
    {
        return Time([&] {
            ParticleScratch::Reset();
            Visualizer->Pre_Visualize(*Buffer, Context);
            if (ParticleScratch::Get_Used_Bytes() == 0) std::abort();
        });
    }
    vrMKPBuffer &Get_Buffer() { return *Buffer; }
    /// Of the vertices that `Build` left.
    uint32_t Get_Checksum() const
    {
        const auto &data = static_cast<const vrMKPSimpleVisualizerData &>(*Buffer->VisualizerData);
        const auto *bytes = static_cast<const uint8_t *>(data.Vertices);
        uint32_t sum = 2166136261u;
        for (size_t at = 0; at < static_cast<size_t>(data.VertexBytes); ++at) sum = (sum ^ bytes[at]) * 16777619u;
        return sum;
    }

private:
    void Fill(int slot, RandomClass &random)
    {
        const auto spread = [&random](float range) { return random.Get_Float(-range, range); };
        const auto word = [&random] { return random.Get_Byte() | random.Get_Byte() << 8 | random.Get_Byte() << 16; };
        const Vector3 position{spread(50.0f), spread(50.0f), spread(50.0f)};
        const Vector3 velocity{spread(5.0f), spread(5.0f), spread(5.0f)};
        Buffer->Position.Put(slot, position);
        Buffer->WorldPosition.Put(slot, position);
        Buffer->Velocity.Put(slot, velocity);
        Buffer->PreviousPosition.Put(slot, position - velocity * State.FrameTime);
        Buffer->Time[slot] = Buffer->Age[slot] = random.Get_Float(0.0f, 1.0f);
        Buffer->MaxAge[slot] = 1.0f;
        Buffer->ID[slot] = word();
        Buffer->UV[slot] = {0.25f, 0.5f};
        Buffer->DUV[slot] = {0.25f, 0.25f};
        Buffer->Color[slot] = word();
        Buffer->Size[slot] = {1.0f, 2.0f};
        Buffer->Rotation[slot] = word() & 0xfff;
    }

    vrMKPRenderState State;
    SmartPtr<vrMKPBuffer> Buffer;
    SmartPtr<vrMKPVisualizer> Visualizer;
    vrPreRenderContext Context;
};

void Print(const char *what, int count, double ours, double limit = 0.0, const Layer *built = nullptr)
{
    std::printf("%-28s %8d %10.2f", what, count, ours);
    if (limit > 0.0) std::printf(" %10.2f %8.2f", limit, ours / limit);
    if (built) std::printf("  %08x", built->Get_Checksum());
    std::printf("\n");
}

void Bench_Kind(const char *what, vrMKPPluginId kind, int count, void (*change)(Layer &) = nullptr)
{
    if (!Is_Wanted(what)) return;
    Layer layer(count, kind);
    if (change) change(layer);
    layer.Select();
    PlainQuads plain(count);
    const auto [ours, limit] = Timing::Compare(
        ROUNDS, [&] { return layer.Build(); }, [&] { return layer.Time([&] { plain.Build(); }); });
    if (plain.Get_Checksum() == 12345.0f) std::abort(); // keeps the loop
    Print(what, count, ours, limit, &layer);
}

/// Births of ten at a time.
void Make_Clusters(Layer &layer)
{
    constexpr int CLUSTER = 10;
    vrMKPBuffer &buffer = layer.Get_Buffer();
    buffer.ClusterSize = CLUSTER;
    for (int slot = 0; slot < buffer.Capacity; ++slot) {
        buffer.Number[slot] = static_cast<uint32_t>(slot);
        buffer.Age[slot] = static_cast<float>(slot / CLUSTER) * -0.001f;
    }
}

void Bench_Velocity_Bounds(int count)
{
    if (!Is_Wanted("bounds")) return;
    Layer moving(count, kvrMKPVelocityAlignedVisualizer);
    Layer plain(count, kvrMKPBillboardVisualizer);
    const auto [stretched, bounds] = Timing::Compare(
        ROUNDS, [&] { return moving.Measure(); }, [&] { return plain.Measure(); });
    Print("bounds, velocity aligned", count, stretched, bounds);
}

void Bench_Sorting(int count)
{
    if (!Is_Wanted("sorting")) return;
    Layer sorted(count, kvrMKPBillboardVisualizer);
    Layer unsorted(count, kvrMKPBillboardVisualizer);
    sorted.Set("Sort", true);
    sorted.Select();
    unsorted.Select();
    const auto [with, without] = Timing::Compare(
        ROUNDS, [&] { return sorted.Build(); }, [&] { return unsorted.Build(); });
    Print("sorting, on top", count, with - without);
}

void Bench_Selection(int count)
{
    if (!Is_Wanted("selection")) return;
    Layer all(count, kvrMKPBillboardVisualizer);
    Layer half(count, kvrMKPBillboardVisualizer);
    half.Get_Buffer().MinDynamicLOD = 0.5f;
    half.Get_Buffer().DynamicLODNear = half.Get_Buffer().DynamicLODFar = 0.0f;
    const auto [everyone, someone] = Timing::Compare(
        ROUNDS, [&] { return all.Select(); }, [&] { return half.Select(); });
    Print("selection of all", count, everyone);
    Print("selection of half", count, someone);
    const auto [bounds, again] = Timing::Compare(
        ROUNDS, [&] { return all.Measure(); }, [&] { return half.Measure(); });
    Print("bounds", count, std::min(bounds, again));
}

} // namespace

int main(int argumentCount, char **arguments)
{
    std::vector<int> counts;
    int at = 1;
    if (argumentCount > 1 && std::atoi(arguments[1]) == 0) wanted = arguments[at++];
    for (; at < argumentCount; ++at) counts.push_back(std::clamp(std::atoi(arguments[at]), 1, MOST));
    if (counts.empty()) counts = {1000, 10000, 100000, MOST};
    if (!ParticleScratch::Start(static_cast<size_t>(MOST) * 4 * sizeof(vrLitBumpVertex))) return 1;
    std::printf("%-28s %8s %10s %10s %8s  %s\n", "", "visible", "ns each", "plain loop", "ratio", "vertices");
    for (const int count : counts) {
        Bench_Kind("billboards", kvrMKPBillboardVisualizer, count);
        vrGraphicsDriver::Set_Gamma(2.2f);
        Bench_Kind("billboards, gamma 2.2", kvrMKPBillboardVisualizer, count);
        vrGraphicsDriver::Set_Gamma(1.0f);
        Bench_Kind("billboards, bump", kvrMKPBillboardVisualizer, count,
                   [](Layer &layer) { layer.Set("Enable Bump", true); });
        Bench_Kind("spherical bump", kvrMKPSphericalBumpVisualizer, count);
        Bench_Kind("velocity aligned", kvrMKPVelocityAlignedVisualizer, count);
        Bench_Kind("velocity aligned, bump", kvrMKPVelocityAlignedVisualizer, count,
                   [](Layer &layer) { layer.Set("Enable Bump", true); });
        Bench_Kind("velocity aligned, planar", kvrMKPVelocityAlignedPlanarVisualizer, count);
        Bench_Kind("velocity aligned, normal", kvrMKPVelocityAlignedNormalVisualizer, count);
        Bench_Kind("axis aligned", kvrMKPAxisAlignedVisualizer, count);
        Bench_Kind("chain", kvrMKPChainVisualizer, count);
        Bench_Kind("chains of 10", kvrMKPMultiChainVisualizer, count, Make_Clusters);
        Bench_Sorting(count);
        Bench_Selection(count);
        Bench_Velocity_Bounds(count);
    }
    ParticleScratch::Shutdown();
    return 0;
}
