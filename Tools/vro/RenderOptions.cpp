#include "vro/RenderOptions.h"

#include "vrGraphics/drivercommon/vrSceneEffectsParams.h"

#include <algorithm>

namespace vro
{

namespace
{

constexpr int LABEL_ROOM = 32; ///< more than the label under a cell of a sheet takes

constexpr struct
{
    const char *Name;
    uint32_t Mask;
} POST_EFFECTS[] = {
    {"bloom", VR_POSTFX_BLOOM},
    {"heat", VR_POSTFX_HEAT_DISTORTION},
    {"depth-of-field", VR_POSTFX_DEPTH_OF_FIELD},
    {"hdr", VR_POSTFX_HDR},
    {"game", VR_POSTFX_GAME},
};

bool Ends_In_Png(std::string_view path)
{
    constexpr std::string_view EXTENSION = ".png";
    if (path.size() < EXTENSION.size()) return false;
    const std::string_view end = path.substr(path.size() - EXTENSION.size());
    return std::equal(end.begin(), end.end(), EXTENSION.begin(),
                      [](char a, char b) { return a == b || a == b - 'a' + 'A'; });
}

} // namespace

bool RenderOptions::Is_One_Picture() const
{
    return SheetColumns > 0 || Output == "-" || Ends_In_Png(Output);
}

bool RenderOptions::Is_Drawn(int frame) const
{
    return Every == 0 ? frame == Frames : frame % Every == 0;
}

int RenderOptions::Get_Drawn_Count() const
{
    return Every == 0 ? 1 : Frames / Every;
}

std::string Parse_Size(const std::string &text, RenderOptions &options)
{
    const auto parts = Split(text, 'x');
    int width = 0;
    int height = 0;
    const bool isWell = parts.size() == 2 && Read_Whole(parts[0], width) && Read_Whole(parts[1], height);
    constexpr int MOST = RenderOptions::MAX_SIDE;
    if (!isWell || width < 1 || height < 1 || width > MOST || height > MOST)
        return "expected WIDTHxHEIGHT, each 1 to " + std::to_string(MOST) + ", found " + Quoted(text);
    options.Width = width;
    options.Height = height;
    return {};
}

std::string Parse_Background(const std::string &text, RenderOptions &options)
{
    const auto parts = Split(text, ',');
    if (parts.size() != 3) {
        options.BackgroundPicture = text;
        return text.empty() ? "expected R,G,B or the name of a picture" : "";
    }
    for (size_t channel = 0; channel < 3; ++channel) {
        int value = -1;
        if (!Read_Whole(parts[channel], value) || value < 0 || value > 255)
            return "expected R,G,B, each 0 to 255, found " + Quoted(text);
        options.Background[channel] = static_cast<uint8_t>(value);
    }
    return {};
}

std::string Parse_Post_Fx(const std::string &text, RenderOptions &options)
{
    options.PostFxMask = 0;
    for (const std::string_view part : Split(text, ',')) {
        const auto *found = std::find_if(std::begin(POST_EFFECTS), std::end(POST_EFFECTS),
                                         [part](const auto &row) { return part == row.Name; });
        if (found == std::end(POST_EFFECTS)) {
            std::string names;
            for (const auto &row : POST_EFFECTS) names.append(names.empty() ? "" : ", ").append(row.Name);
            return "no post-effect " + Quoted(part) + "; there are " + names;
        }
        options.PostFxMask |= found->Mask;
    }
    return {};
}

std::string Complete_Options(RenderOptions &options)
{
    std::string fault = Check_Play_Options(options);
    if (!fault.empty()) return fault;
    const bool hasSheet = options.SheetColumns > 0;
    if (options.Width == 0) {
        options.Width = hasSheet ? 320 : 640;
        options.Height = hasSheet ? 240 : 480;
    }
    if (options.Every > options.Frames)
        return "--every: expected at most the " + std::to_string(options.Frames) + " frames that there are, found " +
               std::to_string(options.Every);
    if (!hasSheet) {
        if (options.Every != 0 && options.Is_One_Picture())
            return "--every: " + options.Output + " is one picture; name a directory, or ask for a --sheet";
        if (options.Every == 0 && !options.Is_One_Picture()) options.Every = 1;
        return {};
    }
    constexpr int ROWS = 3;
    const int cells = options.SheetColumns * ROWS;
    if (options.Every == 0) options.Every = std::max((options.Frames + cells - 1) / cells, 1);
    const int64_t rows = (options.Get_Drawn_Count() + options.SheetColumns - 1) / options.SheetColumns;
    const int64_t columns = options.SheetColumns;
    if (columns * (options.Width + 1) > RenderOptions::MAX_SHEET_SIDE ||
        rows * (options.Height + LABEL_ROOM) > RenderOptions::MAX_SHEET_SIDE)
        return "--sheet: " + std::to_string(columns) + " by " + std::to_string(rows) + " cells of " +
               std::to_string(options.Width) + "x" + std::to_string(options.Height) + " make more than " +
               std::to_string(RenderOptions::MAX_SHEET_SIDE) +
               " pixels; fewer frames, a larger --every or smaller cells";
    return {};
}

} // namespace vro
