#include "vro/Commands.h"

#include "vro/SimulateJson.h"
#include "vro/SimulateOptions.h"
#include "vro/Stage.h"

#include "vrGraphics/drivercommon/vrParticleScratch.h"

namespace vro
{

int Run_Simulate(const SimulateOptions &options)
{
    if (options.PrintsVertices && !ParticleScratch::Start()) return Fail(options.File, "no memory for vertices");
    const auto stage = Stage::Open(options);
    if (!stage) return EXIT_BAD_DATA;
    SimulateJson json(options.Channels, options.PrintsVertices);
    for (int frame = 1; frame <= options.Frames; ++frame) {
        stage->Run_Frame(frame);
        if (!options.Is_Reported(frame)) continue;
        stage->Select_Visible();
        if (options.PrintsVertices) stage->Build_Vertices();
        if (!json.Add_Frame(frame, stage->Get_Time(frame), stage->Get_Emitter())) return EXIT_BAD_DATA;
        ParticleScratch::Reset();
    }
    return json.Finish() ? EXIT_WELL : EXIT_BAD_DATA;
}

} // namespace vro
