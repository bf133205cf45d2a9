#include "vro/Commands.h"
#include "vro/JsonReading.h"

#include "Tools/vro/VroProgram.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using vro::Json;
using vroTest::Outcome;
using vroTest::Workshop;

TEST(Bench, MeasuresFilesAndNamesThoseWithoutParticles)
{
    const Workshop shop;
    shop.Build("dots.vro", vroTest::Group_Json({vroTest::Layer_Json("dots", R"({"name": "Billboard"})")}));
    shop.Build("bare.vro", R"({"renderables": [{"kind": "group", "name": "group"}]})");
    shop.Build("blind.vro", vroTest::Group_Json({vroTest::Layer_Json("dots", "null")}));
    const Outcome outcome = shop.Vro({"bench", "dots.vro", "bare.vro", "gone.vro", "blind.vro", "--json"});
    EXPECT_EQ(outcome.Code, vro::EXIT_BAD_DATA);
    EXPECT_THAT(outcome.Err, HasSubstr("vro: bare.vro: no particle is born in the first"));
    EXPECT_THAT(outcome.Err, HasSubstr("vro: gone.vro: No such file"));
    ASSERT_THAT(outcome.Out, HasSubstr("\"vertices\"")) << outcome.Err;
    const Json results = vro::Parse_Json(outcome.Out)["results"];
    ASSERT_EQ(results.size(), 2u);
    // Thirty a second that live for five: over the first five seconds some 75 on average, 150 at the end.
    EXPECT_NEAR(results[0]["live"].get<double>(), 75.0, 5.0);
    const Json &stages = results[0]["stages"];
    // Nothing is thinned out: what lives is selected, and gets its vertices.
    for (const char *name : {"selection", "vertices"})
        EXPECT_NEAR(stages[name]["particles"].get<double>(), 75.0, 5.0) << name;
    EXPECT_FALSE(results[1]["stages"].contains("vertices")) << "nothing of it is drawn";
}
