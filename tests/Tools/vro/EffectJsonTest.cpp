#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include <gtest/gtest.h>
#include <map>

using namespace vro;

namespace
{

/// A plugin of each kind, with the default values, as a dump has it.
Json Make_All_Kinds()
{
    std::map<vrMKPPlugin::PluginType, Json> families;
    for (int id = 0; const auto *kind = Find_Plugin_Info(id); ++id) families[kind->Family].push_back({{"id", id}});
    Json group = {{"physics", nullptr},
                  {"lights", families[vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN]},
                  {"modifiers", families[vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN]}};
    group["layers"][0]["modifiers"] = families[vrMKPPlugin::MODIFIER_PLUGIN];
    const std::pair<vrMKPPlugin::PluginType, const char *> slots[] = {{vrMKPPlugin::SPAWNER_PLUGIN, "spawner"},
                                                                      {vrMKPPlugin::TRANSFORMER_PLUGIN, "transformer"},
                                                                      {vrMKPPlugin::STOMPER_PLUGIN, "stomper"},
                                                                      {vrMKPPlugin::VISUALIZER_PLUGIN, "visualizer"}};
    for (const auto &[family, slot] : slots)
        for (size_t layer = 0; layer < families[family].size(); ++layer)
            group["layers"][layer][slot] = families[family][layer];
    Json renderables = Json::array({group});
    for (const Json &killer : families[vrMKPPlugin::RENDERABLE_KILLER_PLUGIN])
        renderables.push_back(
            {{"kind", "model"}, {"killer", killer}, {"physics", nullptr}, {"attached_model", {{"name", "crate"}}}});
    for (const Json &physics : families[vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN])
        renderables.push_back({{"physics", physics}});
    return Effect_To_Json(*Effect_From_Json({{"renderables", renderables}}));
}

Json Changed_Value(const Json &value)
{
    Json changed = value;
    if (value.is_structured())
        for (Json &part : changed) part = Changed_Value(part);
    else if (value.is_boolean())
        changed = !value.get<bool>();
    else if (value.is_string())
        changed = "a\\b \"c\"\n\u00e9";
    else if (value.is_number_float())
        changed = Float_To_Json(0.37f - value.get<float>());
    else
        changed = value.get<int64_t>() ^ 1;
    EXPECT_NE(changed, value);
    return changed;
}

/// Gives all that a dump holds another value, and answers how many plugins it has.
int Change_All(Json &part)
{
    if (part.contains("parameters")) {
        for (Json &parameter : part["parameters"]) {
            const std::string kind = parameter["kind"];
            Json &value = parameter["value"];
            const Json four = {0.5, 1.5, 2.5, 3.5};
            if (kind == "Enumeration") // a file may hold any index; it stays, and has no label
                value = {{"index", 999}, {"label", ""}};
            else if (kind.starts_with("Keyed"))
                value = {{"spline", !value["spline"].get<bool>()},
                         {"keys", {{-0.5, kind == "Keyed Float" ? Json(-7.5) : four}}}};
            else
                value = value == Json::array() ? Json::array({four}) : Changed_Value(value);
        }
        return 1;
    }
    int plugins = 0;
    for (auto &[key, value] : part.items()) {
        if (value.is_object())
            plugins += Change_All(value);
        else if (value.is_array() && (value.empty() || value[0].is_object()))
            for (Json &item : value) plugins += Change_All(item);
        else if (key != "kind" && !value.is_null())
            value = Changed_Value(value);
    }
    return plugins;
}

/// The value of a parameter of the first layer's modifier, after a build of `value`.
Json Rebuilt_Value(const std::string &plugin, const std::string &name, const std::string &value)
{
    const std::string text = R"({"renderables": [{"layers": [{"modifiers": [{"name": ")" + plugin +
                             R"(", "parameters": [{"name": ")" + name + R"(", "value": )" + value + "}]}]}]}]}";
    const Json dumped = Effect_To_Json(*Effect_From_Json(Parse_Json(text)));
    for (const Json &parameter : dumped["renderables"][0]["layers"][0]["modifiers"][0]["parameters"])
        if (parameter["name"] == name) return parameter["value"];
    throw std::runtime_error("no parameter " + name);
}

SmartPtr<vrMKParticleEmitter> Built(const std::string &text)
{
    return Effect_From_Json(Parse_Json(text));
}

} // namespace

TEST(EffectJson, KeepsEveryValueOfEveryKind)
{
    Json document = Make_All_Kinds();
    ASSERT_EQ(Change_All(document), 129);
    EXPECT_EQ(To_Text(Effect_To_Json(*Effect_From_Json(document))), To_Text(document));
}

TEST(EffectJson, FindsANameInTheFamilyOfItsPlace)
{
    const Json layer = Effect_To_Json(*Built(R"({"renderables": [{"layers": [{
        "spawner": {"name": "Weather Cube"}, "stomper": {"name": "Weather Cube"}}]}]})"))["renderables"][0]["layers"]
                                                                                         [0];
    EXPECT_EQ(layer["spawner"]["id"], 63);
    EXPECT_EQ(layer["stomper"]["id"], 66);
}

TEST(EffectJson, TakesAnEnumerationInEachForm)
{
    for (const char *form : {R"("Bone")", "1", R"({"label": "Bone"})"})
        EXPECT_EQ(Rebuilt_Value("Attractor", "Target Position", form), Json({{"index", 1}, {"label", "Bone"}})) << form;
}

TEST(EffectJson, TakesALongCurveInAnyOrder)
{
    // Each key used to be put in front of all the others, which took hours.
    constexpr int COUNT = 1000000;
    std::string keys;
    for (int time = COUNT; time > 0; --time) keys += '[' + std::to_string(time) + (time > 1 ? ",0]," : ",0]");
    const Json value = Rebuilt_Value("Keyed Uniform Size", "Size", "{\"keys\": [" + keys + "]}");
    ASSERT_EQ(value["keys"].size(), static_cast<size_t>(COUNT));
    EXPECT_EQ(value["keys"].front()[0], 1.0);
    EXPECT_EQ(value["keys"].back()[0], static_cast<double>(COUNT));
}

TEST(EffectJson, ReadsTextsThatAreNotUtf8AsWindows1252AndWritesTheSameBytes)
{
    // 0xe9 and 0x80 alone are no UTF-8; Windows-1252 has e acute and the euro sign there. 0x81 it leaves open.
    const struct
    {
        const char *what, *bytes, *text;
        bool isListed;
    } names[] = {
        {"Windows-1252", "caf\xe9 \x80", "caf\xc3\xa9 \xe2\x82\xac", true},
        {"an open byte", "a\x81", "a\xc2\x81", true},
    };
    for (const auto &name : names) {
        const SmartPtr<vrMKParticleEmitter> emitter = new vrMKParticleEmitter;
        emitter->Set_Name(name.bytes);
        const Json json = Effect_To_Json(*emitter);
        EXPECT_EQ(json["name"], name.text) << name.what;
        EXPECT_EQ(json.contains("windows_1252"), name.isListed) << name.what;
        EXPECT_EQ(json.value("windows_1252", Json::array()), name.isListed ? Json::array({"/name"}) : Json::array());
        EXPECT_EQ(std::string(Effect_From_Json(json)->Get_Name()), name.bytes) << name.what;
    }
}
