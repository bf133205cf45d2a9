#include "vro/PlayOptions.h"

#include <cmath>
#include <limits>

namespace vro
{

namespace
{

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();
constexpr int INT_MOST = std::numeric_limits<int>::max();
constexpr int LAST_DYNAMIC_PARAMETER = 15;

} // namespace

std::string Parse_Frames(const std::string &text, PlayOptions &options)
{
    return Parse_Integer(text, 1, PlayOptions::MAX_FRAMES, options.Frames);
}

std::string Parse_Step(const std::string &text, PlayOptions &options)
{
    return Parse_Number(text, 0.0f, FLOAT_MAX, options.StepSeconds);
}

std::string Parse_Hidden(const std::string &text, bool hidden, PlayOptions &options)
{
    int frame = 0;
    const std::string fault = Parse_Integer(text, 1, PlayOptions::MAX_FRAMES, frame);
    if (!fault.empty()) return fault;
    const auto [place, isNew] = options.Hidden.emplace(frame, hidden);
    return isNew || place->second == hidden ? std::string() : "frame " + text + " is to be hidden and shown";
}

std::string Parse_Spawn(const std::string &text, PlayOptions &options)
{
    int frame = 0;
    int count = 0;
    std::string rest;
    std::string fault = Parse_Numbered(text, ':', "FRAME:COUNT", PlayOptions::MAX_FRAMES, frame, rest);
    if (fault.empty()) fault = Parse_Integer(rest, 1, INT_MOST, count);
    if (!fault.empty()) return fault;
    return options.Spawns.emplace(frame, count).second ? std::string()
                                                       : "frame " + std::to_string(frame) + " stands twice";
}

std::string Parse_Dynamic(const std::string &text, PlayOptions &options)
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

std::string Parse_Terrain(const std::string &text, PlayOptions &options)
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

std::string Check_Frame(const char *option, int frame, const PlayOptions &options)
{
    if (frame <= options.Frames) return {};
    return std::string(option) + ": frame " + std::to_string(frame) + " is beyond the end, expected at most " +
           std::to_string(options.Frames);
}

std::string Check_Play_Options(const PlayOptions &options)
{
    std::string fault;
    if (!options.Hidden.empty()) {
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
