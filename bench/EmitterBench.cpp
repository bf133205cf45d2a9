// Load, clone, save, dump and build of one emitter, and the plugin registry, each beside its limit.

#include "BareFiles.h"

#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include "MKLib/Parameters/Parameter.h"

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

constexpr const char *SAMPLE = MK_SAMPLES "/Art/Models/campfire.vro";

const std::vector<unsigned char> &File()
{
    static const std::vector<unsigned char> bytes = BareFiles::Read(SAMPLE);
    return bytes;
}

SmartPtr<vrMKParticleEmitter> Loaded()
{
    std::string error;
    const auto emitter =
        vro::Load_Effect(std::string_view(reinterpret_cast<const char *>(File().data()), File().size()), SAMPLE, error);
    if (!emitter) std::abort();
    return emitter;
}

void Load(benchmark::State &state)
{
    for (auto _ : state) benchmark::DoNotOptimize(Loaded());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(BareFiles::Inflate(File()).size()));
}
BENCHMARK(Load);

void LimitOfLoad_BareInflate(benchmark::State &state)
{
    const size_t size = BareFiles::Inflate(File()).size();
    std::vector<unsigned char> output(size);
    z_stream stream{};
    inflateInit(&stream);
    for (auto _ : state) {
        inflateReset(&stream);
        stream.next_in = const_cast<unsigned char *>(File().data()) + 36;
        stream.avail_in = static_cast<uInt>(File().size() - 36);
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
        benchmark::DoNotOptimize(inflate(&stream, Z_FINISH));
    }
    inflateEnd(&stream);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}
BENCHMARK(LimitOfLoad_BareInflate);

void CloneForEditing(benchmark::State &state)
{
    const auto emitter = Loaded();
    for (auto _ : state) {
        const SmartPtr<vrMKParticleEmitter> clone = emitter->Clone(VR_CLONE_COPY);
        benchmark::DoNotOptimize(clone.Get());
    }
}
BENCHMARK(CloneForEditing);

/// As many blocks of the same size as the parameters of the effect.
void LimitOfClone_Allocations(benchmark::State &state)
{
    const size_t bytes = Loaded()->Get_Memory_Usage(true);
    constexpr size_t BLOCK = 64;
    std::vector<void *> blocks(bytes / BLOCK);
    for (auto _ : state) {
        for (void *&block : blocks) {
            block = std::malloc(BLOCK);
            std::memset(block, 0, BLOCK);
        }
        benchmark::DoNotOptimize(blocks.data());
        for (void *block : blocks) std::free(block);
    }
}
BENCHMARK(LimitOfClone_Allocations);

void Save(benchmark::State &state)
{
    const auto emitter = Loaded();
    std::string bytes;
    std::string error;
    for (auto _ : state) {
        if (!vro::Save_Effect(*emitter, vro::TOOL_MODE, bytes, error)) std::abort();
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(BareFiles::Inflate(File()).size()));
}
BENCHMARK(Save);

void LimitOfSave_BareDeflate(benchmark::State &state)
{
    const auto input = BareFiles::Inflate(File());
    std::vector<unsigned char> output(compressBound(input.size()));
    z_stream stream{};
    deflateInit(&stream, 6);
    for (auto _ : state) {
        deflateReset(&stream);
        stream.next_in = const_cast<unsigned char *>(input.data());
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
        benchmark::DoNotOptimize(deflate(&stream, Z_FINISH));
    }
    deflateEnd(&stream);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(input.size()));
}
BENCHMARK(LimitOfSave_BareDeflate);

void Dump(benchmark::State &state)
{
    const auto emitter = Loaded();
    size_t size = 0;
    for (auto _ : state) size = vro::To_Text(vro::Effect_To_Json(*emitter)).size();
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}
BENCHMARK(Dump);

/// The JSON library alone, on the same document.
void LimitOfDump_PrintOfTheTree(benchmark::State &state)
{
    const auto document = vro::Effect_To_Json(*Loaded());
    size_t size = 0;
    for (auto _ : state) size = document.dump().size();
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}
BENCHMARK(LimitOfDump_PrintOfTheTree);

void Build(benchmark::State &state)
{
    const std::string text = vro::To_Text(vro::Effect_To_Json(*Loaded()));
    for (auto _ : state) benchmark::DoNotOptimize(vro::Effect_From_Json(vro::Parse_Json(text)));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(Build);

void LimitOfBuild_ParseOfTheText(benchmark::State &state)
{
    const std::string text = vro::To_Text(vro::Effect_To_Json(*Loaded()));
    for (auto _ : state) benchmark::DoNotOptimize(vro::Json::parse(text));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(LimitOfBuild_ParseOfTheText);

/// Every kind in turn; the time is that of one plugin.
void CreatePlugin(benchmark::State &state)
{
    uint32_t id = 0;
    size_t parameters = 0;
    for (auto _ : state) {
        const SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(id);
        parameters += static_cast<size_t>(plugin->Get_Parameters().Get_Parameter_Count());
        id = (id + 1) % VRMKP_PLUGIN_COUNT;
    }
    state.counters["parameters"] = benchmark::Counter(static_cast<double>(parameters), benchmark::Counter::kAvgIterations);
}
BENCHMARK(CreatePlugin);

/// One allocation and one write for each parameter and the plugin.
void LimitOfCreatePlugin_Allocations(benchmark::State &state)
{
    std::vector<size_t> counts;
    for (uint32_t id = 0; id < VRMKP_PLUGIN_COUNT; ++id)
        counts.push_back(static_cast<size_t>(
            SmartPtr<vrMKPPlugin>(vrMKPPlugin::Create_Plugin(id))->Get_Parameters().Get_Parameter_Count()));
    std::vector<void *> blocks(128);
    size_t id = 0;
    for (auto _ : state) {
        for (size_t i = 0; i <= counts[id]; ++i) {
            blocks[i] = std::malloc(56);
            std::memset(blocks[i], 0, 56);
        }
        benchmark::DoNotOptimize(blocks.data());
        for (size_t i = 0; i <= counts[id]; ++i) std::free(blocks[i]);
        id = (id + 1) % counts.size();
    }
}
BENCHMARK(LimitOfCreatePlugin_Allocations);

/// The last of some forty names of the "Shape" spawner, ignoring case.
void FindParameterByName(benchmark::State &state)
{
    const SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(vrMKPPlugin::kvrMKPShapeSpawner);
    const auto &parameters = plugin->Get_Parameters();
    std::string name = parameters.Get_Parameter(parameters.Get_Parameter_Count() - 1)->Get_Name();
    for (char &letter : name) letter = static_cast<char>(std::tolower(letter));
    for (auto _ : state) benchmark::DoNotOptimize(plugin->Get_Parameter_By_Name(name));
}
BENCHMARK(FindParameterByName);

void LimitOfFind_Strcasecmp(benchmark::State &state)
{
    const SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(vrMKPPlugin::kvrMKPShapeSpawner);
    const auto &parameters = plugin->Get_Parameters();
    std::vector<const char *> names;
    for (int index = 0; index < parameters.Get_Parameter_Count(); ++index)
        names.push_back(parameters.Get_Parameter(index)->Get_Name());
    const std::string name = names.back();
    for (auto _ : state)
        for (const char *candidate : names)
            if (strcasecmp(candidate, name.c_str()) == 0) benchmark::DoNotOptimize(candidate);
}
BENCHMARK(LimitOfFind_Strcasecmp);

} // namespace

int main(int argc, char **argv)
{
    vrMKPRenderable::Set_In_Editor(true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
