#include "Tools/vro/AllKinds.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"
#include "vro/ParameterJson.h"

#include "MKLib/Parameters/Parameter.h"
#include "MKLib/Parameters/ParameterList.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include <gtest/gtest.h>

using namespace vro;

namespace
{

std::string Text_Of(const vrMKParticleEmitter &emitter)
{
    return To_Text(Effect_To_Json(emitter));
}

SmartPtr<vrMKParticleEmitter> Built(const std::string &text)
{
    return Effect_From_Json(Parse_Json(text));
}

std::string Bytes_Of(vrMKParticleEmitter &emitter)
{
    std::string bytes;
    std::string error;
    EXPECT_TRUE(Save_Effect(emitter, TOOL_MODE, bytes, error)) << error;
    return bytes;
}

SmartPtr<vrMKParticleEmitter> Loaded(const std::string &bytes)
{
    std::string error;
    auto emitter = Load_Effect(bytes, "everything.vro", error);
    if (!emitter) throw std::runtime_error(error);
    return emitter;
}

/// The value of the parameter `name` of the first layer's visualizer, after a build of `value`.
Json Rebuilt_Value(const std::string &plugin, const std::string &name, const std::string &value)
{
    const std::string text = R"({"renderables": [{"layers": [{"modifiers": [{"name": ")" + plugin +
                             R"(", "parameters": [{"name": ")" + name + R"(", "value": )" + value + "}]}]}]}]}";
    const Json dumped = Effect_To_Json(*Built(text));
    for (const Json &parameter : dumped["renderables"][0]["layers"][0]["modifiers"][0]["parameters"])
        if (parameter["name"] == name) return parameter["value"];
    throw std::runtime_error("no parameter " + name);
}

} // namespace

TEST(EffectJson, KeepsEveryValueOfEveryKind)
{
    int kinds = 0;
    const auto original = vroTest::Make_Effect_Of_All_Kinds(kinds);
    ASSERT_EQ(kinds, 129);
    const std::string text = Text_Of(*original);
    const auto rebuilt = Built(text);
    EXPECT_TRUE(Text_Of(*rebuilt) == text);
    EXPECT_TRUE(Bytes_Of(*rebuilt) == Bytes_Of(*original));
}

TEST(EffectJson, DumpsWhatAFileHoldsAndBuildsItBackToTheSameBytes)
{
    int kinds = 0;
    // The first load converts the four retired visualizers, so it is a file of the second save that has to stay.
    const auto mended = Loaded(Bytes_Of(*vroTest::Make_Effect_Of_All_Kinds(kinds)));
    const std::string bytes = Bytes_Of(*mended);
    const std::string text = Text_Of(*Loaded(bytes));
    const auto rebuilt = Built(text);
    EXPECT_TRUE(Bytes_Of(*rebuilt) == bytes);
    EXPECT_TRUE(Text_Of(*Loaded(Bytes_Of(*rebuilt))) == text);
}

TEST(EffectJson, ChangedValuesDifferFromTheDefaultsInTheDump)
{
    // Guards the two tests above: a value that stayed at its default would pass them without being written at all.
    for (uint32_t id = 0; id < 129; ++id) {
        const SmartPtr<vrMKPPlugin> plain = vrMKPPlugin::Create_Plugin(id);
        const SmartPtr<vrMKPPlugin> changed = vrMKPPlugin::Create_Plugin(id);
        vroTest::Change_All_Values(*changed);
        TextPlaces texts;
        for (int index = 0; index < plain->Get_Parameters().Get_Parameter_Count(); ++index) {
            const auto &before = *plain->Get_Parameters().Get_Parameter(index);
            const auto &after = *changed->Get_Parameters().Get_Parameter(index);
            EXPECT_NE(Value_To_Json(before, "", texts), Value_To_Json(after, "", texts))
                << plain->Get_Name() << ": " << before.Get_Name();
        }
    }
}

TEST(EffectJson, FillsInWhatADocumentLeavesOut)
{
    const Json json = Effect_To_Json(*Built(R"({"renderables": [{}, {"kind": "model"}, {"layers": [{}]}]})"));
    EXPECT_EQ(json["remove_on_depleted"], true);
    const Json &group = json["renderables"][0];
    EXPECT_EQ(group["kind"], "group");
    EXPECT_EQ(group["physics"]["name"], "Null"); // what a load gives every renderable without physics
    const Json without = Effect_To_Json(*Built(R"({"renderables": [{"physics": null}]})"));
    EXPECT_EQ(without["renderables"][0]["physics"], nullptr);
    const Json &model = json["renderables"][1];
    EXPECT_EQ(model["attached_model"], nullptr);
    EXPECT_EQ(json["renderables"][2]["layers"][0]["spawner"], nullptr);
}

TEST(EffectJson, TakesAPluginAndAParameterByNameOrById)
{
    const char *forms[] = {
        R"({"id": 34, "parameters": [{"id": 9, "value": 12.5}]})",
        R"({"name": "Shape", "parameters": [{"name": "d-lod near distance", "value": 12.5}]})",
        R"({"id": 34, "name": "Shape", "parameters": [{"id": 9, "name": "D-LOD Near Distance", "kind": "Float", "value": 12.5}]})",
    };
    for (const char *form : forms) {
        const Json json =
            Effect_To_Json(*Built(R"({"renderables": [{"layers": [{"spawner": )" + std::string(form) + "}]}]}"));
        const Json &spawner = json["renderables"][0]["layers"][0]["spawner"];
        EXPECT_EQ(spawner["id"], 34) << form;
        for (const Json &parameter : spawner["parameters"])
            EXPECT_TRUE(parameter["id"] != 9 || parameter["value"] == 12.5) << form;
    }
}

TEST(EffectJson, FindsANameInTheFamilyOfItsPlace)
{
    // Four families have a "Weather Cube".
    const Json json = Effect_To_Json(*Built(R"({"renderables": [{"layers": [{
        "spawner": {"name": "Weather Cube"}, "transformer": {"name": "Weather Cube"},
        "stomper": {"name": "Weather Cube"}, "modifiers": [{"name": "Weather Cube"}]}]}]})"));
    const Json &layer = json["renderables"][0]["layers"][0];
    EXPECT_EQ(layer["spawner"]["id"], 63);
    EXPECT_EQ(layer["modifiers"][0]["id"], 64);
    EXPECT_EQ(layer["transformer"]["id"], 65);
    EXPECT_EQ(layer["stomper"]["id"], 66);
}

TEST(EffectJson, TakesAnEnumerationInEachForm)
{
    const auto built = [](const std::string &value) {
        const Json json =
            Effect_To_Json(*Built(R"({"renderables": [{"layers": [{"spawner": {"name": "Shape", "parameters": [)"
                                  R"({"name": "Random Seed Source", "value": )" +
                                  value + "}]}}]}]}"));
        for (const Json &parameter : json["renderables"][0]["layers"][0]["spawner"]["parameters"])
            if (parameter["name"] == "Random Seed Source") return parameter["value"];
        return Json();
    };
    const Json first = {{"index", 0}, {"label", "This Particle"}};
    EXPECT_EQ(built(R"({"index": 0, "label": "This Particle"})"), first);
    EXPECT_EQ(built(R"("This Particle")"), first);
    EXPECT_EQ(built("0"), first);
    EXPECT_EQ(built(R"({"label": "This Particle"})"), first);
    EXPECT_NE(built("1"), first);
    // A file may hold any index; it stays, and has no label.
    EXPECT_EQ(built(R"({"index": 999, "label": ""})"), Json({{"index", 999}, {"label", ""}}));
}

TEST(EffectJson, SortsTheKeysOfACurve)
{
    EXPECT_EQ(
        Rebuilt_Value("Keyed Uniform Size", "Size", R"({"spline": true, "keys": [[1, 2], [0.5, 3], ["-inf", 4]]})"),
        Json({{"spline", true}, {"keys", {{"-inf", 4.0}, {0.5, 3.0}, {1.0, 2.0}}}}));
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

TEST(EffectJson, KeepsNumbersThatAreNotFinite)
{
    EXPECT_EQ(Rebuilt_Value("Acceleration", "Acceleration", R"(["nan", "inf", "-inf"])"),
              Json::array({"nan", "inf", "-inf"}));
}

TEST(EffectJson, ReadsTextsThatAreNotUtf8AsWindows1252AndWritesTheSameBytes)
{
    // 0xe9 and 0x80 alone are no UTF-8; Windows-1252 has e acute and the euro sign there. 0x81 it leaves open.
    const struct
    {
        const char *what, *bytes, *text;
        bool isListed;
    } names[] = {
        {"UTF-8", "caf\xc3\xa9", "caf\xc3\xa9", false},
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

TEST(EffectJson, LeavesOutAndRefusesParametersThatAreNeverSaved)
{
    for (uint32_t id = 0; id < 129; ++id) {
        const SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(id);
        for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index) {
            const auto &parameter = *plugin->Get_Parameters().Get_Parameter(index);
            if (!parameter.Is_Save_Excluded()) continue;
            const Json entry = {{"id", parameter.Get_ID()}};
            EXPECT_THROW(Parameter_From_Json(plugin->Get_Parameters(), entry, "/p", TextPlaces()), JsonError)
                << plugin->Get_Name() << ": " << parameter.Get_Name();
        }
    }
}
