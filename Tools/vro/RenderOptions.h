#pragma once

#include "vro/PlayOptions.h"

#include <array>
#include <cstdint>

namespace vro
{

/// What `vro render` is asked for.
struct RenderOptions : PlayOptions
{
    static constexpr int MAX_SIDE = 8192; ///< pixels of one frame
    static constexpr int MAX_SHEET_COLUMNS = 100;
    static constexpr int MAX_SHEET_SIDE = 32768; ///< pixels of a whole sheet

    RenderOptions()
    {
        Frames = 60;
        StepSeconds = 1.0f / 30.0f;
    }

    std::string Output;
    int Width = 0; ///< pixels; 0 for the default, which depends on whether there is a sheet
    int Height = 0;
    int Every = 0;        ///< 0 for the default
    int SheetColumns = 0; ///< 0 for no sheet
    std::array<uint8_t, 3> Background{36, 38, 44};
    std::string BackgroundPicture; ///< by name, from the texture folders; empty for none
    uint32_t PostFxMask = 0x1f;
    std::string WorkingDirectory; ///< empty for the one that the effect lies in

    bool Is_One_Picture() const; ///< and not a directory of them
    bool Is_Drawn(int frame) const;
    int Get_Drawn_Count() const;
};

std::string Parse_Size(const std::string &text, RenderOptions &options);
/// "R,G,B" of 0 to 255, or the name of a picture.
std::string Parse_Background(const std::string &text, RenderOptions &options);
/// Names of post-effects with commas between.
std::string Parse_Post_Fx(const std::string &text, RenderOptions &options);
/// Puts the defaults in and answers what is wrong between options that each are well; empty when nothing is.
std::string Complete_Options(RenderOptions &options);

} // namespace vro
