#include "vro/RenderCommandLine.h"

#include "vro/OptionDeclarations.h"

namespace vro
{

namespace
{

void Add_Picture(PlayDeclarations &declarations, CLI::App &command, RenderOptions &options)
{
    constexpr const char *GROUP = "Picture";
    command
        .add_option("-o", options.Output,
                    "One picture when it ends in .png or with --sheet, or else a directory for a picture a frame")
        ->required()
        ->group(GROUP);
    declarations.Add(GROUP, "--size", "WxH", "Pixels of a frame; 640x480 unless given, 320x240 in a sheet",
                     [&options](const std::string &text) { return Parse_Size(text, options); });
    declarations.Add(GROUP, "--every", "K", "Draw every so many frames only", [&options](const std::string &text) {
        return Parse_Integer(text, 1, PlayOptions::MAX_FRAMES, options.Every);
    });
    declarations.Add(GROUP, "--sheet", "COLUMNS", "All frames side by side in one picture, each with its time",
                     [&options](const std::string &text) {
                         return Parse_Integer(text, 1, RenderOptions::MAX_SHEET_COLUMNS, options.SheetColumns);
                     });
    declarations.Add(GROUP, "--background", "R,G,B|PICTURE", "A colour of 0 to 255, or a picture of the textures",
                     [&options](const std::string &text) { return Parse_Background(text, options); });
    auto *effects = declarations.Add(GROUP, "--post-fx", "NAME,...", "The post-effects to allow; all unless given",
                                     [&options](const std::string &text) { return Parse_Post_Fx(text, options); });
    command
        .add_flag_callback(
            "--no-post-fx", [&options] { options.PostFxMask = 0; }, "Neither bloom nor heat nor any other")
        ->group(GROUP)
        ->excludes(effects);
    command
        .add_option("--working-directory", options.WorkingDirectory,
                    "Where Art and Run are; the place above the effect's Art/Models unless given")
        ->type_name("DIR")
        ->group(GROUP);
}

} // namespace

void Add_Render_Options(CLI::App &command, RenderOptions &options)
{
    PlayDeclarations declarations(command, options);
    declarations.Add_Frames("Updates to run; 60 unless given");
    declarations.Add_Step("The step of each update; a thirtieth unless given");
    declarations.Add_Quality();
    Add_Picture(declarations, command, options);
    declarations.Add_Playing();
    command.parse_complete_callback([&options] {
        const std::string fault = Complete_Options(options);
        if (!fault.empty()) throw CLI::ValidationError(fault);
    });
}

} // namespace vro
