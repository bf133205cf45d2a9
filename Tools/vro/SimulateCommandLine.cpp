#include "vro/SimulateCommandLine.h"

#include "vro/OptionDeclarations.h"

namespace vro
{

namespace
{

void Add_Report(PlayDeclarations &declarations, CLI::App &command, SimulateOptions &options)
{
    constexpr const char *GROUP = PlayDeclarations::RUN;
    declarations.Add(GROUP, "--report", "LIST|all|last", "Frames to print, counted from 1; the last one unless given",
                     [&options](const std::string &text) { return Parse_Report(text, options); });
    declarations.Add(GROUP, "--channels", "NAME,NAME,...", "Particle attributes to print",
                     [&options](const std::string &text) { return Parse_Channels(text, options); });
    command.add_flag("--vertices", options.PrintsVertices, "Also print what the visualizers built")->group(GROUP);
}

} // namespace

void Add_Simulate_Options(CLI::App &command, SimulateOptions &options)
{
    PlayDeclarations declarations(command, options);
    declarations.Add_Frames("Updates to run")->required();
    declarations.Add_Step("The step of each update")->required();
    Add_Report(declarations, command, options);
    declarations.Add_Quality();
    declarations.Add_Playing();
    command.parse_complete_callback([&options] {
        const std::string fault = Check_Options(options);
        if (!fault.empty()) throw CLI::ValidationError(fault);
    });
}

} // namespace vro
