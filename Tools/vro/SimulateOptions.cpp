#include "vro/SimulateOptions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace vro
{

namespace
{

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();
constexpr int INT_MOST = std::numeric_limits<int>::max();
constexpr int LAST_DYNAMIC_PARAMETER = 15;

std::string Quoted(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (;;) {
        const size_t at = text.find(separator);
        parts.push_back(text.substr(0, at));
        if (at == std::string_view::npos) return parts;
        text.remove_prefix(at + 1);
    }
}

/// The whole text as a number, in the C locale.
template <typename T>
bool Read_Whole(std::string_view text, T &value)
{
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool Read_Finite(std::string_view text, float &value)
{
    return Read_Whole(text, value) && std::isfinite(value);
}

std::string Number_Text(float value)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, std::end(buffer), value).ptr};
}

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

/// "LEFT<separator>RIGHT", with the left part a whole number of 1 to `greatest`.
std::string Parse_Numbered(std::string_view text, char separator, const char *form, int greatest, int &number,
                           std::string &rest)
{
    const size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::string("expected ") + form + ", found " + Quoted(text);
    rest = text.substr(at + 1);
    return Parse_Integer(std::string(text.substr(0, at)), 1, greatest, number);
}

std::string Check_Frame(const char *option, int frame, const SimulateOptions &options)
{
    if (frame <= options.Frames) return {};
    return std::string(option) + ": frame " + std::to_string(frame) + " is beyond the end, expected at most " +
           std::to_string(options.Frames);
}

} // namespace

bool SimulateOptions::Is_Reported(int frame) const
{
    if (ReportsAll) return true;
    if (ReportFrames.empty()) return frame == Frames;
    return std::binary_search(ReportFrames.begin(), ReportFrames.end(), frame);
}

std::string Parse_Integer(const std::string &text, int least, int greatest, int &value)
{
    if (Read_Whole(text, value) && value >= least && value <= greatest) return {};
    return "expected a whole number of " + std::to_string(least) + " to " + std::to_string(greatest) + ", found " +
           Quoted(text);
}

std::string Parse_Number(const std::string &text, float least, float greatest, float &value)
{
    if (!Read_Finite(text, value)) return "expected a finite number, found " + Quoted(text);
    if (value >= least && value <= greatest) return {};
    const std::string range =
        greatest == FLOAT_MAX ? "at least " + Number_Text(least) : Number_Text(least) + " to " + Number_Text(greatest);
    return "expected " + range + ", found " + Quoted(text);
}

std::string Parse_Vector(const std::string &text, Vector3 &value)
{
    const auto parts = Split(text, ',');
    bool isWell = parts.size() == 3;
    for (int axis = 0; isWell && axis < 3; ++axis) isWell = Read_Finite(parts[static_cast<size_t>(axis)], value[axis]);
    return isWell ? std::string() : "expected X,Y,Z, three finite numbers, found " + Quoted(text);
}

std::string Parse_Frames(const std::string &text, SimulateOptions &options)
{
    return Parse_Integer(text, 1, SimulateOptions::MAX_FRAMES, options.Frames);
}

std::string Parse_Step(const std::string &text, SimulateOptions &options)
{
    return Parse_Number(text, 0.0f, FLOAT_MAX, options.StepSeconds);
}

std::string Parse_Report(const std::string &text, SimulateOptions &options)
{
    options.ReportsAll = text == "all";
    options.ReportFrames.clear();
    if (text == "all" || text == "last") return {};
    for (const std::string_view part : Split(text, ',')) {
        int frame = 0;
        if (!Parse_Integer(std::string(part), 1, SimulateOptions::MAX_FRAMES, frame).empty())
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

std::string Parse_Hidden(const std::string &text, bool hidden, SimulateOptions &options)
{
    int frame = 0;
    const std::string fault = Parse_Integer(text, 1, SimulateOptions::MAX_FRAMES, frame);
    if (!fault.empty()) return fault;
    const auto [place, isNew] = options.Hidden.emplace(frame, hidden);
    return isNew || place->second == hidden ? std::string() : "frame " + text + " is to be hidden and shown";
}

std::string Parse_Spawn(const std::string &text, SimulateOptions &options)
{
    int frame = 0;
    int count = 0;
    std::string rest;
    std::string fault = Parse_Numbered(text, ':', "FRAME:COUNT", SimulateOptions::MAX_FRAMES, frame, rest);
    if (fault.empty()) fault = Parse_Integer(rest, 1, INT_MOST, count);
    if (!fault.empty()) return fault;
    return options.Spawns.emplace(frame, count).second ? std::string()
                                                       : "frame " + std::to_string(frame) + " stands twice";
}

std::string Parse_Dynamic(const std::string &text, SimulateOptions &options)
{
    int number = 0;
    float value = 0.0f;
    std::string rest;
    std::string fault = Parse_Numbered(text, '=', "1..15=VALUE", LAST_DYNAMIC_PARAMETER, number, rest);
    if (fault.empty()) fault = Parse_Number(rest, -FLOAT_MAX, FLOAT_MAX, value);
    if (!fault.empty()) return fault;
    return options.Dynamic.emplace(number, value).second ? std::string()
                                                         : "parameter " + std::to_string(number) + " stands twice";
}

std::string Parse_Terrain(const std::string &text, SimulateOptions &options)
{
    float height = 0.0f;
    if (Read_Whole(text, height)) {
        if (!std::isfinite(height)) return "expected a finite height, found " + Quoted(text);
        options.Terrain = height;
        return {};
    }
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0)
        return "expected a height or PICTURE:SIZE_X,SIZE_Y,HEIGHT, found " + Quoted(text);
    Vector3 size;
    const std::string fault = Parse_Vector(text.substr(colon + 1), size);
    if (!fault.empty())
        return "expected three finite numbers behind the picture, SIZE_X,SIZE_Y,HEIGHT, found " + Quoted(text);
    if (!(size.x > 0.0f && size.y > 0.0f)) return "the picture's sizes must be above 0, found " + Quoted(text);
    options.Terrain = PictureTerrain{text.substr(0, colon), size.x, size.y, size.z};
    return {};
}

std::string Check_Options(const SimulateOptions &options)
{
    std::string fault;
    if (!options.ReportFrames.empty()) fault = Check_Frame("--report", options.ReportFrames.back(), options);
    if (fault.empty() && !options.Hidden.empty()) {
        const auto &[frame, hidden] = *options.Hidden.rbegin();
        fault = Check_Frame(hidden ? "--hide" : "--show", frame, options);
    }
    if (fault.empty() && !options.Spawns.empty())
        fault = Check_Frame("--spawn", options.Spawns.rbegin()->first, options);
    if (!fault.empty() || options.Target) return fault;
    if (options.TargetVelocity != Vector3(0.0f)) return "--target-velocity: there is no --target";
    return {};
}

} // namespace vro
