#pragma once

/// Declares the options of the subcommands that play effects. For the sources of the command line alone, since the
/// parser's header is a large one.

#include "vro/PlayOptions.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace vro
{

/// Reads a text into its place and answers what is wrong with it, or nothing.
using ParseOption = std::function<std::string(const std::string &)>;

/// Borrows the command and the options for as long as the command lives. What is wrong throws CLI::ParseError.
class PlayDeclarations
{
public:
    PlayDeclarations(CLI::App &command, PlayOptions &options) : Command(command), Play(options) {}

    /// The file and what all that play take: camera, emitter, game and world.
    void Add_Playing();
    CLI::Option *Add(const char *group, const char *name, const char *form, const char *help, const ParseOption &parse);
    /// One that may stand several times.
    void Add_Many(const char *group, const char *name, const char *form, const char *help, const ParseOption &parse);
    void Add_Vector(const char *group, const char *name, const char *help, Vector3 &value);
    CLI::Option *Add_Frames(const char *help);
    CLI::Option *Add_Step(const char *help);
    void Add_Quality();

    static constexpr const char *RUN = "Run"; ///< the first group

private:
    void Add_View();
    void Add_Emitter();
    void Add_Game();
    void Add_World();

    CLI::App &Command;
    PlayOptions &Play;
};

} // namespace vro
