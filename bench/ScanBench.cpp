// Scans of working directories of 100 to 10,000 emitter files, each beside its limit: opening, reading and inflating
// every file twice with bare zlib, since a scan walks each file once and loads it once. Arguments are other counts.

#include "BareFiles.h"
#include "WorkingDirectory.h"

#include "Code/ApplicationCore.h"
#include "Code/EmitterData.h"
#include "Code/NoPreview.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace
{

using Seconds = std::chrono::duration<double>;

template <typename Work> double Time(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return Seconds(std::chrono::steady_clock::now() - start).count();
}

size_t Heap_In_Use()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

struct ScanResult
{
    double Seconds;
    size_t HeapBytes;
    size_t ReportedBytes;
    size_t Rows;
};

/// One scan by a fresh tool, as after its start.
ScanResult Scan(const WorkingDirectory &directory)
{
    HeadlessApplication application;
    ApplicationCore core(std::make_unique<NoPreview>());
    core.Initialize();
    core.Get_Settings().WorkingDirectory = directory.Get_Path().string();
    HeadlessMainForm form(core);
    ScanResult result{};
    const size_t before = Heap_In_Use();
    result.Seconds = Time([&] { form.Click_Scan(); });
    result.HeapBytes = Heap_In_Use() - before;
    if (!core.Get_Emitter_List() || core.Get_Emitter_List()->size() != directory.Get_Files().size()) {
        std::fprintf(stderr, "the scan failed\n");
        std::exit(1);
    }
    for (const auto &emitter : *core.Get_Emitter_List())
        result.ReportedBytes += emitter->Get_Emitter()->Get_Memory_Usage(true);
    result.Rows = core.Get_Particle_List()->size();
    core.Shutdown();
    return result;
}

void Measure(int count, int runs)
{
    const WorkingDirectory directory(MK_SAMPLES, count);
    size_t bytes = BareFiles::Read_And_Inflate(directory.Get_Files()); // and warms the system's cache
    double limit = 1e9;
    ScanResult best{1e9, 0, 0, 0};
    // Runs alternate, so that both meet the same machine; the best of each is the least disturbed one.
    for (int run = 0; run < runs; ++run) {
        limit = std::min(limit, Time([&] {
            bytes = BareFiles::Read_And_Inflate(directory.Get_Files());
            bytes += BareFiles::Read_And_Inflate(directory.Get_Files());
        }));
        const ScanResult scan = Scan(directory);
        if (scan.Seconds < best.Seconds) best = scan;
    }
    std::printf("%6d %6zu %9.1f %9.1f %8.2f %9.1f %9.1f %9.1f %8.2f\n", count, best.Rows, best.Seconds * 1e3, limit * 1e3,
                best.Seconds / limit, best.Seconds * 1e6 / count, static_cast<double>(best.HeapBytes) / 1e6,
                static_cast<double>(best.ReportedBytes) / 1e6,
                static_cast<double>(best.HeapBytes) / static_cast<double>(best.ReportedBytes));
    (void)bytes;
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<int> counts;
    for (int index = 1; index < argc; ++index) counts.push_back(std::atoi(argv[index]));
    if (counts.empty()) counts = {100, 300, 1000, 2000, 5000, 10000};
    std::printf(" files   rows   scan ms  limit ms    ratio   us/file   heap MB   told MB    ratio\n");
    for (const int count : counts) Measure(count, count <= 2000 ? 7 : 3);
    return 0;
}
