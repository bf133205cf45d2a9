#include "vro/Commands.h"
#include "vro/JsonReading.h"
#include "vro/Workloads.h"

#include "Tools/vro/VroProgram.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using vro::Json;
using vroTest::Outcome;
using vroTest::Workshop;

namespace
{

/// The live particles of each frame of an effect of one layer.
std::vector<int> Play(vrMKParticleEmitter &emitter, int frames)
{
    const SmartPtr<vrSimpleScene> scene = new vrSimpleScene;
    scene->Add_Renderable(&emitter);
    auto &group = dynamic_cast<vrMKParticleGroup &>(*emitter.Peek_Particle_Renderable(0));
    std::vector<int> counts;
    for (int frame = 0; frame < frames; ++frame) {
        scene->Update(vro::WORKLOAD_STEP);
        const vrMKPBuffer *buffer = group.Get_Particle(0)->Get_Buffer();
        counts.push_back(buffer ? buffer->ActiveCount : 0);
    }
    return counts;
}

} // namespace

TEST(Workloads, TheSteadyOneKeepsItsCount)
{
    const auto emitter = vro::Make_Steady(3000);
    const auto counts = Play(*emitter, 400);
    EXPECT_NEAR(counts[0], 25, 2); // 3000 in two seconds, of which a frame is a sixtieth
    for (size_t frame = 130; frame < counts.size(); ++frame) EXPECT_NEAR(counts[frame], 3000, 60) << frame;
}

TEST(Workloads, TheBurstIsBornInOneFrameAndGone)
{
    const auto emitter = vro::Make_Burst(5000);
    const auto counts = Play(*emitter, 4);
    EXPECT_NEAR(counts[0], 5000, 50);
    EXPECT_LE(counts[1], counts[0]);
    EXPECT_EQ(counts[3], 0);
}

TEST(Bench, MeasuresFilesAndNamesThoseWithoutParticles)
{
    const Workshop shop;
    shop.Build("dots.vro", vroTest::Group_Json({vroTest::Layer_Json("dots", R"({"name": "Billboard"})")}));
    shop.Build("bare.vro", R"({"renderables": [{"kind": "group", "name": "group"}]})");
    const Outcome outcome = shop.Vro({"bench", "dots.vro", "bare.vro", "gone.vro", "--json"});
    EXPECT_EQ(outcome.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(outcome.Err, HasSubstr("vro: bare.vro: no particle is born in the first"));
    EXPECT_THAT(outcome.Err, HasSubstr("vro: gone.vro: No such file"));
    ASSERT_THAT(outcome.Out, HasSubstr("\"vertices\"")) << outcome.Err;
    const Json results = vro::Parse_Json(outcome.Out)["results"];
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0]["name"], "dots.vro");
    // Thirty a second that live for five: over the first five seconds some 75 on average, 150 at the end.
    EXPECT_NEAR(results[0]["live"].get<double>(), 75.0, 5.0);
    EXPECT_NEAR(results[0]["peak"].get<double>(), 150.0, 3.0);
    for (const char *figure : {"load_seconds", "start_seconds", "frame_seconds"})
        EXPECT_GT(results[0][figure].get<double>(), 0.0) << figure;
    EXPECT_NEAR(results[0]["particles_per_second"].get<double>() * results[0]["nanoseconds_per_particle"].get<double>(),
                1e9, 1e3);
    const Json &stages = results[0]["stages"];
    EXPECT_EQ(stages["simulation"]["particles"], results[0]["live"]);
    // Nothing is thinned out: what lives is selected, and gets its vertices.
    for (const char *name : {"selection", "vertices"}) {
        EXPECT_NEAR(stages[name]["particles"].get<double>(), 75.0, 5.0) << name;
        EXPECT_GT(stages[name]["seconds"].get<double>(), 0.0) << name;
    }
}

TEST(Bench, HasNoDrawStagesWhereNothingIsDrawn)
{
    const Workshop shop;
    shop.Build("blind.vro", vroTest::Group_Json({vroTest::Layer_Json("dots", "null")}));
    const Json blind = vro::Parse_Json(shop.Vro({"bench", "blind.vro", "--json"}).Out)["results"][0]["stages"];
    EXPECT_TRUE(blind.contains("simulation"));
    EXPECT_FALSE(blind.contains("selection"));
    EXPECT_FALSE(blind.contains("vertices"));
}
