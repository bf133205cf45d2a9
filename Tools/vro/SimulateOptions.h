#pragma once

#include "vro/PlayOptions.h"

#include "vrGraphics/particle/MKPAttributes.h"

namespace vro
{

/// What `vro simulate` is asked for.
struct SimulateOptions : PlayOptions
{
    bool ReportsAll = false;
    std::vector<int> ReportFrames; ///< ascending, each once; none for the last frame, unless all are reported
    std::vector<MKPAttribTypes> Channels = {MKP_POSITION, MKP_VELOCITY, MKP_AGE,      MKP_MAX_AGE,
                                            MKP_TIME,     MKP_FLAGS,    MKP_ID,       MKP_NUMBER,
                                            MKP_COLOR,    MKP_SIZE,     MKP_ROTATION, MKP_WORLD_POSITION};
    bool PrintsVertices = false;

    bool Is_Reported(int frame) const;
};

std::string Parse_Report(const std::string &text, SimulateOptions &options);
std::string Parse_Channels(const std::string &text, SimulateOptions &options);
/// What is wrong between options that each are well; empty when nothing is.
std::string Check_Options(const SimulateOptions &options);

} // namespace vro
