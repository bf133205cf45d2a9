#pragma once

#include "vro/OptionText.h"

#include <map>
#include <optional>
#include <string>
#include <variant>

namespace vro
{

/// Ground read from a picture: its size in world units, and the height of white.
struct PictureTerrain
{
    std::string Path;
    float SizeX = 0.0f;
    float SizeY = 0.0f;
    float Height = 0.0f;
};

/// How an effect is played: for how long, seen from where, and in what world. Frames count from 1.
struct PlayOptions
{
    static constexpr int MAX_FRAMES = 10'000'000;

    std::string File;
    int Frames = 0;
    float StepSeconds = 0.0f;

    Vector3 Camera{0.0f, -500.0f, 200.0f};
    Vector3 LookAt{0.0f};
    std::optional<float> Quality; ///< 0 to 1

    Vector3 Position{0.0f};
    Vector3 Velocity{0.0f}; ///< units a second
    Vector3 Rotation{0.0f}; ///< degrees about x, then y, then z
    Vector3 Spin{0.0f};     ///< degrees a second
    float Scale = 1.0f;
    int AltIndex = -1;
    std::map<int, bool> Hidden; ///< by frame, whether the emitter is hidden from then on
    std::map<int, int> Spawns;  ///< by frame, particles that code spawners are asked for

    std::optional<Vector3> Target;
    Vector3 TargetVelocity{0.0f}; ///< units a second
    std::optional<float> TargetRadius;
    float ProjectileSpeed = 0.0f; ///< units a second; 0 for none
    std::map<int, float> Dynamic; ///< parameters 1 to 15

    Vector3 Wind{0.0f}; ///< units a second
    std::variant<std::monostate, float, PictureTerrain> Terrain;
};

// Each reads the text of one option into its place. What they answer is empty, or what is wrong with the text.
std::string Parse_Frames(const std::string &text, PlayOptions &options);
std::string Parse_Step(const std::string &text, PlayOptions &options);
std::string Parse_Hidden(const std::string &text, bool hidden, PlayOptions &options);
std::string Parse_Spawn(const std::string &text, PlayOptions &options);
std::string Parse_Dynamic(const std::string &text, PlayOptions &options);
std::string Parse_Terrain(const std::string &text, PlayOptions &options);

/// What is wrong with a frame that an option names: it lies beyond the last.
std::string Check_Frame(const char *option, int frame, const PlayOptions &options);
/// What is wrong between options that each are well; empty when nothing is.
std::string Check_Play_Options(const PlayOptions &options);

} // namespace vro
