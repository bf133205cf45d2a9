#include "vro/SimulateOptions.h"

#include <algorithm>

namespace vro
{

namespace
{

std::string Channel_List()
{
    std::string list;
    for (const char *name : MKP_ATTRIBUTE_NAMES) list.append(list.empty() ? "" : ", ").append(name);
    return list;
}

bool Find_Channel(std::string_view name, MKPAttribTypes &channel)
{
    const auto found = std::find(std::begin(MKP_ATTRIBUTE_NAMES), std::end(MKP_ATTRIBUTE_NAMES), name);
    channel = static_cast<MKPAttribTypes>(found - std::begin(MKP_ATTRIBUTE_NAMES));
    return found != std::end(MKP_ATTRIBUTE_NAMES);
}

} // namespace

bool SimulateOptions::Is_Reported(int frame) const
{
    if (ReportsAll) return true;
    if (ReportFrames.empty()) return frame == Frames;
    return std::binary_search(ReportFrames.begin(), ReportFrames.end(), frame);
}

std::string Parse_Report(const std::string &text, SimulateOptions &options)
{
    options.ReportsAll = text == "all";
    options.ReportFrames.clear();
    if (text == "all" || text == "last") return {};
    for (const std::string_view part : Split(text, ',')) {
        int frame = 0;
        if (!Parse_Integer(std::string(part), 1, PlayOptions::MAX_FRAMES, frame).empty())
            return "expected all, last or frame numbers with commas between, found " + Quoted(text);
        options.ReportFrames.push_back(frame);
    }
    std::sort(options.ReportFrames.begin(), options.ReportFrames.end());
    const auto repeated = std::unique(options.ReportFrames.begin(), options.ReportFrames.end());
    options.ReportFrames.erase(repeated, options.ReportFrames.end());
    return {};
}

std::string Parse_Channels(const std::string &text, SimulateOptions &options)
{
    options.Channels.clear();
    for (const std::string_view name : Split(text, ',')) {
        MKPAttribTypes channel;
        if (!Find_Channel(name, channel)) return "no channel " + Quoted(name) + "; there are " + Channel_List();
        if (std::find(options.Channels.begin(), options.Channels.end(), channel) != options.Channels.end())
            return "channel " + Quoted(name) + " stands twice";
        options.Channels.push_back(channel);
    }
    return {};
}

std::string Check_Options(const SimulateOptions &options)
{
    std::string fault;
    if (!options.ReportFrames.empty()) fault = Check_Frame("--report", options.ReportFrames.back(), options);
    return fault.empty() ? Check_Play_Options(options) : fault;
}

} // namespace vro
