#include "vro/OptionDeclarations.h"

#include <limits>

namespace vro
{

namespace
{

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();

void Check(const char *name, const std::string &fault)
{
    if (!fault.empty()) throw CLI::ValidationError(name, fault);
}

ParseOption Number(float least, float greatest, float &value)
{
    return [=, &value](const std::string &text) { return Parse_Number(text, least, greatest, value); };
}

} // namespace

CLI::Option *PlayDeclarations::Add(const char *group, const char *name, const char *form, const char *help,
                                   const ParseOption &parse)
{
    const auto read = [name, parse](const std::string &text) { Check(name, parse(text)); };
    return Command.add_option_function<std::string>(name, read, help)->type_name(form)->group(group);
}

void PlayDeclarations::Add_Many(const char *group, const char *name, const char *form, const char *help,
                                const ParseOption &parse)
{
    const auto read = [name, parse](const std::vector<std::string> &texts) {
        for (const std::string &text : texts) Check(name, parse(text));
    };
    auto *option = Command.add_option_function<std::vector<std::string>>(name, read, help);
    option->type_name(form)->group(group)->allow_extra_args(false);
}

void PlayDeclarations::Add_Vector(const char *group, const char *name, const char *help, Vector3 &value)
{
    Add(group, name, "X,Y,Z", help, [&value](const std::string &text) { return Parse_Vector(text, value); });
}

void PlayDeclarations::Add_Playing()
{
    Command.add_option("FILE", Play.File, "An emitter file")->required();
    Add_View();
    Add_Emitter();
    Add_Game();
    Add_World();
}

CLI::Option *PlayDeclarations::Add_Frames(const char *help)
{
    return Add(RUN, "--frames", "N", help,
               [&options = Play](const std::string &text) { return Parse_Frames(text, options); });
}

CLI::Option *PlayDeclarations::Add_Step(const char *help)
{
    return Add(RUN, "--dt", "SECONDS", help,
               [&options = Play](const std::string &text) { return Parse_Step(text, options); });
}

void PlayDeclarations::Add_Quality()
{
    const auto quality = [&options = Play](const std::string &text) {
        return Parse_Number(text, 0.0f, 1.0f, options.Quality.emplace());
    };
    Add(RUN, "--quality", "0..1", "The global level of quality", quality);
}

void PlayDeclarations::Add_View()
{
    constexpr const char *GROUP = "Camera";
    Add_Vector(GROUP, "--camera", "Where it stands; 0,-500,200 unless given", Play.Camera);
    Add_Vector(GROUP, "--look-at", "Where it looks; the origin unless given", Play.LookAt);
}

void PlayDeclarations::Add_Emitter()
{
    constexpr const char *GROUP = "Emitter";
    Add_Vector(GROUP, "--position", "Where it starts; the origin unless given", Play.Position);
    Add_Vector(GROUP, "--velocity", "Units a second", Play.Velocity);
    Add_Vector(GROUP, "--rotation", "Degrees about x, then y, then z", Play.Rotation);
    Add_Vector(GROUP, "--spin", "Degrees a second about x, then y, then z", Play.Spin);
    Add(GROUP, "--scale", "S", "Uniform scale", Number(0.0f, FLOAT_MAX, Play.Scale));
    const auto index = [&options = Play](const std::string &text) {
        return Parse_Integer(text, -1, std::numeric_limits<int>::max(), options.AltIndex);
    };
    Add(GROUP, "--alt-index", "I", "The variant of the effect to show; -1, the default, shows all", index);
    const auto hide = [&options = Play](const std::string &text) { return Parse_Hidden(text, true, options); };
    Add_Many(GROUP, "--hide", "FRAME", "Hide the emitter ahead of this frame", hide);
    const auto show = [&options = Play](const std::string &text) { return Parse_Hidden(text, false, options); };
    Add_Many(GROUP, "--show", "FRAME", "Show it again", show);
    const auto spawn = [&options = Play](const std::string &text) { return Parse_Spawn(text, options); };
    Add_Many(GROUP, "--spawn", "FRAME:COUNT", "Ask code spawners for particles ahead of this frame", spawn);
}

void PlayDeclarations::Add_Game()
{
    constexpr const char *GROUP = "Game";
    const auto target = [&options = Play](const std::string &text) {
        return Parse_Vector(text, options.Target.emplace());
    };
    Add(GROUP, "--target", "X,Y,Z", "What projectiles and homing particles fly to", target);
    Add_Vector(GROUP, "--target-velocity", "Units a second", Play.TargetVelocity);
    const auto radius = [&options = Play](const std::string &text) {
        return Parse_Number(text, 0.0f, FLOAT_MAX, options.TargetRadius.emplace());
    };
    Add(GROUP, "--target-radius", "R", "The target's radius: dynamic parameter 7", radius);
    Add(GROUP, "--projectile-speed", "V",
        "Units a second; with a target and no radius, dynamic parameter 7 is the time that the flight takes",
        Number(0.0f, FLOAT_MAX, Play.ProjectileSpeed));
    const auto dynamic = [&options = Play](const std::string &text) { return Parse_Dynamic(text, options); };
    Add_Many(GROUP, "--dynamic", "1..15=VALUE", "A dynamic parameter, whatever else sets it", dynamic);
}

void PlayDeclarations::Add_World()
{
    constexpr const char *GROUP = "World";
    Add_Vector(GROUP, "--wind", "Units a second", Play.Wind);
    const auto terrain = [&options = Play](const std::string &text) { return Parse_Terrain(text, options); };
    Add(GROUP, "--terrain", "Z|PICTURE:SIZE_X,SIZE_Y,HEIGHT",
        "Level ground, or a height field about the origin from a PNG picture, whose white is HEIGHT", terrain);
}

} // namespace vro
