#include "Tools/vro/AllKinds.h"
#include "Tools/vro/VroProgram.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <gtest/gtest.h>

using namespace vro;

namespace
{

std::vector<std::string> All_Encodings()
{
    std::vector<std::string> names;
    for (const char *base : {"zlib", "binary", "xml", "sectioned", "zlib-sectioned"})
        for (const char *options : {"", "+validated", "+swapped", "+validated+swapped"})
            names.push_back(std::string(base) + options);
    return names;
}

} // namespace

TEST(Encoding, NamesTheModesOfTheWriter)
{
    // Compression 0 none, 1 zlib, 2 XML; 0x10 sectioned, 0x20 validated, 0x40 swapped.
    const struct
    {
        const char *text;
        std::optional<unsigned> mode;
    } encodings[] = {
        {"zlib", 0x01},
        {"xml", 0x02},
        {"binary+validated", 0x20},
        {"zlib+swapped", 0x41},
        {"zlib-sectioned+swapped+validated", 0x71},
        {"", std::nullopt},
        {"ZLIB", std::nullopt},
        {"zlib+", std::nullopt},
        {"+swapped", std::nullopt},
        {"zlib+swapped+swapped", std::nullopt},
    };
    for (const auto &encoding : encodings) EXPECT_EQ(Parse_Encoding(encoding.text), encoding.mode) << encoding.text;
}

TEST(Encoding, AnEffectIsTheSameInEachOne)
{
    int kinds = 0;
    const auto emitter = vroTest::Make_Effect_Of_All_Kinds(kinds);
    std::string bytes;
    std::string error;
    ASSERT_TRUE(Save_Effect(*emitter, TOOL_MODE, bytes, error)) << error;
    const auto mended = Load_Effect(bytes, "everything.vro", error);
    ASSERT_TRUE(mended) << error;
    const std::string text = To_Text(Effect_To_Json(*mended));
    for (const std::string &encoding : All_Encodings()) {
        std::string first;
        std::string second;
        ASSERT_TRUE(Save_Effect(*mended, *Parse_Encoding(encoding), first, error)) << encoding << error;
        const auto reloaded = Load_Effect(first, "everything.vro", error);
        ASSERT_TRUE(reloaded) << encoding << ": " << error;
        // XML has six digits after the point, which the smallest times of the curves don't survive.
        EXPECT_EQ(To_Text(Effect_To_Json(*reloaded)) == text, encoding[0] != 'x') << encoding;
        ASSERT_TRUE(Save_Effect(*reloaded, *Parse_Encoding(encoding), second, error)) << encoding << error;
        EXPECT_TRUE(first == second) << encoding;
    }
}

TEST(Encoding, ChunksTellsTheSameTreeOfEachOne)
{
    const vroTest::Workshop shop;
    const std::string json = vroTest::Group_Json({vroTest::Layer_Json("flames", R"({"name": "Heat And Saturation"})")});
    for (const std::string &encoding : All_Encodings()) {
        shop.Build("effect.vro", json, encoding);
        const auto outcome = shop.Vro({"chunks", "effect.vro", "--json"});
        ASSERT_EQ(outcome.Code, 0) << encoding << outcome.Err;
        Json file = Json::parse(outcome.Out);
        const bool isValidated = encoding.find("+validated") != std::string::npos;
        // Text has no byte order, and each of its values tells its type.
        const bool isXml = encoding[0] == 'x';
        EXPECT_EQ(file["swapped"], !isXml && encoding.find("+swapped") != std::string::npos) << encoding;
        EXPECT_EQ(file["validated"], isXml || isValidated) << encoding;
        EXPECT_EQ(file["sectioned"], encoding.find("sectioned") != std::string::npos) << encoding;
        EXPECT_EQ(file["compression"], encoding[0] == 'z' ? "zlib" : isXml ? "xml" : "binary") << encoding;

        const Json &root = file["chunks"][0];
        EXPECT_EQ(root["id"], 0x1500);
        EXPECT_EQ(root["count"], 3); // name, group, variables
        const Json &variables = root["chunks"][2];
        EXPECT_EQ(variables["id"], 0x1502);
        EXPECT_EQ(variables["micro_chunks"][0]["size"], isXml || isValidated ? 2 : 1)
            << encoding; // with the type's tag
    }
}
