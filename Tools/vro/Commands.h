#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The subcommands of `vro`. Each prints its result on standard output and its diagnostics on standard error, and returns
/// the exit code.
namespace vro
{

/// What the shell gets.
enum ExitCode : int
{
    EXIT_WELL = 0,
    EXIT_BAD_DATA = 1, ///< the data is bad or the job failed; a message named the file and the reason
    EXIT_BAD_USAGE = 2
};

struct RenderOptions;
struct SimulateOptions;

struct EditOptions
{
    std::string Directory;
    std::vector<std::string> Selections;                         ///< EMITTER or EMITTER:LAYER; none selects every row
    std::vector<std::pair<std::string, std::string>> Assignments; ///< property and value, in the order given
    bool ConvertToHeat = false;
    bool Save = false;
    bool SaveAll = false;
    bool AutoCheckout = false;
    bool AnswerYes = false;
};

int Run_Info(const std::vector<std::string> &paths);
int Run_Dump(const std::string &file, const std::string &output);
int Run_Build(const std::string &input, const std::string &output, const std::string &encoding);
int Run_Chunks(const std::string &file, bool asJson);
int Run_Rewrite(const std::string &file, const std::string &output, const std::string &encoding);
int Run_Check(const std::vector<std::string> &paths);
int Run_Edit(const EditOptions &options);
int Run_Plugins(bool asJson);
int Run_Simulate(const SimulateOptions &options);
int Run_Render(const RenderOptions &options);
/// Of the built-in workloads when no file is given.
int Run_Bench(const std::vector<std::string> &files, bool asJson);

/// The mode argument of the chunk writer for `zlib`, `binary`, `xml`, `sectioned` or `zlib-sectioned`, each optionally
/// with `+validated` and `+swapped`; nothing for any other text.
std::optional<unsigned> Parse_Encoding(const std::string &text);

/// Prints "vro: what: reason" on standard error and yields EXIT_BAD_DATA.
int Fail(const std::string &what, const std::string &reason);

} // namespace vro
