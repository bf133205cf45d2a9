#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/EmitterPaths.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/LoadReport.h"

#include <cstdio>

namespace vro
{

namespace
{

void Print_Findings(const std::string &file, const LoadReport::Collector &report)
{
    for (const auto &finding : report.Get_Findings())
        std::printf("%s: %s: %s: %s\n", file.c_str(), finding.Place.empty() ? "file" : finding.Place.c_str(),
                    finding.Found.c_str(), finding.Result.c_str());
    if (report.Get_Left_Out())
        std::printf("%s: file: %zu more findings: not listed\n", file.c_str(), report.Get_Left_Out());
}

/// Whether a save and a reload give the same effect, and a second save the same bytes.
bool Survives_Its_Save(vrMKParticleEmitter &emitter, std::string &error)
{
    std::string first;
    std::string second;
    if (!Save_Effect(emitter, TOOL_MODE, first, error)) return false;
    const auto reloaded = Load_Effect(first, std::string(emitter.Get_Name()) + ".vro", error);
    if (!reloaded) {
        error = "what a save writes can't be loaded: " + error;
        return false;
    }
    if (!Save_Effect(*reloaded, TOOL_MODE, second, error)) return false;
    if (first == second && To_Text(Effect_To_Json(emitter)) == To_Text(Effect_To_Json(*reloaded))) return true;
    error = "a save and a reload give another effect";
    return false;
}

} // namespace

int Run_Check(const std::vector<std::string> &paths)
{
    std::vector<std::string> files;
    std::string failed;
    std::string error;
    if (!Expand_Paths(paths, files, failed, error)) return Fail(failed, error);
    size_t findings = 0;
    size_t failures = 0;
    for (const std::string &file : files) {
        LoadReport::Collector report;
        const auto emitter = Load_Effect(file, error);
        Print_Findings(file, report);
        findings += report.Get_Findings().size() + report.Get_Left_Out();
        if (emitter && Survives_Its_Save(*emitter, error)) continue;
        ++failures;
        Fail(file, error);
    }
    std::printf("%zu file%s checked, %zu finding%s, %zu failed\n", files.size(), files.size() == 1 ? "" : "s", findings,
                findings == 1 ? "" : "s", failures);
    return failures ? EXIT_BAD_DATA : EXIT_WELL;
}

} // namespace vro
