#include "vro/Commands.h"
#include "vro/JsonReading.h"

#include "Tools/vro/VroProgram.h"
#include "common/PictureBuilder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using vro::Json;
using vroTest::Outcome;
using vroTest::Workshop;

namespace
{

std::string Plugin(const std::string &name, const std::string &parameters = "")
{
    return R"({"name": ")" + name + R"(", "parameters": [)" + parameters + "]}";
}

/// Twenty a second from one point, at one velocity.
std::string Point_Spawner(const std::string &parameters = "", const std::string &velocity = "[0, 0, 0]")
{
    return Plugin("Shape", R"({"name": "Particles / Second", "value": 20}, {"name": "Random Seed", "value": 5},
        {"name": "Velocity", "value": {"shape": 0, "center": )" +
                               velocity + "}}" + (parameters.empty() ? "" : ", " + parameters));
}

/// A layer whose particles live for a second.
std::string Layer(const std::string &spawner, const std::string &modifiers = "", const std::string &name = "dots")
{
    return R"({"name": ")" + name + R"(", "spawner": )" + spawner + R"(, "transformer": {"name": "World Space"},
        "stomper": {"name": "Age", "parameters": [{"name": "Stomp Time", "value": 1}]},
        "visualizer": {"name": "Billboard"}, "modifiers": [)" +
           modifiers + "]}";
}

/// A workshop with one effect, and its play.
struct Theatre
{
    explicit Theatre(const std::string &layers) { Shop.Build("effect.vro", vroTest::Group_Json({layers})); }

    Outcome Run(std::vector<std::string> options, const std::string &shell = "") const
    {
        options.insert(options.begin(), {"simulate", "effect.vro"});
        return Shop.Vro(options, "", shell);
    }

    /// The frames of a play in steps of a tenth of a second.
    Json Frames(int frames, std::vector<std::string> options = {}) const
    {
        options.insert(options.begin(), {"--frames", std::to_string(frames), "--dt", "0.1"});
        const Outcome outcome = Run(std::move(options));
        EXPECT_EQ(outcome.Code, 0) << outcome.Err;
        return outcome.Code == 0 ? vro::Parse_Json(outcome.Out)["frames"] : Json::array();
    }
    /// The first layer after the last frame.
    Json Last_Layer(int frames, const std::vector<std::string> &options = {}) const
    {
        return Frames(frames, options).at(0).at("layers").at(0);
    }
    /// A channel of the layer's youngest particle.
    Json Youngest(const char *channel, int frames, const std::vector<std::string> &options = {}) const
    {
        return Last_Layer(frames, options).at("channels").at(channel).back();
    }

    Workshop Shop;
};

void Expect_Vector_Near(const Json &actual, const std::vector<double> &expected, const char *what)
{
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (size_t axis = 0; axis < expected.size(); ++axis)
        EXPECT_NEAR(actual[axis].get<double>(), expected[axis], 1e-3) << what << " " << axis;
}

} // namespace

TEST(Simulate, PrintsTheRingOfEachLayer)
{
    const Theatre theatre(Layer(Point_Spawner()) + ", " + Layer(Plugin("Code Spawner"), "", "caf\xc3\xa9 \\\"x\\\""));
    const Json frames =
        theatre.Frames(25, {"--report", "25,3", "--channels", "Age,Position,Number,Color,Flags,Render"});
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[1]["frame"], 25);
    EXPECT_FLOAT_EQ(frames[1]["time"].get<float>(), 2.5f);
    ASSERT_EQ(frames[1]["layers"].size(), 2u);
    const Json &layer = frames[1]["layers"][0];
    const int active = layer["active"];
    EXPECT_EQ((layer["head"].get<int>() + active - 1) % layer["capacity"].get<int>(), layer["tail"]);
    for (const auto &channel : layer["channels"].items())
        EXPECT_EQ(channel.value().size(), size_t(active)) << channel.key();
    const auto ages = layer["channels"]["Age"].get<std::vector<float>>();
    EXPECT_TRUE(std::is_sorted(ages.rbegin(), ages.rend())) << "the oldest is the first";
    EXPECT_EQ(frames[1]["layers"][1]["name"], "caf\xc3\xa9 \"x\"");
}

TEST(Simulate, ALayerWithoutABufferIsEmpty)
{
    const Theatre theatre(R"({"name": "bare", "stomper": {"name": "Age"}})");
    const Json layer = theatre.Last_Layer(2, {"--channels", "Age,Color"});
    EXPECT_EQ(layer["capacity"], 0);
    EXPECT_EQ(layer["active"], 0);
    EXPECT_EQ(layer["channels"].dump(), R"({"Age":[],"Color":[]})");
}

TEST(Simulate, TwoRunsPrintTheSameBytesOnOneThreadAndMore)
{
    const Theatre theatre(
        Layer(Plugin("Shape", R"({"name": "Particles / Second", "value": 300}, {"name": "Random Seed", "value": 7})"),
              Plugin("Acceleration")));
    const std::vector<std::string> options = {"--frames", "40", "--dt", "0.033333", "--report", "all"};
    const std::string first = theatre.Run(options).Out;
    EXPECT_GT(first.size(), 100000u);
    EXPECT_EQ(theatre.Run(options).Out, first);
    EXPECT_EQ(theatre.Run(options, "taskset -c 0").Out, first);
}

TEST(Simulate, TheEmitterMovesAndTurnsFromTheSecondFrameOn)
{
    const Theatre still(Layer(Point_Spawner()));
    // Born at once in frame 11, where the emitter stands since ten frames of a tenth of a second.
    Expect_Vector_Near(still.Youngest("Position", 1, {"--position", "1,2,3", "--velocity", "100,0,0"}), {1, 2, 3},
                       "first");
    const Json place = still.Youngest("Position", 11, {"--position", "1,2,3", "--velocity", "100,0,0"});
    EXPECT_GT(place[0].get<double>(), 95.0);
    EXPECT_LT(place[0].get<double>(), 101.0 + 1e-3);

    const Theatre jet(Layer(Point_Spawner("", "[10, 0, 0]")));
    // About x nothing, about y a quarter turn takes x to -z, about z that stays.
    Expect_Vector_Near(jet.Youngest("Velocity", 2, {"--rotation", "30,90,45"}), {0, 0, -10}, "rotation");
    // Rotations of a frame are those of its start: nine frames of 10 degrees stand behind the eleventh.
    Expect_Vector_Near(jet.Youngest("Velocity", 11, {"--spin", "0,0,100"}), {0, 10, 0}, "spin");
    Expect_Vector_Near(jet.Youngest("Velocity", 11, {"--scale", "3"}), {10, 0, 0}, "scale");
}

TEST(Simulate, HidingStopsBirths)
{
    const Theatre theatre(Layer(Point_Spawner()));
    EXPECT_NEAR(theatre.Last_Layer(8)["active"].get<int>(), 16, 1);
    const int hidden = theatre.Last_Layer(8, {"--hide", "4"})["active"];
    EXPECT_NEAR(hidden, 6, 1);
    EXPECT_GT(theatre.Last_Layer(8, {"--hide", "4", "--show", "7"})["active"].get<int>(), hidden);
}

TEST(Simulate, CodeSpawnersGetWhatIsAskedFor)
{
    const Theatre theatre(Layer(Plugin("Code Spawner", R"({"name": "#Code Particles", "value": 100})")));
    const Json frames = theatre.Frames(4, {"--report", "2,4", "--spawn", "3:7"});
    EXPECT_EQ(frames[0]["layers"][0]["active"], 0);
    EXPECT_EQ(frames[1]["layers"][0]["active"], 7);
}

TEST(Simulate, TheWorldReachesTheParticles)
{
    const Theatre snapping(Layer(Point_Spawner(R"({"name": "Terrain Snap", "value": true})")));
    // Three by two of grey: 0 to 20 high along the far edge, 20 to 0 along the near one.
    snapping.Shop.Directory.Write("hills.png", MKTest::Grey_Picture(3, 2, {0, 50, 100, 100, 50, 0}));
    Expect_Vector_Near(snapping.Youngest("Position", 2, {"--terrain", "-7.5"}), {0, 0, -7.5}, "plane");
    Expect_Vector_Near(snapping.Youngest("Position", 2, {"--terrain", "hills.png:20,10,51", "--position", "5,2.5,99"}),
                       {5, 2.5, 12.5}, "picture");

    const Theatre windy(Layer(Point_Spawner(), Plugin("Wind Velocity")));
    EXPECT_NE(windy.Youngest("Position", 8, {"--wind", "10,0,0"}), windy.Youngest("Position", 8));
}

TEST(Simulate, AGroundThatCannotBeHadIsNamed)
{
    const Theatre theatre(Layer(Point_Spawner()));
    theatre.Shop.Directory.Write("text.png", "no picture");
    for (const auto &[file, reason] : {std::pair("text.png", "not a PNG picture"), {"gone.png", "No such file"}}) {
        const Outcome outcome = theatre.Run({"--frames", "1", "--dt", "1", "--terrain", std::string(file) + ":1,1,1"});
        EXPECT_EQ(outcome.Code, vro::EXIT_BAD_DATA);
        EXPECT_THAT(outcome.Err, HasSubstr("vro: " + std::string(file) + ": " + reason));
        EXPECT_THAT(outcome.Out, IsEmpty());
    }
}

TEST(Simulate, TheTargetReachesTheParticles)
{
    const Theatre theatre(Layer(Point_Spawner()));
    const std::vector<std::string> target = {"--target", "301,402,3",         "--position",
                                             "1,2,3",    "--target-velocity", "10,0,0"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.end(), target.begin(), target.end());
        return more;
    };
    // Eleven frames of a tenth of a second, of which the first moves nothing.
    Expect_Vector_Near(
        theatre.Youngest("ProjectileTargetPosition", 11, with({"--channels", "ProjectileTargetPosition"})),
        {311, 402, 3}, "target");
    const std::pair<std::vector<std::string>, float> rows[] = {
        // to the value of dynamic parameter 7
        {{}, 0.0f},
        {{"--projectile-speed", "100"}, 5.0f}, // 300 and 400 make 500 away
        {{"--projectile-speed", "100", "--target-radius", "8"}, 8.0f},
        {{"--projectile-speed", "100", "--target-radius", "8", "--dynamic", "7=2"}, 2.0f},
    };
    for (const auto &[options, value] : rows) {
        auto line = with(options);
        line.insert(line.end(), {"--channels", "ProjectileFlightDuration"});
        EXPECT_EQ(theatre.Youngest("ProjectileFlightDuration", 3, line).get<float>(), value);
    }
}

TEST(Simulate, QualityAndVariantDecideWhatPlays)
{
    const Theatre fine(Layer(Point_Spawner(R"({"name": "Global LOD", "value": 3})")));
    EXPECT_EQ(fine.Last_Layer(5, {"--quality", "0.5"})["active"], 0);
    EXPECT_GT(fine.Last_Layer(5, {"--quality", "0.75"})["active"].get<int>(), 0);
    const Theatre variant(Layer(Point_Spawner(R"({"name": "Alt Indices", "value": 2})")));
    EXPECT_EQ(variant.Last_Layer(5, {"--alt-index", "0"})["active"], 0);
    EXPECT_GT(variant.Last_Layer(5, {"--alt-index", "1"})["active"].get<int>(), 0);
}

TEST(Simulate, VerticesAreThoseOfADrawFromTheCamera)
{
    const Theatre theatre(
        Layer(Point_Spawner(R"({"name": "Position", "value": {"shape": 0, "center": [5, 0, 10]}})"),
              Plugin("Constant Size", R"({"name": "Width", "value": 2}, {"name": "Height", "value": 3})") + ", " +
                  Plugin("Constant UV") + ", " +
                  Plugin("Constant Color", R"({"name": "Color", "value": [1, 0, 1, 0.2]})")) +
        ", " + Layer(Plugin("Code Spawner")));
    const std::vector<std::string> view = {"--camera", "0,-100,0", "--vertices"};
    const Json layers = theatre.Frames(1, view).at(0).at("layers");
    const Json &quads = layers.at(0).at("vertices");
    ASSERT_EQ(quads.size(), layers.at(0).at("visible").get<size_t>() * 4);
    // The view goes along y, with x to its right and z up. Sizes are halves.
    const struct
    {
        std::vector<double> position, uv;
    } corners[] = {{{3, 0, 13}, {0, 0}}, {{3, 0, 7}, {0, 1}}, {{7, 0, 7}, {1, 1}}, {{7, 0, 13}, {1, 0}}};
    for (size_t index = 0; index < 4; ++index) {
        Expect_Vector_Near(quads.at(index).at("position"), corners[index].position, "position");
        Expect_Vector_Near(quads.at(index).at("uv"), corners[index].uv, "uv");
        Expect_Vector_Near(quads.at(index).at("normal"), {0, 0, 1}, "normal");
        EXPECT_THAT(quads.at(index).at("color"), ElementsAre(255, 0, 255, 51));
    }
    EXPECT_THAT(layers.at(1).at("vertices"), IsEmpty());
}

TEST(Simulate, ALayerThatFindsNoRoomHasNoVerticesInThatFrame)
{
    const Theatre theatre(Layer(Plugin("Shape", R"({"name": "Particles / Second", "value": 320000},
        {"name": "Random Seed", "value": 5})")));
    std::vector<std::string> options = {"--frames", "2", "--dt", "0.05", "--report", "all", "--channels", "Age"};
    options.push_back("--vertices");
    const Outcome outcome = theatre.Run(options); // 16,000 quads fit, and 32,000 don't
    ASSERT_EQ(outcome.Code, 0) << outcome.Err;
    EXPECT_THAT(outcome.Err, HasSubstr("vrMKPBillboardVisualizer::Do_Pre_Visualize: out of particle scratch memory!"));
    const Json frames = vro::Parse_Json(outcome.Out)["frames"];
    EXPECT_EQ(frames[0]["layers"][0]["vertices"].size(), frames[0]["layers"][0]["visible"].get<size_t>() * 4);
    EXPECT_GT(frames[0]["layers"][0]["visible"].get<int>(), 10000);
    EXPECT_THAT(frames[1]["layers"][0]["vertices"], IsEmpty());
}
