#include "vro/Commands.h"

#include "vro/RenderCommandLine.h"
#include "vro/SimulateCommandLine.h"

#include "MKLib/MKDebug/Logger.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <functional>

namespace
{

using namespace vro;

/// One line a subcommand: the parser fills the options that it captures, and the result is run afterwards.
struct CommandLine
{
    CLI::App App{"Works on particle effects without a screen: looks at emitter files, builds, checks, edits, plays and "
                 "draws them."};
    std::vector<std::string> Paths;
    std::string Input;
    std::string Output = "-";
    std::string Encoding = "zlib";
    std::vector<std::string> Sets;
    EditOptions Edit;
    SimulateOptions Simulate;
    RenderOptions Render;
    bool Json = false;
    bool Verbose = false;
    bool AnswerNo = false;
    std::function<int()> Chosen;

    CommandLine()
    {
        App.name("vro");
        App.require_subcommand(1);
        App.set_version_flag("--version", "vro " MK_VERSION);
        App.add_flag("-v,--verbose", Verbose, "Also print what the engine logs for information");
        App.footer("A dash stands for standard input or output where a file is expected.\n"
                   "Exit codes: 0 all well, 1 the data is bad or the job failed, 2 wrong usage.");
        Add_Inspection();
        Add_Conversion();
        Add_Edit();
        Add_Playing();
    }

    CLI::App *Add(const char *name, const char *description, std::function<int()> run)
    {
        CLI::App *command = App.add_subcommand(name, description);
        command->callback([this, run = std::move(run)] { Chosen = run; });
        return command;
    }

    void Add_Inspection()
    {
        auto *info = Add("info", "Print a short table of each emitter's layers", [this] { return Run_Info(Paths); });
        info->add_option("PATH", Paths, "Emitter files, or directories for all *.vro below them")->required();

        auto *chunks = Add("chunks", "Print the raw chunk tree of a file", [this] { return Run_Chunks(Input, Json); });
        chunks->add_option("FILE", Input, "A chunk file of any encoding")->required();
        chunks->add_flag("--json", Json, "Print JSON");

        auto *check = Add("check", "Report what a load has to mend and whether files survive their own save",
                          [this] { return Run_Check(Paths); });
        check->add_option("PATH", Paths, "Emitter files, or directories for all *.vro below them")->required();

        auto *plugins = Add("plugins", "Print the reference of all plugin kinds", [this] { return Run_Plugins(Json); });
        plugins->add_flag("--json", Json, "Print JSON");
    }

    void Add_Conversion()
    {
        constexpr const char *ENCODINGS = "zlib, binary, xml, sectioned or zlib-sectioned, each optionally with "
                                          "+validated and +swapped";
        const auto is_encoding = [](const std::string &text) {
            return Parse_Encoding(text) ? std::string() : "unknown encoding \"" + text + "\"";
        };

        auto *dump = Add("dump", "Print a whole effect as JSON", [this] { return Run_Dump(Input, Output); });
        dump->add_option("FILE", Input, "An emitter file")->required();
        dump->add_option("-o", Output, "Where to write instead of standard output");

        auto *build =
            Add("build", "Make an emitter file from JSON", [this] { return Run_Build(Input, Output, Encoding); });
        build->add_option("IN", Input, "The effect's JSON")->required();
        build->add_option("-o", Output, "The emitter file to write")->required();
        build->add_option("--encoding", Encoding, ENCODINGS)->check(is_encoding);

        auto *rewrite =
            Add("rewrite", "Load an emitter file and save it", [this] { return Run_Rewrite(Input, Output, Encoding); });
        rewrite->add_option("FILE", Input, "An emitter file")->required();
        rewrite->add_option("-o", Output, "The emitter file to write")->required();
        rewrite->add_option("--encoding", Encoding, ENCODINGS)->check(is_encoding);
    }

    void Add_Edit()
    {
        auto *edit = Add("edit", "Scan a working directory, change rows and save, as the desktop tool does", [this] {
            for (const std::string &set : Sets) {
                const size_t equals = set.find('=');
                Edit.Assignments.emplace_back(set.substr(0, equals), set.substr(equals + 1));
            }
            return Run_Edit(Edit);
        });
        edit->add_option("DIR", Edit.Directory, "The working directory that holds Art/Models")->required();
        edit->add_option("--select", Edit.Selections, "EMITTER or EMITTER:LAYER; all rows unless given")
            ->allow_extra_args(false);
        edit->add_option("--set", Sets, "PROPERTY=VALUE, applied in the order given")
            ->allow_extra_args(false)
            ->check([](const std::string &text) {
                return text.find('=') == std::string::npos ? "expected PROPERTY=VALUE, found \"" + text + "\""
                                                           : std::string();
            });
        edit->add_flag("--convert-to-heat", Edit.ConvertToHeat, "Convert the first selected row's billboard to heat");
        auto *save = edit->add_flag("--save", Edit.Save, "Save the selected rows' emitters");
        edit->add_flag("--save-all", Edit.SaveAll, "Save every changed emitter")->excludes(save);
        edit->add_flag("--auto-checkout", Edit.AutoCheckout, "Check read-only files out without asking");
        auto *yes = edit->add_flag("--yes", Edit.AnswerYes, "Answer Yes to questions, and Retry once");
        edit->add_flag("--no", AnswerNo, "Answer No, or Cancel, which is the default")->excludes(yes);
    }

    void Add_Playing()
    {
        auto *simulate = Add("simulate", "Run an effect and print the state of its particles as JSON",
                             [this] { return Run_Simulate(Simulate); });
        Add_Simulate_Options(*simulate, Simulate);

        auto *render =
            Add("render", "Draw frames of an effect off-screen to PNG pictures", [this] { return Run_Render(Render); });
        Add_Render_Options(*render, Render);

        auto *bench = Add("bench", "Measure how fast effects are simulated and their vertices built",
                          [this] { return Run_Bench(Paths, Json); });
        bench->add_option("FILE", Paths, "Emitter files; the built-in workloads unless given");
        bench->add_flag("--json", Json, "Print JSON");
    }
};

} // namespace

int main(int argc, char **argv)
{
    CommandLine line;
    try {
        line.App.parse(argc, argv);
    } catch (const CLI::RequiredError &error) {
        if (argc > 1 && argv[1][0] != '-' && line.App.get_subcommands().empty())
            std::fprintf(stderr, "vro: there is no command \"%s\"\n", argv[1]);
        line.App.exit(error);
        return EXIT_BAD_USAGE;
    } catch (const CLI::ParseError &error) {
        return line.App.exit(error) == 0 ? EXIT_WELL : EXIT_BAD_USAGE;
    }
    MKDebug::Logger::Configure_Console(line.Verbose ? MKDebug::LogLevel::Info : MKDebug::LogLevel::Warning);
    try {
        const int code = line.Chosen();
        const bool printed = std::fflush(stdout) == 0 && !std::ferror(stdout);
        return printed ? code : Fail("standard output", "the result can't be written");
    } catch (const std::exception &error) {
        return Fail("unexpected failure", error.what());
    }
}
