#include "Tools/vro/VroProgram.h"

#include "vro/JsonText.h"

#include <gtest/gtest.h>

using namespace vro;

TEST(Encoding, ChunksTellsTheSameTreeOfEachOne)
{
    const vroTest::Workshop shop;
    const std::string json = vroTest::Group_Json({vroTest::Layer_Json("flames", R"({"name": "Heat And Saturation"})")});
    for (const char *base : {"zlib", "binary", "xml", "sectioned", "zlib-sectioned"})
        for (const char *options : {"", "+validated", "+swapped", "+swapped+validated"}) {
            const std::string encoding = std::string(base) + options;
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
