#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <gmock/gmock.h>

using namespace vro;

namespace
{

/// What a build of the document says; empty when it goes well.
std::string Error_Of(const std::string &text)
{
    try {
        Effect_From_Json(Parse_Json(text));
        return "";
    } catch (const JsonError &error) {
        return error.what();
    }
}

std::string Spawner(const std::string &text)
{
    return R"({"renderables": [{"layers": [{"spawner": )" + text + "}]}]}";
}

std::string Parameter(const std::string &text)
{
    return Spawner(R"({"id": 34, "parameters": [)" + text + "]}");
}

std::string Modifier_Value(const std::string &plugin, const std::string &parameter, const std::string &value)
{
    return R"({"renderables": [{"layers": [{"modifiers": [{"name": ")" + plugin + R"(", "parameters": [{"name": ")" +
           parameter + R"(", "value": )" + value + "}]}]}]}]}";
}

const std::string SPAWNER = "/renderables/0/layers/0/spawner";
const std::string PARAMETER = SPAWNER + "/parameters/0";
const std::string VALUE = "/renderables/0/layers/0/modifiers/0/parameters/0/value";

std::string Repeated(const std::string &text, int count)
{
    std::string result;
    for (int index = 0; index < count; ++index) result += text;
    return result;
}

} // namespace

TEST(EffectJsonErrors, NameTheirPlaceAndReason)
{
    const struct
    {
        const char *what;
        std::string document, place, reason;
    } faults[] = {
        // The text itself.
        {"nothing", "", "/", "unexpected end of input"},
        {"half a document", R"({"name": "a", "renderables": [{"name": )", "/renderables/0/name", "unexpected end"},
        {"a lone surrogate", R"({"name": "\ud800"})", "/name", "surrogate"},
        {"bytes that are no UTF-8", "{\"name\": \"\xff\"}", "/name", "ill-formed UTF-8"},
        {"a number beyond a double", R"({"renderables": [{"sort_bias": 1e999}]})", "/renderables/0/sort_bias", "1e999"},
        {"a key twice further down", R"({"renderables": [{}, {"name": "a", "kind": "group", "name": "b"}]})",
         "/renderables/1/name", "given twice"},
        // Names and types at each level.
        {"a key that a pointer must escape", R"({"a/b~c": 1})", "/a~1b~0c", "unknown key"},
        {"unknown kind", R"({"renderables": [{"kind": "grup"}]})", "/renderables/0/kind", "\"grup\""},
        {"vector too short", R"({"renderables": [{"translate_offset": [1, 2]}]})", "/renderables/0/translate_offset",
         "array of 3"},
        {"seed beyond 64 bits", R"({"renderables": [{"base_random_seed": 18446744073709551615}]})",
         "/renderables/0/base_random_seed", "out of range"},
        {"a renderable's name too long for a file",
         R"({"renderables": [{"name": ")" + std::string(PluginSlots::MAX_MICRO_CHUNK_TEXT + 1, 'x') + "\"}]}",
         "/renderables/0/name", "253 bytes"},
        {"a text too long for a file", R"({"name": ")" + std::string(65536, 'x') + "\"}", "/name", "65536 bytes"},
        // Plugins.
        {"a plugin of nothing", Spawner("{}"), SPAWNER, "needs an \"id\" or a \"name\""},
        {"id past the last", Spawner(R"({"id": 129})"), SPAWNER + "/id", "no plugin of the id 129"},
        {"name of another id", Spawner(R"({"id": 34, "name": "Death"})"), SPAWNER + "/name", "\"Shape\""},
        {"a modifier as the spawner", Spawner(R"({"id": 10})"), SPAWNER, "a Modifier, and a Spawner stands here"},
        // Parameters.
        {"one that no file takes", Parameter(R"({"name": "Enable Bursting", "value": true})"), PARAMETER, "is retired"},
        {"another kind", Parameter(R"({"id": 9, "kind": "Integer", "value": 1})"), PARAMETER + "/kind", "\"Float\""},
        {"given twice", Parameter(R"({"id": 9, "value": 1}, {"name": "D-LOD Near Distance", "value": 2})"),
         SPAWNER + "/parameters/1", "given twice"},
        {"unknown label", Parameter(R"({"name": "Random Seed Source", "value": "Nobody"})"), PARAMETER + "/value",
         "\"This Particle\""},
        {"label of another index",
         Parameter(R"({"name": "Random Seed Source", "value": {"index": 1, "label": "This Particle"}})"),
         PARAMETER + "/value/label", "is that of index 0, not of 1"},
        {"key without value", Modifier_Value("Keyed Uniform Size", "Size", R"({"keys": [[0, 1], [1]]})"),
         VALUE + "/keys/1", "[time, value]"},
        {"two keys of one time", Modifier_Value("Keyed Uniform Size", "Size", R"({"keys": [[0, 1], [-0.0, 2]]})"),
         VALUE + "/keys/1", "already"},
        {"a time that is no number beside another",
         Modifier_Value("Keyed Uniform Size", "Size", R"({"keys": [[0, 1], ["nan", 2]]})"), VALUE + "/keys/1",
         "stands alone"},
        // The list of texts in Windows-1252.
        {"a character that the page lacks", R"({"windows_1252": ["/name"], "name": "\u03b1"})", "/name",
         "Windows-1252"},
        {"a place without a text", R"({"windows_1252": ["/renderables/0/name"]})", "/windows_1252",
         "no text at /renderables/0/name"},
    };
    for (const auto &fault : faults) {
        const std::string error = Error_Of(fault.document);
        EXPECT_THAT(error, testing::StartsWith(fault.place + ": ")) << fault.what;
        EXPECT_THAT(error, testing::HasSubstr(fault.reason)) << fault.what;
    }
}

TEST(EffectJsonErrors, EndsAtHostileDocumentsWithoutMuchWork)
{
    // Each would cost a stack, hours or gigabytes if it were taken at its word.
    std::string manyKeys = "{";
    for (int index = 0; index < 200000; ++index) manyKeys += "\"k" + std::to_string(index) + "\": 1, ";
    const struct
    {
        const char *what;
        std::string document, reason;
    } documents[] = {
        {"arrays in arrays", Repeated("[", 1000000), "deeper than an effect"},
        {"objects in objects", Repeated("{\"a\": ", 1000000), "deeper than an effect"},
        {"keys without end", manyKeys, "more keys"},
        {"plugins without end",
         R"({"renderables": [{"layers": [{"modifiers": [)" + Repeated(R"({"id":10},)", 40000) + R"({"id":10}]}]}]})",
         "at most 32768"},
        {"layers without end", R"({"renderables": [{"layers": [)" + Repeated("{},", 40000) + "{}]}]}", "at most 32768"},
    };
    for (const auto &document : documents)
        EXPECT_THAT(Error_Of(document.document), testing::HasSubstr(document.reason)) << document.what;
}

TEST(EffectJsonErrors, EveryPrefixOfADocumentIsRefused)
{
    const std::string whole = R"({"name": "é", "renderables": [{"layers": [{"spawner": {"id": 34, "parameters": )"
                              R"([{"id": 9, "value": -1.5e2}]}}]}]})";
    ASSERT_EQ(Error_Of(whole), "");
    for (size_t size = 0; size < whole.size(); ++size) EXPECT_NE(Error_Of(whole.substr(0, size)), "") << size;
}
