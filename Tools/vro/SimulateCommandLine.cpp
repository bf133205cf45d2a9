#include "vro/SimulateCommandLine.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <limits>

namespace vro
{

namespace
{

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();

/// Reads a text into its place and answers what is wrong with it, or nothing.
using Parse = std::function<std::string(const std::string &)>;

class Declarations
{
public:
    Declarations(CLI::App &command, SimulateOptions &options) : Command(command), Options(options) {}

    void Add_All()
    {
        Command.add_option("FILE", Options.File, "An emitter file")->required();
        Add_Run();
        Add_View();
        Add_Emitter();
        Add_Game();
        Add_World();
    }

private:
    static void Check(const char *name, const std::string &fault)
    {
        if (!fault.empty()) throw CLI::ValidationError(name, fault);
    }

    CLI::Option *Add(const char *group, const char *name, const char *form, const char *help, const Parse &parse)
    {
        const auto read = [name, parse](const std::string &text) { Check(name, parse(text)); };
        return Command.add_option_function<std::string>(name, read, help)->type_name(form)->group(group);
    }
    /// One that may stand several times.
    void Add_Many(const char *group, const char *name, const char *form, const char *help, const Parse &parse)
    {
        const auto read = [name, parse](const std::vector<std::string> &texts) {
            for (const std::string &text : texts) Check(name, parse(text));
        };
        auto *option = Command.add_option_function<std::vector<std::string>>(name, read, help);
        option->type_name(form)->group(group)->allow_extra_args(false);
    }
    void Add_Vector(const char *group, const char *name, const char *help, Vector3 &value)
    {
        Add(group, name, "X,Y,Z", help, [&value](const std::string &text) { return Parse_Vector(text, value); });
    }
    static Parse Number(float least, float greatest, float &value)
    {
        return [=, &value](const std::string &text) { return Parse_Number(text, least, greatest, value); };
    }

    void Add_Run()
    {
        const auto with = [this](std::string (*parse)(const std::string &, SimulateOptions &)) {
            return [&options = Options, parse](const std::string &text) { return parse(text, options); };
        };
        constexpr const char *GROUP = "Run";
        Add(GROUP, "--frames", "N", "Updates to run", with(Parse_Frames))->required();
        Add(GROUP, "--dt", "SECONDS", "The step of each update", with(Parse_Step))->required();
        Add(GROUP, "--report", "LIST|all|last", "Frames to print, counted from 1; the last one unless given",
            with(Parse_Report));
        Add(GROUP, "--channels", "NAME,NAME,...", "Particle attributes to print", with(Parse_Channels));
        const auto refuse = [] {
            throw CLI::ValidationError("--vertices",
                                       "not available without visualizers that build vertices, which this "
                                       "version doesn't have");
        };
        Command.add_flag_callback("--vertices", refuse, "Also print what the visualizers built")->group(GROUP);
        const auto quality = [&options = Options](const std::string &text) {
            return Parse_Number(text, 0.0f, 1.0f, options.Quality.emplace());
        };
        Add(GROUP, "--quality", "0..1", "The global level of quality", quality);
    }

    void Add_View()
    {
        constexpr const char *GROUP = "Camera";
        Add_Vector(GROUP, "--camera", "Where it stands; 0,-500,200 unless given", Options.Camera);
        Add_Vector(GROUP, "--look-at", "Where it looks; the origin unless given", Options.LookAt);
    }

    void Add_Emitter()
    {
        constexpr const char *GROUP = "Emitter";
        Add_Vector(GROUP, "--position", "Where it starts; the origin unless given", Options.Position);
        Add_Vector(GROUP, "--velocity", "Units a second", Options.Velocity);
        Add_Vector(GROUP, "--rotation", "Degrees about x, then y, then z", Options.Rotation);
        Add_Vector(GROUP, "--spin", "Degrees a second about x, then y, then z", Options.Spin);
        Add(GROUP, "--scale", "S", "Uniform scale", Number(0.0f, FLOAT_MAX, Options.Scale));
        const auto index = [&options = Options](const std::string &text) {
            return Parse_Integer(text, -1, std::numeric_limits<int>::max(), options.AltIndex);
        };
        Add(GROUP, "--alt-index", "I", "The variant of the effect to show; -1, the default, shows all", index);
        const auto hide = [&options = Options](const std::string &text) { return Parse_Hidden(text, true, options); };
        Add_Many(GROUP, "--hide", "FRAME", "Hide the emitter ahead of this frame", hide);
        const auto show = [&options = Options](const std::string &text) { return Parse_Hidden(text, false, options); };
        Add_Many(GROUP, "--show", "FRAME", "Show it again", show);
        const auto spawn = [&options = Options](const std::string &text) { return Parse_Spawn(text, options); };
        Add_Many(GROUP, "--spawn", "FRAME:COUNT", "Ask code spawners for particles ahead of this frame", spawn);
    }

    void Add_Game()
    {
        constexpr const char *GROUP = "Game";
        const auto target = [&options = Options](const std::string &text) {
            return Parse_Vector(text, options.Target.emplace());
        };
        Add(GROUP, "--target", "X,Y,Z", "What projectiles and homing particles fly to", target);
        Add_Vector(GROUP, "--target-velocity", "Units a second", Options.TargetVelocity);
        const auto radius = [&options = Options](const std::string &text) {
            return Parse_Number(text, 0.0f, FLOAT_MAX, options.TargetRadius.emplace());
        };
        Add(GROUP, "--target-radius", "R", "The target's radius: dynamic parameter 7", radius);
        Add(GROUP, "--projectile-speed", "V",
            "Units a second; with a target and no radius, dynamic parameter 7 is the time that the flight takes",
            Number(0.0f, FLOAT_MAX, Options.ProjectileSpeed));
        const auto dynamic = [&options = Options](const std::string &text) { return Parse_Dynamic(text, options); };
        Add_Many(GROUP, "--dynamic", "1..15=VALUE", "A dynamic parameter, whatever else sets it", dynamic);
    }

    void Add_World()
    {
        constexpr const char *GROUP = "World";
        Add_Vector(GROUP, "--wind", "Units a second", Options.Wind);
        const auto terrain = [&options = Options](const std::string &text) { return Parse_Terrain(text, options); };
        Add(GROUP, "--terrain", "Z|PICTURE:SIZE_X,SIZE_Y,HEIGHT",
            "Level ground, or a height field about the origin from a PNG picture, whose white is HEIGHT", terrain);
    }

    CLI::App &Command;
    SimulateOptions &Options;
};

} // namespace

void Add_Simulate_Options(CLI::App &command, SimulateOptions &options)
{
    Declarations(command, options).Add_All();
    command.parse_complete_callback([&options] {
        const std::string fault = Check_Options(options);
        if (!fault.empty()) throw CLI::ValidationError(fault);
    });
}

} // namespace vro
